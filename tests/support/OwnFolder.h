// SPDX-License-Identifier: Apache-2.0
// A folder of one test's own, because tests run side by side: empty at first, removed with
// the object.
#ifndef MURLINK_TESTS_OWN_FOLDER_H
#define MURLINK_TESTS_OWN_FOLDER_H

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

class OwnFolder {
 public:
  OwnFolder() {
    std::string name = ::testing::TempDir() + "murlink-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), "no folder " + name);
    }
    path_ = name;
  }
  ~OwnFolder() { std::filesystem::remove_all(path_); }
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;

  // Where a file of that name is, or would be.
  std::string path(const std::string& name) const { return path_ / name; }

  // Writes a file anew, and returns its path.
  std::string file(const std::string& name, const std::string& text) const {
    std::ofstream(path(name)) << text;
    return path(name);
  }

 private:
  std::filesystem::path path_;
};

#endif
