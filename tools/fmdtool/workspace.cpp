#include "workspace.h"

#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr const char* directory_variable = "KXI_KADCDB_DIR";

std::mutex leftovers_guard;
fs::path leftover_directory;
std::string leftover_output;

void remove_leftovers() {
  const std::lock_guard<std::mutex> lock(leftovers_guard);
  std::error_code error;
  if (!leftover_output.empty()) fs::remove(leftover_output, error);
  if (!leftover_directory.empty()) fs::remove_all(leftover_directory, error);
}

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

// Waits for a signal, tidies up and lets the signal do what it does.
void tidy_up_on_signal() {
  const sigset_t set = ending_signals();
  int number = 0;
  if (sigwait(&set, &number) != 0) return;
  remove_leftovers();
  ::signal(number, SIG_DFL);
  ::kill(::getpid(), number);
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace

void watch_signals() {
  ::signal(SIGXFSZ, SIG_IGN);  // a file size limit is then a failed write, which is reported
  const sigset_t set = ending_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  std::thread(tidy_up_on_signal).detach();
}

void note_unfinished_output(const std::string& path) {
  const std::lock_guard<std::mutex> lock(leftovers_guard);
  leftover_output = path;
}

Workspace::Workspace() : previous_(fs::current_path()) {
  std::string name = (fs::temp_directory_path() / "fmdtool-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make the temporary directory " + name + ": " + std::strerror(errno));
  }
  path_ = name;
  {
    const std::lock_guard<std::mutex> lock(leftovers_guard);
    leftover_directory = path_;
  }
  const char* given = std::getenv(directory_variable);
  const fs::path directory = given == nullptr ? path_ : fs::absolute(given);
  setenv(directory_variable, directory.c_str(), 1);
  fs::current_path(path_);
}

Workspace::~Workspace() {
  std::error_code error;
  fs::current_path(previous_, error);
  remove_leftovers();
}

}  // namespace fmdtool
