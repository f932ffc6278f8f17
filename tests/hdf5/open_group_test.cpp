#include "hdf5/open_group.h"

#include <gtest/gtest.h>

#include <string>

namespace orvml_io {
namespace {

constexpr std::size_t kLongest = 1023;
constexpr hid_t kId = 7;

TEST(OpenGroup, IsItsIdentifier) { EXPECT_EQ(OpenGroup(kId, 0).id(), kId); }

TEST(OpenGroup, TakesSubPathsUpToTheLongestPath) {
  const OpenGroup group(kId, kLongest - 6);

  EXPECT_TRUE(group.fits("/Nodes"));
  EXPECT_FALSE(group.fits("/Nodes1"));
}

TEST(OpenGroup, TakesMembersUpToTheLongestPathWithTheirSlash) {
  const OpenGroup group(kId, kLongest - 6);

  EXPECT_TRUE(group.fitsMember("Nodes"));
  EXPECT_FALSE(group.fitsMember("Nodes1"));
}

TEST(OpenGroup, OfTheRootTakesTheLongestPath) {
  const OpenGroup root(kId, 0);

  EXPECT_TRUE(root.fits("/" + std::string(kLongest - 1, 'n')));
  EXPECT_FALSE(root.fits("/" + std::string(kLongest, 'n')));
}

TEST(OpenGroup, OfTheLongestPathTakesNothing) {
  const OpenGroup group(kId, kLongest);

  EXPECT_FALSE(group.fits("/"));
  EXPECT_FALSE(group.fitsMember(""));
}

TEST(OpenGroup, BeyondTheLongestPathTakesNothing) {
  const OpenGroup group(kId, 5000);

  EXPECT_FALSE(group.fits(""));
  EXPECT_FALSE(group.fitsMember(""));
}

TEST(OpenGroup, BelowAnotherCountsBothPaths) {
  const OpenGroup parent(kId, kLongest - 8);

  const OpenGroup group = parent.below(kId + 1, "/Nodes");

  EXPECT_EQ(group.id(), kId + 1);
  EXPECT_TRUE(group.fits("/1"));
  EXPECT_FALSE(group.fits("/12"));
}

TEST(OpenGroup, SeesSubPathsWithoutTheirSlash) {
  EXPECT_STREQ(relativeName("/Nodes/Attributes"), "Nodes/Attributes");
}

}  // namespace
}  // namespace orvml_io
