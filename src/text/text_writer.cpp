#include "text/text_writer.h"

#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>

namespace orvml_io {

namespace {

using Count = unsigned long long;

constexpr std::size_t kLongestInteger = 20;
/// The longest number that `%f` prints, with a decimal point of some bytes.
constexpr std::size_t kLongestDecimal = std::numeric_limits<double>::max_exponent10 + 64;

/// Up to here every double has its integral part in a 64-bit integer; what is larger, infinite or
/// no number is rare enough for printf.
constexpr double kLargestSplit = 9007199254740992.0;  // 2^53

constexpr Count kThousand = 1000;
constexpr Count kMillion = kThousand * kThousand;

// Fractions are counted in units of 2^-52, which all of a double of 1 and more are whole ones of.
// A thousand times a fraction still fits 64 bits.
constexpr int kFractionBits = 52;
constexpr Count kOne = Count{1} << kFractionBits;
constexpr Count kHalf = kOne / 2;

struct Split {
  Count units;
  Count millionths;
};

/// Whether what is left behind the sixth decimal rounds it up, ties going to the even digit. Of
/// what is smaller than a unit of the fraction only whether there is any is known: a million times
/// it may decide, and then there is no answer.
std::optional<bool> roundsUp(Count rest, bool isExact, bool isOdd) noexcept {
  if (isExact) {
    return rest > kHalf || (rest == kHalf && isOdd);
  }
  if (rest < kHalf && rest + kMillion > kHalf) {
    return std::nullopt;
  }
  return rest >= kHalf;
}

/// Splits a number that is not negative into whole units and millionths, rounded to the nearest;
/// no answer where that takes more than 64 bits.
std::optional<Split> split(double magnitude) noexcept {
  if (!(magnitude < kLargestSplit)) {
    return std::nullopt;
  }
  const auto units = static_cast<Count>(magnitude);
  const double fraction = (magnitude - static_cast<double>(units)) * static_cast<double>(kOne);
  const auto whole = static_cast<Count>(fraction);
  const Count first = whole * kThousand;
  const Count second = first % kOne * kThousand;
  Count millionths = first / kOne * kThousand + second / kOne;
  const bool isExact = static_cast<double>(whole) == fraction;
  const std::optional<bool> up = roundsUp(second % kOne, isExact, millionths % 2 == 1);
  if (!up) {
    return std::nullopt;
  }
  millionths += *up ? 1U : 0U;
  return Split{units + millionths / kMillion, millionths % kMillion};
}

}  // namespace

TextWriter::TextWriter(std::FILE* stream) noexcept
    : stream_(stream), roundsToNearest_(std::fegetround() == FE_TONEAREST) {
  const int length = std::snprintf(pointText_.data(), pointText_.size(), "%.1f", 0.0);
  point_ = std::string_view(pointText_.data() + 1, static_cast<std::size_t>(length) - 2);
}

void TextWriter::character(char value) noexcept {
  makeRoom(1);
  bytes_[size_++] = value;
}

void TextWriter::integer(int value) noexcept {
  makeRoom(kLongestInteger);
  char* const begin = bytes_.data() + size_;
  size_ +=
      static_cast<std::size_t>(std::to_chars(begin, begin + kLongestInteger, value).ptr - begin);
}

void TextWriter::decimal(double value) noexcept {
  makeRoom(kLongestDecimal);
  const std::optional<Split> parts = roundsToNearest_ ? split(std::fabs(value)) : std::nullopt;
  if (!parts) {
    const int length = std::snprintf(bytes_.data() + size_, kLongestDecimal, "%f", value);
    size_ += static_cast<std::size_t>(length);
    return;
  }
  if (std::signbit(value)) {
    bytes_[size_++] = '-';
  }
  rounded(parts->units, parts->millionths);
}

void TextWriter::rounded(Count units, Count millionths) noexcept {
  digits(units);
  std::memcpy(bytes_.data() + size_, point_.data(), point_.size());
  size_ += point_.size();
  constexpr std::size_t kDecimals = 6;
  auto left = static_cast<std::uint32_t>(millionths);
  for (std::size_t place = kDecimals; place > 0; --place) {
    bytes_[size_ + place - 1] = static_cast<char>('0' + left % 10);
    left /= 10;
  }
  size_ += kDecimals;
}

void TextWriter::digits(Count value) noexcept {
  char* const begin = bytes_.data() + size_;
  size_ +=
      static_cast<std::size_t>(std::to_chars(begin, begin + kLongestInteger, value).ptr - begin);
}

void TextWriter::makeRoom(std::size_t bytes) noexcept {
  if (bytes_.size() - size_ < bytes) {
    flush();
  }
}

void TextWriter::flush() noexcept {
  (void)std::fwrite(bytes_.data(), 1, size_, stream_);
  size_ = 0;
}

}  // namespace orvml_io
