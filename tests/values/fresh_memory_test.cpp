// What arrays and blocks are when they have been announced as about to be written, and which of
// their pages are asked for as huge ones.
#include "support/memory_watch.h"
#include "values/blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace orvml_io_tests {
namespace {

using orvml_io::FreshMemory;
using orvml_io::HugePageTrial;
using orvml_io::TouchTime;

constexpr std::size_t kMegabyte = std::size_t{1} << 20;
constexpr std::size_t kLargeOperation = HugePageTrial::kLeastOperationBytes;
constexpr int kForgiving = HugePageTrial::kQuickPagesThatForgive;

constexpr TouchTime kQuick{std::chrono::microseconds(200), std::chrono::microseconds(200)};
constexpr TouchTime kSlow{std::chrono::milliseconds(9), std::chrono::milliseconds(9)};
constexpr TouchTime kWaited{std::chrono::milliseconds(9), std::chrono::microseconds(200)};

/// An operation on blocks that nobody touches: the time of each touch is given, quick where no
/// other is, and the pages are noted.
class ScriptedOperation {
 public:
  explicit ScriptedOperation(std::size_t expectedBytes) : memory_(expectedBytes) {}

  void setTime(int page, const TouchTime& time) { times_.emplace_back(page, time); }

  /// Announces an array; returns how many huge pages it got.
  int announce(std::size_t bytes) {
    blocks_.emplace_back(new char[bytes]);
    const std::size_t before = touched.size();
    memory_.willBeWrittenWhole(blocks_.back().get(), bytes, [&](char* page) {
      touched.push_back(page);
      return timeOf(static_cast<int>(touched.size() - 1));
    });
    return static_cast<int>(touched.size() - before);
  }

  [[nodiscard]] const char* lastBlock() const { return blocks_.back().get(); }

  std::vector<const char*> touched;

 private:
  [[nodiscard]] TouchTime timeOf(int page) const {
    const auto found = std::find_if(times_.begin(), times_.end(),
                                    [&](const auto& time) { return time.first == page; });
    return found == times_.end() ? kQuick : found->second;
  }

