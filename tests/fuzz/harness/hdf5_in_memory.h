#pragma once

#include <hdf5.h>

namespace orvml_io_tests {

/// A filter that stores values as they are and fails to bring them back: the way to a dataset whose
/// shape is right and that cannot be read.
inline constexpr H5Z_filter_t kFailingFilter = 300;

/// Prepares HDF5 for many short runs in one process: no printing, nothing left to do at exit.
void setUpHdf5();

/// An empty HDF5 file that lives in memory alone. Its end closes what the library keeps open in it
/// too, so that a long campaign needs no more memory than a short one.
class MemoryFile {
 public:
  /// @param latestFormat  whether objects get the newest layouts that HDF5 knows, not the oldest
  explicit MemoryFile(bool latestFormat = false);
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  MemoryFile(MemoryFile&&) = delete;
  MemoryFile& operator=(MemoryFile&&) = delete;
  ~MemoryFile();

  [[nodiscard]] hid_t id() const noexcept { return id_; }

 private:
  hid_t id_;
};

}  // namespace orvml_io_tests
