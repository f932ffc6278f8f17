#pragma once

#include <orvml/diff.hpp>

#include <cstdint>
#include <span>

namespace orvml::detail {

/// What differs between the values of two arrays of one length.
struct ValueDifference {
  std::int64_t count = 0;
  std::int64_t first = -1;
  std::int64_t worst = -1;
  double largest = 0.0;

  void add(std::int64_t position, double distance) noexcept {
    first = count == 0 ? position : first;
    ++count;
    if (worst < 0 || distance > largest) {
      worst = position;
      largest = distance;
    }
  }
};

[[nodiscard]] ValueDifference compareValues(std::span<const int> a, std::span<const int> b,
                                            const Tolerance& tolerance) noexcept;
[[nodiscard]] ValueDifference compareValues(std::span<const double> a, std::span<const double> b,
                                            const Tolerance& tolerance) noexcept;

/// Compares a value of the first array with the one of the second that the numbering says, and
/// leaves out those that it gives no place (-1).
[[nodiscard]] ValueDifference compareValues(std::span<const int> a, std::span<const int> b,
                                            const Tolerance& tolerance,
                                            std::span<const int> numbering) noexcept;
[[nodiscard]] ValueDifference compareValues(std::span<const double> a, std::span<const double> b,
                                            const Tolerance& tolerance,
                                            std::span<const int> numbering) noexcept;

/// The distance of two values that differ by more than the tolerance; negative for equal ones.
[[nodiscard]] double distanceBeyond(double a, double b, const Tolerance& tolerance) noexcept;

}  // namespace orvml::detail
