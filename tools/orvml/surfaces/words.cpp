#include "surfaces/words.h"

#include "numbers.h"
#include "surfaces/surface.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace orvml_tool {

namespace {

bool isBlank(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\v' || letter == '\f';
}

std::string quoted(std::string_view word) {
  constexpr std::size_t kLongest = 40;
  return "'" + std::string(word.substr(0, kLongest)) + "'";
}

}  // namespace

void Words::addWords(std::string_view line) {
  std::size_t begin = 0;
  for (std::size_t end = 0; end <= line.size(); ++end) {
    if (end == line.size() || isBlank(line[end])) {
      if (end > begin) {
        words_.push_back(line.substr(begin, end - begin));
      }
      begin = end + 1;
    }
  }
}

/// Whether the line goes on: its last word ends with a backslash, which is taken away.
bool Words::takeBackslash() {
  if (lines_ == Lines::asTheyAre || words_.empty() || words_.back().back() != '\\') {
    return false;
  }
  words_.back().remove_suffix(1);
  if (words_.back().empty()) {
    words_.pop_back();
  }
  return true;
}

bool Words::nextLine() {
  words_.clear();
  nextWord_ = 0;
  bool goesOn = false;
  while (position_ < text_.size() && (words_.empty() || goesOn)) {
    const std::size_t end = std::min(text_.find('\n', position_), text_.size());
    const std::string_view line = text_.substr(position_, end - position_);
    position_ = std::min(end + 1, text_.size());
    ++lineNumber_;
    addWords(line.substr(0, line.find('#')));
    goesOn = takeBackslash();
  }
  return !words_.empty();
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
