#include "convert/storable_names.h"

#include "console.h"

#include <algorithm>

namespace orvml_tool {

namespace {

constexpr std::size_t kLongest = 79;

/// Cut without leaving a part of a character of UTF-8 behind.
std::string cut(std::string_view name, std::size_t bytes) {
  constexpr unsigned char kMask = 0xc0;
  constexpr unsigned char kInner = 0x80;
  std::size_t end = std::min(bytes, name.size());
  while (end > 0 && end < name.size() &&
         (static_cast<unsigned char>(name[end]) & kMask) == kInner) {
    --end;
  }
  return std::string(name.substr(0, end));
}

std::string storable(std::string_view name) {
  std::string text = cut(name, kLongest);
  std::replace_if(
      text.begin(), text.end(), [](char letter) { return letter == '/' || letter == '\0'; }, '_');
  return text.empty() ? "unnamed" : text == "." ? "_" : text;
}

}  // namespace

std::string StorableNames::of(std::string_view name) {
  const std::string wanted = storable(name);
  std::string free = wanted;
  for (std::int64_t number = 2; used_.contains(free); ++number) {
    const std::string suffix = "-" + shown(number);
    free = cut(wanted, kLongest - suffix.size()) + suffix;
  }
  used_.insert(free);
  if (free != name) {
    report_.add(orvml::Fate::renamed, what_ + " '" + std::string(name) + "'", 1,
                "is called '" + free + "', which an exchange file can hold");
  }
  return free;
}

}  // namespace orvml_tool
