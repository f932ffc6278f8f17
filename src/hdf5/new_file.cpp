#include "hdf5/new_file.h"

#include "hdf5/kept_open.h"
#include "hdf5/status.h"

#include <utility>

#if defined(__unix__) || defined(__APPLE__)
#include "hdf5/descriptor.h"
#include "hdf5/file_beside.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#endif

namespace orvml_io {

#if defined(__unix__) || defined(__APPLE__)

namespace {

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
    // Whoever may not read the old file is not to read the new one while it is written.
    constexpr mode_t kOfTheOwner = 0600;
    std::error_code failure;
    std::string target = std::filesystem::canonical(fileName, failure).string();
    std::unique_ptr<FileBeside> file =
        failure ? nullptr : FileBeside::make(std::move(target), kOfTheOwner);
    return file == nullptr
               ? nullptr
               : std::unique_ptr<ReplacedFile>(new ReplacedFile(std::move(file), std::move(lock)));
  }

  [[nodiscard]] const char* newName() const noexcept { return file_->name().c_str(); }

  /// Puts the new file in place.
  [[nodiscard]] int replace() noexcept {
    return file_->takeRightsOf(lock_) && file_->takeName() ? kOk : kFailed;
  }

 private:
  ReplacedFile(std::unique_ptr<FileBeside> file, Descriptor lock) noexcept
      : file_(std::move(file)), lock_(std::move(lock)) {}

  std::unique_ptr<FileBeside> file_;
  Descriptor lock_;
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
  file_ = createAlignedFile(fileName);
}

#else

/// Without locks nobody is seen to hold a file.
class ReplacedFile {
 public:
  [[nodiscard]] static int replace() noexcept { return kOk; }
};

NewFile::NewFile(const char* fileName) : file_(createAlignedFile(fileName)) {}

#endif

FileId createAlignedFile(const char* fileName) noexcept {
  const PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  return createAlignedFile(fileName, access.get());
}

FileId createAlignedFile(const char* fileName, hid_t access) noexcept {
  constexpr hsize_t kAnySize = 1;
  if (H5Pset_alignment(access, kAnySize, sizeof(double)) < 0) {
    return FileId();
  }
  return FileId(H5Fcreate(fileName, H5F_ACC_TRUNC, H5P_DEFAULT, access));
}

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
