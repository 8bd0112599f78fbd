// SPDX-License-Identifier: Apache-2.0
// What is installed, and projects that use the library: installed, or as a part of their own build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "support/ChildProcess.h"
#include "support/OwnFolder.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::minutes;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

using Command = std::vector<std::string>;

// What a command writes; throws when it fails.
std::string outputOf(const Command& command,
                     const std::map<std::string, std::string>& environment = {}) {
  const Finished finished = runToEnd(command, environment, minutes(10));
  if (finished.exit_code != 0) {
    throw std::runtime_error(finished.out + finished.err);
  }
  return finished.out;
}

std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_directory()) {
      files.push_back(entry.path().lexically_relative(folder));
    }
  }
  return files;
}

void install(const std::string& prefix, const Command& options = {}) {
  Command command{CMAKE, "--install", BINARY_FOLDER, "--prefix", prefix};
  command.insert(command.end(), options.begin(), options.end());
  outputOf(command);
}

// Installed in one folder, and then moved to another.
class Installed : public ::testing::Test {
 protected:
  Installed() {
    install(folder.path("first"));
    fs::rename(folder.path("first"), prefix);
  }

  std::string run(const std::string& program) const {
    SimulatorProcess peers;
    return outputOf({program}, {{"LD_LIBRARY_PATH", libraries}});
  }

  const OwnFolder folder;
  const std::string prefix = folder.path("moved");
  const std::string libraries = prefix + "/" LIBRARY_FOLDER;
};

TEST_F(Installed, IsFoundByFindPackage) {
  outputOf({CMAKE, "-S", SOURCES "/installed", "-B", folder.path("build"),
            "-DCMAKE_PREFIX_PATH=" + prefix});
  outputOf({CMAKE, "--build", folder.path("build")});

  EXPECT_EQ(run(folder.path("build/application_in_c")), "0\n0\n0\n");
  EXPECT_EQ(run(folder.path("build/application_in_cpp")), "0\n0\n0\n");
}

TEST_F(Installed, IsNotFoundAsAnotherMajorVersion) {
  const std::string sources = folder.path("newer");
  fs::create_directory(sources);
  folder.file("newer/CMakeLists.txt",
              "cmake_minimum_required(VERSION 3.13)\n"
              "project(newer LANGUAGES NONE)\n"
              "find_package(murlink-robot 2 CONFIG REQUIRED)\n");

  const Finished finished =
      runToEnd({CMAKE, "-S", sources, "-B", folder.path("build"), "-DCMAKE_PREFIX_PATH=" + prefix},
               {}, minutes(1));

  EXPECT_NE(finished.exit_code, 0);
  EXPECT_THAT(finished.err, HasSubstr("version: " VERSION));
}

TEST_F(Installed, NeedsNoStandInToBeLinked) {
  fs::remove(libraries + "/cmake/murlink-robot/murlink-platformTargets.cmake");

  outputOf({CMAKE, "-S", SOURCES "/installed", "-B", folder.path("build"),
            "-DCMAKE_PREFIX_PATH=" + prefix});
  outputOf({CMAKE, "--build", folder.path("build")});
}

TEST_F(Installed, IsFoundByPkgConfig) {
  const std::map<std::string, std::string> environment{
      {"PKG_CONFIG_PATH", libraries + "/pkgconfig"}};
  const std::string flags =
      outputOf({"pkg-config", "--cflags", "--libs", "murlink-robot"}, environment);
  outputOf({"sh", "-c", CC " -o " + folder.path("in_c") + " " SOURCES "/application.c " + flags});
  outputOf(
      {"sh", "-c", CXX " -o " + folder.path("in_cpp") + " " SOURCES "/application.cpp " + flags});

  EXPECT_EQ(run(folder.path("in_c")), "0\n0\n0\n");
  EXPECT_EQ(run(folder.path("in_cpp")), "0\n0\n0\n");
  EXPECT_EQ(outputOf({"pkg-config", "--modversion", "murlink-robot"}, environment), VERSION "\n");
}

