#pragma once

#include "file_driver.h"
#include "hdf5/descriptor.h"
#include "hdf5/id.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace orvml::detail {

/// A file whose end is missing, open in HDF5 all the same. Whatever touches the missing part fails
/// to be read, so that no bytes stand for it. HDF5 reads descriptions of objects in pieces of 512
/// bytes: one that lies that close to the end may fail, too.
class CutFile {
 public:
  /// Opens the file read-only; it is not valid() where HDF5 cannot make anything of it.
  explicit CutFile(const std::filesystem::path& path);

  [[nodiscard]] bool valid() const noexcept { return file_.valid(); }
  [[nodiscard]] hid_t id() const noexcept { return file_.get(); }

  /// What the driver reads from.
  struct Bytes {
    int descriptor = -1;
    std::uint64_t size = 0;
  };

 private:
  orvml_io::Descriptor descriptor_;
  Bytes bytes_;
  DriverId driver_;
  orvml_io::FileId file_;
};

}  // namespace orvml::detail
