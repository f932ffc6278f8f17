#include "convert/mapped_bytes.h"

#include "file_bytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvml_tool {

namespace {

/// The pages of a regular file that is not empty; null for all others.
void* pagesOf(const std::string& name, std::size_t& size) noexcept {
  const int descriptor = name == "-" ? -1 : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    return nullptr;
  }
  struct stat status = {};
  void* pages = MAP_FAILED;
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
    size = static_cast<std::size_t>(status.st_size);
    pages = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
  }
  (void)::close(descriptor);
  return pages == MAP_FAILED ? nullptr : pages;
}

}  // namespace

MappedBytes::MappedBytes(const std::string& name) {
  std::size_t size = 0;
  pages_ = pagesOf(name, size);
  if (pages_ != nullptr) {
    bytes_ = {static_cast<const char*>(pages_), size};
    return;
  }
  read_ = bytesOf(name);
  bytes_ = read_;
}

MappedBytes::~MappedBytes() {
  if (pages_ != nullptr) {
    (void)::munmap(pages_, bytes_.size());
  }
}

}  // namespace orvml_tool
