// The must-be-transmitted flags do not come back from files: writers put them on the datasets,
// readers look for a text on the group, and only when the root group has an attribute of that name.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

constexpr char kFlag[] = "MustBeTransmitted";
constexpr char kGroup[] = "/OrvInput/Faces/Attributes";

class ReadFlags : public ExchangeFileTest {};

TEST_F(ReadFlags, OfWrittenDocumentsAreLost) {
  const BuiltDocument document = fullDocument();
  ASSERT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document.handle(), ORVML_FACES), 1);
  written(document).close();

  const ReadDocument back = readInput(path());

  for (const Container& container : kAllContainers) {
    EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(back.handle(), container.entity),
              0)
        << container;
  }
  EXPECT_EQ(intAttributeOf(back.handle(), ORVML_FACES, "surface"), (std::vector<int>{1, 2, 3, 4}));
}

/// A small document with a face attribute.
class CraftedFlags : public ExchangeFileTest {
 protected:
  CraftedFlags() {
    file_.group(kGroup);
    file_.intVector(std::string(kGroup) + "/a", {1});
    file_.doubleVector(std::string(kGroup) + "/b", {2});
  }
  Names flagged() {
    const ReadDocument document = read(file_);
    EXPECT_EQ(document.result, 0);
    EXPECT_EQ(intAttributeOf(document.handle(), ORVML_FACES, "a"), std::vector<int>{1});
    return transmittedNames(document.handle(), ORVML_FACES);
  }
  RawFile file_ = smallInput();
};

TEST_F(CraftedFlags, OnTheGroupAloneAreNotFound) {
  file_.textAttribute(kGroup, kFlag, "1");

  EXPECT_EQ(flagged(), Names{});
}

TEST_F(CraftedFlags, OnTheRootAloneAreNotFound) {
  file_.textAttribute("/", kFlag, "1");

  EXPECT_EQ(flagged(), Names{});
}

TEST_F(CraftedFlags, OnTheMembersAndTheRootAreNotFound) {
  file_.textAttribute("/", kFlag, "1");
  file_.intAttributeValue(std::string(kGroup) + "/a", kFlag, 1);
  file_.textAttribute(std::string(kGroup) + "/b", kFlag, "1");

  EXPECT_EQ(flagged(), Names{});
}

TEST_F(CraftedFlags, OnTheGroupCountForEveryMemberWhenTheRootHasTheName) {
  file_.intAttributeValue("/", kFlag, 0);
  file_.textAttribute(kGroup, kFlag, "1");

  EXPECT_EQ(flagged(), (Names{"a", "b"}));
}

TEST_F(CraftedFlags, ThatAreIntegersOnTheGroupDoNotCount) {
  file_.intAttributeValue("/", kFlag, 1);
  file_.intAttributeValue(kGroup, kFlag, 1);

  EXPECT_EQ(flagged(), Names{});
}

struct FlagText {
  const char* name;
  const char* text;
  bool isSet;

  friend std::ostream& operator<<(std::ostream& stream, const FlagText& row) {
    return stream << '"' << row.text << '"';
  }
};

class FlagTextTest : public CraftedFlags, public ::testing::WithParamInterface<FlagText> {};

TEST_P(FlagTextTest, IsSetWhenItBeginsWithANumberOtherThanZero) {
  file_.textAttribute("/", kFlag, "");
  file_.textAttribute(kGroup, kFlag, GetParam().text);

  EXPECT_EQ(flagged(), GetParam().isSet ? (Names{"a", "b"}) : Names{});
}

INSTANTIATE_TEST_SUITE_P(Each, FlagTextTest,
                         ::testing::Values(FlagText{"One", "1", true}, FlagText{"Zero", "0", false},
                                           FlagText{"Negative", "-1", true},
                                           FlagText{"Empty", "", false},
                                           FlagText{"Word", "true", false},
                                           FlagText{"LeadingSpace", " 7 of 8", true},
                                           FlagText{"Hexadecimal", "0x10", false}),
                         RowName());

}  // namespace
}  // namespace orvml_io_tests
