#include "hdf5/probes.h"

#include "hdf5/document_file_test.h"
#include "hdf5/exchange_file.h"

#include <climits>
#include <cstdio>
#include <optional>

namespace orvml_io_tests {
namespace {

using orvml_io::IsOrvMeshLibraryIOFormat;
using orvml_io::OpenFileForReading;
using orvml_io::Orv_H5_AttributeExists;
using orvml_io::Orv_H5_GetAttributeIfExists;
using orvml_io::Orv_H5_GetVectorDimension;
using orvml_io::Orv_H5_GroupExists;
using orvml_io::readIntegerAttribute;

class Probes : public DocumentFileTest {};

TEST_F(Probes, GroupExistsForAnyObject) {
  file().intVector("/OrvInput/v", {1});

  EXPECT_TRUE(Orv_H5_GroupExists(root(), "/OrvInput"));
  EXPECT_TRUE(Orv_H5_GroupExists(group(), "/v"));
}

TEST_F(Probes, GroupExistsForALinkToNowhere) {
  H5Lcreate_soft("/nowhere", file().id(), "/OrvInput/link", H5P_DEFAULT, H5P_DEFAULT);

  EXPECT_TRUE(Orv_H5_GroupExists(group(), "/link"));
}

TEST_F(Probes, GroupDoesNotExistWithoutALink) {
  EXPECT_FALSE(Orv_H5_GroupExists(group(), "/nothing"));
  EXPECT_FALSE(Orv_H5_GroupExists(root(), "/nothing/nothing"));
  EXPECT_FALSE(Orv_H5_GroupExists(noGroup(), "/OrvInput"));
}

TEST_F(Probes, AttributeOfAFileIsThatOfItsRootGroup) {
  file().textAttribute("/OrvInput", "ofTheGroup", "x");

  EXPECT_TRUE(Orv_H5_AttributeExists(file().id(), "FORMAT"));
  EXPECT_FALSE(Orv_H5_AttributeExists(file().id(), "ofTheGroup"));
}

TEST_F(Probes, AttributeExistsWhenTheSearchFails) {
  EXPECT_TRUE(Orv_H5_AttributeExists(-1, "FORMAT"));
}

/// Reads a text attribute of the document's group that the root group has too.
class TextProbes : public Probes {
 protected:
  /// Tells the location that the attribute exists, whatever the group's is.
  TextProbes() { file().textAttribute("/", "text", "of the root"); }

  int readText() {
    const orvml_io::SourceFile source(file().id());
    const orvml_io::OpenGroup object = group_;
    return Orv_H5_GetAttributeIfExists(source, object.id(), "text", text_);
  }

  void addText(hid_t type, const std::vector<hsize_t>& extents, const void* data) {
    file().attribute("/OrvInput", "text", type, extents, data);
    H5Tclose(type);
  }

  static hid_t textType(std::size_t bytes, H5T_str_t padding) {
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, bytes);
    H5Tset_strpad(type, padding);
    return type;
  }

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_ = "untouched";
  GroupAt group_ = group();
};

TEST_F(TextProbes, TextIsThatOfTheObject) {
  file().textAttribute("/OrvInput", "text", "of the group");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "of the group");
}

TEST_F(TextProbes, TextOfTheObjectAloneIsMissing) {
  file().removeAttribute("/", "text");
  file().textAttribute("/OrvInput", "text", "of the group");

  EXPECT_EQ(readText(), -1);

  EXPECT_EQ(text(), "untouched");
}

TEST_F(TextProbes, TextOfTheLocationAloneCannotBeRead) {
  EXPECT_LT(readText(), 0);

  EXPECT_EQ(text(), "untouched");
}

TEST_F(TextProbes, TextOfNoObjectCannotBeRead) {
  const orvml_io::SourceFile source(file().id());
  std::string text;

  EXPECT_LT(Orv_H5_GetAttributeIfExists(source, -1, "text", text), 0);
}

TEST_F(TextProbes, EmptyTextIsRead) {
  file().textAttribute("/OrvInput", "text", "");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "");
}

TEST_F(TextProbes, LongTextIsReadWhole) {
  const std::string longText(5000, 'x');
  file().textAttribute("/OrvInput", "text", longText);

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), longText);
}

TEST_F(TextProbes, TextThatFillsItsTypeIsReadWhole) {
  addText(textType(3, H5T_STR_NULLPAD), {}, "abc");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "abc");
}

TEST_F(TextProbes, PaddingBlanksAreNotPartOfTheText) {
  addText(textType(6, H5T_STR_SPACEPAD), {}, "abc   ");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "abc");
}

