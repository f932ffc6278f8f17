#pragma once

#include <cstddef>
#include <iosfwd>

namespace orvml_io_tests {

/// What this process holds at a moment.
struct ProcessUsage {
  long long heapBytes = 0;      // allocated and not released
  long long residentBytes = 0;  // 0 under a sanitizer, which keeps released memory for a while
  int descriptors = 0;

  static ProcessUsage now();

  friend ProcessUsage operator-(const ProcessUsage& a, const ProcessUsage& b);
  friend std::ostream& operator<<(std::ostream& stream, const ProcessUsage& usage);
};

/// The largest growth that counts as none. The heap holds the test's own few strings and HDF5's
/// lists of free blocks, which take some 16 KiB after a thousand steps and no more after a hundred
/// thousand; resident memory comes in whole pages, and the allocator rounds generously.
inline constexpr long long kFlatHeapBytes = 32 * 1024;
inline constexpr long long kFlatResidentBytes = 2 * 1024 * 1024;

/// Tells whether a growth is none.
bool isFlat(const ProcessUsage& growth);

}  // namespace orvml_io_tests
