// SPDX-License-Identifier: Apache-2.0
// murlink-simulator: the peers of the library, on a PC.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "commands/CommandGroups.h"
#include "common/Output.h"
#include "common/Printable.h"
#include "common/StopSignal.h"
#include "peers/DisplaySide.h"
#include "peers/RobotSide.h"
#include "program/LineEditor.h"
#include "program/LineInput.h"
#include "program/Options.h"
#include "program/SignalWatch.h"
#include "program/StandardStreams.h"

namespace simulator {
namespace {

std::optional<Message> answerTo(const LineInput::Line& line, Commands& commands) {
  if (line.too_long) {
    return commands.refuse("a line can have " + std::to_string(LineInput::kMaxLength) +
                           " bytes at most");
  }
  return commands.execute(line.text);
}

template <typename Input>
void execute(Input&& input, Commands& commands, Output& output) {
  while (!commands.closed()) {
    const auto line = input.next();
    if (!line) {
      return;
    }
    if (const auto answer = answerTo(*line, commands)) {
      output.printAnswer(*answer);
    }
  }
}

// An open file, closed with the object; null when there is no script.
using Script = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Script openScript(const std::string& path) {
  if (path.empty()) {
    return {nullptr, std::fclose};
  }
  const auto fail = [&path](int error) {
    throw std::system_error(error, std::generic_category(), "cannot read " + path);
  };
  Script script(std::fopen(path.c_str(), "re"), std::fclose);
  if (script == nullptr) {
    fail(errno);
  }
  // fopen() opens a folder, too; only reading it fails.
  struct stat file {};
  if (fstat(fileno(script.get()), &file) == 0 && S_ISDIR(file.st_mode)) {
    fail(EISDIR);
  }
  return script;
}

template <typename Server>
Side start(const std::string& address, Peers& peers) {
  return Side(address == kOff ? "" : address, [&peers](const std::string& on, StopSignal& stop) {
    return std::make_unique<Server>(on, peers, stop);
  });
}

void printReady(Output& output, const char* name, const Side& side) {
  if (side.isPlayed()) {
    output.printAnswer(output.clock().stamped(
        {std::string(name) + " side ready on " + side.address(),
         {{"event", "ready"}, {"side", name}, {"address", side.address()}}}));
  }
}

// Interrupts everything that waits when the scope ends.
class StopAtEnd {
 public:
  explicit StopAtEnd(StopSignal& stop) : stop_(stop) {}
  ~StopAtEnd() { stop_.raise(); }
  StopAtEnd(const StopAtEnd&) = delete;
  StopAtEnd& operator=(const StopAtEnd&) = delete;

 private:
  StopSignal& stop_;
};

// Whether a person types the commands. Scripts and programs get plain lines.
bool isInteractive(const Options& options) {
  const char* const terminal =
      std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && !options.json &&
         options.script.empty() && terminal != nullptr && std::string_view(terminal) != "dumb";
}

// Reads commands from the terminal, or else from standard input.
void executeInput(LineEditor* editor, Commands& commands, Output& output, StopSignal& stop) {
  if (editor == nullptr) {
    execute(LineInput(STDIN_FILENO, stop), commands, output);
    return;
  }
  editor->completeWith([&commands](std::string_view line) { return complete(commands, line); });
  output.printAnswer({"type help for the commands, Ctrl-D to end", {}});
  execute(*editor, commands, output);
}

// Plays the peers until the end of the input, "quit" or the stop signal.
ExitCode play(const Options& options, std::FILE* script, Output& output, StopSignal& stop) {
  std::optional<LineEditor> editor;
  if (isInteractive(options)) {
    editor.emplace(output, stop);
  }
  Peers peers{output, stop};
  ProxyList proxies;
  Side robot = start<RobotSide>(options.robot, peers);
  Side display = start<DisplaySide>(options.display, peers);
  Sides sides{robot, display};
  const StopAtEnd stop_at_end(stop);
  printReady(output, "robot", robot);
  printReady(output, "display", display);

  Commands commands(stop);
  addAllCommands(commands, peers, proxies, sides);
  if (script != nullptr) {
    execute(LineInput(fileno(script), stop), commands, output);
  }
  executeInput(editor ? &*editor : nullptr, commands, output, stop);
  if (options.stay && !commands.closed()) {
    while (stop.sleep(std::chrono::hours(1))) {
    }
  }
  return commands.failed() ? kCommandFailed : kSuccess;
}

// The output cannot be written; what() says why.
class CannotWrite : public std::system_error {
  using std::system_error::system_error;
};

// Throws CannotWrite.
void finish(Output& output) {
  if (const auto error = output.finish()) {
    throw CannotWrite(*error, std::generic_category(), "cannot write the output");
  }
}

ExitCode run(const Options& options) {
  const Script script = openScript(options.script);
  StopSignal stop;       // at any end
  StopSignal interrupt;  // only at an end by a signal: what was printed may be lost
  std::vector<int> signals{SIGTERM, SIGINT};
  if (isInteractive(options)) {
    signals.insert(signals.end(), {SIGHUP, SIGQUIT});  // the terminal must be restored
  }
  const SignalWatch watch(signals, [&] {
    interrupt.raise();
    stop.raise();
  });
  Output output(STDOUT_FILENO, interrupt,
                {options.json ? Output::Format::Json : Output::Format::Text, options.quiet,
                 [&stop] { stop.raise(); }});
  const ExitCode result = play(options, script.get(), output, stop);
  finish(output);
  return result;
}

void print(std::string text) {
  text.pop_back();  // the output ends the last line
  StopSignal never;
  Output output(STDOUT_FILENO, never, {});
  output.printAnswer({text, {}});
  finish(output);
}

// Prints an error and returns its exit code.
ExitCode fail(const std::exception& error, ExitCode code) {
  std::cerr << "murlink-simulator: " << printable(error.what()) << "\n";
  return code;
}

ExitCode runProgram(int argc, char** argv) {
  try {
    Options options;
    std::ostringstream help;
    const auto end = options.parse(argc, argv, help);
    if (!help.str().empty()) {
      print(help.str());
    }
    return end ? *end : run(options);
  } catch (const CannotListen& error) {
    return fail(error, kCannotListen);
  } catch (const CannotWrite& error) {
    return fail(error, kCannotWrite);
  } catch (const std::exception& error) {
    return fail(error, kWrongUsage);
  }
}

}  // namespace
}  // namespace simulator

int main(int argc, char** argv) {
  simulator::openClosedStandardStreams(argv);
  // gRPC logs a taken port, too, less clearly than our own message.
  setenv("GRPC_VERBOSITY", "NONE", 0);
  // The reader of the output may end first.
  std::signal(SIGPIPE, SIG_IGN);

  return simulator::runProgram(argc, argv);
}
