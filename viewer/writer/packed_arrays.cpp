#include "packed_arrays.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>

namespace orvml_report {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// All lowest bytes, all second ones, and so on.
template <class Word>
Bytes planesOf(const std::vector<Word>& words) {
  constexpr unsigned kBitsOfByte = 8;
  Bytes bytes(words.size() * sizeof(Word));
  std::uint8_t* out = bytes.data();
  for (unsigned plane = 0; plane < sizeof(Word); ++plane) {
    for (const Word word : words) {
      *out++ = static_cast<std::uint8_t>(word >> (plane * kBitsOfByte));
    }
  }
  return bytes;
}

/// The difference of neighbours with its sign in the lowest bit.
std::uint32_t signLast(std::uint32_t difference) noexcept {
  return (difference << 1U) ^ (0U - (difference >> 31U));
}

/// Each word less the one `stride` before it.
void differentiate(std::vector<std::uint32_t>& words, std::size_t stride) {
  for (std::size_t i = words.size(); i-- > 0;) {
    words[i] = signLast(words[i] - (i < stride ? 0U : words[i - stride]));
  }
}

/// The places of one coordinate on a grid.
struct Steps {
  double minimum = 0.0;
  double step = 0.0;

  [[nodiscard]] std::uint32_t of(double value) const noexcept {
    return step > 0 ? static_cast<std::uint32_t>(std::round((value - minimum) / step)) : 0;
  }
};

/// At most 2^31 + 1 steps, of which the first is a whole number of them, too.
Steps stepsOver(double lowest, double highest) {
  constexpr int kBits = 31;
  constexpr int kLeastExponent = std::numeric_limits<double>::min_exponent - 53;
  if (lowest == highest) {
    return {lowest, 0.0};
  }
  int exponent = 0;
  (void)std::frexp(highest - lowest, &exponent);
  const double step = std::ldexp(1.0, std::max(exponent - kBits, kLeastExponent));
  return {std::floor(lowest / step) * step, step};
}

}  // namespace

float asFloat(double value) noexcept {
  constexpr auto kMost = static_cast<double>(std::numeric_limits<float>::max());
  if (std::abs(value) > kMost) {
    return std::copysign(std::numeric_limits<float>::infinity(), value > 0 ? 1.0F : -1.0F);
  }
  return static_cast<float>(value);
}

struct PackedArrays::Stream {
  z_stream z = {};

  Stream() {
    constexpr int kLevel = 6;
    if (deflateInit(&z, kLevel) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  Stream(Stream&&) = delete;
  Stream& operator=(Stream&&) = delete;
  ~Stream() { (void)deflateEnd(&z); }
};

PackedArrays::PackedArrays() : stream_(std::make_unique<Stream>()) {}

PackedArrays::~PackedArrays() = default;

Json PackedArrays::addBytes(std::span<const std::uint8_t> values) {
  return written(values.size(), "uint8", 1, values);
}

Json PackedArrays::addInts(std::span<const int> values, int stride) {
  std::vector<std::uint32_t> words(values.begin(), values.end());
  differentiate(words, static_cast<std::size_t>(std::max(stride, 1)));
  return written(values.size(), "int32", std::max(stride, 1), planesOf(words));
}

Json PackedArrays::addFloats(std::span<const float> values) {
  std::vector<std::uint32_t> words(values.size());
  std::transform(values.begin(), values.end(), words.begin(),
                 [](float value) { return std::bit_cast<std::uint32_t>(value); });
  return written(values.size(), "float32", 1, planesOf(words));
}

Json PackedArrays::addDoubles(std::span<const double> values) {
  std::vector<std::uint64_t> words(values.size());
  std::transform(values.begin(), values.end(), words.begin(),
                 [](double value) { return std::bit_cast<std::uint64_t>(value); });
  return written(values.size(), "float64", 1, planesOf(words));
}

Json PackedArrays::addPoints(std::span<const Point> points) {
  constexpr int kAxes = 3;
  Point lowest = points.empty() ? Point() : points.front();
  Point highest = lowest;
  for (const Point& point : points) {
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
      lowest[axis] = std::min(lowest[axis], point[axis]);
      highest[axis] = std::max(highest[axis], point[axis]);
    }
  }
  std::array<Steps, kAxes> steps;
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    // What a reader multiplies must not pass all numbers either.
    if (!std::isfinite(2 * (highest[axis] - lowest[axis]))) {
      Json array =
          addDoubles({points.empty() ? nullptr : points.front().data(), points.size() * kAxes});
      array["stride"] = kAxes;
      return array;
    }
    steps[axis] = stepsOver(lowest[axis], highest[axis]);
  }
  std::vector<std::uint32_t> words;
  words.reserve(points.size() * kAxes);
  for (const Point& point : points) {
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
      words.push_back(steps[axis].of(point[axis]));
    }
  }
  differentiate(words, kAxes);
  Json array = written(words.size(), "quantized", kAxes, planesOf(words));
  array["minimum"] = {steps[0].minimum, steps[1].minimum, steps[2].minimum};
  array["step"] = {steps[0].step, steps[1].step, steps[2].step};
  return array;
}

Json PackedArrays::written(std::size_t count, const char* type, int stride,
                           std::span<const std::uint8_t> bytes) {
  Json array = {{"at", at_}, {"count", count}, {"type", type}, {"stride", stride}};
  write(bytes);
  return array;
}

void PackedArrays::write(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30U;  // zlib counts by 32 bits
  at_ += bytes.size();
  while (!bytes.empty()) {
    const auto part = bytes.first(std::min(bytes.size(), kMost));
    stream_->z.next_in = const_cast<Bytef*>(part.data());  // NOLINT(*-const-cast): zlib reads it
    stream_->z.avail_in = static_cast<uInt>(part.size());
    run(false);
    bytes = bytes.subspan(part.size());
  }
}

/// Takes all of the input.
void PackedArrays::run(bool isLast) {
  constexpr std::size_t kBlock = std::size_t{1} << 18U;
  do {
    const std::size_t used = deflated_.size();
    deflated_.resize(used + kBlock);
    stream_->z.next_out = deflated_.data() + used;
    stream_->z.avail_out = static_cast<uInt>(kBlock);
    (void)deflate(&stream_->z, isLast ? Z_FINISH : Z_NO_FLUSH);
    deflated_.resize(deflated_.size() - stream_->z.avail_out);
  } while (stream_->z.avail_out == 0);
}

std::string PackedArrays::finish() {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  run(true);
  std::string text;
  text.reserve((deflated_.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < deflated_.size(); at += 3) {
    const std::size_t bytes = std::min<std::size_t>(deflated_.size() - at, 3);
    std::uint32_t group = std::uint32_t{deflated_[at]} << 16U;
    group |= bytes > 1 ? std::uint32_t{deflated_[at + 1]} << 8U : 0U;
    group |= bytes > 2 ? std::uint32_t{deflated_[at + 2]} : 0U;
    text += kDigits[group >> 18U];
    text += kDigits[(group >> 12U) & 63U];
    text += bytes > 1 ? kDigits[(group >> 6U) & 63U] : '=';
    text += bytes > 2 ? kDigits[group & 63U] : '=';
  }
  return text;
}

}  // namespace orvml_report
