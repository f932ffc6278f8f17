#include "convert/msh_bytes.h"

#include "console.h"
#include "convert/format_error.h"

#include <algorithm>

namespace orvml_tool {

namespace {

constexpr bool isBlank(char letter) noexcept {
  return letter == ' ' || letter == '\n' || letter == '\r' || letter == '\t' || letter == '\v' ||
         letter == '\f';
}

std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace

bool MshBytes::nextSection(std::string_view& name) {
  while (position_ < bytes_.size()) {
    const std::string_view text = withoutBlanks(line());
    if (text.empty()) {
      continue;
    }
    if (!text.starts_with('$') || text.size() == 1) {
      refuse("there is something between its sections");
    }
    name = text.substr(1);
    return true;
  }
  return false;
}

void MshBytes::endSection(std::string_view name) {
  while (position_ < bytes_.size() && isBlank(bytes_[position_])) {
    ++position_;
  }
  const std::string_view text = withoutBlanks(line());
  if (!text.starts_with("$End") || text.substr(4) != name) {
    refuse("the section $" + std::string(name) + " does not end where it should");
  }
}

void MshBytes::passSection(std::string_view name) {
  const std::string end = "\n$End" + std::string(name);
  // The line of its name ended before, and it may be empty.
  const std::size_t found = bytes_.find(end, position_ == 0 ? 0 : position_ - 1);
  if (found == std::string_view::npos) {
    refuse("the section $" + std::string(name) + " has no end");
  }
  position_ = found;
  endSection(name);
}

std::string_view MshBytes::line() {
  const std::size_t end = std::min(bytes_.find('\n', position_), bytes_.size());
  std::string_view text = bytes_.substr(position_, end - position_);
  position_ = std::min(end + 1, bytes_.size());
  if (text.ends_with('\r')) {
    text.remove_suffix(1);
  }
  return text;
}

std::string_view MshBytes::word() {
  while (position_ < bytes_.size() && isBlank(bytes_[position_])) {
    ++position_;
  }
  const std::size_t begin = position_;
  while (position_ < bytes_.size() && !isBlank(bytes_[position_])) {
    ++position_;
  }
  if (position_ == begin) {
    refuse("the file ends too early");
  }
  return bytes_.substr(begin, position_ - begin);
}

std::size_t MshBytes::count(std::size_t binaryBytes, std::size_t textBytes) {
  return count(value<std::uint64_t>(), binaryBytes, textBytes);
}

std::size_t MshBytes::count(std::uint64_t told, std::size_t binaryBytes,
                            std::size_t textBytes) const {
  // What ends the last of them may be missing in a text.
  const std::size_t left = bytes_.size() - position_ + (isText_ ? 1 : 0);
  if (told > left / (isText_ ? textBytes : binaryBytes)) {
    refuse("there cannot be " + std::to_string(told) + " things in the bytes that follow");
  }
  return static_cast<std::size_t>(told);
}

void MshBytes::refuse(const std::string& sentence) const {
  throw FormatError(sentence + " (at byte " + std::to_string(position_) + ")");
}

void MshBytes::refuseWord(std::string_view word) const {
  constexpr std::size_t kLongest = 40;
  refuse("'" + printable(word.substr(0, kLongest)) + "' is not the number that should be there");
}

}  // namespace orvml_tool
