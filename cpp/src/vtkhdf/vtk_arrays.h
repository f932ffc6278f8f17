#pragma once

#include "hdf5/id.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvml::detail {

/// HDF5's type of the numbers of an array that is made.
template <class T>
[[nodiscard]] hid_t nativeTypeOf() noexcept;

/// An array that is made, one block of rows after the other.
class NewArray {
 public:
  /// How many rows are written at once: whole chunks where there are chunks.
  static constexpr std::int64_t kRowsPerBlock = 65536;

  /// Makes a dataset of rank 1, or of rank 2 for more than one column. What is large is compressed.
  ///
  /// @param group  borrowed, and open as long as this object
  NewArray(hid_t group, const std::string& name, hid_t type, std::int64_t rows, int columns);

  [[nodiscard]] bool valid() const noexcept { return dataset_.valid(); }

  /// Writes the next rows. Returns whether that went well.
  [[nodiscard]] bool write(std::int64_t rows, const void* values);

 private:
  orvml_io::DatasetId dataset_;
  hid_t type_;
  std::int64_t written_ = 0;
  int columns_;
};

/// Makes an array whose values `fill` gives: it is called with the place for the next ones until
/// there are all of them. Returns whether it was written.
template <class T, class Fill>
[[nodiscard]] bool makeArray(hid_t group, const std::string& name, std::int64_t rows, int columns,
                             Fill fill) {
  NewArray array(group, name, nativeTypeOf<T>(), rows, columns);
  std::vector<T> block;
  bool isWritten = array.valid();
  for (std::int64_t begin = 0; isWritten && begin < rows; begin += NewArray::kRowsPerBlock) {
    const std::int64_t count = std::min(NewArray::kRowsPerBlock, rows - begin);
    block.resize(static_cast<std::size_t>(count * columns));
    fill(std::span<T>(block));
    isWritten = array.write(count, block.data());
  }
  return isWritten;
}

/// Gives a dataset another name, in a group. Returns whether that went well.
[[nodiscard]] bool linkArray(hid_t dataset, hid_t group, const std::string& name);

/// Some values of a dataset and where they go in a joined one.
struct JoinedPart {
  hid_t dataset = -1;
  std::string object;  ///< the absolute path of the dataset
  std::int64_t first = 0;
  std::int64_t count = 0;
  std::int64_t at = 0;
};

/// Whether this HDF5 has virtual datasets, and reads one of that many parts in no time.
[[nodiscard]] bool canJoin(std::size_t parts) noexcept;

/// Makes a dataset without values of its own, which shows parts of others in the same file.
///
/// @param padding  what it shows where there is no part, of the type; null where there are parts
///                 everywhere
/// @return whether it was made
[[nodiscard]] bool makeJoined(hid_t group, const std::string& name, hid_t type, std::int64_t length,
                              std::span<const JoinedPart> parts, const void* padding);

}  // namespace orvml::detail
