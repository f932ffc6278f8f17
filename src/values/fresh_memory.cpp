#include "values/fresh_memory.h"

#if defined(__linux__)
#include <sys/mman.h>

#include <cstdint>
#endif

namespace orvml_io {

#if defined(__linux__)

namespace {

/// The size of a huge page on x86-64, and on ARM with pages of 4 KiB. Where it is another, the
/// system rounds by itself.
constexpr std::uintptr_t kHugePageBytes = std::uintptr_t{2} << 20;

/// A block of this size holds a whole huge page wherever it begins.
constexpr std::size_t kLeastBytes = std::size_t{4} << 20;

}  // namespace

void willBeWrittenWhole(void* block, std::size_t bytes) noexcept {
  if (bytes < kLeastBytes) {
    return;
  }
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t begin = (address + kHugePageBytes - 1) / kHugePageBytes * kHugePageBytes;
  const std::uintptr_t end = (address + bytes) / kHugePageBytes * kHugePageBytes;
  // A refusal changes nothing but the time.
  (void)::madvise(static_cast<char*>(block) + (begin - address), end - begin, MADV_HUGEPAGE);
}

#else

void willBeWrittenWhole(void* /*block*/, std::size_t /*bytes*/) noexcept {}

#endif

}  // namespace orvml_io
