// No input of a fuzzer is larger than a few hundred bytes, and none stores more than some kilobytes
// in a file. An allocation of the library that is larger than this limit was therefore not made for
// data that is there: the size in a file was believed.
#include "fuzz/harness/finding.h"

#include <cstddef>

namespace {

constexpr std::size_t kLargestAllocation = std::size_t{128} << 20;

void requireModest(std::size_t bytes) noexcept {
  orvml_io_tests::require(bytes <= kLargestAllocation,
                          "memory is taken only in proportion to what a file holds");
}

}  // namespace

// The linker sends the program's calls of operator new, new[], malloc and calloc (the names after
// the second pair of underscores) to the functions that begin with __wrap_. The sanitizers see them
// all the same. They are visible because the linker has shared libraries find them, too.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#pragma GCC visibility push(default)
extern "C" {
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);

void* __wrap__Znwm(std::size_t size) {
  requireModest(size);
  return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size) {
  requireModest(size);
  return __real__Znam(size);
}

void* __wrap_malloc(std::size_t size) {
  requireModest(size);
  return __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  requireModest(size != 0 && count > kLargestAllocation / size ? kLargestAllocation + 1 : 0);
  return __real_calloc(count, size);
}
}
#pragma GCC visibility pop
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
