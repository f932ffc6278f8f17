#include "model/document.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

namespace {

using orvml_io_tests::BuiltDocument;
using orvml_io_tests::fullDocument;
using orvml_io_tests::RowName;

TEST(LibraryVersion, IsTheConstantText) {
  EXPECT_STREQ(OrvML_IO_GetVersion(), "1.10.0");
  EXPECT_EQ(OrvML_IO_GetVersion(), OrvML_IO_GetVersion());
}

TEST(FormatVersion, IsTheConstantText) {
  EXPECT_STREQ(OrvML_IO_GetFormatVersion(), "1.4");
  EXPECT_EQ(OrvML_IO_GetFormatVersion(), OrvML_IO_GetFormatVersion());
}

TEST(MinimumFormatVersionToSave, IsTheFormatVersionForANullHandle) {
  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(nullptr), "1.4");
  EXPECT_EQ(ORVML_IO_GetMinimumFormatVersionToSave(nullptr), OrvML_IO_GetFormatVersion());
}

TEST(MinimumFormatVersionToSave, DoesNotDependOnTheContent) {
  const BuiltDocument document = fullDocument();

  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(document.handle()), "1.4");
}

TEST(MinimumFormatVersionToSave, DoesNotDependOnTheVersionOfTheFileRead) {
  const BuiltDocument document = BuiltDocument::input(3);
  orvml_io::copyIdentification(orvml_io::documentOf(document.handle())->fileFormatVersion, "1.3");

  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(document.handle()), "1.4");
}

struct VersionRow {
  const char* name;
  const char* text;
  double number;
};

class FormatVersionNumber : public ::testing::TestWithParam<VersionRow> {};

TEST_P(FormatVersionNumber, IsTheNumberAtTheStartOfTheText) {
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number(GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FormatVersionNumber,
    ::testing::Values(VersionRow{"Current", "1.4", 1.4}, VersionRow{"Older", "1.3", 1.3},
                      VersionRow{"EndsAtTheSecondPoint", "1.10.0", 1.1},
                      VersionRow{"OneDigit", "1.9", 1.9}, VersionRow{"NoPoint", "2", 2.0},
                      VersionRow{"TrailingPoint", "2.", 2.0}, VersionRow{"Zero", "0.0", 0.0},
                      VersionRow{"TrailingText", "1.4beta", 1.4},
                      VersionRow{"TrailingSpace", "1.4 ", 1.4},
                      VersionRow{"LeadingSpace", "  1.4", 1.4}, VersionRow{"Sign", "-1.5", -1.5},
                      VersionRow{"Exponent", "14e-1", 1.4}, VersionRow{"Empty", "", 0.0},
                      VersionRow{"LeadingLetter", "v1.4", 0.0}, VersionRow{"OnlyAPoint", ".", 0.0}),
    RowName());

// Versions are decimal fractions: whoever reads 1.10 as newer than 1.4 selects the wrong layout.
TEST(FormatVersionNumbers, OneTenIsLessThanOneFour) {
  EXPECT_LT(OrvML_IO_GetFormatVersion_Number("1.10.0"), OrvML_IO_GetFormatVersion_Number("1.4"));
}

}  // namespace
