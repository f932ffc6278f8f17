#include "harness/measurement.h"

#include <hdf5.h>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>

namespace orvml_io_bench {

namespace {

Clock chosenClock = Clock::wall;

double secondsNow() {
  timespec now = {};
  const clockid_t clock = chosenClock == Clock::wall ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID;
  require(::clock_gettime(clock, &now) == 0, "reading the clock");
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Sets the peak of the resident memory back to what is resident now (Linux).
void resetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

double megabytesOf(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, key.size(), key) == 0) {
      constexpr double kKilobytesOfOne = 1024;
      return std::stod(line.substr(key.size())) / kKilobytesOfOne;
    }
  }
  return 0;
}

}  // namespace

void Measurement::start() {
  resetPeak();
  residentMegabytes_ = megabytesOf("VmRSS:");
  started_ = secondsNow();
}

void Measurement::stop() {
  const double taken = secondsNow() - started_;
  sample_ = {taken, megabytesOf("VmHWM:") - residentMegabytes_};
}

Run withWarmMemory(std::size_t bytes, Run run) {
  return [bytes, run = std::move(run)](Measurement& measurement) {
    void* memory =
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED, "memory to be touched");
    (void)::madvise(memory, bytes, MADV_HUGEPAGE);
    std::memset(memory, 1, bytes);
    (void)::munmap(memory, bytes);
    run(measurement);
  };
}

void measureWith(Clock clock) { chosenClock = clock; }

Clock clockOfRuns() { return chosenClock; }

bool sent(const Sample& sample, int channel) {
  return ::write(channel, &sample, sizeof sample) == sizeof sample;
}

Sample received(int channel, pid_t process) {
  Sample sample;
  const bool isWhole = ::read(channel, &sample, sizeof sample) == sizeof sample;
  int status = 0;
  (void)::waitpid(process, &status, 0);
  require(isWhole && WIFEXITED(status) && WEXITSTATUS(status) == 0, "a run in a child process");
  return sample;
}

Sample measuredInChild(const Run& run) {
  require(H5open() >= 0, "starting HDF5");  // once here, and not again in every child
  int channel[2] = {};
  require(::pipe(channel) == 0, "a pipe");
  const pid_t child = ::fork();
  require(child >= 0, "a child process");
  if (child == 0) {
    (void)::malloc_trim(0);  // what was freed before belongs to no run
    Measurement measurement;
    run(measurement);
    ::_exit(sent(measurement.sample(), channel[1]) ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  (void)::close(channel[1]);
  const Sample sample = received(channel[0], child);
  (void)::close(channel[0]);
  return sample;
}

void preparedInChild(const std::function<void()>& preparation) {
  (void)measuredInChild([&](Measurement&) { preparation(); });
}

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "benchmark: failed: %s\n", what);
    std::_Exit(EXIT_FAILURE);
  }
}

}  // namespace orvml_io_bench
