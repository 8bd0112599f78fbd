// SPDX-License-Identifier: Apache-2.0
// The program on a terminal: prompt, editing, completion, history, and events while a line is typed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "DurationOf.h"
#include "SimulatorClient.h"
#include "support/OwnFolder.h"
#include "support/Spawn.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::HasSubstr;
using ::testing::Not;
using Answer = SimulatorClient::Answer;

constexpr const char* kAddress = MURLINK_ROBOT_HOST ":26710";
constexpr const char* kCtrlD = "\x04";
constexpr const char* kUp = "\x1b[A";

// The simulator on a terminal of 80 columns, with a person who types and reads.
class TerminalSession {
 public:
  TerminalSession(const OwnFolder& state, std::vector<std::string> options) {
    winsize size{24, 80, 0, 0};
    if (openpty(&person_, &terminal_, nullptr, nullptr, &size) != 0) {
      throw std::system_error(errno, std::generic_category(), "no terminal");
    }
    mode_ = mode();
    options.insert(options.begin(), {MURLINK_SIMULATOR, "--display", "off"});
    process_ = spawn(std::move(options), {{"TERM", "xterm"}, {"XDG_STATE_HOME", state.path("")}},
                     {terminal_, terminal_, STDERR_FILENO});
  }
  ~TerminalSession() {
    if (process_ != 0) {
      kill(process_, SIGKILL);
      waitForEnd();
    }
    close(person_);
    close(terminal_);
  }
  TerminalSession(const TerminalSession&) = delete;
  TerminalSession& operator=(const TerminalSession&) = delete;

  void type(const std::string& keys) const {
    EXPECT_EQ(write(person_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }

  // Reads until `text` appears, and returns what was read up to its end.
  std::string readUntil(const std::string& text) {
    const auto end = steady_clock::now() + seconds(10);
    while (unread_.find(text) == std::string::npos) {
      pollfd polled{person_, POLLIN, 0};
      std::array<char, 4096> chunk{};
      if (steady_clock::now() >= end || poll(&polled, 1, 10'000) != 1) {
        ADD_FAILURE() << "no \"" << text << "\" in: " << unread_;
        return {};
      }
      const ssize_t length = read(person_, chunk.data(), chunk.size());
      unread_.append(chunk.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    }
    const std::size_t length = unread_.find(text) + text.size();
    std::string result = unread_.substr(0, length);
    unread_.erase(0, length);
    return result;
  }

  void signal(int number) const { kill(process_, number); }

  int waitForEnd() {
    return waitForExit(std::exchange(process_, 0), steady_clock::now() + seconds(10));
  }

  bool isInItsFirstMode() const {
    const termios now = mode();
    return now.c_iflag == mode_.c_iflag && now.c_oflag == mode_.c_oflag &&
           now.c_lflag == mode_.c_lflag;
  }

 private:
  int person_ = -1;
  int terminal_ = -1;
  termios mode_{};
  pid_t process_ = 0;
  std::string unread_;

  termios mode() const {
    termios mode{};
    tcgetattr(terminal_, &mode);
    return mode;
  }
};

class Terminal : public ::testing::Test {
 protected:
  OwnFolder state;
  TerminalSession session{state, {}};

  void SetUp() override { session.readUntil("type help for the commands, Ctrl-D to end\r\n> "); }

  static void call() { ASSERT_EQ(SimulatorClient(kAddress).serviceOn(1).status, grpc::OK); }
};

TEST_F(Terminal, RunsATypedCommandAndPromptsAgain) {
  session.type("set gesture on\r");

  session.readUntil("ok gesture on\r\n> ");
}

TEST_F(Terminal, CompletesWordsWithTab) {
  session.type("wh\tprogram_r\tfoo\tnever\r");

  session.readUntil("ok when program_run foot-touch never always\r\n");
}

TEST_F(Terminal, ListsWhatAWordMayBecome) {
  session.type("when program_\t");

  session.readUntil("program_run  program_stop  \r\n");
  session.readUntil("> when program_");
}

TEST_F(Terminal, ShowsAHalfTypedLineAgainBelowAnEvent) {
  session.type("sta");
  session.readUntil("sta");

  call();

  session.readUntil("\r\x1b[J[");
  session.readUntil("call 1: service_On");
  session.readUntil("reply 1: s=0, gesture is on\r\n> sta");
  session.type("te\r");
  session.readUntil("ok gesture on, foot-touch off\r\n");
}

TEST_F(Terminal, ErasesAllRowsOfALongLineBeforeAnEvent) {
  session.type(std::string(200, 'x') + "y");
  session.readUntil("y");

  call();

  session.readUntil("\r\x1b[2A\x1b[J[");
}

TEST_F(Terminal, KeepsTheHistoryForTheNextRun) {
  session.type("set gesture running\r");
  session.readUntil("ok");
  session.type(kCtrlD);
  EXPECT_EQ(session.waitForEnd(), 0);

  TerminalSession next(state, {});
  next.readUntil("> ");
  next.type(std::string(kUp) + "\r");
  next.readUntil("ok gesture running\r\n");
}

TEST_F(Terminal, IsRestoredAtTheEndOfTheInput) {
  session.type(kCtrlD);

  EXPECT_EQ(session.waitForEnd(), 0);
  EXPECT_TRUE(session.isInItsFirstMode());
}

TEST_F(Terminal, EndsTheInputByCtrlDWhileACommandRuns) {
  session.type("pause 300ms\r");
  session.readUntil("pause 300ms\r\n");
  session.type(kCtrlD);

  EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(Terminal, IsRestoredAfterQuit) {
  session.type("quit\r");

  EXPECT_EQ(session.waitForEnd(), 0);
  EXPECT_TRUE(session.isInItsFirstMode());
}

TEST_F(Terminal, ThatIsNotReadDelaysNoPeerAndNoEnd) {
  session.type("sta");
  for (int times = 0; times < 200; ++times) {
    call();
  }

  session.signal(SIGTERM);

  EXPECT_LT(durationOf([this] { EXPECT_EQ(session.waitForEnd(), 0); }), milliseconds(1500));
  EXPECT_TRUE(session.isInItsFirstMode());
}

class SignalAtTerminal : public Terminal, public ::testing::WithParamInterface<int> {};

TEST_P(SignalAtTerminal, EndsAHalfTypedLineAndRestoresTheTerminal) {
  session.type("sta");
  session.readUntil("sta");
  EXPECT_FALSE(session.isInItsFirstMode());

  session.signal(GetParam());

  EXPECT_LT(durationOf([this] { EXPECT_EQ(session.waitForEnd(), 0); }), milliseconds(1000));
  EXPECT_TRUE(session.isInItsFirstMode());
}

INSTANTIATE_TEST_SUITE_P(For, SignalAtTerminal, ::testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT),
                         [](const auto& row) { return std::string(sigabbrev_np(row.param)); });

TEST(PlainTerminal, HasNoPromptForProgramsAndScripts) {
  const OwnFolder folder;
  const std::string script = folder.file("script", "state\n");
  for (const auto& options :
       std::vector<std::vector<std::string>>{{"--json"}, {"--script", script}}) {
    TerminalSession session(folder, options);
    session.readUntil("ready");
    session.type("quit\r");

    EXPECT_EQ(session.waitForEnd(), 0);
    const std::string text = session.readUntil(options[0] == "--json" ? "\"ok\"}" : "ok\r\n");
    EXPECT_THAT(text, Not(HasSubstr("> ")));
    EXPECT_THAT(text, Not(HasSubstr("type help")));
  }
}

}  // namespace
