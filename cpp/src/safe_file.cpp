#include "safe_file.h"

#include <orvml/error.hpp>

#include "file_checks.h"
#include "hdf5/new_file.h"
#include "positioned_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

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

}  // namespace

SafeFile::SafeFile(const std::filesystem::path& path, FailureWatch& watch)
    : path_(path), watch_(watch) {
  prepare();
  openNew();
  create();
}

SafeFile::SafeFile(const std::filesystem::path& path, FailureWatch& watch, AsCopy /*tag*/)
    : path_(path), watch_(watch) {
  prepare();
  if (!old_.valid()) {
    throw Error(Code::fileNotFound, "there is no such file", {path_, {}, {}});
  }
  openNew();
  copyOld();
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
  if (bytes_ && bytes_->error() != 0) {
    throwSystemError(bytes_->error());
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
  // The lock stays: nobody may begin to write what is about to be replaced.
  if (old_.valid() && isHeldForWriting(old_.get())) {
    throwHeldForWriting(path_, {});
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
  if (isThere) {
    requireRegularFile(status, path_);
    lockOld(target);
  }
  beside_ = FileBeside::make(target.string(), isThere ? kOfTheOwner : kOfNewFiles);
  if (beside_ == nullptr) {
    throwSystemError(errno);
  }
}

void SafeFile::openNew() {
  new_ = Descriptor(::open(beside_->name().c_str(), O_RDWR | O_CLOEXEC));
  if (!new_.valid()) {
    throwSystemError(errno);
  }
  bytes_.emplace(new_.get());
}

orvml_io::PropertyListId SafeFile::access() {
  watch_.forget();
  driver_ = registerFileDriver();
  orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  if (!writeTo(*bytes_, driver_.get(), access.get())) {
    throwUnwritten();
  }
  return access;
}

void SafeFile::create() {
  file_ = orvml_io::createAlignedFile(beside_->name().c_str(), access().get());
  if (!file_.valid()) {
    throwUnwritten();
  }
}

void SafeFile::copyOld() {
  constexpr std::size_t kBlock = std::size_t{1} << 20U;
  std::vector<char> block(kBlock);
  const std::uint64_t bytes = lengthOf(old_.get());
  for (std::uint64_t place = 0; place < bytes; place += kBlock) {
    const std::size_t count = std::min<std::uint64_t>(kBlock, bytes - place);
    errno = EIO;  // of a file that has become shorter
    if (moveAll(::pread, old_.get(), block.data(), count, place) > 0) {
      throwSystemError(errno);
    }
    bytes_->write(place, block.data(), count, false);
  }
  if (bytes_->error() != 0) {
    throwUnwritten();
  }
}

/// HDF5 takes space in blocks otherwise, and forgets at the end what it did not use of them: it
/// could not give it back to anybody who removes what is made now.
void SafeFile::openCopy() {
  const orvml_io::PropertyListId properties = access();
  (void)H5Pset_meta_block_size(properties.get(), 0);
  (void)H5Pset_small_data_block_size(properties.get(), 0);
  file_ = orvml_io::FileId(H5Fopen(beside_->name().c_str(), H5F_ACC_RDWR, properties.get()));
  if (!file_.valid()) {
    throwUnwritten();
  }
}

void SafeFile::close() {
  watch_.forget();
  if (file_.close() < 0 || bytes_->error() != 0) {
    throwUnwritten();
  }
}

void SafeFile::finish(bool flush) {
  close();
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

SafeFile::~SafeFile() {
  if (file_.valid()) {
    bytes_->giveUp(ECANCELED);
    (void)file_.close();
  }
}

}  // namespace orvml::detail
