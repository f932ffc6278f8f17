#include "support/memory_watch.h"

#include "support/new_array.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace orvml_io_tests {
namespace {

// Called through variables: compilers object to a pointer that is named after its plain release.
void deleteArray(const int* array) { delete[] array; }
void (*const volatile releaseByArrayDelete)(const int*) = deleteArray;
void (*const volatile releaseByFree)(void*) = std::free;

TEST(ReleasedBlocks, TellsArrayDeleteFromFree) {
  const int* array = newArray({1});
  void* block = std::calloc(1, 8);
  const ReleasedBlocks released;

  releaseByArrayDelete(array);
  releaseByFree(block);

  EXPECT_TRUE(released.byArrayDelete(array));
  EXPECT_FALSE(released.byFree(array));
  EXPECT_TRUE(released.byFree(block));
  EXPECT_FALSE(released.byArrayDelete(block));
}

TEST(ReleasedBlocks, LeavesOutWhatWasReleasedBefore) {
  const int* array = newArray({1});
  releaseByArrayDelete(array);

  const ReleasedBlocks released;

  EXPECT_FALSE(released.has(array));
}

TEST(ReleasedBlocks, LeavesOutWhatIsStillAllocated) {
  const std::unique_ptr<int[]> kept(newArray({1}));

  const ReleasedBlocks released;

  EXPECT_FALSE(released.has(kept.get()));
}

TEST(FailingAllocation, FailsTheAllocationOfItsNumberOnly) {
  const FailingAllocation failure(2);

  const std::unique_ptr<int[]> first(newArray({1}));
  EXPECT_FALSE(failure.happened());
  EXPECT_THROW(std::unique_ptr<int[]>(newArray({2})), std::bad_alloc);
  const std::unique_ptr<int[]> third(newArray({3}));

  EXPECT_TRUE(failure.happened());
}

TEST(FailingAllocation, MakesCallocGiveNull) {
  const FailingAllocation failure(1);

  const std::unique_ptr<void, decltype(&std::free)> block(std::calloc(1, 8), std::free);

  EXPECT_EQ(block, nullptr);
}

TEST(FailingAllocation, EndsWithItsLife) {
  { const FailingAllocation failure(1); }

  EXPECT_NO_THROW(delete[] newArray({1}));
}

TEST(RunsWithFailure, TellsWhetherTheStepCameToItsEnd) {
  const auto allocateTwice = [] {
    delete[] newArray({1});
    delete[] newArray({2});
  };

  EXPECT_FALSE(runsWithFailure(1, allocateTwice));
  EXPECT_FALSE(runsWithFailure(2, allocateTwice));
  EXPECT_TRUE(runsWithFailure(3, allocateTwice));
}

}  // namespace
}  // namespace orvml_io_tests
