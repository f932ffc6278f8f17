#pragma once

#include <hdf5.h>

#include <cstddef>
#include <optional>

namespace orvml_io {

// Sizes that come from a file, or that go to one, are tested here and nowhere else. A size that is
// not answered must not be used: the step that asked has failed.

/// Rows and columns of a dataset of rank 2 whose values can be counted by a 32-bit integer.
struct TableExtents {
  int rows = 0;
  int columns = 0;
  int numberOfValues() const noexcept { return rows * columns; }
};

/// Returns the length of a dataset of rank 1 that fits a 32-bit integer and is stored.
[[nodiscard]] std::optional<int> vectorLength(hid_t dataset, std::size_t valueBytes);

/// Tells whether a dataset has rank 1 and holds exactly `length` values, and they are stored.
[[nodiscard]] bool isVectorOfLength(hid_t dataset, int length, std::size_t valueBytes);

/// Returns the extents of a dataset of rank 2 whose number of values fits a 32-bit integer and
/// which is stored.
[[nodiscard]] std::optional<TableExtents> tableExtents(hid_t dataset, std::size_t valueBytes);

/// Returns the sum of counts when none is negative and it fits a 32-bit integer.
[[nodiscard]] std::optional<int> sum32(const int* counts, int length);

/// Returns the number of node indices of a container: the sum over the type groups of cells times
/// nodes per cell. No answer when an array is missing, a count is negative or the total does not
/// fit the 32-bit integer that the format counts with.
[[nodiscard]] std::optional<int> connectivitySize32(const int* numberOfElementsByType,
                                                    const int* numberOfNodesByElement,
                                                    int numberOfElementTypes);

/// Returns rows x columns when neither is negative and the product fits a 32-bit integer.
[[nodiscard]] std::optional<int> product32(int rows, int columns);

}  // namespace orvml_io
