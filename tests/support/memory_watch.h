#pragma once

#include <new>

namespace orvml_io_tests {

// Programs that use these classes link orvml_io_memory_watch, which wraps the allocation functions
// at link time: the library is not changed, and the sanitizers see every call all the same.

/// Records what the program releases, and how, while it lives. One may live at a time.
class ReleasedBlocks {
 public:
  ReleasedBlocks() noexcept;
  ReleasedBlocks(const ReleasedBlocks&) = delete;
  ReleasedBlocks& operator=(const ReleasedBlocks&) = delete;
  ReleasedBlocks(ReleasedBlocks&&) = delete;
  ReleasedBlocks& operator=(ReleasedBlocks&&) = delete;
  ~ReleasedBlocks();

  [[nodiscard]] bool byArrayDelete(const void* block) const noexcept;
  [[nodiscard]] bool byFree(const void* block) const noexcept;
  /// Tells whether the block was released in either way.
  [[nodiscard]] bool has(const void* block) const noexcept;
};

/// Lets one allocation fail while it lives: the n-th, counted from 1. One may live at a time.
class FailingAllocation {
 public:
  explicit FailingAllocation(int n) noexcept;
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  FailingAllocation(FailingAllocation&&) = delete;
  FailingAllocation& operator=(FailingAllocation&&) = delete;
  ~FailingAllocation();

  /// Tells whether the n-th allocation was reached.
  [[nodiscard]] bool happened() const noexcept;
};

/// Runs a step with its n-th allocation failing. Returns whether the step came to its end; it did
/// not when the out-of-memory exception left it.
template <class Step>
bool runsWithFailure(int n, Step step) {
  const FailingAllocation failure(n);
  try {
    step();
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace orvml_io_tests
