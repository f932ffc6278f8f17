#include "surfaces/places.h"

#include "convert/format_error.h"

#include <array>
#include <bit>
#include <climits>
#include <cstdint>

namespace orvml_tool {

namespace {

/// Spreads the bits of a number over all of another: the end of MurmurHash3.
std::uint64_t spread(std::uint64_t bits) noexcept {
  constexpr unsigned kHalf = 33;
  bits ^= bits >> kHalf;
  bits *= 0xff51afd7ed558ccdULL;
  bits ^= bits >> kHalf;
  bits *= 0xc4ceb9fe1a85ec53ULL;
  return bits ^ (bits >> kHalf);
}

std::uint64_t hashOf(const Places::Point& point) noexcept {
  std::uint64_t hash = 0;
  for (const double value : point) {
    hash = spread(hash * 31 + std::bit_cast<std::uint64_t>(value));
  }
  return hash;
}

/// Places are the same that have the same bits: not a number is one, too.
std::array<std::uint64_t, 3> bitsOf(const std::array<double, 3>& point) noexcept {
  return std::bit_cast<std::array<std::uint64_t, 3>>(point);
}

}  // namespace

/// Where a place is, or the free slot where it belongs.
std::size_t Places::slotOf(const Point& point) const noexcept {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hashOf(point) & mask;
  while (slots_[slot] >= 0 &&
         bitsOf(points_[static_cast<std::size_t>(slots_[slot])]) != bitsOf(point)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void Places::grow() {
  constexpr std::size_t kFirst = 1024;
  slots_.assign(slots_.empty() ? kFirst : 2 * slots_.size(), -1);
  for (std::size_t i = 0; i < points_.size(); ++i) {
    slots_[slotOf(points_[i])] = static_cast<int>(i);
  }
}

Places::Number Places::numberOf(const Point& given) {
  Point point = given;
  for (double& value : point) {
    value += 0.0;  // -0.0 is the same place
  }
  if (2 * points_.size() >= slots_.size()) {
    grow();
  }
  const std::size_t slot = slotOf(point);
  if (slots_[slot] >= 0) {
    return {slots_[slot], false};
  }
  if (points_.size() >= INT_MAX) {
    throw FormatError("there are more nodes than 32 bits count");
  }
  slots_[slot] = static_cast<int>(points_.size());
  points_.push_back(point);
  return {slots_[slot], true};
}

}  // namespace orvml_tool
