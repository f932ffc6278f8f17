#include "convert/byte_sink.h"

#include "console.h"
#include "messages.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvml_tool {

ByteSink::ByteSink(int descriptor, std::filesystem::path file)
    : descriptor_(descriptor), file_(std::move(file)), block_(kBlock) {}

void ByteSink::write(std::string_view bytes) {
  if (bytes.size() >= block_.size()) {
    flush();
    writeThrough(bytes);
    return;
  }
  bytes.copy(room(bytes.size()), bytes.size());
  advance(bytes.size());
}

void ByteSink::flush() {
  const std::size_t used = used_;
  used_ = 0;
  writeThrough({block_.data(), used});
}

void ByteSink::writeThrough(std::string_view bytes) {
  written_ += bytes.size();
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      throw Refusal(printable(file_) + ": cannot be written: " + std::strerror(errno),
                    "make room, or write elsewhere");
    }
    bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
}

}  // namespace orvml_tool
