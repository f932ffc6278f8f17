// What the readers take from the attributes on the root group of files that others made.
#include "files/exchange_file_fixture.h"
#include "files/root_attributes.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <cstring>

namespace orvml_io_tests {
namespace {

/// Puts a string attribute of any storage on the root group. `bytes` fills the type exactly.
void fixedText(RawFile& file, const char* name, const std::string& bytes, H5T_str_t padding,
               H5T_cset_t characters = H5T_CSET_ASCII) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, bytes.size());
  H5Tset_strpad(type, padding);
  H5Tset_cset(type, characters);
  file.attribute("/", name, type, {}, bytes.data());
  H5Tclose(type);
}

void variableText(RawFile& file, const char* name, const char* text) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, H5T_VARIABLE);
  file.attribute("/", name, type, {}, &text);
  H5Tclose(type);
}

class ReadMarker : public ExchangeFileTest {
 protected:
  /// A complete document in a file whose marker the test sets.
  RawFile unmarked() {
    RawFile file = smallInput();
    file.removeAttribute("/", "FORMAT");
    return file;
  }
  void expectAccepted(RawFile& file) {
    const ReadDocument document = read(file);
    EXPECT_EQ(document.result, 0);
    EXPECT_NE(document.handle(), nullptr);
  }
  void expectRejected(RawFile& file) {
    const ReadDocument document = read(file);
    EXPECT_EQ(document.result, 0);
    EXPECT_EQ(document.handle(), nullptr);
  }
};

TEST_F(ReadMarker, ExactTextIsAccepted) {
  RawFile file = unmarked();
  file.textAttribute("/", "FORMAT", "ORVMESHLIBRARY");

  expectAccepted(file);
}

TEST_F(ReadMarker, MissingOneRejectsTheFile) {
  RawFile file = unmarked();

  expectRejected(file);
}

class OtherMarker : public ReadMarker, public ::testing::WithParamInterface<const char*> {};

TEST_P(OtherMarker, RejectsTheFile) {
  RawFile file = unmarked();
  file.textAttribute("/", "FORMAT", GetParam());

  expectRejected(file);
}

INSTANTIATE_TEST_SUITE_P(Each, OtherMarker,
                         ::testing::Values("ORVMESHLIBRARYX", "ORVMESHLIBRAR", "", "orvmeshlibrary",
                                           "ORVMESHLIBRARY ", " ORVMESHLIBRARY", "XRVMESHLIBRARY",
                                           "ORVMESHLIBRARY/ORVMESHLIBRARY"));

TEST_F(ReadMarker, BytesBehindTheTerminatorDoNotCount) {
  RawFile file = unmarked();
  fixedText(file, "FORMAT", std::string("ORVMESHLIBRARY\0garbage", 22), H5T_STR_NULLTERM);

  expectAccepted(file);
}

TEST_F(ReadMarker, TextThatFillsItsTypeWithoutATerminatorIsAccepted) {
  RawFile file = unmarked();
  fixedText(file, "FORMAT", "ORVMESHLIBRARY", H5T_STR_NULLPAD);

  expectAccepted(file);
}

TEST_F(ReadMarker, TextOfVariableLengthIsAccepted) {
  RawFile file = unmarked();
  variableText(file, "FORMAT", "ORVMESHLIBRARY");

  expectAccepted(file);
}

TEST_F(ReadMarker, OtherTextOfVariableLengthRejectsTheFile) {
  RawFile file = unmarked();
  variableText(file, "FORMAT", "ORVMESHLIBRARYX");

  expectRejected(file);
}

TEST_F(ReadMarker, IntegerRejectsTheFile) {
  RawFile file = unmarked();
  file.intAttributeValue("/", "FORMAT", 1);

  expectRejected(file);
}

TEST_F(ReadMarker, SeveralTextsRejectTheFile) {
  RawFile file = unmarked();
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, 15);
  file.attribute("/", "FORMAT", type, {2}, "ORVMESHLIBRARY\0ORVMESHLIBRARY");
  H5Tclose(type);

  expectRejected(file);
}

TEST_F(ReadMarker, OnAnotherObjectThanTheRootDoesNotCount) {
  RawFile file = unmarked();
  file.textAttribute("/OrvInput", "FORMAT", "ORVMESHLIBRARY");

  expectRejected(file);
}

class ReadIdentification : public ExchangeFileTest {};

