#include "values/fresh_memory.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>

#include <ctime>
#endif

namespace orvml_io {

#if defined(__linux__)

namespace {

/// The time of the processor that this thread has used. A host that gives memory back does so in
/// the middle of an instruction of the guest, whose time goes on; another thread's turn does not
/// count.
std::chrono::nanoseconds processorTime() noexcept {
  timespec used = {};
  (void)::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

/// Asks for one huge page and makes it resident. A refusal changes nothing but the time.
TouchTime touchHugePage(char* page) noexcept {
  (void)::madvise(page, FreshMemory::kHugePageBytes, MADV_HUGEPAGE);
  const std::chrono::nanoseconds processor = processorTime();
  const auto begin = std::chrono::steady_clock::now();
  *static_cast<volatile char*>(page) = 0;
  const auto end = std::chrono::steady_clock::now();
  return {end - begin, processorTime() - processor};
}

}  // namespace

void FreshMemory::willBeWrittenWhole(void* block, std::size_t bytes) noexcept {
  willBeWrittenWhole(block, bytes, touchHugePage);
}

#else

void FreshMemory::willBeWrittenWhole(void* /*block*/, std::size_t /*bytes*/) noexcept {}

#endif

void HugePageTrial::beginArray(std::size_t bytes) noexcept {
  const std::size_t expected = expectedBytes_ > 0 ? expectedBytes_ : bytes;
  isArrayOver_ = expected < kLeastOperationBytes || bytes > expected;
}

void HugePageTrial::learn(const TouchTime& taken) noexcept {
  if (taken.elapsed <= kQuickAtMost) {
    ++quickPagesInARow_;
    return;
  }
  const bool isForgiven = quickPagesInARow_ >= kQuickPagesThatForgive;
  const bool hasWaited = taken.processor <= kQuickAtMost;
  quickPagesInARow_ = 0;
  isArrayOver_ = !isForgiven;
  isOperationOver_ = !isForgiven && !hasWaited;
}

FreshMemory::HugePages FreshMemory::hugePagesInside(void* block, std::size_t bytes) noexcept {
  if (bytes < kLeastBytes) {
    return {nullptr, 0};
  }
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t begin = (address + kHugePageBytes - 1) / kHugePageBytes * kHugePageBytes;
  const std::uintptr_t end = (address + bytes) / kHugePageBytes * kHugePageBytes;
  return {static_cast<char*>(block) + (begin - address), (end - begin) / kHugePageBytes};
}

}  // namespace orvml_io
