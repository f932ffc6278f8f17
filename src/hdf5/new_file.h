#pragma once

#include "hdf5/id.h"

#include <memory>
#include <string>

namespace orvml_io {

class ReplacedFile;  // new_file.cpp

/// Creates an HDF5 file, or empties an existing one, in which every array begins at a multiple of
/// its values' size: readers that map a file into memory take arrays as they lie there. Not valid
/// when that is not possible.
[[nodiscard]] FileId createAlignedFile(const char* fileName) noexcept;
/// Does the same with what a list of file access properties, which it changes, says besides.
[[nodiscard]] FileId createAlignedFile(const char* fileName, hid_t access) noexcept;

/// A file that is being written.
///
/// An existing file is emptied and written in place, as HDF5 does it, unless somebody holds it
/// open:
///
/// - Other processes that only read it keep what they read, mapped pages included. The new content
///   goes to a file of its own beside it, which takes the name, the permissions and, where the
///   system lets it, the owner of the old one once it is whole. Symbolic links are followed. Until
///   then, and when anything fails, the old file is there and nothing else.
/// - A file that this process has open, or that another one writes, is left as it is.
///
/// Who holds a file is told by the locks that HDF5 sets; where locks do not work, or HDF5 is told
/// to do without them, every HDF5 file is written in place.
class NewFile {
 public:
  /// Creates the file; it is not valid when that is not possible.
  explicit NewFile(const char* fileName);
  NewFile(NewFile&& other) noexcept;
  NewFile& operator=(NewFile&&) = delete;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  /// Closes the file. One that should have taken another's place is removed.
  ~NewFile();

  [[nodiscard]] bool valid() const noexcept { return file_.valid(); }
  [[nodiscard]] hid_t id() const noexcept { return file_.get(); }

  /// Closes the file, and puts it in the place of the one that it replaces when all went well.
  ///
  /// @param status  the result of writing it; the file counts as whole when it is 0
  /// @return the status when that is not 0, else the result of closing, else 1 when the file cannot
  ///         take its place
  [[nodiscard]] int finish(int status);

  /// Leaves the file open for good; one that should have taken another's place is removed.
  void abandonOpen();

 private:
  std::unique_ptr<ReplacedFile> replaced_;  // null: the file is written in place
  FileId file_;
};

}  // namespace orvml_io
