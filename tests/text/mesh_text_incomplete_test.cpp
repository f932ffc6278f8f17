// The text export of meshes that are not complete or make no sense. It must end, stay inside the
// arrays and print what the rule gives, 0 for a node number that lies outside of them.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/new_array.h"
#include "support/row_name.h"
#include "text/exported_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace orvml_io_tests;

const char kNodeSection[] =
    "coordinates\n"
    "1 1.000000 2.000000 3.000000\n"
    "end coordinates\n";

/// The text of one block of faces.
std::string block(const std::string& shapeAndNodes, const std::string& elementLines) {
  return "mesh dimension = 3 elemtype " + shapeAndNodes + "\n" + kNodeSection + "elements\n" +
         elementLines + "end elements\n";
}

TEST(IncompleteMeshText, WrapsTheNumberOfTheLargestNodeIndex) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {INT_MAX, -1, INT_MIN});

  EXPECT_EQ(exportedText(document), block("Triangle nNode = 3", "1 -2147483648 0 -2147483647 \n"));
}

TEST(IncompleteMeshText, PrintsNodeNumbersThatNameNoNode) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {LINEAR}, {2}, {1}, {1000, 2000});

  EXPECT_EQ(exportedText(document), block("Linear nNode = 2", "1 1001 2001 \n"));
}

// A first group of -2 cells puts the start of the second one before the array.
TEST(IncompleteMeshText, PrintsZerosBeforeAndBehindTheConnectivities) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {TRIANGLE, TRIANGLE}, {3, 3}, {-2, 3}, {10, 11, 12});

  const std::string text = exportedText(document);

  const std::string secondBlock = "elements\n1 0 0 11 \n2 12 13 0 \nend elements\n";
  EXPECT_EQ(text.substr(text.size() - secondBlock.size()), secondBlock);
}

TEST(IncompleteMeshText, HasNoElementLinesForANegativeNumberOfCells) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {TRIANGLE}, {3}, {-1}, {0});

  EXPECT_EQ(exportedText(document), block("Triangle nNode = 3", ""));
}

// Clearing the content keeps the caller's groups, which still claim two cells.
TEST(IncompleteMeshText, HasNoElementLinesForConnectivitiesThatWereCleared) {
  const BuiltDocument document = withOneNode();
  ElemType shapes[] = {LINEAR};
  int nodesPerCell[] = {2};
  int cellsPerGroup[] = {2};
  void* handle = document.handle();
  OrvML_IO_SetFaces(handle, 2, newArray({4, 5, 6, 7}), 1, shapes, nodesPerCell, cellsPerGroup);
  OrvML_IO_DeleteFacesContent(handle);

  EXPECT_EQ(exportedText(document), block("Linear nNode = 2", ""));
}

TEST(IncompleteMeshText, IsTheSameForACopy) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {TRIANGLE, LINEAR}, {3, 2}, {-2, 5}, {0, 1, 2, 3});

  const Handle copy(OrvML_IO_NewOrvInputHandle(document.handle()));

  EXPECT_EQ(exportedText(copy.get()), exportedText(document));
}

/// A caller may leave out one of the three group arrays. The rest holds one edge of nodes 8 and 9.
struct MissingArray {
  const char* name;
  ElemType* shapes;
  int* nodesPerCell;
  int* cellsPerGroup;
  const char* header;
  const char* elementLines;

  friend std::ostream& operator<<(std::ostream& stream, const MissingArray& row) {
    return stream << row.name;
  }
};

class MissingGroupArray : public ::testing::TestWithParam<MissingArray> {};

TEST_P(MissingGroupArray, PrintsAsNothing) {
  const BuiltDocument document = withOneNode();
  int connectivities[] = {8, 9};

  OrvML_IO_SetFaces(document.handle(), 1, connectivities, 1, GetParam().shapes,
                    GetParam().nodesPerCell, GetParam().cellsPerGroup);

  EXPECT_EQ(exportedText(document), block(GetParam().header, GetParam().elementLines));
}

ElemType shapes[] = {LINEAR};
int two[] = {2};
int one[] = {1};

INSTANTIATE_TEST_SUITE_P(
    Arrays, MissingGroupArray,
    ::testing::Values(MissingArray{"None", shapes, two, one, "Linear nNode = 2", "1 9 10 \n"},
                      MissingArray{"Shapes", nullptr, two, one, "None nNode = 2", "1 9 10 \n"},
                      MissingArray{"NodesPerCell", shapes, nullptr, one, "Linear nNode = 0", ""},
                      MissingArray{"CellsPerGroup", shapes, two, nullptr, "Linear nNode = 2", ""},
                      MissingArray{"All", nullptr, nullptr, nullptr, "None nNode = 0", ""}),
    RowName());

}  // namespace
