// SPDX-License-Identifier: Apache-2.0
// What tests of the installed files share.
#ifndef MURLINK_TESTS_INSTALLED_H
#define MURLINK_TESTS_INSTALLED_H

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "support/ChildProcess.h"
#include "support/OwnFolder.h"
#include "support/SimulatorProcess.h"

using Command = std::vector<std::string>;

// What a command writes; throws when it fails.
inline std::string outputOf(const Command& command,
                            const std::map<std::string, std::string>& environment = {}) {
  const Finished finished = runToEnd(command, environment, std::chrono::minutes(10));
  if (finished.exit_code != 0) {
    throw std::runtime_error(finished.out + finished.err);
  }
  return finished.out;
}

inline void install(const std::string& prefix, const Command& options = {}) {
  Command command{CMAKE, "--install", BINARY_FOLDER, "--prefix", prefix};
  command.insert(command.end(), options.begin(), options.end());
  outputOf(command);
}

// Installed in one folder, and then moved to another.
class Installed : public ::testing::Test {
 protected:
  Installed() {
    install(folder.path("first"));
    std::filesystem::rename(folder.path("first"), prefix);
  }

  std::string run(const std::string& program) const {
    SimulatorProcess peers;
    return outputOf({program}, {{"LD_LIBRARY_PATH", libraries}});
  }

  const OwnFolder folder;
  const std::string prefix = folder.path("moved");
  const std::string libraries = prefix + "/" LIBRARY_FOLDER;
};

#endif
