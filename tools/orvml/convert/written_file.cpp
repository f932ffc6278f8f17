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

/// The rights that the new file gets. Throws Refusal where there is what cannot be replaced.
mode_t rightsAt(const std::filesystem::path& path, const std::filesystem::path& target) {
  struct stat old = {};
  if (::stat(target.c_str(), &old) != 0) {
    return rightsOfNewFiles();
  }
  if (!S_ISREG(old.st_mode)) {
    throw Refusal(printable(path) + ": is no regular file", "name another file");
  }
  if (::access(target.c_str(), W_OK) != 0) {
    refuse(path, errno);
  }
  constexpr mode_t kRights = 07777;
  return old.st_mode & kRights;
}

}  // namespace

WrittenFile::Beside::Beside(const std::filesystem::path& path, const std::filesystem::path& target)
    : name(target.parent_path() / ".orvml_io-XXXXXX") {
  const mode_t rights = rightsAt(path, target);
  descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) {
    refuse(path, errno);
  }
  if (::fchmod(descriptor, rights) != 0) {
    const int error = errno;
    (void)::unlink(name.c_str());
    (void)::close(descriptor);
    refuse(path, error);
  }
}

WrittenFile::Beside::~Beside() {
  if (!name.empty()) {
    (void)::unlink(name.c_str());
  }
  (void)::close(descriptor);
}

WrittenFile::WrittenFile(const std::filesystem::path& path)
    : path_(path),
      target_(followed(path)),
      beside_(path_, target_),
      sink_(beside_.descriptor, path_) {}

void WrittenFile::takePlace() {
  sink_.flush();
  if (::rename(beside_.name.c_str(), target_.c_str()) != 0) {
    refuse(path_, errno);
  }
  beside_.name.clear();
}

}  // namespace orvml_tool
