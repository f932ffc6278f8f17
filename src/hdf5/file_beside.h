#pragma once

#include "hdf5/descriptor.h"

#include <sys/types.h>

#include <memory>
#include <string>

namespace orvml_io {

/// A new file in the folder of another one, under a hidden name, that takes its name once it is
/// whole. Until then, and when anything fails, nothing of it is left behind.
class FileBeside {
 public:
  /// Makes the empty file; null when that is not possible, and `errno` tells why.
  ///
  /// @param target       path of the file whose name it will take, without symbolic links at its
  /// end
  /// @param permissions  of the new file, of which the process's mask takes away
  static std::unique_ptr<FileBeside> make(std::string target, mode_t permissions);
  FileBeside(const FileBeside&) = delete;
  FileBeside& operator=(const FileBeside&) = delete;
  FileBeside(FileBeside&&) = delete;
  FileBeside& operator=(FileBeside&&) = delete;
  ~FileBeside();

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  [[nodiscard]] const std::string& target() const noexcept { return target_; }

  /// Gives it the permissions and, where the system lets it, the owner of an open file. Returns
  /// whether the permissions could be set.
  [[nodiscard]] bool takeRightsOf(const Descriptor& other) const noexcept;

  /// Has the system write it, and its name once it has taken that of the target, to the disk.
  [[nodiscard]] bool flush() const noexcept;
  void flushName() const noexcept;

  /// Takes the name of the target. A file that had it lives on, without a name, for those who have
  /// it open. Returns whether that went well; `errno` tells why it did not.
  [[nodiscard]] bool takeName() noexcept;

 private:
  explicit FileBeside(std::string target) noexcept : target_(std::move(target)) {}

  std::string target_;
  std::string name_;
  bool hasOwnName_ = false;  // from when it is there until it takes the name of the target
};

}  // namespace orvml_io
