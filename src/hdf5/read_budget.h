#pragma once

#include "hdf5/extents.h"

#include <hdf5.h>

#include <cstddef>

namespace orvml_io {

/// What reading a dataset takes.
struct ReadCost {
  hsize_t storedBytes = 0;    ///< bytes of the file that the values are taken from
  hsize_t unstoredBytes = 0;  ///< bytes of memory for values that the file does not store
};

/// Returns what it costs to read a dataset into an array of at least its number of values.
///
/// Values count as stored as far as the bytes in the file can hold them, in the file's own type and
/// at the best that its filters can do. Fill values, chunks that were never written and the part of
/// the array behind the dataset's end are not stored.
///
/// @param length      values of the array
/// @param valueBytes  bytes of a value in memory
[[nodiscard]] ReadCost readCostOf(hid_t dataset, const Extent& extent, long long length,
                                  std::size_t valueBytes);

/// Returns the size of a file; 0 when HDF5 cannot tell it.
[[nodiscard]] hsize_t fileBytesOf(hid_t file) noexcept;

/// What one read of a file may take, all its documents and datasets together, so that memory stays
/// in proportion to the file: a file may be drawn on kDrawsPerFile times its size, since links may
/// honestly name one dataset a few times, and kUnstoredBytesPerRead of memory may be filled with
/// what is not stored.
class ReadBudget {
 public:
  /// Starts with what the size of a file allows.
  explicit ReadBudget(hid_t file) noexcept;

  [[nodiscard]] bool covers(const ReadCost& cost) const noexcept {
    return cost.storedBytes <= storedLeft_ && cost.unstoredBytes <= unstoredLeft_;
  }

  /// Takes a cost when it is covered; returns whether it was.
  [[nodiscard]] bool take(const ReadCost& cost) noexcept;

 private:
  hsize_t storedLeft_;
  hsize_t unstoredLeft_;
};

/// Adds costs; what leaves 64 bits stays at the largest number, which no budget covers.
[[nodiscard]] ReadCost operator+(const ReadCost& a, const ReadCost& b) noexcept;

}  // namespace orvml_io
