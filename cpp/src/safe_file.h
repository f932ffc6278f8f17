#pragma once

#include "failure_watch.h"
#include "file_driver.h"
#include "hdf5/descriptor.h"
#include "hdf5/file_beside.h"
#include "hdf5/id.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace orvml::detail {

/// A file that is written beside the one whose place it takes at the end.
class SafeFile {
 public:
  /// Makes the new file, open in HDF5; throws Error that says why that is not possible.
  ///
  /// @param watch  borrowed
  SafeFile(const std::filesystem::path& path, FailureWatch& watch);

  /// Says that the new file begins as a copy of the old one.
  struct AsCopy {};
  /// Makes the copy, not open in HDF5 before openCopy(); throws as above, and Code::fileNotFound.
  SafeFile(const std::filesystem::path& path, FailureWatch& watch, AsCopy);
  SafeFile(const SafeFile&) = delete;
  SafeFile& operator=(const SafeFile&) = delete;
  SafeFile(SafeFile&&) = delete;
  SafeFile& operator=(SafeFile&&) = delete;
  /// Removes the new file when it has not taken its place.
  ~SafeFile();

  [[nodiscard]] hid_t id() const noexcept { return file_.get(); }

  /// Where the new file lies.
  [[nodiscard]] const std::string& name() const noexcept { return beside_->name(); }

  /// Names memory whose values are not written: see WrittenBytes.
  void leaveOut(const void* first, std::size_t count) noexcept { bytes_->leaveOut(first, count); }

  /// Opens a copy in HDF5, to be changed.
  void openCopy();

  /// Closes the file in HDF5. Throws when not all of it was written.
  void close();

  /// Closes the file, unless that was done, and puts it in its place.
  void finish(bool flush);

  /// Throws why the file could not be written.
  [[noreturn]] void throwUnwritten() const;

 private:
  void prepare();
  void lockOld(const std::filesystem::path& target);
  void create();
  void openNew();
  void copyOld();
  [[nodiscard]] orvml_io::PropertyListId access();
  [[noreturn]] void throwSystemError(int error) const;

  std::filesystem::path path_;
  FailureWatch& watch_;
  orvml_io::Descriptor old_;  // with a shared lock, so that nobody begins to write the old file
  std::unique_ptr<orvml_io::FileBeside> beside_;
  orvml_io::Descriptor new_;
  std::optional<WrittenBytes> bytes_;
  DriverId driver_;
  orvml_io::FileId file_;
};

}  // namespace orvml::detail
