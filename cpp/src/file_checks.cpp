#include "file_checks.h"

#include <orvml/error.hpp>

#include <sys/file.h>

#include <cerrno>

namespace orvml::detail {

void requireRegularFile(const struct stat& status, const std::filesystem::path& path) {
  if (S_ISDIR(status.st_mode)) {
    throw Error(Code::fileIsADirectory, "is a folder, not a file", {path, {}, {}});
  }
  if (!S_ISREG(status.st_mode)) {
    throw Error(Code::fileNotRegular, "is a device or a pipe, not a file", {path, {}, {}});
  }
}

bool isHeldForWriting(int descriptor) noexcept {
  return ::flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

void throwHeldForWriting(const std::filesystem::path& path, const std::string& hdf5Reason) {
  throw Error(Code::fileHeldForWriting,
              "is held open for writing by another process, or by this one",
              {path, {}, hdf5Reason});
}

}  // namespace orvml::detail
