#pragma once

#include <hdf5.h>

#include <optional>

namespace orvml_io {

// Sizes that come from a file, or that go to one, are tested here and nowhere else. A size that is
// not answered must not be used: the step that asked has failed.

/// How many values a dataset has. Any rank will do: what counts is where the values end.
struct Extent {
  int rank = 0;
  hsize_t first = 0;           ///< the first extent; 0 where there is none
  hsize_t numberOfValues = 0;  ///< the product of all extents, 1 for a single value without any
};

/// Returns the extent of a dataset; no answer when HDF5 cannot tell it.
[[nodiscard]] std::optional<Extent> extentOf(hid_t dataset);

/// Returns the length of a vector: the first extent, where that is the number of values, too, and
/// fits a 32-bit integer. Other tools write vectors as columns of a table.
[[nodiscard]] std::optional<int> vectorLength(const Extent& extent) noexcept;

/// Returns the number of values when it fits a 32-bit integer.
[[nodiscard]] std::optional<int> numberOfValues32(const Extent& extent) noexcept;

/// Returns the number of rows, the first extent of any rank above 0, when it fits a 32-bit integer.
[[nodiscard]] std::optional<int> numberOfRows32(const Extent& extent) noexcept;

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
