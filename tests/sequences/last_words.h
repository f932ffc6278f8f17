#pragma once

#include <functional>
#include <string>

namespace orvml_io_tests {

/// What is printed when a sanitizer ends the program while this lives: without it, nobody would
/// know which random test had come how far.
class LastWords {
 public:
  explicit LastWords(std::function<std::string()> words);
  LastWords(const LastWords&) = delete;
  LastWords& operator=(const LastWords&) = delete;
  LastWords(LastWords&&) = delete;
  LastWords& operator=(LastWords&&) = delete;
  ~LastWords();
};

}  // namespace orvml_io_tests
