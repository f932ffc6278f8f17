// What arrays and blocks are when they have been announced as about to be written.
#include "support/memory_watch.h"
#include "values/blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace orvml_io_tests {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

class FreshMemory : public ::testing::TestWithParam<std::size_t> {};

/// Around what is large enough for huge pages, on and off their borders.
TEST_P(FreshMemory, KeepsWhatIsWritten) {
  const auto length = static_cast<long long>(GetParam());
  const orvml_io::NewArray<char> array = orvml_io::makeNewArray<char>(length);

  std::fill_n(array.get(), GetParam(), 'x');

  EXPECT_EQ(std::count(array.get(), array.get() + length, 'x'), length);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FreshMemory,
                         ::testing::Values(0, 1, 4 * kMegabyte - 1, 4 * kMegabyte,
                                           4 * kMegabyte + 1, 9 * kMegabyte + 4097));

TEST(FreshMemoryRelease, OfALargeArrayIsReleasedWithArrayDelete) {
  orvml_io::NewArray<double> array = orvml_io::makeNewArray<double>(1000000);
  const void* address = array.get();
  const ReleasedBlocks released;

  array.reset();

  EXPECT_TRUE(released.byArrayDelete(address));
}

TEST(FreshMemoryRelease, OfALargeBlockIsReleasedWithFree) {
  orvml_io::MallocBlock block = orvml_io::makeBlock(1000000, sizeof(double));
  const void* address = block.get();
  const ReleasedBlocks released;

  block.reset();

  EXPECT_TRUE(released.byFree(address));
}

TEST(Block, OfNoValuesIsNotNull) {
  EXPECT_NE(orvml_io::makeBlock(0, sizeof(int)), nullptr);
  EXPECT_NE(orvml_io::makeBlock(-1, sizeof(int)), nullptr);
}

TEST(Block, ThrowsTheOutOfMemoryException) {
  const FailingAllocation failure(1);

  EXPECT_THROW(orvml_io::makeBlock(1, sizeof(int)), std::bad_alloc);
}

}  // namespace
}  // namespace orvml_io_tests