  FreshMemory memory_;
  std::vector<std::pair<int, TouchTime>> times_;
  std::vector<std::unique_ptr<char[]>> blocks_;
};

/// The least number of huge pages inside any block of so many bytes.
int pagesOf(std::size_t bytes) { return static_cast<int>(bytes / FreshMemory::kHugePageBytes) - 1; }

constexpr std::size_t kArray = 48 * kMegabyte;

class HugePages : public ::testing::Test {
 protected:
  ScriptedOperation operation_{kLargeOperation};
};

TEST_F(HugePages, AreTakenAsLongAsTheyAreQuick) {
  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST_F(HugePages, AreWholeAndFollowEachOtherInsideTheBlock) {
  const int count = operation_.announce(kArray);
  ASSERT_GT(count, 0);

  const char* begin = operation_.lastBlock();
  EXPECT_GE(operation_.touched.front(), begin);
  EXPECT_LE(operation_.touched.back() + FreshMemory::kHugePageBytes, begin + kArray);
  EXPECT_EQ(
      reinterpret_cast<std::uintptr_t>(operation_.touched.front()) % FreshMemory::kHugePageBytes,
      0U);
  EXPECT_EQ(operation_.touched.back() - operation_.touched.front(),
            (count - 1) * static_cast<std::ptrdiff_t>(FreshMemory::kHugePageBytes));
}

TEST_F(HugePages, EndWithASlowFirstOneForTheWholeOperation) {
  operation_.setTime(0, kSlow);

  EXPECT_EQ(operation_.announce(kArray), 1);
  EXPECT_EQ(operation_.announce(kArray), 0);
}

TEST_F(HugePages, EndWithOneThatWaitedForTheProcessorForItsArrayOnly) {
  operation_.setTime(0, kWaited);

  EXPECT_EQ(operation_.announce(kArray), 1);
  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST_F(HugePages, GoOnAfterASlowOneThatEnoughQuickOnesHavePaidFor) {
  operation_.setTime(kForgiving, kSlow);

  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST_F(HugePages, EndWithASlowOneThatTooFewQuickOnesHavePaidFor) {
  operation_.setTime(kForgiving - 1, kSlow);

  EXPECT_EQ(operation_.announce(kArray), kForgiving);
  EXPECT_EQ(operation_.announce(kArray), 0);
}

TEST_F(HugePages, EndWithTheSecondSlowOneInARow) {
  operation_.setTime(kForgiving, kSlow);
  operation_.setTime(kForgiving + 1, kSlow);

  EXPECT_EQ(operation_.announce(kArray), kForgiving + 2);
  EXPECT_EQ(operation_.announce(kArray), 0);
}

TEST_F(HugePages, AreForgivenAcrossArrays) {
  const int first = operation_.announce(kArray);
  operation_.setTime(first, kSlow);

  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST_F(HugePages, OfExactlyTheTimeOfSmallOnesAreQuick) {
  operation_.setTime(0, {HugePageTrial::kQuickAtMost, HugePageTrial::kQuickAtMost});

  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST_F(HugePages, AreNotTakenForASmallArray) {
  EXPECT_EQ(operation_.announce(FreshMemory::kLeastBytes - 1), 0);
  EXPECT_GE(operation_.announce(FreshMemory::kLeastBytes), 1);
}

// A file may claim more than it holds.
TEST_F(HugePages, AreNotTakenForAnArrayLargerThanTheWholeOperation) {
  EXPECT_EQ(operation_.announce(kLargeOperation + 1), 0);
  EXPECT_GE(operation_.announce(kArray), pagesOf(kArray));
}

TEST(HugePagesOfASmallOperation, AreNotTaken) {
  ScriptedOperation operation(kLargeOperation - 1);

  EXPECT_EQ(operation.announce(kArray), 0);
}

TEST(HugePagesOfASingleArray, AreTakenWhenItIsLargeEnough) {
  ScriptedOperation tooSmall(0);
  ScriptedOperation largeEnough(0);

  EXPECT_EQ(tooSmall.announce(kLargeOperation - 1), 0);
  EXPECT_GE(largeEnough.announce(kLargeOperation), pagesOf(kLargeOperation));
}

#if defined(__linux__)

/// Tells whether a page of the system is resident.
bool isResident(char* address) {
  const auto pageBytes = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  unsigned char state = 0;
  char* page = address - reinterpret_cast<std::uintptr_t>(address) % pageBytes;
  EXPECT_EQ(::mincore(page, 1, &state), 0);
  return (state & 1U) != 0;
}

/// The first address of a huge page in a block.
char* firstHugePageOf(void* block) {
  const std::uintptr_t beyond =
      reinterpret_cast<std::uintptr_t>(block) % FreshMemory::kHugePageBytes;
  return static_cast<char*>(block) + (beyond == 0 ? 0 : FreshMemory::kHugePageBytes - beyond);
}

// The first page is always touched, whatever it takes and whether the system has huge ones.
TEST(HugePagesOfTheSystem, AreTouchedInTheArraysOfALargeOperation) {
  FreshMemory operation(kLargeOperation);

  const auto array = orvml_io::makeNewArray<char>(kArray, &operation);

  EXPECT_TRUE(isResident(firstHugePageOf(array.get())));
}

TEST(HugePagesOfTheSystem, AreTouchedInTheBlocksOfALargeOperation) {
  FreshMemory operation(kLargeOperation);

  const auto block = orvml_io::makeBlock(static_cast<int>(kArray), 1, &operation);

  EXPECT_TRUE(isResident(firstHugePageOf(block.get())));
}

// The sanitizer writes to each block that it gives.
#if !defined(__SANITIZE_ADDRESS__)

// More than the largest block that the allocator of the system may have kept from before.
TEST(HugePagesOfTheSystem, AreNotTouchedInASingleArrayThatIsTooSmall) {
  const auto array = orvml_io::makeNewArray<char>(kArray);

  EXPECT_FALSE(isResident(firstHugePageOf(array.get())));
}

#endif

#endif

class FreshMemoryBlock : public ::testing::TestWithParam<std::size_t> {};

/// Around what is large enough for huge pages, on and off their borders.
TEST_P(FreshMemoryBlock, KeepsWhatIsWritten) {
  FreshMemory operation(kLargeOperation);
  const auto length = static_cast<long long>(GetParam());
  const orvml_io::NewArray<char> array = orvml_io::makeNewArray<char>(length, &operation);

  std::fill_n(array.get(), GetParam(), 'x');

  EXPECT_EQ(std::count(array.get(), array.get() + length, 'x'), length);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FreshMemoryBlock,
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
