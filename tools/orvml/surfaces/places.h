#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvml_tool {

/// Numbers places in space in the order in which they come first. Places are the same when their
/// coordinates are equal, but for nans, which are when their bits are.
class Places {
 public:
  using Point = std::array<double, 3>;

  struct Number {
    int value = 0;
    bool isNew = false;
  };

  /// The number of a place, 0-based.
  [[nodiscard]] Number numberOf(const Point& point);
  [[nodiscard]] std::size_t size() const noexcept { return points_.size(); }

 private:
  void grow();
  [[nodiscard]] std::size_t slotOf(const Point& point) const noexcept;

  std::vector<Point> points_;
  std::vector<int> slots_;  // a number or -1; at least twice as many as places
};

}  // namespace orvml_tool
