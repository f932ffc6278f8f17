#include "safe_file.h"

#include <orvml/error.hpp>

#include "hdf5/new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

namespace orvml::detail {

namespace {

using orvml_io::Descriptor;
using orvml_io::FileBeside;

/// The file that a path leads to when its symbolic links are followed, whether it exists or not.
std::filesystem::path followed(const std::filesystem::path& path) {
  constexpr int kMostLinks = 40;  // as many as the system follows
  std::filesystem::path target = path;
  std::error_code failure;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(target, failure); ++i) {
    const std::filesystem::path next = std::filesystem::read_symlink(target, failure);
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return target;
}

/// Lets files of this process grow as far as they ever may while it lives. The limit that a program
/// sets itself below that holds for files in memory, too.
class LooserSizeLimit {
 public:
  LooserSizeLimit() noexcept : isKnown_(::getrlimit(RLIMIT_FSIZE, &before_) == 0) {
    const struct rlimit loosest = {before_.rlim_max, before_.rlim_max};
    isKnown_ = isKnown_ && ::setrlimit(RLIMIT_FSIZE, &loosest) == 0;
  }
  LooserSizeLimit(const LooserSizeLimit&) = delete;
  LooserSizeLimit& operator=(const LooserSizeLimit&) = delete;
  LooserSizeLimit(LooserSizeLimit&&) = delete;
  LooserSizeLimit& operator=(LooserSizeLimit&&) = delete;
  ~LooserSizeLimit() {
    if (isKnown_) {
      (void)::setrlimit(RLIMIT_FSIZE, &before_);
    }
  }

 private:
  struct rlimit before_ = {};
  bool isKnown_;
};

/// A file in memory, where what nobody wants any more can be written to.
int openSink() noexcept {
#if defined(__linux__)
  return ::memfd_create("unwanted", MFD_CLOEXEC);
#else
  return ::open("/dev/null", O_WRONLY | O_CLOEXEC);
#endif
}

}  // namespace

SafeFile::SafeFile(const std::filesystem::path& path, FailureWatch& watch)
    : path_(path), watch_(watch) {
  prepare();
  create();
}

void SafeFile::throwSystemError(int error) const {
  const std::string reason = std::strerror(error);
  const Error::About about{path_, {}, watch_.lastReason()};
  const std::string folder = path_.parent_path().empty() ? "." : path_.parent_path().string();
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      throw Error(Code::folderNotFound, "there is no folder " + folder + " to write it in", about);
    case EACCES:
    case EPERM:
    case EROFS:
      throw Error(Code::folderNotWritable,
                  "no file can be made in the folder " + folder + ", which saving needs", about);
    case ENOSPC:
    case EDQUOT:
      throw Error(Code::noSpaceLeft, "there is no space left on the device", about);
    case EFBIG:
      throw Error(Code::fileTooLarge, "would be larger than files may be here", about);
    default:
      throw Error(Code::fileNotWritten, "cannot be written: " + reason, about);
  }
}

void SafeFile::throwUnwritten() const {
  const int error = watch_.systemError();
  if (error != 0) {
    throwSystemError(error);
  }
  throw Error(Code::fileNotWritten, "cannot be written", {path_, {}, watch_.lastReason()});
}

void SafeFile::lockOld(const std::filesystem::path& target) {
  if (::access(target.c_str(), W_OK) != 0) {
    if (errno == EROFS) {
      throwSystemError(errno);
    }
    throw Error(Code::filePermissionDenied, "permission to write it is denied", {path_, {}, {}});
  }
  // Who may write a file and not read it can still replace it.
  old_ = Descriptor(::open(target.c_str(), O_RDONLY | O_CLOEXEC));
  if (!old_.valid()) {
    old_ = Descriptor(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
  }
  if (old_.valid() && ::flock(old_.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw Error(Code::fileHeldForWriting,
                "is held open for writing by another process, or by this one", {path_, {}, {}});
  }
}

void SafeFile::prepare() {
  constexpr mode_t kOfTheOwner = 0600;  // until it has the rights of the old file
  constexpr mode_t kOfNewFiles = 0666;
  const std::filesystem::path target = followed(path_);
  struct stat status = {};
  const bool isThere = ::stat(target.c_str(), &status) == 0;
  if (!isThere && errno != ENOENT) {
    throwSystemError(errno);
  }
  if (isThere && S_ISDIR(status.st_mode)) {
    throw Error(Code::fileIsADirectory, "is a folder, not a file", {path_, {}, {}});
  }
  if (isThere && !S_ISREG(status.st_mode)) {
    throw Error(Code::fileNotRegular, "is a device or a pipe, not a file", {path_, {}, {}});
  }
  if (isThere) {
    lockOld(target);
  }
  beside_ = FileBeside::make(target.string(), isThere ? kOfTheOwner : kOfNewFiles);
  if (beside_ == nullptr) {
    throwSystemError(errno);
  }
}

void SafeFile::create() {
  watch_.forget();
  file_ = orvml_io::createAlignedFile(beside_->name().c_str());
  if (!file_.valid()) {
    throwUnwritten();
  }
}

void SafeFile::finish(bool flush) {
  watch_.forget();
  // Flushed first: what HDF5 cannot write when it closes a file it tries to write again and again.
  if (H5Fflush(file_.get(), H5F_SCOPE_LOCAL) < 0) {
    throwUnwritten();
  }
  if (file_.close() < 0) {
    throwUnwritten();
  }
  if (flush && !beside_->flush()) {
    throwSystemError(errno);
  }
  if ((old_.valid() && !beside_->takeRightsOf(old_)) || !beside_->takeName()) {
    throwSystemError(errno);
  }
  if (flush) {
    beside_->flushName();
  }
}

/// HDF5 keeps what it could not write, and ends the process when it cannot write it at the end
/// either. From here on it writes to memory that goes away.
void SafeFile::letGoOfData() noexcept {
  const orvml_io::PropertyListId access(H5Fget_access_plist(file_.get()));
  void* handle = nullptr;
  if (H5Pget_driver(access.get()) != H5FD_SEC2 ||
      H5Fget_vfd_handle(file_.get(), access.get(), &handle) < 0) {
    return;
  }
  const Descriptor sink(openSink());
  if (sink.valid()) {
    (void)::dup2(sink.get(), *static_cast<int*>(handle));
  }
}

SafeFile::~SafeFile() {
  if (file_.valid()) {
    const LooserSizeLimit limit;
    letGoOfData();
    (void)file_.close();
  }
}

}  // namespace orvml::detail
