// What the writers answer, and what they leave in the file when a document cannot be written.
#include "files/described_document.h"
#include "files/exchange_file_fixture.h"

#include <unistd.h>

#include <climits>

namespace orvml_io_tests {
namespace {

class WriteResult : public ExchangeFileTest {
 protected:
  [[nodiscard]] bool fileExists() const { return ::access(path(), F_OK) == 0; }
};

TEST_F(WriteResult, IsZeroForEachWriter) {
  const BuiltDocument document = fullDocument();

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 0);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), document.handle()), 0);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), document.handle(), document.handle()), 0);
}

TEST_F(WriteResult, IsOneForANullFileName) {
  const BuiltDocument document = BuiltDocument::input(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(nullptr, document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(nullptr, document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(nullptr, document.handle(), document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(nullptr, nullptr, nullptr), 1);
}

TEST_F(WriteResult, IsOneForANullHandleAndNoFileIsMade) {
  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), nullptr), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), nullptr), 1);

  EXPECT_FALSE(fileExists());
}

TEST_F(WriteResult, NullHandleLeavesAnExistingFileAlone) {
  written(fullDocument()).close();
  const std::string before = bytesOf(path());

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), nullptr), 1);

  EXPECT_EQ(bytesOf(path()), before);
}

/// Paths at which no file can be created.
class ImpossiblePath : public ::testing::TestWithParam<const char*> {};

TEST_P(ImpossiblePath, GivesOneFromEachWriter) {
  const BuiltDocument document = BuiltDocument::input(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(GetParam(), document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(GetParam(), document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(GetParam(), document.handle(), nullptr), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(GetParam(), nullptr, nullptr), 1);
}

INSTANTIATE_TEST_SUITE_P(Each, ImpossiblePath,
                         ::testing::Values("/no/such/folder/file.h5", "/", "",
                                           "/dev/null/file.h5"));

class RefusedName : public ExchangeFileTest, public ::testing::WithParamInterface<const char*> {
 protected:
  BuiltDocument document_ = fullDocument();
};

TEST_P(RefusedName, OfAVectorParameterGivesOne) {
  document_.vector(GetParam(), std::vector<int>{1});

  writtenWithFailure(document_).close();
}

TEST_P(RefusedName, OfAnAttributeGivesOne) {
  document_.attribute(ORVML_ELEMENTS, GetParam(), std::vector<int>{1});

  writtenWithFailure(document_).close();
}

const std::string kTooLong(80, 'n');
const std::string kMuchTooLong(2000, 'n');

// A link cannot be empty, its name cannot be the group's own, and it cannot lie in a group that
// does not exist.
INSTANTIATE_TEST_SUITE_P(Each, RefusedName,
                         ::testing::Values(kTooLong.c_str(), kMuchTooLong.c_str(), "", ".",
                                           "no/group"));

class TooLongName : public ExchangeFileTest {
 protected:
  BuiltDocument document_ = fullDocument();
};

TEST_F(TooLongName, OneByteLessIsWritten) {
  const std::string longest(79, 'n');
  document_.scalar(longest.c_str(), 1)
      .vector(longest.c_str(), std::vector<int>{1})
      .attribute(ORVML_NODES, longest.c_str(), std::vector<int>{1});

  const RawFile file = written(document_);

  EXPECT_TRUE(file.has("/OrvInput/ParametersVector/" + longest));
  EXPECT_TRUE(file.has("/OrvInput/Nodes/Attributes/" + longest));
  EXPECT_EQ(file.shape("/OrvInput/parameters").extents, Extents{3});
}

TEST_F(TooLongName, OfAScalarGivesOneBeforeTheVectors) {
  document_.scalar(kTooLong.c_str(), 1);

  const RawFile file = writtenWithFailure(document_);

  EXPECT_EQ(file.members("/OrvInput"), (Names{"Edges", "Elements", "Faces", "Nodes", "dimension"}));
}

TEST_F(TooLongName, OfAVectorGivesOneAfterTheVectorsThatSortBefore) {
  document_.vector(kTooLong.c_str(), std::vector<int>{1});

  const RawFile file = writtenWithFailure(document_);

  EXPECT_TRUE(file.has("/OrvInput/parameters"));
  EXPECT_EQ(file.members("/OrvInput/ParametersVector"), Names{"layers"});
}

TEST_F(TooLongName, OfANodeAttributeEndsTheWritingAfterTheNodes) {
  document_.attribute(ORVML_NODES, kTooLong.c_str(), std::vector<int>{1});

  const RawFile file = writtenWithFailure(document_);

  EXPECT_EQ(file.members("/OrvInput"), (Names{"Nodes", "dimension"}));
  EXPECT_EQ(file.members("/OrvInput/Nodes/Attributes"), Names{"forced"});
}

TEST_F(TooLongName, OfAnEdgeAttributeEndsTheWritingAfterTheEdges) {
  document_.attribute(ORVML_EDGES, kTooLong.c_str(), std::vector<int>{1});

  const RawFile file = writtenWithFailure(document_);

  EXPECT_EQ(file.members("/OrvInput"), (Names{"Edges", "Nodes", "dimension"}));
  EXPECT_EQ(file.members("/OrvInput/Edges"),
            (Names{"Attributes", "connectivities", "element_types", "number_of_elements_by_type",
                   "number_of_nodes_by_element"}));
}

TEST_F(TooLongName, OfAFaceAttributeEndsTheWritingAfterTheFaces) {
  document_.attribute(ORVML_FACES, kTooLong.c_str(), std::vector<int>{1});

  EXPECT_EQ(writtenWithFailure(document_).members("/OrvInput"),
            (Names{"Edges", "Faces", "Nodes", "dimension"}));
}

TEST_F(TooLongName, OfAVolumeElementAttributeEndsTheWritingBeforeTheParameters) {
  document_.attribute(ORVML_ELEMENTS, kTooLong.c_str(), std::vector<int>{1});

  EXPECT_EQ(writtenWithFailure(document_).members("/OrvInput"),
            (Names{"Edges", "Elements", "Faces", "Nodes", "dimension"}));
}

TEST_F(TooLongName, LeavesMarkerVersionAndIdentificationInTheFile) {
  document_.attribute(ORVML_NODES, kTooLong.c_str(), std::vector<int>{1});

  EXPECT_EQ(writtenWithFailure(document_).attributes("/").size(), 5U);
}

TEST_F(TooLongName, InTheInputKeepsTheOutputOutOfTheFile) {
  document_.scalar(kTooLong.c_str(), 1);
  const BuiltDocument output = BuiltDocument::output(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), document_.handle(), output.handle()), 1);

  EXPECT_EQ(RawFile::open(path()).members("/"), Names{"OrvInput"});
}

