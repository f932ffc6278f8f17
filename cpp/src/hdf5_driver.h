#pragma once

#include <hdf5.h>
#if H5_VERSION_GE(1, 13, 0)
#include <H5FDdevelop.h>
#endif

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

/// What the drivers of this library have in common, by which HDF5 takes a file from other bytes
/// than those of its usual driver. The rest of a driver is what it does with its bytes.
namespace orvml::detail {

/// A file as HDF5's drivers have them: the public part comes first.
template <class Bytes>
struct DriverFile {
  H5FD_t shared;
  Bytes* bytes;
  haddr_t endOfAddresses;

  static DriverFile& of(H5FD_t* file) noexcept { return *reinterpret_cast<DriverFile*>(file); }
  static const DriverFile& of(const H5FD_t* file) noexcept {
    return *reinterpret_cast<const DriverFile*>(file);
  }
};

/// What the property list carries.
template <class Bytes>
struct DriverSetting {
  Bytes* bytes;
};

template <class Bytes>
H5FD_t* openDriverFile(const char* /*name*/, unsigned /*flags*/, hid_t access,
                       haddr_t /*largest*/) {
  using File = DriverFile<Bytes>;
  const auto* setting = static_cast<const DriverSetting<Bytes>*>(H5Pget_driver_info(access));
  if (setting == nullptr) {
    return nullptr;
  }
  auto file = std::unique_ptr<File>(new (std::nothrow) File{{}, setting->bytes, 0});
  return file == nullptr ? nullptr : &file.release()->shared;
}

template <class Bytes>
herr_t closeDriverFile(H5FD_t* file) {
  const std::unique_ptr<DriverFile<Bytes>> closed(&DriverFile<Bytes>::of(file));
  return 0;
}

template <class Bytes>
haddr_t endOfAddresses(const H5FD_t* file, H5FD_mem_t /*type*/) {
  return DriverFile<Bytes>::of(file).endOfAddresses;
}

template <class Bytes>
herr_t setEndOfAddresses(H5FD_t* file, H5FD_mem_t /*type*/, haddr_t end) {
  DriverFile<Bytes>::of(file).endOfAddresses = end;
  return 0;
}

/// A driver that does not yet know its features, where its files end, to read and to write.
///
/// @param value  tells drivers apart; those from 512 on are free for everybody
template <class Bytes>
H5FD_class_t driverOf(const char* name, [[maybe_unused]] int value) noexcept {
  constexpr haddr_t kLargest = (haddr_t{1} << 63U) - 1;
  H5FD_class_t driver = {};
#if defined(H5FD_CLASS_VERSION)
  driver.version = H5FD_CLASS_VERSION;
  driver.value = value;
#endif
  driver.name = name;
  driver.maxaddr = kLargest;
  driver.fc_degree = H5F_CLOSE_WEAK;
  driver.fapl_size = sizeof(DriverSetting<Bytes>);
  driver.open = openDriverFile<Bytes>;
  driver.close = closeDriverFile<Bytes>;
  driver.get_eoa = endOfAddresses<Bytes>;
  driver.set_eoa = setEndOfAddresses<Bytes>;
  constexpr H5FD_mem_t kTypes[] = H5FD_FLMAP_DICHOTOMY;
  std::copy(std::begin(kTypes), std::end(kTypes), driver.fl_map);
  return driver;
}

/// Has files be made of the bytes, which must outlive them. Returns whether that was possible.
template <class Bytes>
bool useDriver(hid_t driver, Bytes& bytes, hid_t fileAccess) noexcept {
  const DriverSetting<Bytes> setting = {&bytes};
  return H5Pset_driver(fileAccess, driver, &setting) >= 0;
}

}  // namespace orvml::detail
