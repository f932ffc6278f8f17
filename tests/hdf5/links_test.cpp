#include "hdf5/links.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"

#include <climits>

namespace orvml_io_tests {
namespace {

using orvml_io::GroupId;

class Links : public DocumentFileTest {
 protected:
  /// Makes links with these names and opens their group.
  hid_t groupOf(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      file().intVector("/OrvInput/" + name, {1});
    }
    group_ = GroupId(H5Gopen2(file().id(), "/OrvInput", H5P_DEFAULT));
    return group_.get();
  }

 private:
  GroupId group_;
};

using Ints = std::vector<int>;
using Names = std::vector<std::string>;

TEST_F(Links, HaveTheirNamesInAscendingByteOrder) {
  EXPECT_EQ(orvml_io::linkNames(groupOf({"b", "a", "B", "\xC3\xA9", "ab"})),
            (Names{"B", "a", "ab", "b", "\xC3\xA9"}));
}

TEST_F(Links, OfAnEmptyGroupHaveNoNames) { EXPECT_EQ(orvml_io::linkNames(groupOf({})), Names{}); }

TEST_F(Links, OfNoGroupCannotBeTold) { EXPECT_EQ(orvml_io::linkNames(-1), std::nullopt); }

TEST_F(Links, KeepLongNamesWhole) {
  const std::string name(3000, 'n');

  EXPECT_EQ(orvml_io::linkNames(groupOf({name})), Names{name});
}

TEST_F(Links, ToNowhereHaveNamesToo) {
  H5Lcreate_soft("/nowhere", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);

  EXPECT_EQ(orvml_io::linkNames(groupOf({})), Names{"soft"});
}

TEST_F(Links, ThatAreNumbersAreOrderedByTheirValues) {
  EXPECT_EQ(orvml_io::positionsBelow(groupOf({"10", "2", "0"}), 11), (Ints{0, 2, 10}));
}

TEST_F(Links, FromTheEndOnAreLeftOut) {
  EXPECT_EQ(orvml_io::positionsBelow(groupOf({"0", "1", "2"}), 2), (Ints{0, 1}));
}

TEST_F(Links, UpToTheLargestPositionAreFound) {
  EXPECT_EQ(orvml_io::positionsBelow(groupOf({"2147483646", "2147483647"}), INT_MAX),
            (Ints{2147483646}));
}

TEST_F(Links, ThatAreNoDecimalFormAreLeftOut) {
  const hid_t group = groupOf({"00", "01", "-1", "-0", "+1", " 1", "1 ", "1.", "1e1", "0x1", "a",
                               "1a", "99999999999999999999", "4294967296"});

  EXPECT_EQ(orvml_io::positionsBelow(group, INT_MAX), Ints{});
}

TEST_F(Links, BelowZeroAndBelowLessAreNone) {
  const hid_t group = groupOf({"0", "1"});

  EXPECT_EQ(orvml_io::positionsBelow(group, 0), Ints{});
  EXPECT_EQ(orvml_io::positionsBelow(group, -1), Ints{});
}

TEST_F(Links, OfNoGroupHoldPositionsThatCannotBeTold) {
  EXPECT_EQ(orvml_io::positionsBelow(-1, 10), std::nullopt);
}

}  // namespace
}  // namespace orvml_io_tests
