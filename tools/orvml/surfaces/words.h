#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvml_tool {

/// The words of a text, line by line, with the number of the line for messages.
class Words {
 public:
  enum class Lines { asTheyAre, goOnAfterBackslash };

  explicit Words(std::string_view text, Lines lines = Lines::asTheyAre)
      : text_(text), lines_(lines) {}

  /// Goes to the next line that has a word before its "#"; returns whether there is one.
  bool nextLine();
  /// The words of the line.
  [[nodiscard]] const std::vector<std::string_view>& line() const noexcept { return words_; }

  /// The next word of the text, on whatever line; throws FormatError at its end.
  [[nodiscard]] std::string_view next();

  /// These throw FormatError for a word that is none.
  [[nodiscard]] double number(std::string_view word) const;
  [[nodiscard]] std::int64_t integer(std::string_view word) const;
  /// A number that is not negative, and not larger than a file of this size can hold.
  [[nodiscard]] std::size_t count(std::string_view word) const;

  /// Throws FormatError with the number of the line.
  [[noreturn]] void refuse(const std::string& sentence) const;

  /// How many bytes were gone through.
  [[nodiscard]] std::size_t position() const noexcept { return position_; }

 private:
  void addWords(std::string_view line);
  bool takeBackslash();

  std::string_view text_;
  Lines lines_;
  std::size_t position_ = 0;
  std::size_t lineNumber_ = 0;
  std::size_t nextWord_ = 0;
  std::vector<std::string_view> words_;
};

}  // namespace orvml_tool
