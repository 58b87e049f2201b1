#include "tests/support/SpawnedProgram.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace valdrix::tests {

namespace {

[[noreturn]] void becomeProgram(const std::vector<std::string>& arguments,
                                const std::vector<std::string>& variables, int output,
                                pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(127);
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  dup2(nowhere, STDIN_FILENO);
  dup2(output >= 0 ? output : nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  for (const auto& variable : variables) {
    const auto equals = variable.find('=');
    setenv(variable.substr(0, equals).c_str(), variable.substr(equals + 1).c_str(), 1);
  }
  std::vector<char*> pointers;
  for (const auto& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  execvp(pointers[0], pointers.data());
  _exit(127);
}

}  // namespace

SpawnedProgram::SpawnedProgram(std::vector<std::string> arguments,
                               std::vector<std::string> variables, bool capturesOutput) {
  int ends[2] = {-1, -1};
  if (capturesOutput && pipe2(ends, O_CLOEXEC) != 0) return;
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ == 0) becomeProgram(arguments, variables, ends[1], parent);
  if (capturesOutput) {
    close(ends[1]);
    output_ = ends[0];
  }
}

SpawnedProgram::~SpawnedProgram() {
  if (output_ >= 0) close(output_);
  if (!isRunning()) return;
  ::kill(pid_, SIGTERM);
  if (!endsWithin(2000)) ::kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

bool SpawnedProgram::isRunning() {
  if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) != 0) pid_ = -1;
  return pid_ > 0;
}

bool SpawnedProgram::endsWithin(int milliseconds) const {
  const int process = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  pollfd ended{process, POLLIN, 0};
  const bool hasEnded = poll(&ended, 1, milliseconds) > 0;
  close(process);
  return hasEnded;
}

int SpawnedProgram::wait() {
  int status = 0;
  if (pid_ <= 0 || !endsWithin(10000)) return -1;
  waitpid(std::exchange(pid_, -1), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::optional<std::string> SpawnedProgram::readLine() {
  std::string line;
  pollfd waiting{output_, POLLIN, 0};
  while (poll(&waiting, 1, 10000) > 0) {
    char character = 0;
    if (read(output_, &character, 1) != 1) return std::nullopt;
    if (character == '\n') return line;
    line += character;
  }
  return std::nullopt;
}

}  // namespace valdrix::tests
