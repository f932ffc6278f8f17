// Which groups and datasets a written file has, and which it must not have.
#include "files/exchange_file_fixture.h"

#include <fstream>

namespace orvml_io_tests {
namespace {

class FileLayout : public ExchangeFileTest {};

TEST_F(FileLayout, EmptyDocumentIsAGroupWithItsDimension) {
  const RawFile file = written(BuiltDocument::input(3));

  EXPECT_EQ(allPaths(file), (Names{"/OrvInput/", "/OrvInput/dimension"}));
}

TEST_F(FileLayout, EverythingThatADocumentHoldsHasItsPath) {
  const RawFile file = written(fullDocument());

  EXPECT_EQ(allPaths(file), (Names{"/OrvInput/",
                                   "/OrvInput/Edges/",
                                   "/OrvInput/Edges/Attributes/",
                                   "/OrvInput/Edges/Attributes/line",
                                   "/OrvInput/Edges/connectivities",
                                   "/OrvInput/Edges/element_types",
                                   "/OrvInput/Edges/number_of_elements_by_type",
                                   "/OrvInput/Edges/number_of_nodes_by_element",
                                   "/OrvInput/Elements/",
                                   "/OrvInput/Elements/Attributes/",
                                   "/OrvInput/Elements/Attributes/quality",
                                   "/OrvInput/Elements/connectivities",
                                   "/OrvInput/Elements/element_types",
                                   "/OrvInput/Elements/number_of_elements_by_type",
                                   "/OrvInput/Elements/number_of_nodes_by_element",
                                   "/OrvInput/Faces/",
                                   "/OrvInput/Faces/Attributes/",
                                   "/OrvInput/Faces/Attributes/surface",
                                   "/OrvInput/Faces/connectivities",
                                   "/OrvInput/Faces/element_types",
                                   "/OrvInput/Faces/number_of_elements_by_type",
                                   "/OrvInput/Faces/number_of_nodes_by_element",
                                   "/OrvInput/Nodes/",
                                   "/OrvInput/Nodes/Attributes/",
                                   "/OrvInput/Nodes/Attributes/forced",
                                   "/OrvInput/Nodes/Attributes/size",
                                   "/OrvInput/Nodes/coordinates",
                                   "/OrvInput/ParametersVector/",
                                   "/OrvInput/ParametersVector/layers",
                                   "/OrvInput/ParametersVector/volumes_sizes",
                                   "/OrvInput/dimension",
                                   "/OrvInput/parameters"}));
}

TEST_F(FileLayout, OutputDocumentHasAGroupOfItsOwn) {
  const RawFile file = writtenOutput(BuiltDocument::output(2));

  EXPECT_EQ(allPaths(file), (Names{"/OrvOutput/", "/OrvOutput/dimension"}));
}

TEST_F(FileLayout, TheFunctionThatIsCalledDecidesTheGroup) {
  const RawFile file = writtenOutput(BuiltDocument::input(2));

  EXPECT_EQ(file.members("/"), Names{"OrvOutput"});
}

TEST_F(FileLayout, BothDocumentsLieSideBySide) {
  const BuiltDocument input = BuiltDocument::input(2);
  BuiltDocument output = BuiltDocument::output(3);
  output.scalar("s", 1.0);

  const RawFile file = writtenBoth(input, output);

  EXPECT_EQ(allPaths(file), (Names{"/OrvInput/", "/OrvInput/dimension", "/OrvOutput/",
                                   "/OrvOutput/dimension", "/OrvOutput/parameters"}));
  EXPECT_EQ(file.ints("/OrvInput/dimension"), std::vector<int>{2});
  EXPECT_EQ(file.ints("/OrvOutput/dimension"), std::vector<int>{3});
}

TEST_F(FileLayout, OneDocumentMayStandForBoth) {
  const BuiltDocument document = BuiltDocument::input(3);

  const RawFile file = writtenBoth(document, document);

  EXPECT_EQ(file.members("/"), (Names{"OrvInput", "OrvOutput"}));
}

TEST_F(FileLayout, TwoNullDocumentsMakeAMarkedFileWithoutObjects) {
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), nullptr, nullptr), 0);

  const RawFile file = RawFile::open(path());
  EXPECT_EQ(file.members("/"), Names{});
  EXPECT_EQ(file.attributes("/"), (Names{"FORMAT", "ORVMESHLIBRARY_FORMAT_VERSION"}));
}

TEST_F(FileLayout, NullOutputLeavesTheInputAlone) {
  const BuiltDocument input = BuiltDocument::input(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), input.handle(), nullptr), 0);

  EXPECT_EQ(RawFile::open(path()).members("/"), Names{"OrvInput"});
}

