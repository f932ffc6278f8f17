#include "harness/results.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace orvml_io_bench {

namespace {

/// One contender of one contest, after the last round.
struct Line {
  std::string operation;
  std::string input;
  std::string contender;
  double seconds;
  double megabytes;
  double ratio;
  double atMost;  // 0: no goal

  [[nodiscard]] bool hasGoal() const noexcept { return atMost > 0; }
  [[nodiscard]] bool holds() const noexcept { return ratio <= atMost; }
};

std::vector<Line>& lines() {
  static std::vector<Line> instance;
  return instance;
}

/// Puts the medians of a contest into the counters of the benchmark, and so into its JSON, and
/// among the lines of the tables.
void record(const std::string& operation, const std::string& input, const Contest& contest,
            benchmark::State& state) {
  for (const Contest::Contender& contender : contest.contenders()) {
    const Line line{operation,
                    input,
                    contender.name,
                    medianSeconds(contender),
                    medianMegabytes(contender),
                    medianRatio(contest, contender),
                    contender.atMost};
    state.counters[line.contender + ": seconds"] = line.seconds;
    state.counters[line.contender + ": MB grown"] = line.megabytes;
    if (line.contender != Contest::kLibrary) {
      state.counters[line.contender + ": ratio"] = line.ratio;
    }
    if (line.hasGoal()) {
      state.counters[line.contender + ": at most"] = line.atMost;
    }
    lines().push_back(line);
  }
}

/// Plays more rounds of a short contest, whose single rounds say little.
void playOn(Contest& contest, const Options& options) {
  constexpr std::chrono::seconds kEnough(4);
  constexpr int kMostTimes = 5;
  const auto end = std::chrono::steady_clock::now() + kEnough;
  for (int round = options.rounds;
       round < kMostTimes * options.rounds && std::chrono::steady_clock::now() < end; ++round) {
    contest.playRound();
  }
}

void play(const std::string& operation, const std::string& input, const Options& options,
          const std::function<Contest()>& make, benchmark::State& state) {
  Contest contest = make();
  for (auto round : state) {
    (void)round;
    contest.playRound();
    state.SetIterationTime(contest.lastSeconds());
  }
  playOn(contest, options);
  record(operation, input, contest, state);
}

void printGoals(std::FILE* stream) {
  std::fprintf(stream,
               "| operation | input | reference | ratio | at most | holds |\n"
               "|---|---|---|---|---|---|\n");
  for (const Line& line : lines()) {
    if (line.hasGoal()) {
      std::fprintf(stream, "| %s | %s | %s | %.2f | %.2f | %s |\n", line.operation.c_str(),
                   line.input.c_str(), line.contender.c_str(), line.ratio, line.atMost,
                   line.holds() ? "yes" : "**no**");
    }
  }
}

void printEverything(std::FILE* stream) {
  std::fprintf(stream,
               "| operation | input | by | ms | MB grown | library takes |\n"
               "|---|---|---|---|---|---|\n");
  for (const Line& line : lines()) {
    constexpr double kMilliseconds = 1e3;
    std::fprintf(stream, "| %s | %s | %s | %.2f | %.1f | %.2f |\n", line.operation.c_str(),
                 line.input.c_str(), line.contender.c_str(), line.seconds * kMilliseconds,
                 line.megabytes, line.ratio);
  }
}

}  // namespace

void registerContest(const std::string& operation, const std::string& input, const Options& options,
                     std::function<Contest()> make) {
  const auto body = [=](benchmark::State& state) { play(operation, input, options, make, state); };
  benchmark::RegisterBenchmark((operation + "/" + input).c_str(), body)
      ->UseManualTime()
      ->Iterations(options.rounds)
      ->Unit(benchmark::kMillisecond);
}

void printResults(std::FILE* stream, const Options& options) {
  std::fprintf(stream, "\nGoals: medians of the ratios of %d or more interleaved rounds, %s\n\n",
               options.rounds,
               options.clock == Clock::wall ? "wall clock" : "time of the processor");
  printGoals(stream);
  std::fprintf(stream, "\nEverything: medians of %d or more rounds\n\n", options.rounds);
  printEverything(stream);
}

bool allGoalsHold() {
  return std::all_of(lines().begin(), lines().end(),
                     [](const Line& line) { return !line.hasGoal() || line.holds(); });
}

}  // namespace orvml_io_bench
