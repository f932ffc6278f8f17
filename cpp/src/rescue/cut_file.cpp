#include "rescue/cut_file.h"

#include <hdf5.h>
#if H5_VERSION_GE(1, 13, 0)
#include <H5FDdevelop.h>
#endif

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <new>

namespace orvml::detail {

namespace {

/// How many times as long as it is a file may say that it was. It also bounds what a read may take,
/// for which readers go by the length of the file.
constexpr std::uint64_t kLongestPerByte = 64;

/// What the property list carries.
struct Setting {
  const CutFile::Bytes* bytes;
};

/// A file as HDF5's drivers have them: the public part comes first.
struct DriverFile {
  H5FD_t shared;
  const CutFile::Bytes* bytes;
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

/// None: HDF5 reads no more than it needs then, and loses nothing that lies before the end.
herr_t query(const H5FD_t* /*file*/, unsigned long* features) {
  if (features != nullptr) {
    *features = H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
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

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t /*type*/) {
  return fileOf(file).bytes->size * kLongestPerByte;
}

herr_t readBytes(H5FD_t* file, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t place,
                 std::size_t count, void* bytes) {
  const CutFile::Bytes& held = *fileOf(file).bytes;
  if (place > held.size || count > held.size - place) {
    return -1;
  }
  auto* next = static_cast<char*>(bytes);
  while (count > 0) {
    const ssize_t moved = ::pread(held.descriptor, next, count, static_cast<off_t>(place));
    if (moved < 0 && errno == EINTR) {
      continue;
    }
    if (moved <= 0) {
      return -1;
    }
    next += moved;
    place += static_cast<haddr_t>(moved);
    count -= static_cast<std::size_t>(moved);
  }
  return 0;
}

herr_t refuseWrite(H5FD_t* /*file*/, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t /*place*/,
                   std::size_t /*count*/, const void* /*bytes*/) {
  return -1;
}

H5FD_class_t makeClass() noexcept {
  constexpr haddr_t kLargest = (haddr_t{1} << 63U) - 1;
  H5FD_class_t driver = {};
#if defined(H5FD_CLASS_VERSION)
  driver.version = H5FD_CLASS_VERSION;
  driver.value = 513;  // behind that of the driver that writes
#endif
  driver.name = "orvml-cut";
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
  driver.write = refuseWrite;
  constexpr H5FD_mem_t kTypes[] = H5FD_FLMAP_DICHOTOMY;
  std::copy(std::begin(kTypes), std::end(kTypes), driver.fl_map);
  return driver;
}

DriverId registerDriver() noexcept {
  static const H5FD_class_t kDriver = makeClass();
  return DriverId(H5FDregister(&kDriver));
}

std::uint64_t sizeOf(int descriptor) noexcept {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace

CutFile::CutFile(const std::filesystem::path& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      bytes_{descriptor_.get(), sizeOf(descriptor_.get())},
      driver_(registerDriver()) {
  const Setting setting = {&bytes_};
  const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  if (driver_.valid() && H5Pset_driver(access.get(), driver_.get(), &setting) >= 0) {
    file_ = orvml_io::FileId(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()));
  }
}

}  // namespace orvml::detail
