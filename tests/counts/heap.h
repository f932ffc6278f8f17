#pragma once

#include <cstddef>

namespace orvml_io_tests {

// Programs that link these functions count every block of the process, also those of HDF5: their
// definitions of malloc and its relatives stand before those of the C library.

/// What a step did to the heap.
struct HeapUse {
  std::size_t peak = 0;         // bytes above those at its start, at most
  std::size_t kept = 0;         // bytes above those at its start, at its end
  std::size_t largeBlocks = 0;  // allocations of a mebibyte or more
};

void startCountingHeap() noexcept;
[[nodiscard]] HeapUse countedHeap() noexcept;

template <class Step>
HeapUse heapUseOf(Step step) {
  startCountingHeap();
  step();
  return countedHeap();
}

}  // namespace orvml_io_tests
