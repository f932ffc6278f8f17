#include "convert/byte_sink.h"

#include "console.h"
#include "messages.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace orvml_tool {

ByteSink::ByteSink(int descriptor, std::filesystem::path file)
    : descriptor_(descriptor), file_(std::move(file)), block_(2 * kBlock) {}

void ByteSink::write(std::string_view bytes) {
  if (bytes.size() >= kBlock) {
    const std::size_t toBoundary = (kBlock - position() % kBlock) % kBlock;
    collect(bytes.substr(0, toBoundary));
    writeWholeBlocks();
    bytes.remove_prefix(toBoundary);
    const std::size_t whole = bytes.size() / kBlock * kBlock;
    writeThrough(bytes.substr(0, whole));
    bytes.remove_prefix(whole);
  }
  collect(bytes);
}

void ByteSink::collect(std::string_view bytes) {
  bytes.copy(room(bytes.size()), bytes.size());
  advance(bytes.size());
}

void ByteSink::writeWholeBlocks() {
  const std::uint64_t boundary = position() / kBlock * kBlock;
  const std::size_t whole = boundary > written_ ? static_cast<std::size_t>(boundary - written_) : 0;
  writeThrough({block_.data(), whole});
  used_ -= whole;
  std::memmove(block_.data(), block_.data() + whole, used_);
}

void ByteSink::flush() {
  const std::size_t used = used_;
  used_ = 0;
  writeThrough({block_.data(), used});
}

void ByteSink::patch(std::uint64_t position, std::string_view bytes) {
  flush();
  writeAt(position, bytes);
}

void ByteSink::writeThrough(std::string_view bytes) {
  writeAt(written_, bytes);
  written_ += bytes.size();
}

void ByteSink::writeAt(std::uint64_t position, std::string_view bytes) {
  // Linux copies 1 MiB after the other a quarter faster than all of a large array at once.
  constexpr std::size_t kPortion = std::size_t{1} << 20U;
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(descriptor_, bytes.data(), std::min(bytes.size(), kPortion),
                                     static_cast<off_t>(position));
    if (written < 0 && errno != EINTR) {
      throw Refusal(printable(file_) + ": cannot be written: " + std::strerror(errno),
                    "make room, or write elsewhere");
    }
    const std::size_t done = written < 0 ? 0 : static_cast<std::size_t>(written);
    bytes.remove_prefix(done);
    position += done;
  }
}

}  // namespace orvml_tool
