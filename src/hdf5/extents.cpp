#include "hdf5/extents.h"

#include "hdf5/id.h"
#include "model/limits.h"

#include <array>

namespace orvml_io {

namespace {

/// Extents of a dataset of rank 1 or 2; a missing second extent counts as 1.
struct Extents {
  int rank = 0;
  std::array<hsize_t, 2> lengths = {1, 1};
};

std::optional<Extents> extentsOf(hid_t dataset) {
  const DataspaceId space(H5Dget_space(dataset));
  if (!space.valid() || H5Sget_simple_extent_type(space.get()) != H5S_SIMPLE) {
    return std::nullopt;
  }
  Extents extents;
  extents.rank = H5Sget_simple_extent_ndims(space.get());
  if (extents.rank < 1 || extents.rank > 2 ||
      H5Sget_simple_extent_dims(space.get(), extents.lengths.data(), nullptr) < 0) {
    return std::nullopt;
  }
  return extents;
}

/// A file of a few bytes may claim any extent for data that was never written. Memory is spent only
/// in proportion to what is stored.
bool isStored(hid_t dataset, hsize_t bytes) {
  return bytes <= kUnstoredBytesTolerated ||
         H5Dget_storage_size(dataset) >= bytes / kBestCompressionRatio;
}

}  // namespace

std::optional<int> vectorLength(hid_t dataset, std::size_t valueBytes) {
  const std::optional<Extents> extents = extentsOf(dataset);
  if (!extents || extents->rank != 1 || extents->lengths[0] > hsize_t{kMostValues} ||
      !isStored(dataset, extents->lengths[0] * valueBytes)) {
    return std::nullopt;
  }
  return static_cast<int>(extents->lengths[0]);
}

bool isVectorOfLength(hid_t dataset, int length, std::size_t valueBytes) {
  return vectorLength(dataset, valueBytes) == length;
}

std::optional<TableExtents> tableExtents(hid_t dataset, std::size_t valueBytes) {
  const std::optional<Extents> extents = extentsOf(dataset);
  if (!extents || extents->rank != 2 || extents->lengths[0] > hsize_t{kMostValues} ||
      extents->lengths[1] > hsize_t{kMostValues}) {
    return std::nullopt;
  }
  const TableExtents table{static_cast<int>(extents->lengths[0]),
                           static_cast<int>(extents->lengths[1])};
  const std::optional<int> values = product32(table.rows, table.columns);
  if (!values || !isStored(dataset, static_cast<hsize_t>(*values) * valueBytes)) {
    return std::nullopt;
  }
  return table;
}

std::optional<int> sum32(const int* counts, int length) {
  long long sum = 0;
  for (int i = 0; i < length; ++i) {
    sum += counts[i];
    if (counts[i] < 0 || sum > kMostValues) {
      return std::nullopt;
    }
  }
  return static_cast<int>(sum);
}

std::optional<int> connectivitySize32(const int* numberOfElementsByType,
                                      const int* numberOfNodesByElement, int numberOfElementTypes) {
  if (numberOfElementTypes > 0 &&
      (numberOfElementsByType == nullptr || numberOfNodesByElement == nullptr)) {
    return std::nullopt;
  }
  long long total = 0;
  for (int i = 0; i < numberOfElementTypes; ++i) {
    const std::optional<int> group =
        product32(numberOfElementsByType[i], numberOfNodesByElement[i]);
    if (!group || total + *group > kMostValues) {
      return std::nullopt;
    }
    total += *group;
  }
  return static_cast<int>(total);
}

std::optional<int> product32(int rows, int columns) {
  const long long product = static_cast<long long>(rows) * columns;
  if (rows < 0 || columns < 0 || product > kMostValues) {
    return std::nullopt;
  }
  return static_cast<int>(product);
}

}  // namespace orvml_io
