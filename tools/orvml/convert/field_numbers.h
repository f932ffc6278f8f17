#pragma once

#include <cstddef>
#include <cstdint>

namespace orvml_tool {

/// Numbers in fields of so many characters, as solvers read them: with all of their digits where
/// those fit, else with as many as do.
class FieldNumbers {
 public:
  enum class Style {
    plain,         ///< such as 5, 0.25, 1.5e-7
    withoutLetter  ///< always with a point, and exponents with a sign alone: 5., 0.25, 1.5-7
  };

  FieldNumbers(std::size_t width, Style style) : width_(width), style_(style) {}

  /// Writes a finite number into the field and returns how many characters it took.
  std::size_t write(char* field, double value);

  /// How many numbers lost digits, and how far the farthest one is from what was given.
  [[nodiscard]] std::int64_t roundedNumbers() const noexcept { return roundedNumbers_; }
  [[nodiscard]] double largestError() const noexcept { return largestError_; }

 private:
  std::size_t width_;
  Style style_;
  std::int64_t roundedNumbers_ = 0;
  double largestError_ = 0.0;
};

}  // namespace orvml_tool
