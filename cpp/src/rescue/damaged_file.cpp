#include "rescue/damaged_file.h"

#include <orvml/error.hpp>

namespace orvml::detail {

DamagedFile::DamagedFile(const std::filesystem::path& path) {
  try {
    opened_.emplace(path, OpenedFile::Marker::any);
  } catch (const Error& error) {
    if (error.code() != Code::fileCutOff) {
      throw;
    }
    cut_.emplace(path);
    if (!cut_->valid()) {
      throw;
    }
  }
}

}  // namespace orvml::detail
