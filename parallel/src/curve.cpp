#include "curve.h"

#include <cstddef>

namespace orvml::parallel::detail {

namespace {

using Steps = std::array<std::uint32_t, 3>;

/// Takes the turns of the curve out of the coordinates, which leaves bits that need only be put
/// together: J. Skilling, "Programming the Hilbert curve", AIP Conference Proceedings 707 (2004).
void straighten(Steps& steps, std::size_t dimensions, unsigned bits) noexcept {
  const std::uint32_t top = std::uint32_t{1} << (bits - 1);
  for (std::uint32_t bit = top; bit > 1; bit >>= 1U) {
    const std::uint32_t below = bit - 1;
    for (std::size_t i = 0; i < dimensions; ++i) {
      if ((steps[i] & bit) != 0) {
        steps[0] ^= below;
      } else {
        const std::uint32_t swapped = (steps[0] ^ steps[i]) & below;
        steps[0] ^= swapped;
        steps[i] ^= swapped;
      }
    }
  }
  for (std::size_t i = 1; i < dimensions; ++i) {
    steps[i] ^= steps[i - 1];
  }
  std::uint32_t turns = 0;
  for (std::uint32_t bit = top; bit > 1; bit >>= 1U) {
    if ((steps[dimensions - 1] & bit) != 0) {
      turns ^= bit - 1;
    }
  }
  for (std::size_t i = 0; i < dimensions; ++i) {
    steps[i] ^= turns;
  }
}

std::uint32_t stepOf(double coordinate, unsigned bits) noexcept {
  const double steps = static_cast<double>((std::uint64_t{1} << bits) - 1);
  if (!(coordinate > 0)) {
    return 0;
  }
  return static_cast<std::uint32_t>(coordinate < 1 ? coordinate * steps : steps);
}

}  // namespace

std::uint64_t placeOnCurve(std::span<const double> point) noexcept {
  const std::size_t dimensions = point.size() < 3 ? 2 : 3;
  const unsigned bits = dimensions == 2 ? 31 : 21;
  Steps steps = {};
  for (std::size_t i = 0; i < dimensions; ++i) {
    steps[i] = stepOf(point[i], bits);
  }
  straighten(steps, dimensions, bits);
  std::uint64_t place = 0;
  for (unsigned bit = bits; bit-- > 0;) {
    for (std::size_t i = 0; i < dimensions; ++i) {
      place = (place << 1U) | ((steps[i] >> bit) & 1U);
    }
  }
  return place;
}

}  // namespace orvml::parallel::detail
