// Thousands of calls in a random order beside a model of the documents: what no test of a single
// function can see, above all who owns what after a long history.
#include "sequences/caller.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

constexpr int kCallsPerSequence = 2000;

TEST(Sequences, EveryCallDoesWhatTheModelSays) {
  forEachSeed(3, [](Random& random) { Caller(random).run(kCallsPerSequence); });
}

/// One sequence for all tests, which look at what it went through.
class Sequence : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Random random{1};
    Caller caller(random);
    caller.run(kCallsPerSequence);
    made = caller.made();
    outcomes = caller.outcomes();
  }

  inline static std::map<std::string, int> made;
  inline static std::set<std::string> outcomes;
};

TEST_F(Sequence, HoldsEveryKindOfCall) {
  for (const Call& call : everyCall()) {
    EXPECT_EQ(made.count(call.name), 1U) << call.name;
  }
}

TEST_F(Sequence, MeetsEveryOutcomeOfFilesComparisonsAndText) {
  const std::set<std::string> all = {"document not written, or not whole",
                                     "document read",
                                     "document read in part",
                                     "document that differs from its clone",
                                     "document that equals its clone",
                                     "document written",
                                     "empty text",
                                     "no document read",
                                     "path that cannot be written",
                                     "text with a mesh",
                                     "two documents that are equal",
                                     "two documents that differ"};
  EXPECT_EQ(outcomes, all);
}

}  // namespace
}  // namespace orvml_io_tests
