// SPDX-License-Identifier: Apache-2.0
#include "ChildProcess.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "Spawn.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

void readSome(pollfd& pipe, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t count = read(pipe.fd, buffer.data(), buffer.size());
  if (count > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  } else {
    pipe.fd = -1;  // closed by the child; poll() passes over it
  }
}

// Collects what the child writes until it has closed both pipes, or until `deadline`.
void collect(const Pipe& out, const Pipe& err, Finished& finished,
             steady_clock::time_point deadline) {
  std::array<pollfd, 2> pipes{{{out.readEnd(), POLLIN, 0}, {err.readEnd(), POLLIN, 0}}};
  const std::array<std::string*, 2> texts{&finished.out, &finished.err};

  while (pipes[0].fd >= 0 || pipes[1].fd >= 0) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    if (left <= 0) {
      return;
    }
    if (poll(pipes.data(), pipes.size(), static_cast<int>(left)) <= 0) {
      continue;
    }
    for (std::size_t i = 0; i < pipes.size(); ++i) {
      if (pipes[i].revents != 0) {
        readSome(pipes[i], *texts[i]);
      }
    }
  }
}

}  // namespace

Finished runToEnd(std::vector<std::string> command,
                  std::map<std::string, std::string> environment_changes,
                  std::chrono::seconds limit) {
  const auto deadline = steady_clock::now() + limit;
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t child = spawn(command, std::move(environment_changes),
                            {in.readEnd(), out.writeEnd(), err.writeEnd()});
  in.closeWriteEnd();
  out.closeWriteEnd();
  err.closeWriteEnd();

  Finished finished{};
  collect(out, err, finished, deadline);
  finished.exit_code = waitForExit(child, deadline);
  if (steady_clock::now() >= deadline) {
    throw std::runtime_error(command.front() + " did not end within " +
                             std::to_string(limit.count()) + " s; it wrote: \"" + finished.out +
                             "\" and on standard error: \"" + finished.err + "\"");
  }
  return finished;
}
