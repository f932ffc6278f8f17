#include "interrupt.h"

#include <signal.h>  // Threads wait for signals by POSIX alone. NOLINT(modernize-deprecated-headers)
#include <unistd.h>

#include <algorithm>
#include <array>
#include <latch>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace orvml_tool {

namespace {

// How the files are called that the library writes before they take their place.
constexpr std::string_view kBegunFile = ".orvml_io-";

// They have no destructors: the thread that waits for signals outlives main().
std::mutex mutex;
std::array<char, 4096> removedFolder = {};  // a text that ends with a null byte

sigset_t watchedSignals() noexcept {
  sigset_t signals = {};
  ::sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ::sigaddset(&signals, signal);
  }
  return signals;
}

/// The library has them open as long as they have not taken their place.
void removeBegunFiles() {
  std::error_code ignored;
  for (const auto& open : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
    const auto file = std::filesystem::read_symlink(open, ignored);
    if (file.filename().native().starts_with(kBegunFile)) {
      std::filesystem::remove(file, ignored);
    }
  }
}

void removeWhatWasBegun() {
  removeBegunFiles();
  const std::lock_guard lock(mutex);
  std::error_code ignored;
  if (removedFolder.front() != '\0') {
    std::filesystem::remove_all(removedFolder.data(), ignored);
  }
}

[[noreturn]] void endBy(int signal) {
  sigset_t signals = {};
  ::sigemptyset(&signals);
  ::sigaddset(&signals, signal);
  (void)::signal(signal, SIG_DFL);
  (void)::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  (void)::raise(signal);
  ::_exit(1);  // not reached: that signal ends programs
}

void waitForInterrupt() {
  const sigset_t signals = watchedSignals();
  int signal = 0;
  if (::sigwait(&signals, &signal) == 0) {
    removeWhatWasBegun();
    endBy(signal);
  }
}

/// Whether a signal ends this program: `nohup` and shells may have it ignored.
bool isIgnored(int signal) noexcept {
  struct sigaction action = {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void watchInterrupts() {
  static bool areWatched = false;
  if (std::exchange(areWatched, true)) {
    return;
  }
  sigset_t signals = watchedSignals();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (isIgnored(signal)) {
      ::sigdelset(&signals, signal);
    }
  }
  (void)::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  // A child that rescue() forks would inherit what a thread holds that is just beginning.
  static std::latch isWaiting(1);
  std::thread([] {
    isWaiting.count_down();
    waitForInterrupt();
  }).detach();
  isWaiting.wait();
}

void removeOnInterrupt(const std::filesystem::path& folder) {
  const std::lock_guard lock(mutex);
  const std::string& name = folder.native();
  if (name.size() < removedFolder.size()) {
    *std::copy(name.begin(), name.end(), removedFolder.begin()) = '\0';
  }
}

}  // namespace orvml_tool
