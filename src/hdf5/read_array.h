#pragma once

#include "hdf5/datasets.h"
#include "hdf5/source_file.h"
#include "values/blocks.h"

#include <string>

namespace orvml_io {

/// Reads a whole dataset into a new array of `length` values, at least as many as the dataset has;
/// what the dataset lacks are zeros. Null when that is more than the read may take, or HDF5 fails.
template <class T>
[[nodiscard]] NewArray<T> tryReadArray(SourceFile& file, const OpenGroup& group,
                                       const char* subPath, hid_t dataset, const Extent& extent,
                                       int length) {
  if (!file.affords(group, subPath, readCostOf(dataset, extent, length, sizeof(T)))) {
    return nullptr;
  }
  NewArray<T> values = makeNewArray<T>(length, file.freshMemory());
  if (readFresh(dataset, static_cast<int>(extent.numberOfValues), values.get(), length) != kOk) {
    file.report(Trouble::unreadable, group, subPath, [] { return "cannot be read"; });
    return nullptr;
  }
  return values;
}

/// What is said of a dataset whose number of entries differs from the one that is needed.
inline std::string entriesSentence(hsize_t found, const char* needing, int needed) {
  return "has " + std::to_string(found) + " entries, " + needing + " " + std::to_string(needed);
}

}  // namespace orvml_io
