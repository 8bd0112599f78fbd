// SPDX-License-Identifier: Apache-2.0
// What is installed, and projects that use the library: installed, or as a part of their own build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Installed.h"

namespace {

using std::chrono::minutes;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_directory()) {
      files.push_back(entry.path().lexically_relative(folder));
    }
  }
  return files;
}

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

TEST_F(Installed, NeedsNoCMakeFileOfTheStandIn) {
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

TEST_F(Installed, IsEnoughForTheProgramOfTheReadme) {
  outputOf({SOURCES "/readme_program", folder.path("")},
           {{"PKG_CONFIG_PATH", libraries + "/pkgconfig"}});

  EXPECT_EQ(run(folder.path("hello")), "The robot recognises gestures. Press Enter to stop.\n");
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

#if MURLINK_SELF_CONTAINED

TEST_F(Installed, NeedsOnlyTheCAndCppLibrariesAndThePlatform) {
  EXPECT_EQ(
      outputOf(
          {"sh", "-c",
           "readelf --dynamic " + libraries +
               "/libmurlink-robot.so.1 | "
               "sed -n 's/.*NEEDED.*\\[\\(lib.*\\)\\.so.*/\\1/p' | LC_ALL=C sort | tr '\\n' ' '"}),
      "libc libgcc_s libm libmurlink-platform libstdc++ ");
}

TEST_F(Installed, HasTheLicencesOfWhatIsInside) {
  EXPECT_THAT(outputOf({"cat", prefix + "/share/doc/murlink-robot/NOTICE"}),
              AllOf(HasSubstr("grpc, as in the Debian package"),
                    HasSubstr("TERMS AND CONDITIONS FOR USE")));
}

#endif

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

class Subdirectory : public ::testing::TestWithParam<const char*> {};

TEST_P(Subdirectory, IsBuiltAndInstalledWithItsParentAndAddsNothingElse) {
  const OwnFolder folder;
  const std::string build = folder.path("build");
  const std::string prefix = folder.path("prefix");

  EXPECT_THAT(
      configured(build, {GetParam()}),
      HasSubstr(
          "folders [proto;platform;src] targets [murlink_hardening;murlink_language] options [] "
          "flags [] build type [] tests [] errors [errors-NOTFOUND]"));

  outputOf({CMAKE, "--build", build, "--parallel", "2"});
  outputOf({CMAKE, "--install", build, "--prefix", prefix});
  for (const std::string application : {"/bin/application_in_c", "/bin/application_in_cpp"}) {
    SimulatorProcess peers;
    EXPECT_EQ(outputOf({prefix + application}, {{"LD_LIBRARY_PATH", prefix + "/" LIBRARY_FOLDER}}),
              "0\n0\n0\n");
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Subdirectory, ::testing::Values("-DFETCH=OFF", "-DFETCH=ON"),
                         [](const auto& kind) {
                           return kind.index == 0 ? "AddSubdirectory" : "FetchContent";
                         });

TEST(WrongPlatformLibraries, AreNamedByTheLinker) {
  const OwnFolder folder;
  const std::string build = folder.path("build");
  const auto link = [&](const std::string& libraries) {
    configured(build, {"-DMURLINK_PLATFORM_LIBRARIES=" + libraries});
    const Finished finished = runToEnd(
        {CMAKE, "--build", build, "--parallel", "2", "--target", "murlink_robot"}, {}, minutes(10));
    EXPECT_NE(finished.exit_code, 0);
    return finished.out + finished.err;
  };

  EXPECT_THAT(link("m"), HasSubstr("dlog_print is not defined: set MURLINK_PLATFORM_LIBRARIES to"));
  EXPECT_THAT(link("no_such_library"),
              HasSubstr("no_such_library is not found: MURLINK_PLATFORM_LIBRARIES may name it"));
}

}  // namespace
