#pragma once

#include "hdf5/array_reader.h"

#include <cstdint>

namespace orvml::detail {

/// Where the values of a dataset lie in its file, when they lie there as they do in memory.
struct StoredValues {
  std::uint64_t offset = 0;  ///< from the beginning of the file
  std::uint64_t bytes = 0;
  const char* obstacle = nullptr;  ///< why they do not lie so; null when they do

  [[nodiscard]] bool arePlain() const noexcept { return obstacle == nullptr; }
};

/// Tells where the values of a dataset lie: in one stretch of the file that it is opened in, in the
/// machine's own form. Nothing of a file is believed: the stretch lies within its bytes.
///
/// @param fileBytes  the size of the file
[[nodiscard]] StoredValues storedValuesOf(const orvml_io::WantedArray& wanted,
                                          std::uint64_t fileBytes);

}  // namespace orvml::detail