TEST_F(TooLongName, InTheOutputGivesOneAfterTheInput) {
  document_.scalar(kTooLong.c_str(), 1);
  const BuiltDocument input = BuiltDocument::input(3);

  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), input.handle(), document_.handle()), 1);

  EXPECT_EQ(RawFile::open(path()).members("/"), (Names{"OrvInput", "OrvOutput"}));
}

TEST_F(TooLongName, LeavesTheDocumentAsItWas) {
  document_.scalar(kTooLong.c_str(), 1);
  const std::string before = describe(document_.handle());

  writtenWithFailure(document_).close();

  EXPECT_EQ(describe(document_.handle()), before);
  EXPECT_EQ(transmittedNames(document_.handle(), ORVML_NODES), Names{"size"});
}

TEST_F(WriteResult, SuccessLeavesTheDocumentAsItWas) {
  const BuiltDocument document = fullDocument();
  const std::string before = describe(document.handle());

  written(document).close();

  EXPECT_EQ(describe(document.handle()), before);
  EXPECT_EQ(transmittedNames(document.handle(), ORVML_NODES), Names{"size"});
}

class RefusedNodes : public ExchangeFileTest {
 protected:
  /// Writes a document that claims a number of nodes and a dimension.
  void expectRefused(int numberOfNodes, int dimension) {
    const BuiltDocument document = BuiltDocument::input(dimension);
    const double coordinates[] = {0, 1, 2};
    OrvML_IO_SetNodesCoords(document.handle(), numberOfNodes, coordinates);
    const RawFile file = writtenWithFailure(document);
    EXPECT_FALSE(file.has("/OrvInput/Nodes/coordinates"));
    EXPECT_TRUE(file.has("/OrvInput/dimension"));
  }
};