TEST_F(ReadIdentification, TextsComeFromTheRoot) {
  RawFile file = smallInput();
  file.textAttribute("/", kModule, "m");
  file.textAttribute("/", kModuleVersion, "2.1");
  file.textAttribute("/", kCreator, "c");

  const ReadDocument document = read(file);

  ASSERT_EQ(document.result, 0);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "m");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document.handle()), "2.1");
  EXPECT_EQ(creatorOf(document.handle()), "c");
}

TEST_F(ReadIdentification, MissingTextsAreEmptyAndNoFailure) {
  RawFile file = smallInput();

  const ReadDocument document = read(file);

  ASSERT_EQ(document.result, 0);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document.handle()), "");
  EXPECT_EQ(creatorOf(document.handle()), "");
}

TEST_F(ReadIdentification, OutputTakesTheSameTexts) {
  RawFile file = smallOutput();
  file.textAttribute("/", kModule, "m");

  const ReadDocument document = readAsOutput(file);

  ASSERT_EQ(document.result, 0);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "m");
}

TEST_F(ReadIdentification, BothDocumentsGetTheTextsOfTheOutput) {
  BuiltDocument input = fullDocument();
  input.identification("input module", "1", "input creator");
  BuiltDocument output = fullDocument();
  output.identification("output module", "2", "output creator");
  writtenBoth(input, output).close();

  const ReadDocument readBack = readInput(path());
  const ReadDocument readOut = readOutput(path());

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(readBack.handle()), "output module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(readBack.handle()), "2");
  EXPECT_EQ(creatorOf(readBack.handle()), "output creator");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(readOut.handle()), "output module");
}

TEST_F(ReadIdentification, OldSpellingOfTheOctreeMesherIsReplaced) {
  RawFile file = smallInput();
  file.textAttribute("/", kModule, "OrvML_OCTREE_MESHER");

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(read(file).handle()), "ORVML_OCTREE_MESHER");
}

TEST_F(ReadIdentification, LongerNameThatBeginsWithTheOldSpellingIsKept) {
  RawFile file = smallInput();
  file.textAttribute("/", kModule, "OrvML_OCTREE_MESHER_2");

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(read(file).handle()), "OrvML_OCTREE_MESHER_2");
}

TEST_F(ReadIdentification, ShorterNameThatBeginsLikeTheOldSpellingIsKept) {
  RawFile file = smallInput();
  file.textAttribute("/", kModule, "OrvML_OCTREE_MESHE");

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(read(file).handle()), "OrvML_OCTREE_MESHE");
}

TEST_F(ReadIdentification, OldSpellingElsewhereIsKept) {
  RawFile file = smallInput();
  file.textAttribute("/", kCreator, "OrvML_OCTREE_MESHER");

  EXPECT_EQ(creatorOf(read(file).handle()), "OrvML_OCTREE_MESHER");
}

TEST_F(ReadIdentification, TextOf79BytesIsReadWhole) {
  RawFile file = smallInput();
  file.textAttribute("/", kModule, std::string(79, 'm'));

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(read(file).handle()), std::string(79, 'm'));
}

class LongText : public ExchangeFileTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(LongText, IsCutAt79Bytes) {
  RawFile file = smallInput();
  const std::string text(GetParam(), 'x');
  file.textAttribute("/", kModule, text);
  file.textAttribute("/", kModuleVersion, text);
  file.textAttribute("/", kCreator, text);

  const ReadDocument document = read(file);

  ASSERT_EQ(document.result, 0);
  const std::string cut(79, 'x');
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), cut);
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document.handle()), cut);
  EXPECT_EQ(creatorOf(document.handle()), cut);
}

INSTANTIATE_TEST_SUITE_P(Each, LongText, ::testing::Values(80, 81, 1023, 1024, 5000));

TEST_F(ReadIdentification, VariableLengthTextsAreRead) {
  RawFile file = smallInput();
  variableText(file, kModule, "m");
  variableText(file, kModuleVersion, "");
  variableText(file, kCreator, std::string(200, 'c').c_str());

  const ReadDocument document = read(file);

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "m");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document.handle()), "");
  EXPECT_EQ(creatorOf(document.handle()), std::string(79, 'c'));
}

TEST_F(ReadIdentification, Utf8TextsAreReadByteByByte) {
  RawFile file = smallInput();
  fixedText(file, kModule, "maill\xc3\xa9", H5T_STR_NULLPAD, H5T_CSET_UTF8);

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(read(file).handle()), "maill\xc3\xa9");
}

