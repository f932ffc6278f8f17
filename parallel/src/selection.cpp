#include "selection.h"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>

namespace orvml::parallel::detail {

namespace {

using orvml_io::DataspaceId;

/// Adds a range of values to what is selected of a space of any rank: whole rows as one block, and
/// what is left of the first and of the last row in the same way one dimension below.
class RangeSelector {
 public:
  explicit RangeSelector(hid_t space) : space_(space) {
    rank_ = H5Sget_simple_extent_dims(space, extents_.data(), nullptr);
    valuesPerRow_.fill(1);
    for (int i = rank_ - 2; i >= 0; --i) {
      valuesPerRow_[at(i)] = valuesPerRow_[at(i) + 1] * extents_[at(i) + 1];
    }
  }

  /// Selects values of the whole array.
  [[nodiscard]] bool add(hsize_t first, hsize_t count) {
    if (count == 0) {
      return true;
    }
    if (rank_ == 0) {
      return first == 0 && count == 1 && H5Sselect_all(space_) >= 0;
    }
    if (rank_ < 0 || first + count > valuesPerRow_[0] * extents_[0]) {
      return false;
    }
    return addBelow(0, first, count);
  }

 private:
  static std::size_t at(int dimension) noexcept { return static_cast<std::size_t>(dimension); }

  /// Selects values within the row of the dimensions before this one that `starts_` names. HDF5 has
  /// 32 dimensions at most, which bounds the depth.
  // NOLINTNEXTLINE(misc-no-recursion)
  [[nodiscard]] bool addBelow(int dimension, hsize_t first, hsize_t count) {
    const hsize_t row = valuesPerRow_[at(dimension)];
    const hsize_t head = std::min(count, (row - first % row) % row);
    const hsize_t rows = (count - head) / row;
    const hsize_t tail = count - head - rows * row;
    return addPartOfRow(dimension, first, head) && addRows(dimension, (first + head) / row, rows) &&
           addPartOfRow(dimension, first + head + rows * row, tail);
  }

  // NOLINTNEXTLINE(misc-no-recursion)
  [[nodiscard]] bool addPartOfRow(int dimension, hsize_t first, hsize_t count) {
    if (count == 0) {
      return true;
    }
    const hsize_t row = valuesPerRow_[at(dimension)];
    starts_[at(dimension)] = first / row;
    return addBelow(dimension + 1, first % row, count);
  }

  [[nodiscard]] bool addRows(int dimension, hsize_t first, hsize_t rows) {
    if (rows == 0) {
      return true;
    }
    std::array<hsize_t, H5S_MAX_RANK> counts = {};
    counts.fill(1);
    std::array<hsize_t, H5S_MAX_RANK> starts = starts_;
    starts[at(dimension)] = first;
    counts[at(dimension)] = rows;
    for (int i = dimension + 1; i < rank_; ++i) {
      starts[at(i)] = 0;
      counts[at(i)] = extents_[at(i)];
    }
    return H5Sselect_hyperslab(space_, H5S_SELECT_OR, starts.data(), nullptr, counts.data(),
                               nullptr) >= 0;
  }

  hid_t space_;
  int rank_ = 0;
  std::array<hsize_t, H5S_MAX_RANK> extents_ = {};
  std::array<hsize_t, H5S_MAX_RANK> valuesPerRow_ = {};
  std::array<hsize_t, H5S_MAX_RANK> starts_ = {};
};

}  // namespace

Range blockOf(std::int64_t total, int rank, int ranks) noexcept {
  const std::int64_t first = total * rank / ranks;
  return {first, total * (rank + 1) / ranks - first};
}

std::int64_t countOf(std::span<const Range> ranges) noexcept {
  return std::accumulate(ranges.begin(), ranges.end(), std::int64_t{0},
                         [](std::int64_t sum, const Range& range) { return sum + range.count; });
}

std::vector<std::vector<Range>> callsOf(std::span<const Range> ranges, std::size_t mostRanges,
                                        std::int64_t mostValues) {
  std::vector<std::vector<Range>> calls;
  std::int64_t room = 0;
  for (Range left : ranges) {
    while (left.count > 0) {
      if (room == 0 || calls.back().size() == mostRanges) {
        calls.emplace_back();
        room = mostValues;
      }
      const std::int64_t count = std::min(left.count, room);
      calls.back().push_back({left.first, count});
      room -= count;
      left = {left.first + count, left.count - count};
    }
  }
  return calls;
}

DataspaceId selectionOf(hid_t dataset, std::span<const Range> ranges) {
  DataspaceId space(H5Dget_space(dataset));
  if (!space.valid() || H5Sselect_none(space.get()) < 0) {
    return DataspaceId();
  }
  RangeSelector selector(space.get());
  const bool isSelected = std::all_of(ranges.begin(), ranges.end(), [&](const Range& range) {
    return selector.add(static_cast<hsize_t>(range.first), static_cast<hsize_t>(range.count));
  });
  return isSelected ? std::move(space) : DataspaceId();
}

DataspaceId memoryOf(std::int64_t count) {
  const hsize_t extent = count > 0 ? static_cast<hsize_t>(count) : 1;
  DataspaceId space(H5Screate_simple(1, &extent, nullptr));
  if (count == 0 && space.valid() && H5Sselect_none(space.get()) < 0) {
    return DataspaceId();
  }
  return space;
}

}  // namespace orvml::parallel::detail
