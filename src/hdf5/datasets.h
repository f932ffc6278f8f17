#pragma once

#include "hdf5/id.h"
#include "hdf5/open_group.h"
#include "hdf5/status.h"

#include <algorithm>
#include <string>

namespace orvml_io {

// The HDF5 calls that every reader and writer shares. All of them go below HDF5's high-level
// library: what they need of it is a handful of calls, and a dataset that stays open takes its
// attributes without being looked up again.

/// Creates a group below another, or opens the one that exists.
/// Contract: a failure is ignored, and a group that cannot be made shows when the first dataset in
/// it fails.
[[nodiscard]] GroupId createGroupIfAbsent(const OpenGroup& group, const char* subPath) noexcept;

/// Reads a whole dataset, converted to native ints. The array must hold every value of the dataset.
/// Values that were never stored, for which the file has no fill value either, are left as they
/// are.
[[nodiscard]] int readValues(hid_t dataset, int* values) noexcept;

/// Reads a whole dataset, converted to native doubles.
[[nodiscard]] int readValues(hid_t dataset, double* values) noexcept;

/// Reads a whole dataset into an array that nothing was set in before. Values that the file lacks
/// are zeros, and so is what the array has behind the end of the dataset.
///
/// @param numberOfValues  values of the dataset, at most `length`
/// @param length          values of the array
template <class T>
[[nodiscard]] int readFresh(hid_t dataset, int numberOfValues, T* values, int length) noexcept {
  // Values can be missing only where they do not lie in one stretch, so that arrays as the writer
  // makes them are filled once.
  const int firstLacking = H5Dget_offset(dataset) == HADDR_UNDEF ? 0 : numberOfValues;
  std::fill(values + firstLacking, values + length, T());
  return readValues(dataset, values);
}

/// Sets a text attribute of an object to a string of the length of the text; one that exists is
/// replaced.
[[nodiscard]] int setText(hid_t object, const char* name, const char* text) noexcept;

/// Sets an attribute of an object to one native int, under the same rule.
[[nodiscard]] int setInteger(hid_t object, const char* name, int value) noexcept;

/// Makes a dataset of rank 2, row-major. Null values make one of which nothing is stored: it
/// reads as zeros while it is small, and readers refuse it when it is large, so that a count
/// without an array behind it costs neither disk nor memory.
[[nodiscard]] int makeTable(const OpenGroup& group, const char* subPath, int rows, int columns,
                            const double* values) noexcept;

/// Makes a dataset of rank 1 from `length` values; null values as above.
[[nodiscard]] int makeVector(const OpenGroup& group, const char* subPath, int length,
                             const int* values) noexcept;
[[nodiscard]] int makeVector(const OpenGroup& group, const char* subPath, int length,
                             const double* values) noexcept;

/// Makes the same as a member of a group by its name, and leaves it open; invalid when it fails.
[[nodiscard]] DatasetId createMember(const OpenGroup& group, const std::string& name, int length,
                                     const int* values);
[[nodiscard]] DatasetId createMember(const OpenGroup& group, const std::string& name, int length,
                                     const double* values);

}  // namespace orvml_io
