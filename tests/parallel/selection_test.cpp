#include "selection.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace orvml_parallel_tests {

namespace {

using orvml::parallel::detail::callsOf;
using orvml::parallel::detail::Range;

/// "3+2 9+1 | 12+4": each call with its ranges, by their first value and their number.
std::string textOf(const std::vector<std::vector<Range>>& calls) {
  std::ostringstream text;
  const char* separator = "";
  for (const std::vector<Range>& call : calls) {
    for (const Range& range : call) {
      text << separator << range.first << "+" << range.count;
      separator = " ";
    }
    separator = " | ";
  }
  return text.str();
}

TEST(ParallelCallsOfRanges, AreOneForWhatFits) {
  EXPECT_EQ("3+2 9+1", textOf(callsOf(std::vector<Range>{{3, 2}, {9, 1}})));
}

TEST(ParallelCallsOfRanges, LeaveOutWhatIsEmpty) {
  EXPECT_EQ("", textOf(callsOf(std::vector<Range>{{3, 0}, {9, 0}})));
  EXPECT_EQ("9+1", textOf(callsOf(std::vector<Range>{{3, 0}, {9, 1}})));
}

TEST(ParallelCallsOfRanges, HaveNoMoreRangesThanOneMayHave) {
  EXPECT_EQ("1+1 3+1 | 5+1 7+1 | 9+1",
            textOf(callsOf(std::vector<Range>{{1, 1}, {3, 1}, {5, 1}, {7, 1}, {9, 1}}, 2, 100)));
}

TEST(ParallelCallsOfRanges, CutARangeOfMoreValuesThanOneMayHave) {
  EXPECT_EQ("5+4 | 9+4 | 13+2 20+2 | 22+1",
            textOf(callsOf(std::vector<Range>{{5, 10}, {20, 3}}, 9, 4)));
}

TEST(ParallelCallsOfRanges, CutExactlyWhereOneIsFull) {
  EXPECT_EQ("0+4 | 4+4", textOf(callsOf(std::vector<Range>{{0, 8}}, 9, 4)));
  EXPECT_EQ("0+4 | 7+1", textOf(callsOf(std::vector<Range>{{0, 4}, {7, 1}}, 9, 4)));
}

TEST(ParallelCallsOfRanges, MoveAtMostOneGibibyteAtOnce) {
  constexpr std::int64_t kMost = std::int64_t{1} << 27;
  EXPECT_EQ("0+" + std::to_string(kMost) + " | " + std::to_string(kMost) + "+1",
            textOf(callsOf(std::vector<Range>{{0, kMost + 1}})));
}

}  // namespace

}  // namespace orvml_parallel_tests
