#include "supervisor.h"

#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace fmdtool {

namespace {

// One path for each kind of leftover, in memory that both processes see.
using Paths = std::array<std::array<char, PATH_MAX>, 2>;
Paths* leftovers = nullptr;

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

void share_leftovers() {
  void* memory = mmap(nullptr, sizeof(Paths), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "cannot start");
  leftovers = static_cast<Paths*>(memory);
}

void remove_leftovers() {
  for (const auto& path : *leftovers) {
    std::error_code error;
    if (path[0] != '\0') std::filesystem::remove_all(path.data(), error);
  }
}

// Hands signals on until the child has ended; its status.
int watch(pid_t child) {
  sigset_t set = ending_signals();
  sigaddset(&set, SIGCHLD);
  for (;;) {
    int status = 0;
    if (waitpid(child, &status, WNOHANG) == child) return status;
    int number = 0;
    if (sigwait(&set, &number) == 0 && number != SIGCHLD) kill(child, number);
  }
}

}  // namespace

int run_supervised(const std::function<int()>& work) {
  share_leftovers();
  signal(SIGXFSZ, SIG_IGN);  // a file size limit is then a failed write, which is reported
  sigset_t watched = ending_signals();
  sigaddset(&watched, SIGCHLD);
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, &watched, &before);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "cannot start a process");
  if (child == 0) {
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::exit(work());
  }
  const int status = watch(child);
  remove_leftovers();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (!WIFSIGNALED(status)) return WEXITSTATUS(status);
  signal(WTERMSIG(status), SIG_DFL);
  raise(WTERMSIG(status));
  return EXIT_FAILURE;
}

void note_leftover(Leftover kind, const std::string& path) {
  if (leftovers == nullptr || path.size() >= PATH_MAX) return;
  std::memcpy((*leftovers)[static_cast<std::size_t>(kind)].data(), path.c_str(), path.size() + 1);
}

SignalHold::SignalHold() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

SignalHold::~SignalHold() {
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace fmdtool
