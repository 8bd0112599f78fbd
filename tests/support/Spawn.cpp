// SPDX-License-Identifier: Apache-2.0
#include "Spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>

namespace {

std::vector<std::string> assignments(std::map<std::string, std::string> environment) {
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const auto equals = text.find('=');
    environment.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  std::vector<std::string> texts;
  for (const auto& [name, value] : environment) {
    texts.push_back(std::string(name).append("=").append(value));
  }
  return texts;
}

// As execve() takes them; valid as long as `texts` is.
std::vector<char*> nullTerminated(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Pipe::Pipe() {
  if (pipe2(ends_.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "no pipe");
  }
}

Pipe::~Pipe() {
  closeReadEnd();
  closeWriteEnd();
}

void Pipe::closeEnd(int& end) {
  if (end >= 0) {
    close(end);
    end = -1;
  }
}

pid_t spawn(std::vector<std::string> command,
            std::map<std::string, std::string> environment_changes, const Streams& streams) {
  std::vector<std::string> variables = assignments(std::move(environment_changes));
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, streams.in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, streams.out, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, streams.err, STDERR_FILENO);

  pid_t child = 0;
  const int error = posix_spawnp(&child, command.front().c_str(), &files, nullptr,
                                 nullTerminated(command).data(), nullTerminated(variables).data());
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "cannot start " + command.front());
  }
  return child;
}

int waitForExit(pid_t child, std::chrono::steady_clock::time_point deadline) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
