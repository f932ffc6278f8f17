#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace orvml_io_bench {

/// What the time of a run is: that of the wall clock, or what its process used of the processor.
/// The second one also counts on a machine that others use, but not what waits for a disk.
enum class Clock { wall, processor };

/// Chooses the clock of all runs that follow.
void measureWith(Clock clock);
Clock clockOfRuns();

/// What one run took.
struct Sample {
  double seconds = 0;
  double grownMegabytes = 0;  // peak of the resident memory above what it was at the start
};

/// The part of a run that counts, between `start` and `stop`. What stands before and after them is
/// preparation.
class Measurement {
 public:
  void start();
  void stop();
  /// Takes what another process has measured.
  void take(const Sample& sample) { sample_ = sample; }
  [[nodiscard]] const Sample& sample() const noexcept { return sample_; }

 private:
  Sample sample_;
  double residentMegabytes_ = 0;
  double started_ = 0;
};

using Run = std::function<void(Measurement&)>;

/// The run, after as many bytes as it will need have been touched and given back. The host of a
/// virtual machine takes free memory away, large pieces first, and what it costs to get them back
/// is no figure of a library.
Run withWarmMemory(std::size_t bytes, Run run);

/// Performs a run in a child process of its own: its memory is fresh, and files that stay open by
/// contract and the arrays that it made go with it. A child that fails ends this program.
Sample measuredInChild(const Run& run);

/// Hands a sample to the process that waits for it. Returns whether that worked.
bool sent(const Sample& sample, int channel);

/// Waits for the sample of a process and for its end. One that fails ends this program.
Sample received(int channel, pid_t process);

/// Runs a preparation in a child process, so that nothing of it stays open in this one.
void preparedInChild(const std::function<void()>& preparation);

/// Ends the program (or the child) with a message when a step of a benchmark did not work: a figure
/// of a failed operation would be worse than none.
void require(bool holds, const char* what);

}  // namespace orvml_io_bench
