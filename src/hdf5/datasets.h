#pragma once

#include "hdf5/id.h"
#include "hdf5/path.h"

#include <algorithm>

namespace orvml_io {

// The HDF5 calls that every reader and writer shares.

/// Creates a group, or opens the one that exists; what is made in it is named relative to it.
/// Contract: a failure is ignored, and a group that cannot be made shows when the first dataset in
/// it fails.
GroupId createGroupIfAbsent(hid_t location, const Path& path) noexcept;

/// Reads a whole dataset, converted to native ints. The array must hold every value of the dataset.
/// Values that were never stored, for which the file has no fill value either, are left as they
/// are.
[[nodiscard]] int readValues(hid_t dataset, int* values) noexcept;

/// Reads a whole dataset, converted to native doubles.
[[nodiscard]] int readValues(hid_t dataset, double* values) noexcept;

/// Reads a whole dataset of `length` values into an array that nothing was set in before. Values
/// that the file lacks are zeros. They can be missing only where the values do not lie in one
/// stretch, so arrays as the writer makes them are filled once.
template <class T>
[[nodiscard]] int readFresh(hid_t dataset, T* values, int length) noexcept {
  if (H5Dget_offset(dataset) == HADDR_UNDEF) {
    std::fill_n(values, length, T());
  }
  return readValues(dataset, values);
}

/// Sets a text attribute of an object to a string of the length of the text; one that exists is
/// replaced.
[[nodiscard]] int setText(hid_t object, const char* name, const char* text) noexcept;

/// Makes a dataset of rank 2, row-major. Null values make one of which nothing is stored: it
/// reads as zeros while it is small, and readers refuse it when it is large, so that a count
/// without an array behind it costs neither disk nor memory.
[[nodiscard]] int makeTable(hid_t location, const Path& path, int rows, int columns,
                            const double* values) noexcept;

/// Makes a dataset of rank 1 from `length` values; null values as above.
[[nodiscard]] int makeVector(hid_t location, const Path& path, int length,
                             const int* values) noexcept;
[[nodiscard]] int makeVector(hid_t location, const Path& path, int length,
                             const double* values) noexcept;

}  // namespace orvml_io
