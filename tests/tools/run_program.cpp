#include "tools/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace fmdtest {

namespace {

struct Channel {
  int mine = -1;
  int theirs = -1;
};

Channel open_pipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {ends[0], ends[1]};
}

Channel open_terminal() {
  Channel channel;
  if (openpty(&channel.mine, &channel.theirs, nullptr, nullptr, nullptr) != 0)
    throw std::runtime_error("no terminal");
  return channel;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// Takes no memory: another thread of the parent may have held the allocator when it forked.
[[noreturn]] void become(const std::vector<char*>& arguments, const std::vector<char*>& environment,
                         const Channel& output, const Channel& errors, const RunSettings& settings) {
  dup2(output.theirs, STDOUT_FILENO);
  dup2(errors.theirs, STDERR_FILENO);
  if (settings.file_size_limit > 0) {
    const auto bytes = static_cast<rlim_t>(settings.file_size_limit);
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  execve(arguments[0], arguments.data(), environment.data());
  _exit(127);
}

// Reads both channels to their ends; a closed terminal shows as an error.
void drain(const Channel& output, const Channel& errors, pid_t child, const RunSettings& settings,
           Outcome& outcome) {
  const auto start = std::chrono::steady_clock::now();
  pollfd files[2] = {{output.mine, POLLIN, 0}, {errors.mine, POLLIN, 0}};
  std::string* const texts[2] = {&outcome.output, &outcome.errors};
  bool signalled = settings.signal_after_milliseconds < 0;
  while (files[0].fd >= 0 || files[1].fd >= 0) {
    poll(files, 2, signalled ? -1 : 1);
    const auto time = std::chrono::steady_clock::now() - start;
    if (!signalled && time >= std::chrono::milliseconds(settings.signal_after_milliseconds)) {
      kill(child, SIGINT);
      signalled = true;
    }
    for (int i = 0; i < 2; ++i) {
      if (files[i].fd < 0 || files[i].revents == 0) continue;
      char buffer[4096];
      const ssize_t got = read(files[i].fd, buffer, sizeof buffer);
      if (got > 0) {
        texts[i]->append(buffer, static_cast<std::size_t>(got));
      } else {
        files[i].fd = -1;
      }
    }
  }
}

}  // namespace

Outcome run_program(const std::vector<std::string>& arguments, const RunSettings& settings) {
  std::vector<std::string> words = arguments;
  std::vector<std::string> variables;
  for (const auto& [name, value] : settings.environment) variables.push_back(name + "=" + value);
  const std::vector<char*> word_pointers = pointers(words);
  const std::vector<char*> variable_pointers = pointers(variables);
  const Channel output = open_pipe();
  const Channel errors = settings.errors_to_terminal ? open_terminal() : open_pipe();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) become(word_pointers, variable_pointers, output, errors, settings);
  close(output.theirs);
  close(errors.theirs);
  Outcome outcome;
  drain(output, errors, child, settings, outcome);
  int status = 0;
  waitpid(child, &status, 0);
  outcome.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  close(output.mine);
  close(errors.mine);
  return outcome;
}

}  // namespace fmdtest
