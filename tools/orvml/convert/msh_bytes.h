#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace orvml_tool {

/// Goes through the bytes of a file of Gmsh, whose numbers are text, or lie there as in the memory
/// of the machine that wrote it. Throws FormatError where they are not what is asked for.
class MshBytes {
 public:
  explicit MshBytes(std::string_view bytes) : bytes_(bytes) {}

  void setBinary(bool isSwapped) noexcept {
    isText_ = false;
    isSwapped_ = isSwapped;
  }
  [[nodiscard]] bool isText() const noexcept { return isText_; }
  [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  void goTo(std::size_t position) noexcept { position_ = position; }

  // What is text in both forms.

  /// Goes to the next "$Name" and returns the name; false at the end of the file.
  bool nextSection(std::string_view& name);
  /// Goes behind the "$EndName" that has to come now, or next.
  void endSection(std::string_view name);
  void passSection(std::string_view name);
  /// The rest of the line, without what ends it.
  std::string_view line();
  /// A number between blanks.
  template <class T>
  T textValue();

  // What is text or binary.

  template <class T>
  T value() {
    return isText_ ? textValue<T>() : binaryValue<T>();
  }
  /// How many things come, of which each takes at least so many bytes.
  std::size_t count(std::size_t binaryBytes, std::size_t textBytes);
  /// The same for a number that was read.
  std::size_t count(std::uint64_t told, std::size_t binaryBytes, std::size_t textBytes) const;
  /// Passes over some values of one type.
  template <class T>
  void pass(std::size_t values) {
    if (isText_) {
      for (std::size_t i = 0; i < values; ++i) {
        (void)word();
      }
    } else {
      (void)taken(values * sizeof(T));
    }
  }
  /// Fills places with values.
  template <class T>
  void fill(T* places, std::size_t values);

  /// Throws FormatError with the place in the file.
  [[noreturn]] void refuse(const std::string& sentence) const;

 private:
  std::string_view word();
  const char* taken(std::size_t bytes) {
    if (bytes > bytes_.size() - position_) {
      refuse("the file ends too early");
    }
    const char* const begin = bytes_.data() + position_;
    position_ += bytes;
    return begin;
  }
  template <class T>
  T binaryValue() {
    std::array<char, sizeof(T)> raw = {};
    std::memcpy(raw.data(), taken(sizeof(T)), sizeof(T));
    return asNumber<T>(raw);
  }
  template <class T>
  T asNumber(std::array<char, sizeof(T)> raw) const noexcept {
    if (isSwapped_) {
      for (std::size_t i = 0; i < sizeof(T) / 2; ++i) {
        std::swap(raw[i], raw[sizeof(T) - 1 - i]);
      }
    }
    return std::bit_cast<T>(raw);
  }
  [[noreturn]] void refuseWord(std::string_view word) const;

  std::string_view bytes_;
  std::size_t position_ = 0;
  bool isText_ = true;
  bool isSwapped_ = false;
};

template <class T>
T MshBytes::textValue() {
  const std::string_view text = word();
  const char* const end = text.data() + text.size();
  T value = {};
  const auto result = std::from_chars(text.data() + (text.starts_with('+') ? 1 : 0), end, value);
  if (result.ec != std::errc() || result.ptr != end) {
    refuseWord(text);
  }
  return value;
}

template <class T>
void MshBytes::fill(T* places, std::size_t values) {
  if (isText_ || isSwapped_) {
    for (std::size_t i = 0; i < values; ++i) {
      places[i] = value<T>();
    }
  } else if (values > 0) {
    std::memcpy(places, taken(values * sizeof(T)), values * sizeof(T));
  }
}

}  // namespace orvml_tool
