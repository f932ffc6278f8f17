#pragma once

#include "hdf5/extents.h"
#include "hdf5/source_file.h"

#include <optional>
#include <vector>

namespace orvml::detail {

/// What could be read of an array.
template <class T>
struct ReadValues {
  orvml_io::Extent extent;  ///< of the whole array
  std::vector<T> values;    ///< all, or those of the first rows

  [[nodiscard]] bool areAll() const noexcept { return values.size() == extent.numberOfValues; }
};

/// Whether the first rows are wanted of an array that cannot be read to its end.
enum class Rows { all, firstOnes };

/// Reads an array of integers as far as the file stores it. Numbers of other types are taken where
/// they are integers all the same. What cannot be had is reported by the file.
///
/// @param subPath  the dataset below the group
[[nodiscard]] std::optional<ReadValues<int>> readInts(orvml_io::SourceFile& file,
                                                      const orvml_io::OpenGroup& group,
                                                      const char* subPath, Rows rows = Rows::all);

/// Reads an array of numbers as doubles, likewise.
[[nodiscard]] std::optional<ReadValues<double>> readDoubles(orvml_io::SourceFile& file,
                                                            const orvml_io::OpenGroup& group,
                                                            const char* subPath,
                                                            Rows rows = Rows::all);

}  // namespace orvml::detail
