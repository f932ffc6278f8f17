#pragma once

#include "hdf5/extents.h"
#include "values/blocks.h"

#include <hdf5.h>

namespace orvml_io {

/// A dataset whose values a reader wants as an array of native ints or doubles.
struct WantedArray {
  hid_t dataset = -1;
  const Extent& extent;
  long long length = 0;  ///< values of the array, at least as many as the dataset has
  char code = 0;         ///< kIntCode or kDoubleCode
};

/// Another way to come by the large arrays of a document than HDF5's: the readers ask it first and
/// go on without it where it gives nothing. It knows how values lie in a file; what they mean, and
/// whether they may be read at all, is for the readers to say.
class ArrayReader {
 public:
  ArrayReader() = default;
  ArrayReader(const ArrayReader&) = delete;
  ArrayReader& operator=(const ArrayReader&) = delete;
  ArrayReader(ArrayReader&&) = delete;
  ArrayReader& operator=(ArrayReader&&) = delete;
  virtual ~ArrayReader() = default;

  /// Returns an array that lies somewhere already and outlives the document, which costs the read
  /// nothing; null when the values have to be read.
  [[nodiscard]] virtual const void* lend(const WantedArray& wanted) = 0;

  /// Fills the array, which nothing has touched before, from the file. Returns false when it has
  /// not, whatever is in the array then.
  [[nodiscard]] virtual bool read(const WantedArray& wanted, void* values) = 0;
};

}  // namespace orvml_io
