#include "convert/written_file.h"

#include "console.h"
#include "messages.h"

#include <fcntl.h>
#include <stdlib.h>  // mkostemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

namespace orvml_tool {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, int error) {
  throw Refusal(printable(path) + ": cannot be written: " + std::strerror(error),
                "look at the path, and at the rights of the file and its folder");
}

/// Where a path leads, whether there is a file or not.
std::filesystem::path followed(const std::filesystem::path& path) {
  std::error_code failure;
  std::filesystem::path target = std::filesystem::weakly_canonical(path, failure);
  if (failure) {
    refuse(path, failure.value());
  }
  return target;
}

mode_t rightsOfNewFiles() noexcept {
  constexpr mode_t kOfFiles = 0666;
  const mode_t mask = ::umask(0);
  (void)::umask(mask);
  return kOfFiles & ~mask;
}

/// Opens a file of a name that is its own, which is put in place of the pattern.
int openBeside(const std::filesystem::path& path, const std::filesystem::path& target,
               std::string& pattern) {
  struct stat old = {};
  const bool isThere = ::stat(target.c_str(), &old) == 0;
  if (isThere && !S_ISREG(old.st_mode)) {
    throw Refusal(printable(path) + ": is no regular file", "name another file");
  }
  if (isThere && ::access(target.c_str(), W_OK) != 0) {
    refuse(path, errno);
  }
  const int descriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (descriptor < 0) {
    refuse(path, errno);
  }
  constexpr mode_t kRights = 07777;
  if (::fchmod(descriptor, isThere ? old.st_mode & kRights : rightsOfNewFiles()) != 0) {
    const int error = errno;
    (void)::unlink(pattern.c_str());
    (void)::close(descriptor);
    refuse(path, error);
  }
  return descriptor;
}

}  // namespace

WrittenFile::WrittenFile(const std::filesystem::path& path)
    : path_(path),
      target_(followed(path)),
      name_(target_.parent_path() / ".orvml_io-XXXXXX"),
      descriptor_(openBeside(path_, target_, name_)),
      sink_(descriptor_, path_) {}

WrittenFile::~WrittenFile() {
  if (!name_.empty()) {
    (void)::unlink(name_.c_str());
  }
  (void)::close(descriptor_);
}

void WrittenFile::takePlace() {
  sink_.flush();
  if (::rename(name_.c_str(), target_.c_str()) != 0) {
    refuse(path_, errno);
  }
  name_.clear();
}

}  // namespace orvml_tool