TEST_F(TextProbes, TextOfVariableLengthIsRead) {
  const char* value = "of any length";
  addText(textType(H5T_VARIABLE, H5T_STR_NULLTERM), {}, &value);

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "of any length");
}

TEST_F(TextProbes, TextOfVariableLengthThatWasNeverWrittenIsEmpty) {
  addText(textType(H5T_VARIABLE, H5T_STR_NULLTERM), {}, nullptr);

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "");
}

TEST_F(TextProbes, TextInUtf8IsReadByteByByte) {
  const hid_t type = textType(3, H5T_STR_NULLTERM);
  H5Tset_cset(type, H5T_CSET_UTF8);
  addText(type, {}, "\xC3\xA9");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "\xC3\xA9");
}

TEST_F(TextProbes, TextInAVectorOfOneIsRead) {
  addText(textType(4, H5T_STR_NULLTERM), {1}, "abc");

  EXPECT_EQ(readText(), 0);

  EXPECT_EQ(text(), "abc");
}

TEST_F(TextProbes, SeveralTextsCountAsMissing) {
  addText(textType(2, H5T_STR_NULLTERM), {2}, "a\0b");

  EXPECT_LT(readText(), 0);
}

TEST_F(TextProbes, NumberCountsAsMissing) {
  file().intAttributeValue("/OrvInput", "text", 1);

  EXPECT_LT(readText(), 0);
}

TEST_F(TextProbes, LeaveNoIdentifierOpen) {
  const char* value = "of any length";
  addText(textType(H5T_VARIABLE, H5T_STR_NULLTERM), {}, &value);
  const IdCounts before = opened();

  (void)readText();

  EXPECT_EQ(opened(), before);
}

class VectorDimension : public Probes {
 protected:
  int dimensionOf(const char* path) {
    const orvml_io::DatasetId dataset(H5Dopen2(file().id(), path, H5P_DEFAULT));
    return Orv_H5_GetVectorDimension(dataset.get());
  }
};

TEST_F(VectorDimension, IsTheLength) {
  file().doubleVector("/OrvInput/v", {1, 2, 3});

  EXPECT_EQ(dimensionOf("/OrvInput/v"), 3);
}

TEST_F(VectorDimension, OfAnEmptyVectorIsZero) {
  file().doubleVector("/OrvInput/v", {});

  EXPECT_EQ(dimensionOf("/OrvInput/v"), 0);
}

TEST_F(VectorDimension, OfATableWithOneColumnIsItsRows) {
  file().doubleTable("/OrvInput/v", 3, 1, {1, 2, 3});

  EXPECT_EQ(dimensionOf("/OrvInput/v"), 3);
}

TEST_F(VectorDimension, OfNoDatasetIsMinusOne) { EXPECT_EQ(dimensionOf("/OrvInput/nothing"), -1); }

TEST_F(VectorDimension, OfATableWithMoreColumnsIsMinusOne) {
  file().doubleTable("/OrvInput/v", 2, 2, {1, 2, 3, 4});

  EXPECT_EQ(dimensionOf("/OrvInput/v"), -1);
}

TEST_F(VectorDimension, BeyondThirtyTwoBitsIsMinusOne) {
  file().dataset("/OrvInput/v", H5T_NATIVE_SCHAR, {hsize_t{1} << 32}, nullptr);

  EXPECT_EQ(dimensionOf("/OrvInput/v"), -1);
}

class IntegerAttribute : public Probes {
 protected:
  std::optional<int> read(const char* object, const char* name) {
    orvml_io::SourceFile source(file().id());
    return readIntegerAttribute(source, root(), object, name);
  }
};

TEST_F(IntegerAttribute, IsRead) {
  file().intAttributeValue("/OrvInput", "MAX_ID", -7);

  EXPECT_EQ(read("/OrvInput", "MAX_ID"), -7);
}

TEST_F(IntegerAttribute, WithoutExtentsIsRead) {
  const int value = 7;
  file().attribute("/OrvInput", "MAX_ID", H5T_NATIVE_INT, {}, &value);

  EXPECT_EQ(read("/OrvInput", "MAX_ID"), 7);
}

TEST_F(IntegerAttribute, ThatIsLongEndsAtTheLargestInteger) {
  const long long value = 1LL << 40;
  file().attribute("/OrvInput", "MAX_ID", H5T_NATIVE_LLONG, {1}, &value);

  EXPECT_EQ(read("/OrvInput", "MAX_ID"), INT_MAX);
}

TEST_F(IntegerAttribute, ThatIsAFloatLosesItsFraction) {
  const double value = -7.75;
  file().attribute("/OrvInput", "MAX_ID", H5T_NATIVE_DOUBLE, {1}, &value);

  EXPECT_EQ(read("/OrvInput", "MAX_ID"), -7);
}

