#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// Puts numbers and texts one behind the other, as one rank of a program tells them to another:
/// both have the same machine.
class ByteWriter {
 public:
  template <class Number>
  requires std::is_arithmetic_v<Number> void add(Number number) {
    addBytes(&number, sizeof number);
  }
  void add(std::string_view text) {
    add(text.size());
    addBytes(text.data(), text.size());
  }
  template <class Number>
  requires std::is_arithmetic_v<Number> void add(const std::vector<Number>& numbers) {
    add(numbers.size());
    addBytes(numbers.data(), numbers.size() * sizeof(Number));
  }

  [[nodiscard]] std::vector<char> take() noexcept { return std::move(bytes_); }

 private:
  void addBytes(const void* bytes, std::size_t count) {
    const char* first = static_cast<const char*>(bytes);
    bytes_.insert(bytes_.end(), first, first + count);
  }

  std::vector<char> bytes_;
};

/// Takes them out again; borrows the bytes.
class ByteReader {
 public:
  explicit ByteReader(const std::vector<char>& bytes) noexcept : bytes_(bytes) {}

  template <class Number>
  requires std::is_arithmetic_v<Number> [[nodiscard]] Number number() {
    Number value = {};
    std::memcpy(&value, next(sizeof value), sizeof value);
    return value;
  }
  [[nodiscard]] std::string text() {
    const auto count = number<std::size_t>();
    return {next(count), count};
  }
  template <class Number>
  [[nodiscard]] std::vector<Number> numbers() {
    const auto count = number<std::size_t>();
    if (count > left() / sizeof(Number)) {
      throw std::out_of_range("a message between ranks ends too early");
    }
    std::vector<Number> values(count);
    if (count > 0) {
      std::memcpy(values.data(), next(count * sizeof(Number)), count * sizeof(Number));
    }
    return values;
  }

 private:
  [[nodiscard]] std::size_t left() const noexcept { return bytes_.size() - place_; }
  const char* next(std::size_t count) {
    if (count > left()) {
      throw std::out_of_range("a message between ranks ends too early");
    }
    const char* first = bytes_.data() + place_;
    place_ += count;
    return first;
  }

  const std::vector<char>& bytes_;
  std::size_t place_ = 0;
};

}  // namespace orvml::parallel::detail