TEST_F(Installed, HasItsSimulator) {
  EXPECT_THAT(outputOf({prefix + "/bin/murlink-simulator", "--help"}),
              HasSubstr("murlink-simulator"));
}

TEST_F(Installed, LooksForLibrariesNowhereElse) {
  for (const std::string file :
       {LIBRARY_FOLDER "/libmurlink-robot.so.1", LIBRARY_FOLDER "/libmurlink-platform.so.1",
        "bin/murlink-simulator"}) {
    EXPECT_THAT(outputOf({"readelf", "--dynamic", prefix + "/" + file}),
                AllOf(Not(HasSubstr("RUNPATH")), Not(HasSubstr("RPATH"))))
        << file;
  }
}

TEST(InstalledComponents, CanBeInstalledApart) {
  const OwnFolder folder;
  for (const std::string component : {"runtime", "development", "tools"}) {
    install(folder.path(component), {"--component", component});
  }

  EXPECT_THAT(filesIn(folder.path("runtime") + "/" LIBRARY_FOLDER),
              UnorderedElementsAre("libmurlink-robot.so.1", "libmurlink-robot.so." VERSION));
  EXPECT_THAT(filesIn(folder.path("development") + "/include"), ElementsAre("murlink_robot.h"));
  EXPECT_THAT(filesIn(folder.path("development") + "/share"),
              UnorderedElementsAre("murlink-robot/proto/Quarlo_Platform.proto",
                                   "murlink-robot/proto/Quarlo_RB_Server.proto",
                                   "murlink-robot/proto/Quarlo_TV_Server.proto"));
  EXPECT_TRUE(
      fs::is_symlink(folder.path("development") + "/" LIBRARY_FOLDER "/libmurlink-robot.so"));
  EXPECT_THAT(filesIn(folder.path("tools") + "/bin"), ElementsAre("murlink-simulator"));
}

// Configures a project that has the library as a part, and returns what it says about that.
std::string configured(const std::string& build, const Command& options = {}) {
  Command command{CMAKE, "-S", SOURCES "/subdirectory", "-B", build, "-DMURLINK=" PROJECT};
  command.insert(command.end(), options.begin(), options.end());
  return outputOf(command);
}

constexpr char kNothingAdded[] =
    "options [] definitions [] flags [] build type [] targets [murlink_hardening;murlink_language] "
    "tests [] errors [errors-NOTFOUND]";

TEST(Subdirectory, AddsNothingToItsParent) {
  const OwnFolder folder;

  EXPECT_THAT(configured(folder.path("build")), HasSubstr(kNothingAdded));
}

TEST(Subdirectory, CanBeFetched) {
  const OwnFolder folder;

  EXPECT_THAT(configured(folder.path("build"), {"-DFETCH=ON"}), HasSubstr(kNothingAdded));
}

TEST(Subdirectory, IsBuiltAndInstalledWithItsParent) {
  const OwnFolder folder;
  const std::string build = folder.path("build");
  const std::string prefix = folder.path("prefix");
  configured(build);
  outputOf({CMAKE, "--build", build, "--parallel", "2"});
  outputOf({CMAKE, "--install", build, "--prefix", prefix});
  SimulatorProcess peers;

  EXPECT_EQ(outputOf({prefix + "/bin/application_in_c"},
                     {{"LD_LIBRARY_PATH", prefix + "/" LIBRARY_FOLDER}}),
            "0\n0\n0\n");
}

TEST(WrongPlatformLibraries, AreNamedByTheLinker) {
  const OwnFolder folder;
  outputOf({CMAKE, "-S", SOURCES "/subdirectory", "-B", folder.path("build"), "-DMURLINK=" PROJECT,
            "-DMURLINK_PLATFORM_LIBRARIES=m"});

  const Finished finished = runToEnd(
      {CMAKE, "--build", folder.path("build"), "--parallel", "2", "--target", "murlink_robot"}, {},
      minutes(10));

  EXPECT_NE(finished.exit_code, 0);
  EXPECT_THAT(finished.out + finished.err,
              HasSubstr("dlog_print is not defined: set MURLINK_PLATFORM_LIBRARIES to"));
}

}  // namespace
