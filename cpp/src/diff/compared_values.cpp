#include "diff/compared_values.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvml::detail {

namespace {

constexpr double kEqual = -1.0;

double apart(int a, int b, const Tolerance& /*tolerance*/) noexcept {
  return a == b ? kEqual : std::fabs(static_cast<double>(a) - static_cast<double>(b));
}

double apart(double a, double b, const Tolerance& tolerance) noexcept {
  return distanceBeyond(a, b, tolerance);
}

/// Most of two meshes that are compared is equal bit by bit, which is found as fast as memory is
/// read.
template <class Value>
ValueDifference compare(std::span<const Value> a, std::span<const Value> b,
                        const Tolerance& tolerance) noexcept {
  constexpr std::size_t kStretch = 4096;
  ValueDifference difference;
  for (std::size_t begin = 0; begin < a.size(); begin += kStretch) {
    const std::size_t end = std::min(begin + kStretch, a.size());
    if (std::memcmp(&a[begin], &b[begin], (end - begin) * sizeof(Value)) == 0) {
      continue;
    }
    for (std::size_t i = begin; i < end; ++i) {
      const double distance = apart(a[i], b[i], tolerance);
      if (distance >= 0.0) {
        difference.add(static_cast<std::int64_t>(i), distance);
      }
    }
  }
  return difference;
}

template <class Value>
ValueDifference compareNumbered(std::span<const Value> a, std::span<const Value> b,
                                const Tolerance& tolerance,
                                std::span<const int> numbering) noexcept {
  ValueDifference difference;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (numbering[i] >= 0) {
      const double distance = apart(a[i], b[static_cast<std::size_t>(numbering[i])], tolerance);
      if (distance >= 0.0) {
        difference.add(static_cast<std::int64_t>(i), distance);
      }
    }
  }
  return difference;
}

}  // namespace

double distanceBeyond(double a, double b, const Tolerance& tolerance) noexcept {
  if (a == b || (std::isnan(a) && std::isnan(b))) {
    return kEqual;
  }
  const double distance = std::fabs(a - b);
  if (!std::isfinite(distance)) {
    return std::numeric_limits<double>::infinity();
  }
  const double allowed =
      tolerance.absolute + tolerance.relative * std::max(std::fabs(a), std::fabs(b));
  return distance <= allowed ? kEqual : distance;
}

ValueDifference compareValues(std::span<const int> a, std::span<const int> b,
                              const Tolerance& tolerance) noexcept {
  return compare(a, b, tolerance);
}

ValueDifference compareValues(std::span<const double> a, std::span<const double> b,
                              const Tolerance& tolerance) noexcept {
  return compare(a, b, tolerance);
}

ValueDifference compareValues(std::span<const int> a, std::span<const int> b,
                              const Tolerance& tolerance, std::span<const int> numbering) noexcept {
  return compareNumbered(a, b, tolerance, numbering);
}

ValueDifference compareValues(std::span<const double> a, std::span<const double> b,
                              const Tolerance& tolerance, std::span<const int> numbering) noexcept {
  return compareNumbered(a, b, tolerance, numbering);
}

}  // namespace orvml::detail
