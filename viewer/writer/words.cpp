#include "words.h"

#include <array>
#include <charconv>

namespace orvml_report {

std::string grouped(std::int64_t number) {
  const std::string digits = std::to_string(number);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const bool beginsGroup = i > 0 && (digits.size() - i) % 3 == 0 && digits[i - 1] != '-';
    text += beginsGroup ? "," : "";
    text += digits[i];
  }
  return text;
}

std::string counted(std::int64_t count, std::string_view what) {
  return grouped(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string rounded(double value) {
  constexpr int kDigits = 2;
  std::array<char, 32> text = {};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::general, kDigits);
  return {text.data(), end.ptr};
}

std::string_view nameOf(orvml::Entity entity) noexcept {
  constexpr std::array<std::string_view, 4> kNames = {"nodes", "edges", "faces", "elements"};
  return kNames[static_cast<std::size_t>(entity)];
}

std::string_view nameOfOne(orvml::Entity entity) noexcept {
  const std::string_view several = nameOf(entity);
  return several.substr(0, several.size() - 1);
}

}  // namespace orvml_report
