#include "rescue/cut_file.h"

#include "hdf5_driver.h"
#include "positioned_io.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace orvml::detail {

namespace {

/// How many times as long as it is a file may say that it was. It also bounds what a read may take,
/// for which readers go by the length of the file.
constexpr std::uint64_t kLongestPerByte = 64;

using CutBytes = DriverFile<const CutFile::Bytes>;

/// None: HDF5 reads no more than it needs then, and loses nothing that lies before the end.
herr_t queryCut(const H5FD_t* /*file*/, unsigned long* features) {
  if (features != nullptr) {
    *features = H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
  }
  return 0;
}

haddr_t endBeforeTheCut(const H5FD_t* file, H5FD_mem_t /*type*/) {
  return CutBytes::of(file).bytes->size * kLongestPerByte;
}

herr_t readUpToTheCut(H5FD_t* file, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t place,
                      std::size_t count, void* bytes) {
  const CutFile::Bytes& held = *CutBytes::of(file).bytes;
  if (place > held.size || count > held.size - place) {
    return -1;
  }
  return moveAll(::pread, held.descriptor, static_cast<char*>(bytes), count, place) == 0 ? 0 : -1;
}

herr_t refuseWrite(H5FD_t* /*file*/, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t /*place*/,
                   std::size_t /*count*/, const void* /*bytes*/) {
  return -1;
}

H5FD_class_t cutFileClass() noexcept {
  H5FD_class_t driver =
      driverOf<const CutFile::Bytes>("orvml-cut", 513);  // behind that which writes
  driver.query = queryCut;
  driver.get_eof = endBeforeTheCut;
  driver.read = readUpToTheCut;
  driver.write = refuseWrite;
  return driver;
}

DriverId registerCutFileDriver() noexcept {
  static const H5FD_class_t kDriver = cutFileClass();
  return DriverId(H5FDregister(&kDriver));
}

}  // namespace

CutFile::CutFile(const std::filesystem::path& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      bytes_{descriptor_.get(), lengthOf(descriptor_.get())},
      driver_(registerCutFileDriver()) {
  const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  if (driver_.valid() && useDriver(driver_.get(), std::as_const(bytes_), access.get())) {
    file_ = orvml_io::FileId(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()));
  }
}

}  // namespace orvml::detail
