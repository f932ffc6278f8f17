#pragma once

#include "harness/contest.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

namespace orvml_io_bench {

/// What the user asked for.
struct Options {
  int rounds = 9;
  bool quick = false;  // leaves out what takes long
  Clock clock = Clock::wall;
  std::chrono::seconds pause{5};  // before each program of the contests of fresh processes
  std::string folder = "";        // where the files are written; ends with a slash
};

/// Registers a contest under the name "operation/input". The input is made when its turn comes and
/// is gone before the next one's.
void registerContest(const std::string& operation, const std::string& input, const Options& options,
                     std::function<Contest()> make);

/// Prints the goals with the ratios measured, then everything measured, as two tables.
void printResults(std::FILE* stream, const Options& options);

/// Tells whether every goal holds that was measured.
bool allGoalsHold();

}  // namespace orvml_io_bench
