#include "faults/allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

orvml_io_tests::FailurePlan plan;
long live = 0;

void* counted(void* block) noexcept {
  live += block == nullptr ? 0 : 1;
  return block;
}

}  // namespace

// The linker sends the program's calls of malloc, calloc and free to the functions that begin with
// __wrap_. NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) {
  return plan.mustFail() ? nullptr : counted(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return plan.mustFail() ? nullptr : counted(__real_calloc(count, size));
}

void __wrap_free(void* block) {
  live -= block == nullptr ? 0 : 1;
  __real_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

// The functions of the whole process: the standard library's own calls come here too.
void* operator new(std::size_t size) {
  void* const block = plan.mustFail() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void* operator new[](std::size_t size) { return ::operator new(size); }

void operator delete(void* block) noexcept { __wrap_free(block); }

void operator delete(void* block, std::size_t /*size*/) noexcept { __wrap_free(block); }

void operator delete[](void* block) noexcept { __wrap_free(block); }

void operator delete[](void* block, std::size_t /*size*/) noexcept { __wrap_free(block); }

namespace orvml_io_tests {

FailingAllocations::FailingAllocations(int n, Failing failing) noexcept { plan.begin(n, failing); }

FailingAllocations::~FailingAllocations() { plan.end(); }

bool FailingAllocations::happened() const noexcept { return plan.hasFailed(); }

long liveBlocks() noexcept { return live; }

}  // namespace orvml_io_tests