TEST_F(RefusedNodes, NegativeNumberGivesOne) { expectRefused(-1, 3); }

TEST_F(RefusedNodes, NegativeDimensionGivesOne) { expectRefused(1, -1); }

TEST_F(RefusedNodes, MoreCoordinatesThanThe32BitCountGiveOne) { expectRefused(INT_MAX, 3); }

// The count of a document that was read may be raised; the array behind it stays as long as it was.
TEST_F(RefusedNodes, MoreNodesThanTheArrayOfAReadDocumentHoldsGiveOne) {
  written(fullDocument()).close();
  const ReadDocument read = readInput(path());
  ASSERT_EQ(read.result, 0);
  OrvML_IO_SetNumberOfNodes(read.handle(), 6);
  const TempFile copy;

  EXPECT_EQ(OrvML_IO_WriteOrvInput(copy.path(), read.handle()), 1);
}

/// Type groups that cannot be written, in the faces of a document with volume elements.
class RefusedCells : public ExchangeFileTest {
 protected:
  RawFile writtenWithFaces(int groups, int* nodesPerCell, int* cellsPerGroup) {
    OrvML_IO_SetFaces(document_.handle(), 1, connectivities_, groups, shapes_, nodesPerCell,
                      cellsPerGroup);
    document_.attribute(ORVML_FACES, "a", std::vector<int>{1});
    RawFile file = writtenWithFailure(document_);
    EXPECT_FALSE(file.has("/OrvInput/Elements"));
    return file;
  }

  BuiltDocument document_ = fullDocument();
  int connectivities_[3] = {0, 1, 2};
  ElemType shapes_[3] = {TRIANGLE, TRIANGLE, TRIANGLE};
  int two_[2] = {2, 2};
  int one_[3] = {1, 1, 1};
};

TEST_F(RefusedCells, NegativeCellsOfAGroupGiveOne) {
  int cells[] = {1, -1};

  EXPECT_FALSE(writtenWithFaces(2, two_, cells).has("/OrvInput/Faces/connectivities"));
}

TEST_F(RefusedCells, NegativeNodesPerCellGiveOne) {
  int nodes[] = {3, -3};

  EXPECT_FALSE(writtenWithFaces(2, nodes, one_).has("/OrvInput/Faces/connectivities"));
}

TEST_F(RefusedCells, MoreIndicesInAGroupThanThe32BitCountGiveOne) {
  int nodes[] = {65536, 0};
  int cells[] = {65536, 0};

  EXPECT_FALSE(writtenWithFaces(2, nodes, cells).has("/OrvInput/Faces/connectivities"));
}

// The sum is 2^32: counted in 32 bits it would be 0.
TEST_F(RefusedCells, MoreIndicesInAllGroupsThanThe32BitCountGiveOne) {
  int cells[] = {INT_MAX, INT_MAX, 2};

  EXPECT_FALSE(writtenWithFaces(3, one_, cells).has("/OrvInput/Faces/connectivities"));
}

TEST_F(RefusedCells, NullNodesPerCellGiveOne) {
  EXPECT_FALSE(writtenWithFaces(1, nullptr, one_).has("/OrvInput/Faces/connectivities"));
}

TEST_F(RefusedCells, NullCellsPerGroupGiveOne) {
  EXPECT_FALSE(writtenWithFaces(1, two_, nullptr).has("/OrvInput/Faces/connectivities"));
}

// Every step of a container runs, whatever the ones before it gave: of a negative number of groups
// only the three vectors of that length are missing.
TEST_F(RefusedCells, NegativeNumberOfGroupsGivesOneAndTheOtherStepsRun) {
  const RawFile file = writtenWithFaces(-1, two_, one_);

  EXPECT_EQ(file.members("/OrvInput/Faces"), (Names{"Attributes", "connectivities"}));
  EXPECT_EQ(file.shape("/OrvInput/Faces/connectivities").extents, Extents{0});
  EXPECT_TRUE(file.has("/OrvInput/Faces/Attributes/a"));
}

TEST_F(RefusedCells, IndicesThatCannotBeCountedLeaveTheAttributesWritten) {
  int cells[] = {1, -1};

  EXPECT_TRUE(writtenWithFaces(2, two_, cells).has("/OrvInput/Faces/Attributes/a"));
}

}  // namespace
}  // namespace orvml_io_tests
