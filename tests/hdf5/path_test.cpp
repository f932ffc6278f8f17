#include "hdf5/path.h"

#include <gtest/gtest.h>

#include <string>

namespace orvml_io {
namespace {

constexpr std::size_t kMaximum = 1023;

TEST(Path, GluesSubPathsAsTheyAre) {
  Path path("/OrvInput");

  EXPECT_TRUE(path.append("/Nodes"));
  EXPECT_TRUE(path.append("X"));

  EXPECT_STREQ(path.c_str(), "/OrvInput/NodesX");
}

TEST(Path, PutsASlashBeforeAMember) {
  Path path("/g");

  EXPECT_TRUE(path.appendMember("0"));

  EXPECT_STREQ(path.c_str(), "/g/0");
}

TEST(Path, KeepsEmptyMembers) {
  Path path("/g");

  EXPECT_TRUE(path.appendMember(""));

  EXPECT_STREQ(path.c_str(), "/g/");
}

TEST(Path, HoldsItsMaximumOfBytes) {
  Path path("/g");
  const std::string rest(kMaximum - 2, 'x');

  EXPECT_TRUE(path.append(rest));

  EXPECT_EQ(path.c_str(), "/g" + rest);
}

TEST(Path, RefusesOneByteMore) {
  Path path("/g");

  EXPECT_FALSE(path.append(std::string(kMaximum - 1, 'x')));
}

TEST(Path, RefusesEverythingAfterARefusal) {
  Path path("/g");
  ASSERT_FALSE(path.append(std::string(kMaximum, 'x')));

  EXPECT_FALSE(path.append("a"));
}

TEST(Path, CountsTheSlashOfAMember) {
  Path path("/g");

  EXPECT_FALSE(path.appendMember(std::string(kMaximum - 2, 'x')));
}

TEST(Path, OfAParentThatDoesNotFitIsUnusable) {
  Path path(std::string(kMaximum + 1, 'x'));

  EXPECT_FALSE(path.append("a"));
  EXPECT_STREQ(path.c_str(), "");
}

TEST(Path, OfTheLongestParentTakesNothingMore) {
  const std::string parent(kMaximum, 'x');
  Path path(parent);

  EXPECT_EQ(path.c_str(), parent);
  EXPECT_FALSE(path.append("a"));
}

TEST(Path, CopiesAreIndependent) {
  const Path parent("/g");
  Path copy = parent;

  ASSERT_TRUE(copy.append("/x"));

  EXPECT_STREQ(parent.c_str(), "/g");
}

}  // namespace
}  // namespace orvml_io