TEST_F(IntegerAttribute, OfAnotherKindHasNoValue) {
  const int two[2] = {1, 2};
  file().attribute("/OrvInput", "two", H5T_NATIVE_INT, {2}, two);
  file().attribute("/OrvInput", "none", H5T_NATIVE_INT, {0}, nullptr);
  file().textAttribute("/OrvInput", "text", "1");

  EXPECT_EQ(read("/OrvInput", "two"), std::nullopt);
  EXPECT_EQ(read("/OrvInput", "none"), std::nullopt);
  EXPECT_EQ(read("/OrvInput", "text"), std::nullopt);
}

TEST_F(IntegerAttribute, ThatIsMissingHasNoValue) {
  EXPECT_EQ(read("/OrvInput", "MAX_ID"), std::nullopt);
  EXPECT_EQ(read("/nothing", "MAX_ID"), std::nullopt);
}

/// The bytes of a "FORMAT" attribute, and whether they mark an exchange file.
struct MarkerCase {
  const char* name;
  std::string bytes;
  bool marks;
};

std::ostream& operator<<(std::ostream& stream, const MarkerCase& row) { return stream << row.name; }

class Markers : public Probes, public ::testing::WithParamInterface<MarkerCase> {
 protected:
  Markers() {
    file().removeAttribute("/", "FORMAT");
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, GetParam().bytes.size());
    file().attribute("/", "FORMAT", type, {}, GetParam().bytes.data());
    H5Tclose(type);
  }
};

TEST_P(Markers, MustBeExact) { EXPECT_EQ(IsOrvMeshLibraryIOFormat(file().id()), GetParam().marks); }

TEST_P(Markers, DecideWhetherAFileIsOpened) {
  file().close();

  EXPECT_EQ(OpenFileForReading(path()).valid(), GetParam().marks);
}

TEST_P(Markers, LeaveNothingOpen) {
  file().close();
  const IdCounts before = opened();

  { const orvml_io::FileId file = OpenFileForReading(path()); }

  EXPECT_EQ(opened(), before);
}

const MarkerCase kMarkerTexts[] = {{"Exact", {"ORVMESHLIBRARY\0", 15}, true},
                                   {"ExactBeforeOtherBytes", {"ORVMESHLIBRARY\0XY", 17}, true},
                                   {"OneCharacterMore", {"ORVMESHLIBRARYX\0", 16}, false},
                                   {"OneBlankMore", {"ORVMESHLIBRARY \0", 16}, false},
                                   {"OneCharacterLess", {"ORVMESHLIBRAR\0", 14}, false},
                                   {"OtherCase", {"OrvMESHLIBRARY\0", 15}, false},
                                   {"Empty", {"\0", 1}, false}};

INSTANTIATE_TEST_SUITE_P(Texts, Markers, ::testing::ValuesIn(kMarkerTexts), RowName());

TEST_F(Probes, FileWithoutAMarkerIsNoExchangeFile) {
  file().removeAttribute("/", "FORMAT");

  EXPECT_FALSE(IsOrvMeshLibraryIOFormat(file().id()));
}

TEST_F(Probes, FileWithANumberAsMarkerIsNoExchangeFile) {
  file().removeAttribute("/", "FORMAT");
  file().intAttributeValue("/", "FORMAT", 1);

  EXPECT_FALSE(IsOrvMeshLibraryIOFormat(file().id()));
}

TEST_F(Probes, MissingFileIsNotOpened) {
  const TempFile nothing;

  EXPECT_FALSE(OpenFileForReading(nothing.path()).valid());
}

TEST_F(Probes, FileThatIsNotHdf5IsNotOpened) {
  const TempFile text;
  std::FILE* stream = std::fopen(text.path(), "w");
  ASSERT_NE(stream, nullptr);
  std::fputs("ORVMESHLIBRARY", stream);
  std::fclose(stream);

  EXPECT_FALSE(OpenFileForReading(text.path()).valid());
}

TEST_F(Probes, FolderIsNotOpened) {
  EXPECT_FALSE(OpenFileForReading(::testing::TempDir().c_str()).valid());
}

TEST_F(Probes, FileIsOpenedForReadingOnly) {
  file().close();

  const orvml_io::FileId opened = OpenFileForReading(path());

  unsigned intent = H5F_ACC_RDWR;
  ASSERT_GE(H5Fget_intent(opened.get(), &intent), 0);
  EXPECT_EQ(intent, static_cast<unsigned>(H5F_ACC_RDONLY));
}

}  // namespace
}  // namespace orvml_io_tests
