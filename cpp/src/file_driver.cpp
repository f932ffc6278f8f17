#include "file_driver.h"

#include <hdf5.h>
#if H5_VERSION_GE(1, 13, 0)
#include <H5FDdevelop.h>
#endif

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

namespace orvml::detail {

namespace {

/// Moves bytes to or from a file until all are; the number that was left, and `errno`, when a call
/// fails or moves none.
template <class Transfer, class Byte>
std::size_t moveAll(const Transfer& transfer, int descriptor, Byte* bytes, std::size_t count,
                    std::uint64_t place) noexcept {
  while (count > 0) {
    const ssize_t moved = transfer(descriptor, bytes, count, static_cast<off_t>(place));
    if (moved < 0 && errno == EINTR) {
      continue;
    }
    if (moved <= 0) {
      return count;
    }
    bytes += moved;
    count -= static_cast<std::size_t>(moved);
    place += static_cast<std::uint64_t>(moved);
  }
  return 0;
}

}  // namespace

void WrittenBytes::write(std::uint64_t place, const char* bytes, std::size_t count,
                         bool isReadBack) noexcept {
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

/// What the property list carries.
struct Setting {
  WrittenBytes* bytes;
};

/// A file as HDF5's drivers have them: the public part comes first.
struct DriverFile {
  H5FD_t shared;
  WrittenBytes* bytes;
  haddr_t endOfAddresses;
};

DriverFile& fileOf(H5FD_t* file) noexcept { return *reinterpret_cast<DriverFile*>(file); }

const DriverFile& fileOf(const H5FD_t* file) noexcept {
  return *reinterpret_cast<const DriverFile*>(file);
}

H5FD_t* openFile(const char* /*name*/, unsigned /*flags*/, hid_t access, haddr_t /*largest*/) {
  const auto* setting = static_cast<const Setting*>(H5Pget_driver_info(access));
  if (setting == nullptr) {
    return nullptr;
  }
  auto file = std::unique_ptr<DriverFile>(new (std::nothrow) DriverFile{{}, setting->bytes, 0});
  return file == nullptr ? nullptr : &file.release()->shared;
}

herr_t closeFile(H5FD_t* file) {
  const std::unique_ptr<DriverFile> closed(&fileOf(file));
  return 0;
}

/// What HDF5 does by itself for files of its usual driver, so that the same files come out.
herr_t query(const H5FD_t* /*file*/, unsigned long* features) {
  if (features != nullptr) {
    *features = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA |
                H5FD_FEAT_DATA_SIEVE | H5FD_FEAT_AGGREGATE_SMALLDATA |
                H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
  }
  return 0;
}

haddr_t endOfAddresses(const H5FD_t* file, H5FD_mem_t /*type*/) {
  return fileOf(file).endOfAddresses;
}

herr_t setEndOfAddresses(H5FD_t* file, H5FD_mem_t /*type*/, haddr_t end) {
  fileOf(file).endOfAddresses = end;
  return 0;
}

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t /*type*/) { return fileOf(file).bytes->end(); }

herr_t readBytes(H5FD_t* file, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t place,
                 std::size_t count, void* bytes) {
  return fileOf(file).bytes->read(place, static_cast<char*>(bytes), count) ? 0 : -1;
}

herr_t writeBytes(H5FD_t* file, H5FD_mem_t type, hid_t /*transfer*/, haddr_t place,
                  std::size_t count, const void* bytes) {
  fileOf(file).bytes->write(place, static_cast<const char*>(bytes), count, type != H5FD_MEM_DRAW);
  return 0;
}

herr_t setLength(H5FD_t* file, hid_t /*transfer*/, hbool_t /*isClosing*/) {
  DriverFile& written = fileOf(file);
  if (written.endOfAddresses != written.bytes->end()) {
    written.bytes->setLength(written.endOfAddresses);
  }
  return 0;
}

H5FD_class_t makeClass() noexcept {
  constexpr haddr_t kLargest = (haddr_t{1} << 63U) - 1;
  H5FD_class_t driver = {};
#if defined(H5FD_CLASS_VERSION)
  driver.version = H5FD_CLASS_VERSION;
  driver.value = 512;  // the first one that is free for everybody
#endif
  driver.name = "orvml";
  driver.maxaddr = kLargest;
  driver.fc_degree = H5F_CLOSE_WEAK;
  driver.fapl_size = sizeof(Setting);
  driver.open = openFile;
  driver.close = closeFile;
  driver.query = query;
  driver.get_eoa = endOfAddresses;
  driver.set_eoa = setEndOfAddresses;
  driver.get_eof = endOfFile;
  driver.read = readBytes;
  driver.write = writeBytes;
  driver.truncate = setLength;
  constexpr H5FD_mem_t kTypes[] = H5FD_FLMAP_DICHOTOMY;
  std::copy(std::begin(kTypes), std::end(kTypes), driver.fl_map);
  return driver;
}

}  // namespace

DriverId registerFileDriver() noexcept {
  static const H5FD_class_t kDriver = makeClass();
  return DriverId(H5FDregister(&kDriver));
}

bool writeTo(WrittenBytes& bytes, hid_t driver, hid_t fileAccess) noexcept {
  const Setting setting = {&bytes};
  return H5Pset_driver(fileAccess, driver, &setting) >= 0;
}

}  // namespace orvml::detail
