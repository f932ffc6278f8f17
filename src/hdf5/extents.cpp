#include "hdf5/extents.h"

#include "hdf5/id.h"
#include "model/limits.h"

#include <array>
#include <limits>

namespace orvml_io {

namespace {

/// The product of extents; what leaves 64 bits stays at the largest number, which no step takes.
hsize_t productOf(const hsize_t* extents, int rank) noexcept {
  constexpr hsize_t kLargest = std::numeric_limits<hsize_t>::max();
  hsize_t product = 1;
  for (int i = 0; i < rank; ++i) {
    if (extents[i] == 0) {
      return 0;
    }
    product = product > kLargest / extents[i] ? kLargest : product * extents[i];
  }
  return product;
}

std::optional<int> within32(hsize_t count) noexcept {
  return count > hsize_t{kMostValues} ? std::nullopt : std::optional<int>(static_cast<int>(count));
}

}  // namespace

std::optional<Extent> extentOf(hid_t dataset) {
  const DataspaceId space(H5Dget_space(dataset));
  std::array<hsize_t, H5S_MAX_RANK> extents = {};
  Extent extent;
  extent.rank = H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
  if (extent.rank < 0) {
    return std::nullopt;
  }
  if (extent.rank == 0) {
    // A single value, or a space without any.
    extent.numberOfValues = H5Sget_simple_extent_type(space.get()) == H5S_SCALAR ? 1 : 0;
    return extent;
  }
  extent.first = extents[0];
  extent.numberOfValues = productOf(extents.data(), extent.rank);
  return extent;
}

std::optional<int> vectorLength(const Extent& extent) noexcept {
  return extent.rank < 1 || extent.numberOfValues != extent.first ? std::nullopt
                                                                  : within32(extent.first);
}

std::optional<int> numberOfValues32(const Extent& extent) noexcept {
  return within32(extent.numberOfValues);
}

std::optional<int> numberOfRows32(const Extent& extent) noexcept {
  return extent.rank < 1 ? std::nullopt : within32(extent.first);
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
