#pragma once

#include "hdf5/id.h"
#include "hdf5/path.h"

namespace orvml_io {

// The HDF5 calls that every reader and writer shares.

/// Creates a group. Contract: a failure is ignored, so an existing group is used as it is, and a
/// group that cannot be made shows when the first dataset in it fails.
void createGroupIfAbsent(hid_t file, const Path& path) noexcept;

/// Reads a whole dataset, converted to native ints. The array must hold every value of the dataset.
[[nodiscard]] int readValues(hid_t dataset, int* values) noexcept;

/// Reads a whole dataset, converted to native doubles.
[[nodiscard]] int readValues(hid_t dataset, double* values) noexcept;

/// Makes a dataset of rank 2, row-major. Null values make one of which nothing is stored: it
/// reads as zeros while it is small, and readers refuse it when it is large, so that a count
/// without an array behind it costs neither disk nor memory.
[[nodiscard]] int makeTable(hid_t file, const Path& path, int rows, int columns,
                            const double* values) noexcept;

/// Makes a dataset of rank 1 from `length` values; null values as above.
[[nodiscard]] int makeVector(hid_t file, const Path& path, int length, const int* values) noexcept;
[[nodiscard]] int makeVector(hid_t file, const Path& path, int length,
                             const double* values) noexcept;

}  // namespace orvml_io
