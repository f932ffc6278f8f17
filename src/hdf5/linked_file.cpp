#include "hdf5/linked_file.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace orvml_io {

namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
  std::error_code unknown;
  const fs::file_status status = fs::status(path, unknown);
  return fs::exists(status) && !fs::is_directory(status);
}

/// Looks in each folder of a list that colons divide.
bool isFileInAny(std::string_view folders, const fs::path& name) {
  while (!folders.empty()) {
    const std::size_t end = std::min(folders.find(':'), folders.size());
    if (end > 0 && isFile(fs::path(folders.substr(0, end)) / name)) {
      return true;
    }
    folders.remove_prefix(std::min(end + 1, folders.size()));
  }
  return false;
}

bool isFileSomewhere(const fs::path& fileWithLink, const fs::path& target) {
  const fs::path name = target.is_absolute() ? target.filename() : target;
  const char* prefixes = std::getenv("HDF5_EXT_PREFIX");
  std::error_code unknown;
  const fs::path real = fs::weakly_canonical(fileWithLink, unknown);
  return isFile(target) || (prefixes != nullptr && isFileInAny(prefixes, name)) ||
         isFile(fileWithLink.parent_path() / name) || isFile(real.parent_path() / name) ||
         isFile(name);
}

}  // namespace

bool linkLeadsToAFile(const char* fileWithLink, const char* target) noexcept {
  try {
    return isFileSomewhere(fileWithLink, target);
  } catch (...) {
    return true;
  }
}

}  // namespace orvml_io
