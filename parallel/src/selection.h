#pragma once

#include "hdf5/id.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// Values of an array one after the other, in row-major order whatever its rank.
struct Range {
  std::int64_t first = 0;
  std::int64_t count = 0;
};

/// The share of one rank when `total` things are dealt out in blocks, whose sizes differ by one at
/// most.
[[nodiscard]] Range blockOf(std::int64_t total, int rank, int ranks) noexcept;

[[nodiscard]] std::int64_t countOf(std::span<const Range> ranges) noexcept;

/// Most ranges that one call to HDF5 gets: the time that it takes to join them grows with the
/// square of their number.
inline constexpr std::size_t kRangesPerCall = 256;

/// Most values that it gets: MPI moves at most 2 GiB at once, and values have up to 8 bytes.
inline constexpr std::int64_t kValuesPerCall = std::int64_t{1} << 27;

/// Cuts ranges into those of several calls, each with no more ranges and values than one may have;
/// empty ranges are left out.
[[nodiscard]] std::vector<std::vector<Range>> callsOf(std::span<const Range> ranges,
                                                      std::size_t mostRanges = kRangesPerCall,
                                                      std::int64_t mostValues = kValuesPerCall);

/// The part of a dataset that ranges of its values make, which ascend and do not overlap; invalid
/// when HDF5 cannot make it, and when a value lies beyond the end.
[[nodiscard]] orvml_io::DataspaceId selectionOf(hid_t dataset, std::span<const Range> ranges);

/// The place of as many values in memory, one after the other.
[[nodiscard]] orvml_io::DataspaceId memoryOf(std::int64_t count);

}  // namespace orvml::parallel::detail
