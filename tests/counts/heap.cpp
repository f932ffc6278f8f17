#include "counts/heap.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace {

constexpr std::size_t kLargeBytes = std::size_t{1} << 20;

std::atomic<std::size_t> current{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> largeBlocks{0};
std::size_t atStart = 0;

void* counted(void* block) noexcept {
  if (block != nullptr) {
    const std::size_t bytes = ::malloc_usable_size(block);
    peak = std::max<std::size_t>(peak, current += bytes);
    largeBlocks += bytes >= kLargeBytes ? 1 : 0;
  }
  return block;
}

void discounted(void* block) noexcept {
  if (block != nullptr) {
    current -= ::malloc_usable_size(block);
  }
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the C library chose them.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
void __libc_free(void* block);

void* malloc(std::size_t bytes) { return counted(__libc_malloc(bytes)); }

void* calloc(std::size_t count, std::size_t bytes) { return counted(__libc_calloc(count, bytes)); }

void* realloc(void* block, std::size_t bytes) {
  const std::size_t before = block == nullptr ? 0 : ::malloc_usable_size(block);
  void* moved = __libc_realloc(block, bytes);
  if (moved != nullptr || bytes == 0) {
    current -= before;
  }
  return counted(moved);
}

void* memalign(std::size_t alignment, std::size_t bytes) {
  return counted(__libc_memalign(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) { return memalign(alignment, bytes); }

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
  *block = memalign(alignment, bytes);
  return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
  discounted(block);
  __libc_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace orvml_io_tests {

void startCountingHeap() noexcept {
  atStart = current;
  peak = atStart;
  largeBlocks = 0;
}

HeapUse countedHeap() noexcept {
  return {peak - atStart, current > atStart ? current - atStart : 0, largeBlocks};
}

}  // namespace orvml_io_tests
