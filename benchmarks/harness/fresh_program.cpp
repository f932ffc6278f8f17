#include "harness/fresh_program.h"

#include <hdf5.h>

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

namespace orvml_io_bench {

namespace {

constexpr char kTaskOption[] = "--task";
constexpr int kArgumentsOfTask = 5;  // program, option, task, path, clock

/// Starts this program with its standard output going to a channel; returns the new process.
pid_t start(std::string task, std::string path, int channel) {
  std::string program = "/proc/self/exe";
  std::string option = kTaskOption;
  std::string clock = clockOfRuns() == Clock::wall ? "wall" : "processor";
  std::array<char*, kArgumentsOfTask + 1> arguments = {program.data(), option.data(), task.data(),
                                                       path.data(),    clock.data(),  nullptr};
  posix_spawn_file_actions_t actions;
  require(::posix_spawn_file_actions_init(&actions) == 0 &&
              ::posix_spawn_file_actions_adddup2(&actions, channel, STDOUT_FILENO) == 0,
          "preparing a program");
  pid_t started = 0;
  require(
      ::posix_spawn(&started, program.c_str(), &actions, nullptr, arguments.data(), ::environ) == 0,
      "starting a program");
  (void)::posix_spawn_file_actions_destroy(&actions);
  return started;
}

Sample sampleOf(const std::string& task, const std::string& path) {
  int channel[2] = {};
  require(::pipe(channel) == 0, "a pipe");
  const pid_t program = start(task, path, channel[1]);
  (void)::close(channel[1]);
  const Sample sample = received(channel[0], program);
  (void)::close(channel[0]);
  return sample;
}

}  // namespace

Run startedAfresh(std::string task, std::string path, std::chrono::seconds pause) {
  return [=](Measurement& measurement) {
    std::this_thread::sleep_for(pause);
    measurement.take(sampleOf(task, path));
  };
}

Run withoutHugePages(Run run) {
  return [run = std::move(run)](Measurement& measurement) {
    require(::prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0) == 0, "switching huge pages off");
    run(measurement);
  };
}

Run withHugePagesEverywhere(Run run) {
  return [run = std::move(run)](Measurement& measurement) {
    require(::setenv("GLIBC_TUNABLES", "glibc.malloc.hugetlb=1", 1) == 0, "a tunable");
    run(measurement);
  };
}

std::optional<int> performTask(int count, char** arguments, const Tasks& tasks) {
  if (count != kArgumentsOfTask || std::strcmp(arguments[1], kTaskOption) != 0) {
    return std::nullopt;
  }
  const auto task = tasks.find(arguments[2]);
  require(task != tasks.end(), "finding a task");
  measureWith(std::strcmp(arguments[4], "processor") == 0 ? Clock::processor : Clock::wall);
  require(H5open() >= 0, "starting HDF5");
  Measurement measurement;
  task->second(arguments[3], measurement);
  return sent(measurement.sample(), STDOUT_FILENO) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace orvml_io_bench
