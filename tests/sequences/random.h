#pragma once

#include "orvml_io.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// The only source of randomness here: the same seed makes the same test on every machine.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// A number from 0 to bound - 1.
  int below(int bound);
  /// A number from first to last.
  int between(int first, int last) { return first + below(last - first + 1); }
  bool chance(int percent) { return below(100) < percent; }

  template <class T>
  const T& oneOf(const std::vector<T>& values) {
    return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
  }

  template <class T>
  void shuffle(std::vector<T>& values) {
    for (std::size_t last = values.size(); last > 1; --last) {
      std::swap(values[last - 1], values[static_cast<std::size_t>(below(static_cast<int>(last)))]);
    }
  }

  /// A small number, or one of the extremes.
  int anyInt();
  /// A plain number, or one that is easily lost: extremes, denormals, -0.0, infinities, NaN with
  /// payload.
  double anyDouble();
  /// A shape; now and then a number that is none.
  ElemType anyShape();
  /// Node indices. None is so large that the number of its node, one more, has no int.
  std::vector<int> nodeIndices(int count);
  std::vector<int> ints(int count);
  std::vector<double> doubles(int count);

 private:
  std::mt19937_64 engine_;
};

/// The seeds of a test: 1, 2, ... or, when the environment variable ORVML_IO_TESTS_SEED is set, the
/// one it names.
std::vector<std::uint64_t> seeds(int count);

/// Runs a test on every seed and ends with the first that fails, which is printed.
void forEachSeed(int count, void (*test)(Random& random));

}  // namespace orvml_io_tests
