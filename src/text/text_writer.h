#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>

namespace orvml_io {

/// Writes numbers to a stream as `fprintf` does, byte for byte, and several times as fast: they are
/// formatted into a buffer of fixed size, which goes to the stream when it is full and at the end.
///
/// Write errors of the stream are not looked at.
class TextWriter {
 public:
  explicit TextWriter(std::FILE* stream) noexcept;
  TextWriter(const TextWriter&) = delete;
  TextWriter& operator=(const TextWriter&) = delete;
  TextWriter(TextWriter&&) = delete;
  TextWriter& operator=(TextWriter&&) = delete;
  ~TextWriter() { flush(); }

  void character(char value) noexcept;
  /// As `%d`.
  void integer(int value) noexcept;
  /// As `%f`: six decimals, correctly rounded, with the decimal point of the process.
  void decimal(double value) noexcept;

 private:
  void makeRoom(std::size_t bytes) noexcept;
  void flush() noexcept;
  void rounded(unsigned long long units, unsigned long long millionths) noexcept;
  void digits(unsigned long long value) noexcept;

  std::FILE* stream_;
  std::size_t size_ = 0;
  bool roundsToNearest_;
  std::array<char, 64> pointText_ = {};  // "0.0" in the locale of the process
  std::string_view point_;
  std::array<char, std::size_t{32} << 10> bytes_;
};

}  // namespace orvml_io
