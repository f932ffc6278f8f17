#include "hdf5/new_file.h"

#include "hdf5/kept_open.h"
#include "hdf5/status.h"

#include <utility>

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#endif

namespace orvml_io {

#if defined(__unix__) || defined(__APPLE__)

namespace {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (descriptor_ >= 0) {
      (void)::close(descriptor_);
    }
  }
  [[nodiscard]] int get() const noexcept { return descriptor_; }

 private:
  int descriptor_ = -1;
};

/// To open what is no regular file may change it, even without reading: a pipe, a tape.
bool isRegularFile(const char* fileName) noexcept {
  struct stat status = {};
  return ::stat(fileName, &status) == 0 && S_ISREG(status.st_mode);
}

/// Asks for the lock that HDF5 asks for, on a descriptor that goes away at once. Whatever keeps it
/// from being given may keep HDF5 from getting it; only a file system without locks keeps nobody.
bool isLocked(const Descriptor& file) noexcept {
  return ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno != ENOSYS;
}

/// The number that HDF5 gives a file when it opens it, which stays while the file is open anywhere
/// in the process; no answer when it cannot be had.
std::optional<unsigned long> openingOf(const char* fileName) noexcept {
  const FileId file(H5Fopen(fileName, H5F_ACC_RDONLY, H5P_DEFAULT));
  H5G_stat_t root = {};
  if (!file.valid() || H5Gget_objinfo(file.get(), "/", false, &root) < 0) {
    return std::nullopt;
  }
  return root.fileno[0];
}

/// Tells whether HDF5 has the file open in this process. A descriptor that a parent process left
/// open here does not count: the program that reads the file may have started the one that writes
/// it. Nor do the identifiers that HDF5 keeps of a file which it failed to close; they are not even
/// counted.
bool isOpenInThisProcess(const char* fileName) noexcept {
  const std::optional<unsigned long> first = openingOf(fileName);
  const std::optional<unsigned long> second = openingOf(fileName);
  if (!first || !second) {
    return H5Fis_hdf5(fileName) != 0;  // it cannot be told, unless this is no HDF5 file at all
  }
  return *first == *second;
}

/// Who keeps a file from being written in place.
struct Holders {
  bool areThere = false;
  std::optional<Descriptor> lockedByReaders;  // shares their lock, so that nobody begins to write
};

Holders holdersOf(const char* fileName) {
  if (!isRegularFile(fileName)) {
    return {};
  }
  Descriptor file(::open(fileName, O_RDWR | O_CLOEXEC));
  // HDF5 can be told to ignore locks. Whether it would mind this one, only it can say.
  if (file.get() < 0 || !isLocked(file) ||
      FileId(H5Fopen(fileName, H5F_ACC_RDWR, H5P_DEFAULT)).valid()) {
    return {};
  }
  Holders holders;
  holders.areThere = true;
  if (::flock(file.get(), LOCK_SH | LOCK_NB) == 0 && !isOpenInThisProcess(fileName)) {
    holders.lockedByReaders.emplace(std::move(file));
  }
  return holders;
}

}  // namespace

/// The file whose place a new one beside it will take.
class ReplacedFile {
 public:
  /// Makes the empty new file; none when that is not possible.
  static std::unique_ptr<ReplacedFile> beside(const char* fileName, Descriptor lock) {
    std::error_code failure;
    std::string target = std::filesystem::canonical(fileName, failure).string();
    std::string name = target.substr(0, target.rfind('/') + 1) + ".orvml_io-XXXXXX";
    const Descriptor created(failure ? -1 : ::mkstemp(name.data()));
    if (created.get() < 0) {
      return nullptr;
    }
    return std::unique_ptr<ReplacedFile>(
        new ReplacedFile(std::move(target), std::move(name), std::move(lock)));
  }
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;
  ReplacedFile(ReplacedFile&&) = delete;
  ReplacedFile& operator=(ReplacedFile&&) = delete;
  ~ReplacedFile() {
    if (!isReplaced_) {
      (void)::unlink(newName_.c_str());
    }
  }

  [[nodiscard]] const char* newName() const noexcept { return newName_.c_str(); }

  /// Puts the new file in place. The old one lives on, without a name, for those who have it open.
  [[nodiscard]] int replace() noexcept {
    isReplaced_ = takesRightsOfTheOld() && std::rename(newName_.c_str(), target_.c_str()) == 0;
    return isReplaced_ ? kOk : kFailed;
  }

 private:
  ReplacedFile(std::string target, std::string newName, Descriptor lock) noexcept
      : target_(std::move(target)), newName_(std::move(newName)), lock_(std::move(lock)) {}

  /// Group and owner come first: a change of them may take permissions away. Only the superuser can
  /// give files away, and others choose among their own groups, so that neither need succeed.
  [[nodiscard]] bool takesRightsOfTheOld() const noexcept {
    constexpr mode_t kPermissions = 07777;
    constexpr unsigned kFromOthersToGroup = 3;
    struct stat old = {};
    if (::fstat(lock_.get(), &old) != 0) {
      return false;
    }
    mode_t permissions = old.st_mode & kPermissions;
    if (::chown(newName_.c_str(), static_cast<uid_t>(-1), old.st_gid) != 0) {
      // What the old group was allowed is not for another one.
      permissions &= ~static_cast<mode_t>(S_IRWXG | S_ISGID);
      permissions |= (old.st_mode & S_IRWXO) << kFromOthersToGroup;
    }
    const int owned = ::chown(newName_.c_str(), old.st_uid, static_cast<gid_t>(-1));
    (void)owned;
    return ::chmod(newName_.c_str(), permissions) == 0;
  }

  std::string target_;
  std::string newName_;
  Descriptor lock_;
  bool isReplaced_ = false;
};

NewFile::NewFile(const char* fileName) {
  Holders holders = holdersOf(fileName);
  if (holders.areThere) {
    if (!holders.lockedByReaders) {
      return;
    }
    replaced_ = ReplacedFile::beside(fileName, std::move(*holders.lockedByReaders));
    if (replaced_ == nullptr) {
      return;
    }
    fileName = replaced_->newName();
  }
  file_ = FileId(H5Fcreate(fileName, H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
}

#else

/// Without locks nobody is seen to hold a file.
class ReplacedFile {
 public:
  [[nodiscard]] static int replace() noexcept { return kOk; }
};

NewFile::NewFile(const char* fileName)
    : file_(H5Fcreate(fileName, H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)) {}

#endif

NewFile::NewFile(NewFile&& other) noexcept = default;

NewFile::~NewFile() = default;

int NewFile::finish(int status) {
  const int closed = file_.close();
  if (status == kOk && closed == kOk && replaced_ != nullptr) {
    return replaced_->replace();
  }
  return status != kOk ? status : closed;
}

void NewFile::abandonOpen() {
  (void)keepOpen(std::move(file_), KeptOpen::fileAfterMarkerFailure);
  replaced_ = nullptr;
}

}  // namespace orvml_io
