// The element lines of the text export. The position in the connectivities advances by the running
// number of elements and not by elements times nodes: programs that read these texts count on the
// lines that this rule gives, so they are pinned here line by line.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "text/exported_text.h"
#include "text/mesh_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvml_io_tests;

/// The elements sections of a text, one after the other.
std::string elementLinesOf(const BuiltDocument& document) {
  const std::string text = exportedText(document);
  const std::string before = "\nelements\n";
  const std::string after = "end elements\n";
  std::string sections;
  for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
    at += before.size();
    const std::size_t end = text.find(after, at);
    sections += text.substr(at, end - at) + after;
  }
  return sections;
}

BuiltDocument withCells(std::vector<int> nodesPerCell, std::vector<int> cellsPerGroup,
                        std::vector<int> connectivities) {
  BuiltDocument document = BuiltDocument::input(3);
  std::vector<ElemType> shapes(nodesPerCell.size(), TRIANGLE);
  document.nodes({1, 2, 3}).cells(ORVML_FACES, std::move(shapes), std::move(nodesPerCell),
                                  std::move(cellsPerGroup), std::move(connectivities));
  return document;
}

TEST(ElementLines, OfOneGroupAreItsElements) {
  EXPECT_EQ(elementLinesOf(withCells({3}, {2}, {0, 1, 2, 10, 11, 12})),
            "1 1 2 3 \n"
            "2 11 12 13 \n"
            "end elements\n");
}

// Three triangles and two quadrilaterals. The second block starts at node index 3, the number of
// triangles, and ends below 5 x 4: five lines, the last of which lies behind the array.
TEST(ElementLines, OfASecondGroupStartAtTheNumberOfElementsBeforeIt) {
  EXPECT_EQ(elementLinesOf(documentWithMixedShapes()),
            "1 1 2 4 \n"
            "2 2 5 4 \n"
            "3 4 5 7 \n"
            "end elements\n"
            "1 2 5 4 4 \n"
            "2 5 7 2 3 \n"
            "3 6 5 1 2 \n"
            "4 5 4 0 0 \n"
            "5 0 0 0 0 \n"
            "end elements\n");
}

// Counts 2, 3, 4 give the positions 0, 2, 5 and the limits 2, 3, 4: the last block has no lines.
TEST(ElementLines, OfAThirdGroupAreLostWhenThePositionOvertakesTheLimit) {
  EXPECT_EQ(elementLinesOf(withCells({1, 1, 1}, {2, 1, 1}, {20, 21, 22, 23})),
            "1 21 \n"
            "2 22 \n"
            "end elements\n"
            "1 23 \n"
            "end elements\n"
            "end elements\n");
}

TEST(ElementLines, OfAnEmptyFirstGroupLeaveTheCountersAtZero) {
  EXPECT_EQ(elementLinesOf(withCells({3, 2}, {0, 1}, {7, 8})),
            "end elements\n"
            "1 8 9 \n"
            "end elements\n");
}

// The limit of an empty second group is still the running count times its nodes.
TEST(ElementLines, OfAnEmptySecondGroupAreTakenFromTheFirst) {
  EXPECT_EQ(elementLinesOf(withCells({2, 2}, {2, 0}, {0, 1, 2, 3})),
            "1 1 2 \n"
            "2 3 4 \n"
            "end elements\n"
            "1 3 4 \n"
            "end elements\n");
}

TEST(ElementLines, StartAnewInEachContainer) {
  BuiltDocument document = withCells({3}, {1}, {0, 1, 2});
  document.cells(ORVML_EDGES, {LINEAR}, {2}, {2}, {4, 5, 6, 7})
      .cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {1}, {0, 1, 2, 3});

  EXPECT_EQ(elementLinesOf(document),
            "1 5 6 \n"
            "2 7 8 \n"
            "end elements\n"
            "1 1 2 3 \n"
            "end elements\n"
            "1 1 2 3 4 \n"
            "end elements\n");
}

// The first group has one cell of no nodes: the second block starts behind the first node index.
TEST(ElementLines, OfAGroupWithoutNodesAdvanceThePositionAllTheSame) {
  EXPECT_EQ(elementLinesOf(withCells({0, 1}, {1, 3}, {4, 5, 6})),
            "end elements\n"
            "1 6 \n"
            "2 7 \n"
            "3 0 \n"
            "end elements\n");
}

// The counters have 32 bits: 2 x 2^30 is -2^31 there, and 4 x 2^30 is 0.
TEST(ElementLines, AreMissingWhenTheLimitWrapsAround) {
  EXPECT_EQ(elementLinesOf(withCells({1 << 30}, {2}, {0})), "end elements\n");
  EXPECT_EQ(elementLinesOf(withCells({1 << 30}, {4}, {0})), "end elements\n");
}

std::size_t linesOf(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Cells of no nodes take no place in a file. Two million of them let a second group of one triangle
// print four million node numbers behind the array: 2^20 of them, and 32 for each one held, may be.
TEST(ElementLines, BehindTheArrayAreBoundedWhateverTheCountsSay) {
  constexpr std::size_t kSectionEnds = 2;
  constexpr std::size_t kBounded = ((std::size_t{1} << 20) + 32 * 3) / 3;

  const std::string text = elementLinesOf(withCells({0, 3}, {2'000'000, 1}, {7, 8, 9}));

  EXPECT_EQ(linesOf(text), kBounded + kSectionEnds);
}

TEST(ElementLines, BehindTheArrayStandUpToTheBound) {
  const std::string text = elementLinesOf(withCells({0, 2}, {500'000, 1}, {7, 8}));

  EXPECT_EQ(linesOf(text), 500'002U / 2 + 2);
}

// One cell of a billion nodes, of which none is there, would be one line of two gigabytes.
TEST(ElementLines, LongerThanTheBoundAreMissing) {
  EXPECT_EQ(elementLinesOf(withCells({1, 1 << 30}, {1, 0}, {7})),
            "1 8 \nend elements\nend elements\n");
}

/// Cells of no or a negative number of nodes would never reach the limit.
class NodeCountWithoutElementLines : public ::testing::TestWithParam<int> {};

TEST_P(NodeCountWithoutElementLines, StandsInTheHeaderAndEndsTheExport) {
  EXPECT_EQ(exportedText(withCells({GetParam()}, {2}, {0, 1})),
            "mesh dimension = 3 elemtype Triangle nNode = " + std::to_string(GetParam()) +
                "\ncoordinates\n1 1.000000 2.000000 3.000000\nend coordinates\n"
                "elements\nend elements\n");
}

TEST_P(NodeCountWithoutElementLines, HasNoLinesForANegativeNumberOfCellsEither) {
  EXPECT_EQ(elementLinesOf(withCells({GetParam()}, {-2}, {0, 1})), "end elements\n");
}

INSTANTIATE_TEST_SUITE_P(Counts, NodeCountWithoutElementLines, ::testing::Values(0, -1, -4));

TEST(PrintElements, AdvancesThePositionByTheRunningCount) {
  const BuiltDocument document = documentWithMixedShapes();
  const orvml_io::Elems& faces = *orvml_io::documentOf(document.handle())->faces;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::tmpfile(), std::fclose);
  int position = 0;
  int count = 0;

  EXPECT_EQ(orvml_io::PrintElements(faces, 0, position, count, stream.get()), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(position, 3);

  EXPECT_EQ(orvml_io::PrintElements(faces, 1, position, count, stream.get()), 0);
  EXPECT_EQ(count, 5);
  EXPECT_EQ(position, 8);
}

}  // namespace