TEST_F(ReadIdentification, AttributeThatIsNoTextCountsAsMissing) {
  RawFile file = smallInput();
  file.intAttributeValue("/", kModule, 65);

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "");
}

// The fields of a document that was used before keep what the file says nothing about.
TEST_F(ReadIdentification, MissingTextsLeaveTheFieldsOfADocumentUnchanged) {
  BuiltDocument built = BuiltDocument::input(3);
  built.identification("m", "1", "c");
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  std::strcpy(document.fileFormatVersion, "1.4");
  const RawFile file = smallInput("");
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(document.ReadIOCreator(source), 0);
  EXPECT_EQ(document.ReadModuleNameAndVersion(source), 0);
  EXPECT_EQ(document.ReadFormatVersion(source), 0);

  EXPECT_STREQ(document.ioCreator, "c");
  EXPECT_STREQ(document.moduleName, "m");
  EXPECT_STREQ(document.moduleFormatVersion, "1");
  EXPECT_STREQ(document.fileFormatVersion, "") << "the version alone becomes empty";
}

class ReadFormatVersion : public ExchangeFileTest {};

TEST_F(ReadFormatVersion, IsKeptInTheDocument) {
  RawFile file = smallInput("1.40");

  EXPECT_STREQ(orvml_io::documentOf(read(file).handle())->fileFormatVersion, "1.40");
}

class NamedFormatVersion : public ExchangeFileTest,
                           public ::testing::WithParamInterface<const char*> {};

TEST_P(NamedFormatVersion, ReadsParametersByName) {
  RawFile file = smallInput(GetParam());
  file.group("/OrvInput/ParametersVector");
  file.intVector("/OrvInput/ParametersVector/v", {1});
  file.group("/OrvInput/Nodes/Attributes");
  file.intVector("/OrvInput/Nodes/Attributes/a", {1, 2, 3});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "size"), 0.5);
  EXPECT_EQ(intParameterOf(document.handle(), "v"), std::vector<int>{1});
  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), (std::vector<int>{1, 2, 3}));
}

// No version is ever refused; newer ones are read as far as they are alike.
INSTANTIATE_TEST_SUITE_P(FromOnePointFourOn, NamedFormatVersion,
                         ::testing::Values("1.4", "1.40", "1.4.9", "1.5", "2.0", "10", "1.4 beta",
                                           " 1.4", "1e9"));

class PositionalFormatVersion : public ExchangeFileTest,
                                public ::testing::WithParamInterface<const char*> {};

TEST_P(PositionalFormatVersion, ReadsParametersAndAttributesByPosition) {
  RawFile file = smallInput(GetParam());
  file.remove("/OrvInput/parameters");
  file.doubleVector("/OrvInput/parameters", {0.5});
  for (const char* group : {"/OrvInput/GenericMarkers", "/OrvInput/Nodes/UserAttributes",
                            "/OrvInput/Faces/UserMarkers"}) {
    file.group(group);
    file.intAttributeValue(group, "MAX_ID", 1);
  }
  file.intVector("/OrvInput/GenericMarkers/0", {4});
  file.doubleVector("/OrvInput/Nodes/UserAttributes/0", {7, 8, 9});
  file.intVector("/OrvInput/Faces/UserMarkers/0", {6});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE"), 0.5);
  EXPECT_EQ(intParameterOf(document.handle(), "0"), std::vector<int>{4});
  EXPECT_EQ(doubleAttributeOf(document.handle(), ORVML_NODES, "user-attribute-0"),
            (std::vector<double>{7, 8, 9}));
  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_FACES, "ORVML_OCTREEMESHER_FACES_SURFACE_ID"),
            std::vector<int>{6});
}

// The empty text makes a file without the attribute.
INSTANTIATE_TEST_SUITE_P(BelowOnePointFour, PositionalFormatVersion,
                         ::testing::Values("", "1.3", "1.10.0", "0", "-2", "v1.4"));

TEST_F(ReadFormatVersion, ThatIsNoTextReadsLikeAMissingOne) {
  RawFile file = smallInput("");
  file.intAttributeValue("/", kFormatVersion, 2);

  const ReadDocument document = read(file);

  EXPECT_STREQ(orvml_io::documentOf(document.handle())->fileFormatVersion, "");
}

}  // namespace
}  // namespace orvml_io_tests
