#pragma once

#include "opened_file.h"
#include "rescue/cut_file.h"

#include <filesystem>
#include <optional>

namespace orvml::detail {

/// A file that is open for reading, also when its end is missing.
class DamagedFile {
 public:
  /// Throws Error that says why nothing can be read.
  explicit DamagedFile(const std::filesystem::path& path);
  DamagedFile(const DamagedFile&) = delete;
  DamagedFile& operator=(const DamagedFile&) = delete;
  DamagedFile(DamagedFile&&) = delete;
  DamagedFile& operator=(DamagedFile&&) = delete;
  ~DamagedFile() = default;

  [[nodiscard]] hid_t id() const noexcept { return opened_ ? opened_->id() : cut_->id(); }
  [[nodiscard]] bool isCutOff() const noexcept { return cut_.has_value(); }

 private:
  std::optional<OpenedFile> opened_;
  std::optional<CutFile> cut_;  // neither copied nor moved: HDF5 points into it
};

}  // namespace orvml::detail
