#include "support/memory_watch.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>

namespace {

enum class Way { arrayDelete, free };

struct Release {
  const void* block;
  Way way;
};

// Plain arrays and numbers: recording must not allocate, and it runs before and after main.
Release releases[4096];
std::size_t releaseCount = 0;
bool isRecording = false;
int allocationsUntilFailure = 0;  // 0: none fails
bool hasFailed = false;

void record(const void* block, Way way) noexcept {
  if (isRecording && block != nullptr && releaseCount < std::size(releases)) {
    releases[releaseCount++] = {block, way};
  }
}

bool wasReleased(const void* block, Way way) noexcept {
  return std::any_of(releases, releases + releaseCount, [block, way](const Release& release) {
    return release.block == block && release.way == way;
  });
}

bool mustFail() noexcept {
  if (allocationsUntilFailure == 0 || --allocationsUntilFailure > 0) {
    return false;
  }
  hasFailed = true;
  return true;
}

}  // namespace

// The linker sends the program's calls of operator new, new[] and delete[], malloc, calloc and free
// (the names after the second pair of underscores) to the functions that begin with __wrap_.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker chose them.
extern "C" {
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real__ZdaPv(void* block);
void __real_free(void* block);

void* __wrap__Znwm(std::size_t size) {
  if (mustFail()) {
    throw std::bad_alloc();
  }
  return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size) {
  if (mustFail()) {
    throw std::bad_alloc();
  }
  return __real__Znam(size);
}

void* __wrap_malloc(std::size_t size) { return mustFail() ? nullptr : __real_malloc(size); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return mustFail() ? nullptr : __real_calloc(count, size);
}

void __wrap__ZdaPv(void* block) {
  record(block, Way::arrayDelete);
  __real__ZdaPv(block);
}

void __wrap_free(void* block) {
  record(block, Way::free);
  __real_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace orvml_io_tests {

ReleasedBlocks::ReleasedBlocks() noexcept {
  releaseCount = 0;
  isRecording = true;
}

ReleasedBlocks::~ReleasedBlocks() { isRecording = false; }

bool ReleasedBlocks::byArrayDelete(const void* block) const noexcept {
  return wasReleased(block, Way::arrayDelete);
}

bool ReleasedBlocks::byFree(const void* block) const noexcept {
  return wasReleased(block, Way::free);
}

bool ReleasedBlocks::has(const void* block) const noexcept {
  return byArrayDelete(block) || byFree(block);
}

FailingAllocation::FailingAllocation(int n) noexcept {
  hasFailed = false;
  allocationsUntilFailure = n;
}

FailingAllocation::~FailingAllocation() { allocationsUntilFailure = 0; }

bool FailingAllocation::happened() const noexcept { return hasFailed; }

}  // namespace orvml_io_tests
