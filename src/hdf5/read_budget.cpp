#include "hdf5/read_budget.h"

#include "hdf5/id.h"
#include "model/limits.h"

#include <algorithm>
#include <limits>

namespace orvml_io {

namespace {

constexpr hsize_t kLargest = std::numeric_limits<hsize_t>::max();

hsize_t plus(hsize_t a, hsize_t b) noexcept { return a > kLargest - b ? kLargest : a + b; }

hsize_t times(hsize_t a, hsize_t b) noexcept {
  return b != 0 && a > kLargest / b ? kLargest : a * b;
}

/// Tells whether a filter makes data smaller. Any but the two that only move or sum bytes may.
bool mayCompress(H5Z_filter_t filter) noexcept {
  return filter != H5Z_FILTER_SHUFFLE && filter != H5Z_FILTER_FLETCHER32;
}

/// How many times as large as in the file the values of a dataset may be in their own type.
hsize_t bestRatioOf(hid_t dataset) {
  const PropertyListId creation(H5Dget_create_plist(dataset));
  const int numberOfFilters = H5Pget_nfilters(creation.get());
  for (int i = 0; i < numberOfFilters; ++i) {
    unsigned flags = 0;
    std::size_t numberOfParameters = 0;
    const H5Z_filter_t filter = H5Pget_filter2(creation.get(), static_cast<unsigned>(i), &flags,
                                               &numberOfParameters, nullptr, 0, nullptr, nullptr);
    if (mayCompress(filter)) {
      return kBestCompressionRatio;
    }
  }
  return 1;
}

/// The number of values that the stored bytes of a dataset can hold.
hsize_t mostStoredValues(hid_t dataset, hsize_t storedBytes) {
  const DatatypeId type(H5Dget_type(dataset));
  const std::size_t fileValueBytes = std::max<std::size_t>(H5Tget_size(type.get()), 1);
  return times(storedBytes, bestRatioOf(dataset)) / fileValueBytes;
}

}  // namespace

ReadCost readCostOf(hid_t dataset, const Extent& extent, long long length, std::size_t valueBytes) {
  const hsize_t arrayLength = length > 0 ? static_cast<hsize_t>(length) : 0;
  const hsize_t storedBytes = H5Dget_storage_size(dataset);
  ReadCost cost;
  cost.storedBytes = storedBytes;
  hsize_t storedValues = extent.numberOfValues;
  if (storedBytes < times(extent.numberOfValues, valueBytes)) {
    storedValues = std::min(storedValues, mostStoredValues(dataset, storedBytes));
  }
  if (arrayLength > storedValues) {
    cost.unstoredBytes = times(arrayLength - storedValues, valueBytes);
  }
  return cost;
}

hsize_t fileBytesOf(hid_t file) noexcept {
  hsize_t bytes = 0;
  return file >= 0 && H5Fget_filesize(file, &bytes) >= 0 ? bytes : 0;
}

ReadBudget::ReadBudget(hid_t file) noexcept
    : storedLeft_(times(fileBytesOf(file), kDrawsPerFile)), unstoredLeft_(kUnstoredBytesPerRead) {}

bool ReadBudget::take(const ReadCost& cost) noexcept {
  if (!covers(cost)) {
    return false;
  }
  storedLeft_ -= cost.storedBytes;
  unstoredLeft_ -= cost.unstoredBytes;
  return true;
}

ReadCost operator+(const ReadCost& a, const ReadCost& b) noexcept {
  return {plus(a.storedBytes, b.storedBytes), plus(a.unstoredBytes, b.unstoredBytes)};
}

}  // namespace orvml_io
