#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

namespace orvml_tool {

static_assert(std::endian::native == std::endian::little,
              "binary formats are written in the machine's own order of bytes, as little-endian");

/// Bytes on their way into a file. Small pieces are collected; large ones, such as arrays that lie
/// in mapped pages, go from where they are. Throws Refusal when the file cannot be written.
///
/// What is written begins and ends at whole blocks of the file, for which systems need less work.
class ByteSink {
 public:
  /// @param descriptor  of an empty file that is open; it stays open
  /// @param file        its name, for messages
  ByteSink(int descriptor, std::filesystem::path file);

  void write(std::string_view bytes);

  /// Values as they lie in memory.
  template <class T>
  void writeValues(std::span<const T> values) {
    write({reinterpret_cast<const char*>(values.data()), values.size_bytes()});
  }
  template <class T>
  void writeValue(T value) {
    writeValues(std::span<const T>(&value, 1));
  }

  /// The shortest text that is read as the same number.
  template <class Number>
  void writeText(Number number) {
    constexpr std::size_t kLongest = 32;
    char* begin = room(kLongest);
    advance(static_cast<std::size_t>(std::to_chars(begin, begin + kLongest, number).ptr - begin));
  }

  /// Place for up to kBlock bytes, for loops that make them; advance() tells how many they made.
  static constexpr std::size_t kBlock = std::size_t{1} << 18U;
  [[nodiscard]] char* room(std::size_t bytes) {
    if (block_.size() - used_ < bytes) {
      writeWholeBlocks();
    }
    return block_.data() + used_;
  }
  void advance(std::size_t bytes) noexcept { used_ += bytes; }

  /// Writes what was collected. Has to be called at the end.
  void flush();

  /// Writes over bytes that were given before, such as sizes that were not known then.
  void patch(std::uint64_t position, std::string_view bytes);

  /// How many bytes were given so far.
  [[nodiscard]] std::uint64_t position() const noexcept { return written_ + used_; }

 private:
  void collect(std::string_view bytes);
  void writeWholeBlocks();
  void writeThrough(std::string_view bytes);
  void writeAt(std::uint64_t position, std::string_view bytes);

  int descriptor_;
  std::filesystem::path file_;
  std::vector<char> block_;  // twice as large as one, so that there is room for one behind the last
  std::size_t used_ = 0;
  std::uint64_t written_ = 0;
};

}  // namespace orvml_tool
