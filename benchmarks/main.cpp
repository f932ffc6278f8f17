// Measures the library beside what bounds it and what it is compared with.
//
//   orvml_io_bench [--rounds=9] [--quick] [--clock=processor] [--pause=5] [--folder=DIRECTORY]
//                  [options of Google Benchmark]
//
// Ends with 2 when a goal does not hold, and with 1 when an operation failed.
#include "contests/contests.h"
#include "peers/peer.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace {

using orvml_io_bench::Options;

/// Takes the value of an option of this program; false when the argument is another one.
bool takes(const char* argument, const char* option, std::string& value) {
  const std::size_t length = std::strlen(option);
  if (std::strncmp(argument, option, length) != 0) {
    return false;
  }
  value = argument + length;
  return true;
}

/// Takes the options of this program out of the arguments and leaves Google Benchmark's.
Options optionsOf(int& count, char** arguments) {
  Options options;
  options.folder = "./";
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    std::string value;
    if (takes(arguments[i], "--rounds=", value)) {
      options.rounds = std::atoi(value.c_str());
    } else if (takes(arguments[i], "--quick", value)) {
      options.quick = true;
    } else if (takes(arguments[i], "--clock=processor", value)) {
      options.clock = orvml_io_bench::Clock::processor;
    } else if (takes(arguments[i], "--pause=", value)) {
      options.pause = std::chrono::seconds(std::atoi(value.c_str()));
    } else if (takes(arguments[i], "--folder=", value)) {
      options.folder = value + "/";
    } else {
      arguments[kept++] = arguments[i];
    }
  }
  count = kept;
  return options;
}

orvml_io_bench::Tasks allTasks() {
  orvml_io_bench::Tasks tasks = orvml_io_bench::tasksOfFreshProcesses();
#if defined(ORVML_IO_BENCH_CPP)
  tasks.merge(orvml_io_bench::tasksOfChecks());
#endif
  return tasks;
}

}  // namespace

int main(int count, char** arguments) {
  const std::optional<int> status = orvml_io_bench::performTask(count, arguments, allTasks());
  if (status) {
    return *status;
  }
  const Options options = optionsOf(count, arguments);
  benchmark::Initialize(&count, arguments);
  if (options.rounds < 1 || benchmark::ReportUnrecognizedArguments(count, arguments)) {
    return EXIT_FAILURE;
  }
  orvml_io_bench::measureWith(options.clock);
  orvml_io_bench::startPeers(options.folder);
  orvml_io_bench::registerMeshFiles(options);
  orvml_io_bench::registerSmallFiles(options);
  orvml_io_bench::registerValueFiles(options);
  orvml_io_bench::registerMemory(options);
  orvml_io_bench::registerStores(options);
  orvml_io_bench::registerText(options);
  orvml_io_bench::registerFreshProcesses(options);
  orvml_io_bench::registerGrowth(options);
#if defined(ORVML_IO_BENCH_CPP)
  orvml_io_bench::registerCppLayer(options);
  orvml_io_bench::registerChecks(options);
#endif
  benchmark::RunSpecifiedBenchmarks();
  orvml_io_bench::printResults(stdout, options);
  for (const std::string& format : orvml_io_bench::missingPeers()) {
    std::printf("\nNot measured, because its library was not installed: %s\n", format.c_str());
  }
  constexpr int kGoalsMissed = 2;
  return orvml_io_bench::allGoalsHold() ? EXIT_SUCCESS : kGoalsMissed;
}
