#include "console.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace orvml_tool {

namespace {

[[noreturn]] void throwUnwritten() {
  if (errno == EPIPE) {
    throw BrokenPipe("nobody reads standard output");
  }
  throw OutputFailure(std::string("standard output cannot be written: ") + std::strerror(errno));
}

/// The escape of a control character, with its backslash.
std::string escaped(unsigned char character) {
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      constexpr std::string_view kDigits = "0123456789abcdef";
      return {'\\', 'x', kDigits[character >> 4U], kDigits[character & 15U]};
  }
}

/// How many bytes a character has that begins with this one; 0 for a byte that begins none.
std::size_t lengthBy(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  return first < 0xc2 ? 0 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : first < 0xf5 ? 4 : 0;
}

/// The least and the greatest byte that may be the second one: no character has two encodings, none
/// is a half of a pair, and none lies beyond the last.
std::pair<unsigned char, unsigned char> secondBytes(unsigned char first) {
  return {first == 0xe0   ? 0xa0
          : first == 0xf0 ? 0x90
                          : 0x80,
          first == 0xed   ? 0x9f
          : first == 0xf4 ? 0x8f
                          : 0xbf};
}

template <class Number>
std::string textOf(Number value) {
  std::array<char, 32> text = {};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), result.ptr};
}

bool hasColours(Stream stream) noexcept {
  const char* refused = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return (refused == nullptr || *refused == '\0') && terminal != nullptr &&
         std::string_view(terminal) != "dumb" && isTerminal(stream);
}

std::string_view sequenceOf(Colour colour) noexcept {
  constexpr std::array<std::string_view, 5> kSequences = {"\x1b[1m", "\x1b[31m", "\x1b[33m",
                                                          "\x1b[36m", "\x1b[32m"};
  return kSequences[static_cast<std::size_t>(colour)];
}

}  // namespace

std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t length = lengthBy(byte(0));
  if (length == 0 || length > text.size()) {
    return 0;
  }
  if (length == 1) {
    return byte(0) < 0x20 || byte(0) == 0x7f ? 0 : 1;
  }
  const auto [least, greatest] = secondBytes(byte(0));
  const bool isControl = byte(0) == 0xc2 && byte(1) < 0xa0;
  bool isWhole = byte(1) >= least && byte(1) <= greatest && !isControl;
  for (std::size_t i = 2; i < length; ++i) {
    isWhole = isWhole && byte(i) >= 0x80 && byte(i) <= 0xbf;
  }
  return isWhole ? length : 0;
}

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    throwUnwritten();
  }
}

void flushOutput() {
  if (std::fflush(stdout) != 0) {
    throwUnwritten();
  }
}

void printMessage(std::string_view text) noexcept {
  // Nobody can be told when this fails.
  (void)std::fwrite(text.data(), 1, text.size(), stderr);
  (void)std::fflush(stderr);
}

bool isTerminal(Stream stream) noexcept {
  return ::isatty(stream == Stream::output ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

std::string coloured(std::string_view text, Colour colour, Stream stream) {
  if (!hasColours(stream)) {
    return std::string(text);
  }
  return std::string(sequenceOf(colour)) + std::string(text) + "\x1b[0m";
}

std::string printable(std::string_view name) {
  std::string shown;
  while (!name.empty()) {
    const std::size_t length = characterLength(name);
    shown += length == 0 ? escaped(static_cast<unsigned char>(name.front()))
                         : std::string(name.substr(0, length));
    name.remove_prefix(std::max<std::size_t>(1, length));
  }
  return shown;
}

std::string printable(const std::string& name) { return printable(std::string_view(name)); }

std::string printable(const std::filesystem::path& path) {
  return printable(std::string_view(path.native()));
}

std::string shown(double value) { return textOf(value); }

std::string shown(std::int64_t value) { return textOf(value); }

std::string rounded(double value) {
  constexpr int kDigits = 6;
  std::array<char, 32> text = {};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value,
                                    std::chars_format::general, kDigits);
  return {text.data(), result.ptr};
}

std::string counted(std::int64_t count, std::string_view what) {
  return shown(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string shownBytes(std::uint64_t bytes) {
  constexpr std::array<std::string_view, 5> kUnits = {" bytes", " KB", " MB", " GB", " TB"};
  constexpr std::uint64_t kStep = 1000;
  std::uint64_t tenths = bytes * 10;
  std::size_t unit = 0;
  for (; tenths >= kStep * 10 && unit + 1 < kUnits.size(); ++unit) {
    tenths /= kStep;
  }
  const std::string whole = textOf(tenths / 10);
  return (unit == 0 ? whole : whole + "." + textOf(tenths % 10)) + std::string(kUnits[unit]);
}

}  // namespace orvml_tool
