#include "hdf5/file_beside.h"

#if defined(__unix__) || defined(__APPLE__)

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <random>
#include <utility>

namespace orvml_io {

namespace {

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);  // with its slash; empty for the working directory
}

/// Six characters that no other writer is likely to have drawn.
std::string drawSuffix() {
  constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  std::string suffix;
  for (int i = 0; i < 6; ++i) {
    suffix += kCharacters[random() % (sizeof kCharacters - 1)];
  }
  return suffix;
}

}  // namespace

std::unique_ptr<FileBeside> FileBeside::make(std::string target, mode_t permissions) {
  constexpr int kTries = 100;
  // Made first: where memory lacks there must be no file yet that nobody removes.
  std::unique_ptr<FileBeside> file(new FileBeside(std::move(target)));
  for (int i = 0; i < kTries; ++i) {
    file->name_ = folderOf(file->target_) + ".orvml_io-" + drawSuffix();
    const Descriptor created(
        ::open(file->name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
    if (created.valid()) {
      file->hasOwnName_ = true;
      return file;
    }
    if (errno != EEXIST) {
      return nullptr;
    }
  }
  return nullptr;
}

FileBeside::~FileBeside() {
  if (hasOwnName_) {
    (void)::unlink(name_.c_str());
  }
}

/// Group and owner come first: a change of them may take permissions away. Only the superuser can
/// give files away, and others choose among their own groups, so that neither need succeed.
bool FileBeside::takeRightsOf(const Descriptor& other) const noexcept {
  constexpr mode_t kPermissions = 07777;
  constexpr unsigned kFromOthersToGroup = 3;
  struct stat old = {};
  if (::fstat(other.get(), &old) != 0) {
    return false;
  }
  mode_t permissions = old.st_mode & kPermissions;
  if (::chown(name_.c_str(), static_cast<uid_t>(-1), old.st_gid) != 0) {
    // What the old group was allowed is not for another one.
    permissions &= ~static_cast<mode_t>(S_IRWXG | S_ISGID);
    permissions |= (old.st_mode & S_IRWXO) << kFromOthersToGroup;
  }
  const int owned = ::chown(name_.c_str(), old.st_uid, static_cast<gid_t>(-1));
  (void)owned;
  return ::chmod(name_.c_str(), permissions) == 0;
}

bool FileBeside::flush() const noexcept {
  const Descriptor file(::open(name_.c_str(), O_RDONLY | O_CLOEXEC));
  return file.valid() && ::fsync(file.get()) == 0;
}

void FileBeside::flushName() const noexcept {
  const std::string folder = folderOf(target_);
  const Descriptor opened(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.valid()) {
    // Not every file system can; the content is on the disk in any case.
    (void)::fsync(opened.get());
  }
}

bool FileBeside::takeName() noexcept {
  hasOwnName_ = std::rename(name_.c_str(), target_.c_str()) != 0;
  return !hasOwnName_;
}

}  // namespace orvml_io

#endif
