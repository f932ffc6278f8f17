#include "numbers.h"

#include <charconv>
#include <system_error>

namespace orvml_tool {

namespace {

template <class Number>
std::optional<Number> parsed(std::string_view text) noexcept {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  Number value{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

std::optional<double> numberIn(std::string_view text) noexcept { return parsed<double>(text); }

std::optional<int> integerIn(std::string_view text) noexcept { return parsed<int>(text); }

}  // namespace orvml_tool
