#pragma once

#include <cstddef>
#include <cstdint>

namespace orvml_io_tests {

/// Hands out the bytes of a fuzzer's input one after the other. Behind the end there are zeros, and
/// zero stands for what is usual: a short input differs from the usual case in few things.
class ByteSource {
 public:
  ByteSource(const std::uint8_t* bytes, std::size_t size) noexcept : bytes_(bytes), size_(size) {}

  [[nodiscard]] unsigned next() noexcept { return position_ < size_ ? bytes_[position_++] : 0U; }

  /// Returns one of `count` choices, the usual one being 0.
  [[nodiscard]] unsigned choice(unsigned count) noexcept { return next() % count; }

  [[nodiscard]] bool isAtEnd() const noexcept { return position_ >= size_; }

 private:
  const std::uint8_t* bytes_;
  std::size_t size_;
  std::size_t position_ = 0;
};

}  // namespace orvml_io_tests