TEST_F(FileLayout, NullInputLeavesTheOutputAlone) {
  const BuiltDocument output = BuiltDocument::output(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), nullptr, output.handle()), 0);

  EXPECT_EQ(RawFile::open(path()).members("/"), Names{"OrvOutput"});
}

TEST_F(FileLayout, ExistingExchangeFileIsReplaced) {
  written(fullDocument()).close();

  const RawFile file = writtenOutput(BuiltDocument::output(3));

  EXPECT_EQ(allPaths(file), (Names{"/OrvOutput/", "/OrvOutput/dimension"}));
}

TEST_F(FileLayout, ExistingFileOfAnotherKindIsReplaced) {
  std::ofstream(path()) << "not an exchange file";

  const RawFile file = written(BuiltDocument::input(3));

  EXPECT_EQ(file.members("/"), Names{"OrvInput"});
}

// Programs built with the oldest HDF5 of the 1.8 series open only this version.
TEST_F(FileLayout, SuperblockHasVersionZero) {
  written(fullDocument()).close();

  const std::string bytes = bytesOf(path());

  EXPECT_EQ(bytes.substr(0, 8), "\x89HDF\r\n\x1a\n");
  EXPECT_EQ(bytes.at(8), '\0');
}

class WrittenDimension : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_P(WrittenDimension, IsOneNativeIntAsItStandsInTheDocument) {
  const RawFile file = written(BuiltDocument::input(GetParam()));

  EXPECT_EQ(file.shape("/OrvInput/dimension").extents, Extents{1});
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/dimension", H5T_NATIVE_INT));
  EXPECT_EQ(file.ints("/OrvInput/dimension"), std::vector<int>{GetParam()});
}

INSTANTIATE_TEST_SUITE_P(AnyValue, WrittenDimension, ::testing::Values(-1, 0, 1, 2, 3, 4));

class AbsentObjects : public ExchangeFileTest {
 protected:
  BuiltDocument document_ = BuiltDocument::input(3);
};

TEST_F(AbsentObjects, NoGroupForANodeContainerOfZeroNodes) {
  document_.nodes({});
  document_.attribute(ORVML_NODES, "a", std::vector<int>{});

  EXPECT_FALSE(written(document_).has("/OrvInput/Nodes"));
}

TEST_F(AbsentObjects, NoGroupForAContainerWithoutTypeGroups) {
  document_.cells(ORVML_FACES, {}, {}, {}, {0});
  document_.attribute(ORVML_FACES, "a", std::vector<int>{});

  EXPECT_FALSE(written(document_).has("/OrvInput/Faces"));
}

TEST_F(AbsentObjects, NoGroupForAContainerThatWasEmptied) {
  document_.cells(ORVML_EDGES, {LINEAR}, {2}, {1}, {0, 1});
  OrvML_IO_SetEdges(document_.handle(), 0, nullptr, LINEAR, 2);

  EXPECT_FALSE(written(document_).has("/OrvInput/Edges"));
}

TEST_F(AbsentObjects, AGroupForAContainerWhoseTypeGroupsHoldNoCells) {
  document_.cells(ORVML_EDGES, {LINEAR}, {2}, {0}, {0, 1});

  const RawFile file = written(document_);

  EXPECT_EQ(file.ints("/OrvInput/Edges/number_of_elements_by_type"), std::vector<int>{0});
  EXPECT_EQ(file.shape("/OrvInput/Edges/connectivities").extents, Extents{0});
}

TEST_F(AbsentObjects, NoTableWithoutScalarParameters) {
  document_.vector("v", std::vector<int>{1});

  EXPECT_FALSE(written(document_).has("/OrvInput/parameters"));
}

TEST_F(AbsentObjects, NoGroupWithoutVectorParameters) {
  document_.scalar("s", 1.0);

  EXPECT_FALSE(written(document_).has("/OrvInput/ParametersVector"));
}

TEST_F(AbsentObjects, NoGroupWithoutAttributes) {
  document_.nodes({0, 0, 0});

  EXPECT_EQ(written(document_).members("/OrvInput/Nodes"), Names{"coordinates"});
}

TEST_F(AbsentObjects, NothingOfTheCallbacks) {
  int anything = 0;
  void* handle = document_.handle();
  OrvML_IO_SetCallbackStatus(handle, &anything, &anything);
  OrvML_IO_SetCallbackError(handle, &anything, &anything);

  EXPECT_EQ(allPaths(written(document_)), (Names{"/OrvInput/", "/OrvInput/dimension"}));
}

}  // namespace
}  // namespace orvml_io_tests
