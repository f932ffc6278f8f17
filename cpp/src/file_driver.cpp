#include "file_driver.h"

#include "hdf5_driver.h"
#include "positioned_io.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <new>

namespace orvml::detail {

/// Pointers into different memory are compared by the order that the standard library gives them.
bool WrittenBytes::isLeftOut(const char* bytes) const noexcept {
  return leftOut_ != nullptr && std::less_equal<>()(leftOut_, bytes) &&
         std::less<>()(bytes, leftOut_ + leftOutBytes_);
}

void WrittenBytes::write(std::uint64_t place, const char* bytes, std::size_t count,
                         bool isReadBack) noexcept {
  if (isLeftOut(bytes)) {
    return;
  }
  end_ = std::max(end_, place + count);
  if (error_ == 0) {
    errno = EIO;  // of a device that takes nothing and says nothing
    if (moveAll(::pwrite, descriptor_, bytes, count, place) == 0) {
      return;
    }
    error_ = errno;
  }
  if (isReadBack) {
    keep(place, bytes, count);
  }
}

void WrittenBytes::keep(std::uint64_t place, const char* bytes, std::size_t count) noexcept {
  try {
    unwritten_.push_back({place, std::vector<char>(bytes, bytes + count)});
  } catch (const std::bad_alloc&) {
    // HDF5 reads something else there then, and fails as it does on a damaged file.
  }
}

void WrittenBytes::setLength(std::uint64_t bytes) noexcept {
  if (error_ == 0 && ::ftruncate(descriptor_, static_cast<off_t>(bytes)) != 0) {
    error_ = errno;
  }
  end_ = bytes;
}

bool WrittenBytes::read(std::uint64_t place, char* bytes, std::size_t count) noexcept {
  errno = 0;
  const std::size_t left = moveAll(::pread, descriptor_, bytes, count, place);
  if (left > 0 && errno != 0 && error_ == 0) {
    error_ = errno;
    return false;
  }
  std::memset(bytes + (count - left), 0, left);
  for (const Piece& piece : unwritten_) {
    const std::uint64_t begin = std::max(place, piece.place);
    const std::uint64_t end = std::min(place + count, piece.place + piece.bytes.size());
    if (begin < end) {
      std::memcpy(bytes + (begin - place), piece.bytes.data() + (begin - piece.place), end - begin);
    }
  }
  return true;
}

namespace {

using WrittenFile = DriverFile<WrittenBytes>;

/// What HDF5 does by itself for files of its usual driver, so that the same files come out.
herr_t query(const H5FD_t* /*file*/, unsigned long* features) {
  if (features != nullptr) {
    *features = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA |
                H5FD_FEAT_DATA_SIEVE | H5FD_FEAT_AGGREGATE_SMALLDATA |
                H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
  }
  return 0;
}

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t /*type*/) {
  return WrittenFile::of(file).bytes->end();
}

herr_t readBytes(H5FD_t* file, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t place,
                 std::size_t count, void* bytes) {
  return WrittenFile::of(file).bytes->read(place, static_cast<char*>(bytes), count) ? 0 : -1;
}

herr_t writeBytes(H5FD_t* file, H5FD_mem_t type, hid_t /*transfer*/, haddr_t place,
                  std::size_t count, const void* bytes) {
  WrittenFile::of(file).bytes->write(place, static_cast<const char*>(bytes), count,
                                     type != H5FD_MEM_DRAW);
  return 0;
}

herr_t setLength(H5FD_t* file, hid_t /*transfer*/, hbool_t /*isClosing*/) {
  WrittenFile& written = WrittenFile::of(file);
  if (written.endOfAddresses != written.bytes->end()) {
    written.bytes->setLength(written.endOfAddresses);
  }
  return 0;
}

H5FD_class_t fileDriverClass() noexcept {
  H5FD_class_t driver = driverOf<WrittenBytes>("orvml", 512);
  driver.query = query;
  driver.get_eof = endOfFile;
  driver.read = readBytes;
  driver.write = writeBytes;
  driver.truncate = setLength;
  return driver;
}

}  // namespace

DriverId registerFileDriver() noexcept {
  static const H5FD_class_t kDriver = fileDriverClass();
  return DriverId(H5FDregister(&kDriver));
}

bool writeTo(WrittenBytes& bytes, hid_t driver, hid_t fileAccess) noexcept {
  return useDriver(driver, bytes, fileAccess);
}

}  // namespace orvml::detail
