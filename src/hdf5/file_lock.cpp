#include "hdf5/file_lock.h"

#include "hdf5/id.h"

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace orvml_io {

namespace {

#if defined(__unix__) || defined(__APPLE__)

class Descriptor {
 public:
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (descriptor_ >= 0) {
      (void)::close(descriptor_);
    }
  }
  [[nodiscard]] int get() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

bool isRegularFile(const char* fileName) noexcept {
  struct stat status = {};
  return ::stat(fileName, &status) == 0 && S_ISREG(status.st_mode);
}

/// Asks for the lock that HDF5 asks for, on an identifier that goes away at once. Whatever keeps it
/// from being given may keep HDF5 from getting it; only a file system without locks keeps nobody.
bool isLocked(const char* fileName) noexcept {
  if (!isRegularFile(fileName)) {
    return false;
  }
  const Descriptor file(::open(fileName, O_RDWR | O_CLOEXEC));
  return file.get() >= 0 && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno != ENOSYS;
}

#else

bool isLocked(const char* /*fileName*/) noexcept { return false; }

#endif

}  // namespace

bool isHeldByAnother(const char* fileName) {
  // HDF5 can be told to ignore locks. Whether it would mind this one, only it can say.
  return isLocked(fileName) && !FileId(H5Fopen(fileName, H5F_ACC_RDWR, H5P_DEFAULT)).valid();
}

}  // namespace orvml_io
