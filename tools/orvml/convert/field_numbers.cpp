#include "convert/field_numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

namespace orvml_tool {

namespace {

/// The digits d of a number d[0].d[1]d[2]... times ten to the exponent.
class Decimal {
 public:
  /// As few digits as are read as the same number.
  explicit Decimal(double value)
      : Decimal([&](char* begin, char* end) {
          return std::to_chars(begin, end, value, std::chars_format::scientific).ptr;
        }) {}

  Decimal(double value, int numberOfDigits)
      : Decimal([&](char* begin, char* end) {
          return std::to_chars(begin, end, value, std::chars_format::scientific, numberOfDigits - 1)
              .ptr;
        }) {}

  /// The same with its first digits alone, which is no larger.
  [[nodiscard]] Decimal cutTo(int numberOfDigits) const {
    return Decimal(
        [&](char* begin, char* end) {
          char* next = begin;
          if (isNegative_) {
            *next++ = '-';
          }
          next = std::copy_n(digits_.data(), numberOfDigits, next);
          *next++ = 'e';
          // The digits stand before the point here.
          return std::to_chars(next, end, exponent_ - numberOfDigits + 1).ptr;
        },
        numberOfDigits - 1);
  }

  [[nodiscard]] bool isNegative() const noexcept { return isNegative_; }
  [[nodiscard]] std::string_view digits() const noexcept { return {digits_.data(), size_}; }
  [[nodiscard]] int size() const noexcept { return static_cast<int>(size_); }
  [[nodiscard]] int exponent() const noexcept { return exponent_; }
  [[nodiscard]] double value() const noexcept { return value_; }

 private:
  /// @param moved  how many digits too many stand before the point
  template <class Print>
  explicit Decimal(const Print& print, int moved = 0) {
    std::array<char, 40> text = {};
    const char* end = print(text.data(), text.data() + text.size());
    if (std::from_chars(text.data(), end, value_).ec == std::errc::result_out_of_range) {
      value_ = std::numeric_limits<double>::infinity();
    }
    const char* next = text.data();
    if (*next == '-') {
      isNegative_ = true;
      ++next;
    }
    for (; *next != 'e'; ++next) {
      if (*next != '.') {
        digits_[size_++] = *next;
      }
    }
    next += next[1] == '+' ? 2 : 1;
    (void)std::from_chars(next, end, exponent_);
    exponent_ += moved;
    while (size_ > 1 && digits_[size_ - 1] == '0') {
      --size_;
    }
  }

  bool isNegative_ = false;
  std::array<char, 40> digits_ = {};
  std::size_t size_ = 0;
  int exponent_ = 0;
  double value_ = 0.0;
};

enum class Layout { withZero, fixed, exponent };  // such as 0.05, .05 and 5.e-2

/// How many characters follow the digits as an exponent: its letter, its sign, its digits.
int exponentLength(int exponent, FieldNumbers::Style style) {
  const int size = std::abs(exponent) < 10 ? 1 : std::abs(exponent) < 100 ? 2 : 3;
  const bool hasLetter = style == FieldNumbers::Style::plain;
  return size + (hasLetter ? 1 : 0) + (exponent < 0 || !hasLetter ? 1 : 0);
}

int lengthOf(const Decimal& number, Layout layout, FieldNumbers::Style style) {
  const int sign = number.isNegative() ? 1 : 0;
  if (layout == Layout::exponent) {
    return sign + number.size() + 1 + exponentLength(number.exponent(), style);
  }
  if (number.exponent() < 0) {
    return sign + (layout == Layout::withZero ? 1 : 0) - number.exponent() + number.size();
  }
  if (number.exponent() + 1 >= number.size()) {
    return sign + number.exponent() + 1 + (style == FieldNumbers::Style::withoutLetter ? 1 : 0);
  }
  return sign + number.size() + 1;
}

/// The layout that is read best of those that fit, else the shortest.
Layout layoutOf(const Decimal& number, int width, FieldNumbers::Style style) {
  constexpr int kFewZeros = -4;
  if (number.exponent() >= kFewZeros && lengthOf(number, Layout::withZero, style) <= width) {
    return Layout::withZero;
  }
  return lengthOf(number, Layout::fixed, style) <= lengthOf(number, Layout::exponent, style)
             ? Layout::fixed
             : Layout::exponent;
}

char* put(char* to, std::string_view text) { return std::copy(text.begin(), text.end(), to); }

char* putExponent(char* to, int exponent, FieldNumbers::Style style) {
  if (style == FieldNumbers::Style::plain) {
    *to++ = 'e';
  } else if (exponent >= 0) {
    *to++ = '+';
  }
  constexpr int kLongest = 4;
  return std::to_chars(to, to + kLongest, exponent).ptr;
}

char* putFixed(char* to, const Decimal& number, bool hasZero, FieldNumbers::Style style) {
  const std::string_view digits = number.digits();
  if (number.exponent() < 0) {
    to = put(to, hasZero ? "0." : ".");
    to = std::fill_n(to, -number.exponent() - 1, '0');
    return put(to, digits);
  }
  const auto whole = static_cast<std::size_t>(number.exponent()) + 1;
  if (whole < digits.size()) {
    to = put(to, digits.substr(0, whole));
    *to++ = '.';
    return put(to, digits.substr(whole));
  }
  to = std::fill_n(put(to, digits), whole - digits.size(), '0');
  return style == FieldNumbers::Style::withoutLetter ? put(to, ".") : to;
}

char* putNumber(char* to, const Decimal& number, Layout layout, FieldNumbers::Style style) {
  if (number.isNegative()) {
    *to++ = '-';
  }
  if (layout != Layout::exponent) {
    return putFixed(to, number, layout == Layout::withZero, style);
  }
  *to++ = number.digits().front();
  *to++ = '.';
  return putExponent(put(to, number.digits().substr(1)), number.exponent(), style);
}

}  // namespace

std::size_t FieldNumbers::write(char* field, double value) {
  const auto width = static_cast<int>(width_);
  Decimal number(value);
  Layout layout = layoutOf(number, width, style_);
  while (lengthOf(number, layout, style_) > width) {
    const int fitting = number.size() - (lengthOf(number, layout, style_) - width);
    const Decimal rounded(value, fitting);
    // The greatest numbers cannot be rounded up.
    number = std::isfinite(rounded.value()) ? rounded : number.cutTo(fitting);
    layout = layoutOf(number, width, style_);
  }
  if (number.value() != value) {
    ++roundedNumbers_;
    largestError_ = std::max(largestError_, std::abs(number.value() - value));
  }
  return static_cast<std::size_t>(putNumber(field, number, layout, style_) - field);
}

}  // namespace orvml_tool
