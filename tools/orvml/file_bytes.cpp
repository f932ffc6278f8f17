#include "file_bytes.h"

#include "console.h"
#include "messages.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace orvml_tool {

namespace {

struct Closer {
  void operator()(std::FILE* file) const noexcept {
    if (file != stdin) {
      (void)std::fclose(file);
    }
  }
};
using OpenedFile = std::unique_ptr<std::FILE, Closer>;

}  // namespace

std::string bytesOf(const std::string& name) {
  constexpr std::size_t kBlock = std::size_t{1} << 20U;
  const OpenedFile file(name == "-" ? stdin : std::fopen(name.c_str(), "rb"));
  std::string bytes;
  std::size_t read = file == nullptr ? 0 : 1;
  while (read > 0) {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    read = std::fread(bytes.data() + size, 1, kBlock, file.get());
    bytes.resize(size + read);
  }
  if (file == nullptr || std::ferror(file.get()) != 0) {
    throw Refusal((name == "-" ? "standard input" : printable(name)) +
                      ": cannot be read: " + std::strerror(errno),
                  "look at the path and at the rights of the file");
  }
  return bytes;
}

}  // namespace orvml_tool
