#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace orvml::parallel::detail {

/// The place of a point on a Hilbert curve through the unit square or cube: what is near on the
/// curve is near in space.
///
/// @param point  two or three coordinates; what is outside, and no number, counts as the next that
///               is inside
/// @return less than 2 to the power of 63
[[nodiscard]] std::uint64_t placeOnCurve(std::span<const double> point) noexcept;

}  // namespace orvml::parallel::detail
