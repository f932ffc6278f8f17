#pragma once

#include "hdf5/datasets.h"
#include "hdf5/source_file.h"
#include "values/attributes_vector.h"
#include "values/blocks.h"

#include <string>

namespace orvml_io {

/// Reads a whole dataset into an array that nothing has touched before; see readFresh(). The array
/// reader of the read is asked first.
template <class T>
[[nodiscard]] int readInto(SourceFile& file, const WantedArray& wanted, T* values) {
  if (file.arrays() != nullptr && file.arrays()->read(wanted, values)) {
    return kOk;
  }
  file.freshMemory()->willBeWrittenWhole(values,
                                         static_cast<std::size_t>(wanted.length) * sizeof(T));
  return readFresh(wanted.dataset, static_cast<int>(wanted.extent.numberOfValues), values,
                   static_cast<int>(wanted.length));
}

/// A way to come by the values of a whole dataset as an array of `length` values, at least as many
/// as the dataset has; what the dataset lacks are zeros. Null when that is more than the read may
/// take, or reading fails.
template <class T>
using ReadArray = NewArray<T>(SourceFile& file, const OpenGroup& group, const char* subPath,
                              hid_t dataset, const Extent& extent, int length);

/// Reads an array into memory of its own.
template <class T>
[[nodiscard]] NewArray<T> tryReadArray(SourceFile& file, const OpenGroup& group,
                                       const char* subPath, hid_t dataset, const Extent& extent,
                                       int length) {
  if (!file.affords(group, subPath, readCostOf(dataset, extent, length, sizeof(T)))) {
    return nullptr;
  }
  NewArray<T> values = makeUntouchedArray<T>(length);
  const WantedArray wanted{dataset, extent, length, codeOf<T>()};
  if (readInto(file, wanted, values.get()) != kOk) {
    file.report(Trouble::unreadable, group, subPath, [] { return "cannot be read"; });
    return nullptr;
  }
  return values;
}

/// Takes an array that lies somewhere already where there is one, and reads it else.
template <class T>
[[nodiscard]] NewArray<T> tryBorrowOrReadArray(SourceFile& file, const OpenGroup& group,
                                               const char* subPath, hid_t dataset,
                                               const Extent& extent, int length) {
  if (file.arrays() != nullptr) {
    if (const void* lent = file.arrays()->lend({dataset, extent, length, codeOf<T>()})) {
      return borrowedArray(static_cast<const T*>(lent));
    }
  }
  return tryReadArray<T>(file, group, subPath, dataset, extent, length);
}

/// What is said of a dataset whose number of entries differs from the one that is needed.
inline std::string entriesSentence(hsize_t found, const char* needing, int needed) {
  return "has " + std::to_string(found) + (found == 1 ? " entry, " : " entries, ") + needing + " " +
         std::to_string(needed);
}

}  // namespace orvml_io
