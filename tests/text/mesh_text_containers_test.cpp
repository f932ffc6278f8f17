// The blocks of the text export: their order, their header lines, and where the nodes stand.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/row_name.h"
#include "text/exported_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>

namespace {

using namespace orvml_io_tests;

TEST(MeshText, OfATriangleHasNineLines) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 0, 0, 1, 0, 0, 0, 1, 0}).cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {0, 1, 2});

  EXPECT_EQ(exportedText(document),
            "mesh dimension = 3 elemtype Triangle nNode = 3\n"
            "coordinates\n"
            "1 0.000000 0.000000 0.000000\n"
            "2 1.000000 0.000000 0.000000\n"
            "3 0.000000 1.000000 0.000000\n"
            "end coordinates\n"
            "elements\n"
            "1 1 2 3 \n"
            "end elements\n");
}

TEST(MeshText, IsTheSameForAnOutputDocument) {
  BuiltDocument document = BuiltDocument::output(3);
  document.nodes({1, 2, 3}).cells(ORVML_ELEMENTS, {POINT}, {1}, {1}, {0});

  EXPECT_EQ(exportedText(document),
            "mesh dimension = 3 elemtype Point nNode = 1\n"
            "coordinates\n"
            "1 1.000000 2.000000 3.000000\n"
            "end coordinates\n"
            "elements\n"
            "1 1 \n"
            "end elements\n");
}

TEST(MeshText, IsEmptyForNodesWithoutElements) { EXPECT_EQ(exportedText(withOneNode()), ""); }

TEST(MeshText, HasEdgesBeforeFacesBeforeVolumeElementsAndTheNodesOnce) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {1}, {0, 1, 2, 3})
      .cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {4, 5, 6})
      .cells(ORVML_EDGES, {LINEAR}, {2}, {1}, {7, 8});

  EXPECT_EQ(exportedText(document),
            "mesh dimension = 3 elemtype Linear nNode = 2\n"
            "coordinates\n"
            "1 1.000000 2.000000 3.000000\n"
            "end coordinates\n"
            "elements\n"
            "1 8 9 \n"
            "end elements\n"
            "mesh dimension = 3 elemtype Triangle nNode = 3\n"
            "coordinates\n"
            "end coordinates\n"
            "elements\n"
            "1 5 6 7 \n"
            "end elements\n"
            "mesh dimension = 3 elemtype Tetrahedra nNode = 4\n"
            "coordinates\n"
            "end coordinates\n"
            "elements\n"
            "1 1 2 3 4 \n"
            "end elements\n");
}

TEST(MeshText, HasTheNodesInTheFirstBlockWhicheverContainerMakesIt) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_ELEMENTS, {POINT}, {1}, {1}, {0});

  EXPECT_EQ(exportedText(document).find("1 1.000000 2.000000 3.000000\n"),
            std::string("mesh dimension = 3 elemtype Point nNode = 1\ncoordinates\n").size());
}

TEST(MeshText, HasABlockForATypeGroupWithoutCells) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {TRIANGLE}, {3}, {0}, {9});

  EXPECT_EQ(exportedText(document),
            "mesh dimension = 3 elemtype Triangle nNode = 3\n"
            "coordinates\n"
            "1 1.000000 2.000000 3.000000\n"
            "end coordinates\n"
            "elements\n"
            "end elements\n");
}

TEST(MeshText, TakesTheNumberOfElementsFromTheGroups) {
  BuiltDocument document = withOneNode();
  int indices[] = {0, 0, 0};
  ElemType shapes[] = {POINT};
  int nodesPerCell[] = {1};
  int cellsPerGroup[] = {2};

  OrvML_IO_SetEdges(document.handle(), 3, indices, 1, shapes, nodesPerCell, cellsPerGroup);

  EXPECT_NE(exportedText(document).find("elements\n1 1 \n2 1 \nend elements\n"), std::string::npos);
}

TEST(MeshText, LeavesParametersAndAttributesOut) {
  const BuiltDocument full = fullDocument();
  BuiltDocument meshAlone = BuiltDocument::input(3);
  meshAlone.nodes({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1})
      .cells(ORVML_EDGES, {LINEAR}, {2}, {3}, {0, 1, 1, 2, 2, 0})
      .cells(ORVML_FACES, {TRIANGLE}, {3}, {4}, {0, 1, 2, 0, 1, 3, 1, 2, 3, 0, 2, 3})
      .cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {2}, {0, 1, 2, 3, 1, 2, 3, 4});

  const std::string text = exportedText(full);

  EXPECT_NE(text, "");
  EXPECT_EQ(text, exportedText(meshAlone));
}

class GroupCountWithoutGroups : public ::testing::TestWithParam<int> {};

TEST_P(GroupCountWithoutGroups, MakesNoBlock) {
  const BuiltDocument document = withOneNode();
  int indices[] = {0};

  OrvML_IO_SetEdges(document.handle(), 1, indices, GetParam(), nullptr, nullptr, nullptr);

  EXPECT_EQ(exportedText(document), "");
}

INSTANTIATE_TEST_SUITE_P(Counts, GroupCountWithoutGroups, ::testing::Values(0, -1, INT_MIN));

struct Shape {
  int value;
  const char* name;

  friend std::ostream& operator<<(std::ostream& stream, const Shape& shape) {
    return stream << shape.value;
  }
};

class ShapeName : public ::testing::TestWithParam<Shape> {};

TEST_P(ShapeName, StandsInTheHeaderLine) {
  BuiltDocument document = withOneNode();
  document.cells(ORVML_FACES, {static_cast<ElemType>(GetParam().value)}, {7}, {0}, {0});

  const std::string text = exportedText(document);

  EXPECT_EQ(text.substr(0, text.find('\n')),
            std::string("mesh dimension = 3 elemtype ") + GetParam().name + " nNode = 7");
}

INSTANTIATE_TEST_SUITE_P(InTheTable, ShapeName,
                         ::testing::Values(Shape{0, "None"}, Shape{1, "Linear"},
                                           Shape{2, "Triangle"}, Shape{3, "Quadrilateral"},
                                           Shape{4, "Tetrahedra"}, Shape{5, "Hexahedra"},
                                           Shape{6, "Prism"}, Shape{7, "Point"},
                                           Shape{8, "Pyramid"}, Shape{9, "Sphere"},
                                           Shape{10, "Circle"}));
// A document may carry shapes of a later format.
INSTANTIATE_TEST_SUITE_P(OutsideTheTable, ShapeName,
                         ::testing::Values(Shape{11, "None"}, Shape{-1, "None"},
                                           Shape{INT_MAX, "None"}, Shape{INT_MIN, "None"}));

}  // namespace
