#pragma once

#include "json.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orvml_report {

/// A point in space; documents of the plane have z = 0.
using Point = std::array<double, 3>;

/// The nearest float, which is infinite beyond all floats.
[[nodiscard]] float asFloat(double value) noexcept;

/// The arrays of a page in one zlib stream, encoded so that neighbours become small numbers. Each
/// is answered by what the page finds it by: {at, count, type, stride}, where count counts values.
class PackedArrays {
 public:
  PackedArrays();
  PackedArrays(const PackedArrays&) = delete;
  PackedArrays& operator=(const PackedArrays&) = delete;
  PackedArrays(PackedArrays&&) = delete;
  PackedArrays& operator=(PackedArrays&&) = delete;
  ~PackedArrays();

  Json addBytes(std::span<const std::uint8_t> values);
  /// @param stride  how many values make a row, of which the one before is much the same; 1 or more
  Json addInts(std::span<const int> values, int stride = 1);
  Json addFloats(std::span<const float> values);
  Json addDoubles(std::span<const double> values);

  /// Finite points, in steps of a power of 2 that is at most 2^-31 of their extent, which keeps
  /// coordinates such as 0.25 what they are; as doubles where the extent is beyond all numbers.
  Json addPoints(std::span<const Point> points);

  /// Ends the stream, after which nothing can be added, and returns it as base64.
  [[nodiscard]] std::string finish();

 private:
  struct Stream;

  void write(std::span<const std::uint8_t> bytes);
  void run(bool isLast);
  Json written(std::size_t count, const char* type, int stride,
               std::span<const std::uint8_t> bytes);

  std::unique_ptr<Stream> stream_;
  std::uint64_t at_ = 0;
  std::vector<std::uint8_t> deflated_;
};

}  // namespace orvml_report
