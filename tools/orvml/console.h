#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

/// What the command prints, and how numbers and names look in it. No locale has a say.
namespace orvml_tool {

/// Standard output cannot be written.
class OutputFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Nobody reads standard output any more.
class BrokenPipe : public OutputFailure {
 public:
  using OutputFailure::OutputFailure;
};

/// Writes to standard output, where bytes may wait until flushOutput(). Throws OutputFailure.
void print(std::string_view text);
void flushOutput();

/// Writes to standard error at once.
void printMessage(std::string_view text) noexcept;

/// Which of the two streams a text is for: each has colours on a terminal alone, and none when the
/// user set NO_COLOR or a terminal without them.
enum class Stream { output, messages };

[[nodiscard]] bool isTerminal(Stream stream) noexcept;

enum class Colour { bold, red, yellow, cyan, green };

/// The text in a colour, or as it is.
[[nodiscard]] std::string coloured(std::string_view text, Colour colour,
                                   Stream stream = Stream::output);

/// The bytes of the first character of a text that is not empty; 0 when it is none that can be
/// shown: no UTF-8, or one that controls terminals.
[[nodiscard]] std::size_t characterLength(std::string_view text);

/// A name as it can be shown on one line: control characters as \n or \x1b and bytes that are no
/// UTF-8 as \xff, all others as they are.
[[nodiscard]] std::string printable(std::string_view name);
[[nodiscard]] std::string printable(const std::string& name);
[[nodiscard]] std::string printable(const std::filesystem::path& path);

/// The shortest text that is read as the same number.
[[nodiscard]] std::string shown(double value);
[[nodiscard]] std::string shown(std::int64_t value);

/// A number with six digits, where no more are worth reading.
[[nodiscard]] std::string rounded(double value);

/// "1 node", "2 nodes".
[[nodiscard]] std::string counted(std::int64_t count, std::string_view what);

/// Such as "12.3 KB", of 1000 bytes each.
[[nodiscard]] std::string shownBytes(std::uint64_t bytes);

}  // namespace orvml_tool
