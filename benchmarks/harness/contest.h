#pragma once

#include "harness/measurement.h"

#include <string>
#include <vector>

namespace orvml_io_bench {

/// One operation on one input, performed by the library and by what it is compared with.
class Contest {
 public:
  explicit Contest(Run library) { add(kLibrary, std::move(library)); }

  void add(std::string name, Run run) { contenders_.push_back({std::move(name), run, {}}); }

  /// Adds a contender that the library has a goal against: at most so many times its time.
  void addGoal(std::string name, double atMost, Run run) {
    add(std::move(name), std::move(run));
    contenders_.back().atMost = atMost;
  }

  /// Lets each contender run once, each in a child process. Every round begins with another one, so
  /// that none always follows the same neighbour.
  void playRound();

  struct Contender {
    std::string name;
    Run run;
    std::vector<Sample> samples;
    double atMost = 0;  // 0: no goal
  };
  [[nodiscard]] const std::vector<Contender>& contenders() const noexcept { return contenders_; }

  /// The time of the library in the last round.
  [[nodiscard]] double lastSeconds() const { return contenders_.front().samples.back().seconds; }

  static constexpr char kLibrary[] = "library";

 private:
  std::vector<Contender> contenders_;
  std::size_t rounds_ = 0;
};

double medianOf(std::vector<double> values);
double medianSeconds(const Contest::Contender& contender);
double medianMegabytes(const Contest::Contender& contender);

/// The median of the ratios of the rounds, of the library's time to the contender's.
double medianRatio(const Contest& contest, const Contest::Contender& contender);

}  // namespace orvml_io_bench
