// The attributes on the root group of a written file, byte by byte.
#include "files/exchange_file_fixture.h"
#include "files/root_attributes.h"

namespace orvml_io_tests {
namespace {

/// The bytes of a text with the terminator that files keep.
std::string terminated(const std::string& text) { return text + std::string(1, '\0'); }

/// Tells whether an attribute is of the C string type, apart from its size.
bool isNullTerminatedAscii(const RawFile& file, const char* name) {
  const hid_t attribute = H5Aopen_by_name(file.id(), "/", name, H5P_DEFAULT, H5P_DEFAULT);
  const hid_t type = H5Aget_type(attribute);
  const bool answer = H5Tget_strpad(type) == H5T_STR_NULLTERM &&
                      H5Tget_cset(type) == H5T_CSET_ASCII && H5Tis_variable_str(type) == 0;
  H5Tclose(type);
  H5Aclose(attribute);
  return answer;
}

class RootAttributes : public ExchangeFileTest {
 protected:
  RawFile writtenWith(const char* module, const char* version, const char* creator) {
    BuiltDocument document = BuiltDocument::input(3);
    document.identification(module, version, creator);
    return written(document);
  }
};

TEST_F(RootAttributes, AreTheFiveOfTheLayoutAndNoOther) {
  const RawFile file = writtenWith("m", "1", "c");

  EXPECT_EQ(file.attributes("/"),
            (Names{"FORMAT", kFormatVersion, kCreator, kModuleVersion, kModule}));
}

TEST_F(RootAttributes, MarkerIsItsTextWithTheTerminator) {
  const RawFile file = writtenWith("m", "1", "c");

  EXPECT_EQ(file.attributeBytes("/", "FORMAT"), terminated("ORVMESHLIBRARY"));
}

TEST_F(RootAttributes, FormatVersionIsTheOneThatSavingTakesAtLeast) {
  const BuiltDocument document = BuiltDocument::input(3);

  const RawFile file = written(document);

  EXPECT_EQ(file.attributeBytes("/", kFormatVersion), terminated("1.4"));
  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(document.handle()), "1.4");
}

TEST_F(RootAttributes, FormatVersionOfAFileWithoutDocumentsIsTheSame) {
  ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), nullptr, nullptr), 0);

  const RawFile file = RawFile::open(path());

  EXPECT_EQ(file.attributeBytes("/", kFormatVersion), terminated("1.4"));
  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(nullptr), "1.4");
}

TEST_F(RootAttributes, IdentificationIsTheDocuments) {
  const RawFile file = writtenWith("ORVML_OCTREE_MESHER", "2.1", "tests");

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated("ORVML_OCTREE_MESHER"));
  EXPECT_EQ(file.attributeBytes("/", kModuleVersion), terminated("2.1"));
  EXPECT_EQ(file.attributeBytes("/", kCreator), terminated("tests"));
}

TEST_F(RootAttributes, EmptyTextsAreOneByteLong) {
  const RawFile file = written(BuiltDocument::input(3));

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated(""));
  EXPECT_EQ(file.attributeBytes("/", kModuleVersion), terminated(""));
  EXPECT_EQ(file.attributeBytes("/", kCreator), terminated(""));
}

TEST_F(RootAttributes, LongestTextIsKeptWhole) {
  const std::string longest(79, 'x');

  const RawFile file = writtenWith(longest.c_str(), longest.c_str(), longest.c_str());

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated(longest));
  EXPECT_EQ(file.attributeBytes("/", kModuleVersion), terminated(longest));
  EXPECT_EQ(file.attributeBytes("/", kCreator), terminated(longest));
}

TEST_F(RootAttributes, BytesOutsideAsciiAreKept) {
  const RawFile file = writtenWith("maill\xc3\xa9", "1", "\x80\xff");

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated("maill\xc3\xa9"));
  EXPECT_EQ(file.attributeBytes("/", kCreator), terminated("\x80\xff"));
}

TEST_F(RootAttributes, OldSpellingOfAModuleIsWrittenAsItIs) {
  const RawFile file = writtenWith("OrvML_OCTREE_MESHER", "1", "c");

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated("OrvML_OCTREE_MESHER"));
}

TEST_F(RootAttributes, DocumentGroupCarriesNone) {
  const RawFile file = written(fullDocument());

  EXPECT_EQ(file.attributes("/OrvInput"), Names{});
  EXPECT_EQ(file.attributes("/OrvInput/dimension"), Names{});
}

TEST_F(RootAttributes, OutputReplacesTheTextsOfTheInput) {
  BuiltDocument input = BuiltDocument::input(3);
  input.identification("a much longer module name", "1.0", "input creator");
  BuiltDocument output = BuiltDocument::output(3);
  output.identification("n", "2", "");

  const RawFile file = writtenBoth(input, output);

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated("n"));
  EXPECT_EQ(file.attributeBytes("/", kModuleVersion), terminated("2"));
  EXPECT_EQ(file.attributeBytes("/", kCreator), terminated(""));
  EXPECT_EQ(file.attributes("/").size(), 5U);
}

TEST_F(RootAttributes, NullOutputLeavesTheTextsOfTheInput) {
  BuiltDocument input = BuiltDocument::input(3);
  input.identification("m", "1", "c");
  ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), input.handle(), nullptr), 0);

  const RawFile file = RawFile::open(path());

  EXPECT_EQ(file.attributeBytes("/", kModule), terminated("m"));
}

class RootAttributeType : public RootAttributes,
                          public ::testing::WithParamInterface<const char*> {};

TEST_P(RootAttributeType, IsAScalarOfTheCStringType) {
  const RawFile file = writtenWith("m", "1", "c");

  const RawShape shape = file.attributeShape("/", GetParam());

  EXPECT_EQ(shape.typeClass, H5T_STRING);
  EXPECT_TRUE(shape.extents.empty());
  EXPECT_TRUE(isNullTerminatedAscii(file, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(EachOne, RootAttributeType,
                         ::testing::Values("FORMAT", kFormatVersion, kCreator, kModule,
                                           kModuleVersion),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace orvml_io_tests
