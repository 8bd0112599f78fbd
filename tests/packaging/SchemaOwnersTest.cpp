// SPDX-License-Identifier: Apache-2.0
// Applications that have the library's schemas a second time. protobuf accepts a schema once in a
// process, and aborts at the second: at load if both are there from the start. A library with a protobuf
// of its own inside does not share it.
#include <gmock/gmock.h>

#include "Installed.h"

namespace {

using ::testing::HasSubstr;

class SchemaOwners : public Installed {
 protected:
  SchemaOwners() {
    outputOf({CMAKE, "-S", SOURCES "/schema_owners", "-B", build, "-DCMAKE_PREFIX_PATH=" + prefix,
              "-DSCHEMAS=" + prefix + "/share/murlink-robot/proto"});
  }

  Finished finished(const std::string& application) const {
    outputOf({CMAKE, "--build", build, "--target", application, "--parallel", "2"});
    SimulatorProcess peers;
    return runToEnd({build + "/" + application}, {{"LD_LIBRARY_PATH", libraries}},
                    std::chrono::seconds(10));
  }

  const std::string build = folder.path("build");
};

#if MURLINK_SELF_CONTAINED

constexpr char kBothWork[] = "0\n10\n0\n";

TEST_F(SchemaOwners, WorkWhenCompiledIn) {
  EXPECT_EQ(finished("compiled_in").out, kBothWork);
}

TEST_F(SchemaOwners, WorkWhenLoaded) {
  EXPECT_EQ(finished("loading").out, kBothWork);
}

#else

void expectAbort(const Finished& end, const std::string& printed) {
  EXPECT_EQ(end.exit_code, 128 + SIGABRT);
  EXPECT_EQ(end.out, printed);
  EXPECT_THAT(end.err, HasSubstr("File already exists in database: Quarlo_Platform.proto"));
}

TEST_F(SchemaOwners, AbortAtStartWhenCompiledIn) {
  expectAbort(finished("compiled_in"), "");
}

TEST_F(SchemaOwners, AbortWhenLoaded) {
  expectAbort(finished("loading"), "0\n");
}

#endif

}  // namespace
