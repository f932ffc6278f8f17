#include "hostile/isolated.h"

#include <gtest/gtest.h>

#include <execinfo.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace orvml_io_tests {

namespace {

constexpr int kFailed = 3;
constexpr int kFault = 4;
constexpr int kLeak = 5;

/// A damaged size may send HDF5 through gigabytes; what takes longer than this counts as a fault.
constexpr unsigned kLongestSeconds = 60;

/// The frames of a stack that tell of its being printed: the sanitizer has one of its own.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kFramesOfThis = 2;
#else
constexpr int kFramesOfThis = 1;
#endif

/// Prints the stack of a fault in the form that everyStackEndsInHdf5 reads.
[[noreturn]] void reportFault(int /*signal*/) {
  std::array<void*, 64> frames = {};
  const int count = ::backtrace(frames.data(), static_cast<int>(frames.size()));
  ::backtrace_symbols_fd(frames.data() + kFramesOfThis, count - kFramesOfThis, STDERR_FILENO);
  ::_exit(kFault);
}

void reportFaults() {
  std::array<void*, 1> preload = {};
  ::backtrace(preload.data(), 1);  // loads what a signal handler may not load
  // Faults of a full stack need another one to be reported on.
  static std::array<char, 1 << 16> memory;
  stack_t stack = {};
  stack.ss_sp = memory.data();
  stack.ss_size = memory.size();
  ::sigaltstack(&stack, nullptr);
  struct sigaction action = {};
  action.sa_handler = reportFault;
  action.sa_flags = SA_ONSTACK;
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM}) {
    ::sigaction(signal, &action, nullptr);
  }
  ::alarm(kLongestSeconds);
}

int numberOfFailures() {
  return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

bool leaks() {
#if defined(__SANITIZE_ADDRESS__)
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

[[noreturn]] void runInChild(const std::function<void()>& work, std::FILE* output) {
  ::dup2(::fileno(output), STDOUT_FILENO);
  ::dup2(::fileno(output), STDERR_FILENO);
  reportFaults();
  const int failuresBefore = numberOfFailures();
  work();
  std::fflush(nullptr);
  const bool printed = ::lseek(STDOUT_FILENO, 0, SEEK_END) > 0;
  if (printed || numberOfFailures() != failuresBefore) {
    ::_exit(kFailed);
  }
  // No exit handlers: HDF5's would try again to close what it could not close.
  ::_exit(leaks() ? kLeak : 0);
}

std::string outputIn(std::FILE* file) {
  std::string content;
  std::rewind(file);
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
    content.push_back(static_cast<char>(c));
  }
  return content;
}

Ending endingOf(int status, const std::string& output) {
  if (!WIFEXITED(status)) {
    return Ending::failed;
  }
  switch (WEXITSTATUS(status)) {
    case 0:
      return Ending::succeeded;
    case kFailed:
      return Ending::failed;
    case kLeak:
      return everyStackEndsInHdf5(output) ? Ending::succeeded : Ending::failed;
    default:
      return everyStackEndsInHdf5(output) ? Ending::fellInHdf5 : Ending::failed;
  }
}

bool contains(const std::string& line, const char* part) {
  return line.find(part) != std::string::npos;
}

/// A frame of a stack, as a sanitizer (" #2 0x7f in name (module)") or the C library prints it
/// ("module(name+0x1)[0x7f]").
bool isFrame(const std::string& line) {
  return contains(line, " 0x") ? contains(line, "    #") : contains(line, "[0x");
}

bool belongsToThePlatform(const std::string& frame) {
  for (const char* part : {"libsanitizer", "libasan", "libubsan", "sysdeps", "libc.so", "vdso"}) {
    if (contains(frame, part)) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, Ending ending) {
  static const char* const names[] = {"succeeded", "fell in HDF5", "failed"};
  return stream << names[static_cast<int>(ending)];
}

bool everyStackEndsInHdf5(const std::string& report) {
  std::istringstream lines(report);
  bool decided = false;  // whether the innermost function of the present stack was found
  bool anyStack = false;
  for (std::string line; std::getline(lines, line);) {
    if (!isFrame(line)) {
      decided = false;
    } else if (!decided && !belongsToThePlatform(line)) {
      if (!contains(line, "libhdf5")) {
        return false;
      }
      decided = true;
      anyStack = true;
    }
  }
  return anyStack;
}

IsolatedRun runIsolated(const std::function<void()>& work) {
  std::FILE* output = std::tmpfile();
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    runInChild(work, output);
  }
  IsolatedRun run;
  int status = 0;
  const bool ended = child > 0 && ::waitpid(child, &status, 0) == child;
  run.output = outputIn(output);
  run.ending = ended ? endingOf(status, run.output) : Ending::failed;
  std::fclose(output);
  return run;
}

}  // namespace orvml_io_tests
