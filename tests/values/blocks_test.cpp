#include "values/blocks.h"

#include "support/memory_watch.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>

namespace orvml_io_tests {
namespace {

using orvml_io::makeNewArray;
using orvml_io::makeZeroedBlock;
using orvml_io::MallocBlock;
using orvml_io::NewArray;

TEST(ZeroedBlock, HoldsZeros) {
  const MallocBlock block = makeZeroedBlock(3, sizeof(int));

  EXPECT_TRUE(sameBytes(block.get(), std::vector<int>{0, 0, 0}));
}

class EmptyLength : public ::testing::TestWithParam<int> {};

// A caller tells an empty vector from a missing one by the pointer.
TEST_P(EmptyLength, GivesABlockThatIsNotNull) {
  EXPECT_NE(makeZeroedBlock(GetParam(), sizeof(double)), nullptr);
}

TEST_P(EmptyLength, GivesAnArrayThatIsNotNull) {
  EXPECT_NE(makeNewArray<int>(GetParam()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Lengths, EmptyLength, ::testing::Values(0, -1, INT_MIN));

TEST(ZeroedBlock, IsReleasedWithFree) {
  MallocBlock block = makeZeroedBlock(1, sizeof(int));
  const void* address = block.get();
  const ReleasedBlocks released;

  block.reset();

  EXPECT_TRUE(released.byFree(address));
}

TEST(ZeroedBlock, ThrowsTheOutOfMemoryException) {
  // An optimizer may leave out a block that nobody looks at.
  [[maybe_unused]] void* volatile seen = nullptr;
  const FailingAllocation failure(1);

  EXPECT_THROW(seen = makeZeroedBlock(1, sizeof(int)).get(), std::bad_alloc);
}

TEST(NewArray, IsReleasedWithArrayDelete) {
  NewArray<int> array = makeNewArray<int>(2);
  const void* address = array.get();
  const ReleasedBlocks released;

  array.reset();

  EXPECT_TRUE(released.byArrayDelete(address));
}

}  // namespace
}  // namespace orvml_io_tests
