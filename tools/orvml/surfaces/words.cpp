#include "surfaces/words.h"

#include "numbers.h"
#include "surfaces/surface.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace orvml_tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

std::vector<std::string_view> split(std::string_view line) {
  std::vector<std::string_view> words;
  for (std::size_t begin = line.find_first_not_of(kBlanks); begin != std::string_view::npos;) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
    words.push_back(line.substr(begin, end - begin));
    begin = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

std::string quoted(std::string_view word) {
  constexpr std::size_t kLongest = 40;
  return "'" + std::string(word.substr(0, kLongest)) + "'";
}

}  // namespace

bool Words::nextLine() {
  while (position_ < text_.size()) {
    const std::size_t end = std::min(text_.find('\n', position_), text_.size());
    const std::string_view line = text_.substr(position_, end - position_);
    position_ = std::min(end + 1, text_.size());
    ++lineNumber_;
    words_ = split(line.substr(0, line.find('#')));
    nextWord_ = 0;
    if (!words_.empty()) {
      return true;
    }
  }
  words_.clear();
  return false;
}

std::string_view Words::next() {
  while (nextWord_ == words_.size()) {
    if (!nextLine()) {
      refuse("the file ends too early");
    }
  }
  return words_[nextWord_++];
}

double Words::number(std::string_view word) const {
  const auto value = numberIn(word);
  if (!value) {
    refuse(quoted(word) + " is no number");
  }
  return *value;
}

std::int64_t Words::integer(std::string_view word) const {
  std::int64_t value = 0;
  const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
  if (result.ec != std::errc() || result.ptr != word.data() + word.size()) {
    refuse(quoted(word) + " is no integer");
  }
  return value;
}

std::size_t Words::count(std::string_view word) const {
  const std::int64_t value = integer(word);
  if (value < 0 || static_cast<std::size_t>(value) > text_.size()) {
    refuse(quoted(word) + " is no number of things in a file of " + std::to_string(text_.size()) +
           " bytes");
  }
  return static_cast<std::size_t>(value);
}

void Words::refuse(const std::string& sentence) const {
  throw FormatError("line " + std::to_string(lineNumber_) + ": " + sentence);
}

}  // namespace orvml_tool
