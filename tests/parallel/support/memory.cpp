#include "support/memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// MPI has threads of its own.
std::atomic<bool> isCounting = false;
std::atomic<int> counted = 0;
std::atomic<int> failing = 0;

void* allocated(std::size_t size) noexcept {
  if (isCounting && ++counted == failing) {
    return nullptr;
  }
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// The functions of the whole process: those of the library come here too.
void* operator new(std::size_t size) {
  void* const block = allocated(size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocated(size);
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace orvml_parallel_tests {

FailingAllocation::FailingAllocation(int n) noexcept {
  counted = 0;
  failing = n;
  isCounting = true;
}

FailingAllocation::~FailingAllocation() { isCounting = false; }

int FailingAllocation::count() const noexcept { return counted; }

}  // namespace orvml_parallel_tests
