// The node lines of the text export: a 1-based number and three values, whatever the dimension.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/row_name.h"
#include "text/exported_text.h"
#include "text/mesh_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvml_io_tests;

/// A document whose text is one block without elements around the node lines.
BuiltDocument withNodes(int dimension, std::vector<double> coordinates) {
  BuiltDocument document = BuiltDocument::input(dimension);
  document.nodes(std::move(coordinates)).cells(ORVML_EDGES, {LINEAR}, {2}, {0}, {0});
  return document;
}

/// What stands between the lines "coordinates" and "end coordinates".
std::string nodeLinesOf(void* document) {
  const std::string text = exportedText(document);
  const std::string before = "\ncoordinates\n";
  const std::size_t start = text.find(before) + before.size();
  return text.substr(start, text.find("end coordinates\n") - start);
}

std::string nodeLinesOf(const BuiltDocument& document) { return nodeLinesOf(document.handle()); }

TEST(NodeLines, OfAMeshInSpaceHoldTheNodesCoordinates) {
  EXPECT_EQ(nodeLinesOf(withNodes(3, {1.5, -2, 0.25, 1e6, 0, 0.1})),
            "1 1.500000 -2.000000 0.250000\n"
            "2 1000000.000000 0.000000 0.100000\n");
}

// Readers of the text expect three columns.
TEST(NodeLines, OfAPlaneMeshEndWithTheFirstCoordinateOfTheNextNode) {
  EXPECT_EQ(nodeLinesOf(withNodes(2, {1, 2, 3, 4, 5, 6})),
            "1 1.000000 2.000000 3.000000\n"
            "2 3.000000 4.000000 5.000000\n"
            "3 5.000000 6.000000 0.000000\n");
}

TEST(NodeLines, OfALinearMeshHoldTheCoordinatesOfThreeNodes) {
  EXPECT_EQ(nodeLinesOf(withNodes(1, {1, 2, 3})),
            "1 1.000000 2.000000 3.000000\n"
            "2 2.000000 3.000000 0.000000\n"
            "3 3.000000 0.000000 0.000000\n");
}

TEST(NodeLines, OfAMeshOfFourDimensionsLeaveTheLastCoordinateOut) {
  EXPECT_EQ(nodeLinesOf(withNodes(4, {1, 2, 3, 4, 5, 6, 7, 8})),
            "1 1.000000 2.000000 3.000000\n"
            "2 5.000000 6.000000 7.000000\n");
}

class DimensionWithoutNodeLines : public ::testing::TestWithParam<int> {};

TEST_P(DimensionWithoutNodeLines, LeavesTheSectionEmptyAndStandsInTheHeader) {
  const BuiltDocument document = withNodes(3, {1, 2, 3});
  OrvML_IO_SetMeshDimension(document.handle(), GetParam());

  EXPECT_EQ(exportedText(document), "mesh dimension = " + std::to_string(GetParam()) +
                                        " elemtype Linear nNode = 2\n"
                                        "coordinates\nend coordinates\nelements\nend elements\n");
}

INSTANTIATE_TEST_SUITE_P(Dimensions, DimensionWithoutNodeLines,
                         ::testing::Values(0, -1, -3, std::numeric_limits<int>::min()));

/// Two negative numbers, whose product is positive, must not make node lines either.
TEST(NodeLines, AreMissingForANegativeNumberOfNodes) {
  const BuiltDocument document = withNodes(3, {1, 2, 3});
  OrvML_IO_SetNumberOfNodes(document.handle(), -1);
  EXPECT_EQ(nodeLinesOf(document), "");

  OrvML_IO_SetMeshDimension(document.handle(), -3);
  EXPECT_EQ(nodeLinesOf(document), "");
}

TEST(NodeLines, AreMissingForAContainerWithoutNodes) {
  const BuiltDocument document = withNodes(3, {});

  EXPECT_EQ(nodeLinesOf(document), "");
}

struct Number {
  const char* name;
  double value;
  const char* text;

  friend std::ostream& operator<<(std::ostream& stream, const Number& number) {
    return stream << number.value;
  }
};

class PrintedNumber : public ::testing::TestWithParam<Number> {};

TEST_P(PrintedNumber, HasSixDecimals) {
  EXPECT_EQ(nodeLinesOf(withNodes(3, {GetParam().value, 0, 0})),
            std::string("1 ") + GetParam().text + " 0.000000 0.000000\n");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, PrintedNumber,
    ::testing::Values(Number{"NegativeZero", -0.0, "-0.000000"},
                      Number{"RoundedDown", 0.0000004, "0.000000"},
                      Number{"RoundedUp", 0.0000006, "0.000001"},
                      Number{"Denormal", std::numeric_limits<double>::denorm_min(), "0.000000"},
                      Number{"NegativeDenormal", -std::numeric_limits<double>::denorm_min(),
                             "-0.000000"},
                      Number{"Large", 1e15, "1000000000000000.000000"},
                      Number{"Infinity", std::numeric_limits<double>::infinity(), "inf"},
                      Number{"NegativeInfinity", -std::numeric_limits<double>::infinity(), "-inf"},
                      Number{"Nan", std::numeric_limits<double>::quiet_NaN(), "nan"}),
    RowName());

TEST(NodeLines, HoldALargeNumberWithAllItsDigits) {
  const std::string lines = nodeLinesOf(withNodes(3, {1e300, 0, 0}));

  // The double nearest to 10^300 is 1000000000000000052504760255204420248704468581108159154915...
  EXPECT_EQ(lines.substr(0, 60), "1 1000000000000000052504760255204420248704468581108159154915");
  EXPECT_EQ(lines.size(), std::string("1 ").size() + 301 + std::string(".000000").size() +
                              std::string(" 0.000000 0.000000\n").size());
}

/// A copy knows how long its coordinates are. What a raised count or dimension claims behind them
/// prints as zero.
class NodeLinesBehindTheArray : public ::testing::Test {
 protected:
  const BuiltDocument source_ = withNodes(2, {1, 2, 3, 4});
  const Handle copy_{OrvML_IO_NewOrvInputHandle(source_.handle())};
};

TEST_F(NodeLinesBehindTheArray, AreZerosForARaisedCount) {
  OrvML_IO_SetNumberOfNodes(copy_.get(), 4);

  EXPECT_EQ(nodeLinesOf(copy_.get()),
            "1 1.000000 2.000000 3.000000\n"
            "2 3.000000 4.000000 0.000000\n"
            "3 0.000000 0.000000 0.000000\n"
            "4 0.000000 0.000000 0.000000\n");
}

TEST_F(NodeLinesBehindTheArray, AreZerosForARaisedDimension) {
  OrvML_IO_SetMeshDimension(copy_.get(), 3);

  EXPECT_EQ(nodeLinesOf(copy_.get()),
            "1 1.000000 2.000000 3.000000\n"
            "2 4.000000 0.000000 0.000000\n");
}

TEST_F(NodeLinesBehindTheArray, AreZerosForMissingCoordinates) {
  OrvML_IO_SetNodesCoords(source_.handle(), 2, nullptr);

  EXPECT_EQ(nodeLinesOf(source_),
            "1 0.000000 0.000000 0.000000\n"
            "2 0.000000 0.000000 0.000000\n");
}

TEST(PrintNodes, GivesZeroWithAndWithoutNodes) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = ::open_memstream(&text, &size);
  const BuiltDocument document = withNodes(3, {1, 2, 3});
  const orvml_io::Nodes& nodes = *orvml_io::documentOf(document.handle())->nodes;

  EXPECT_EQ(orvml_io::PrintNodes(nodes, 3, stream), 0);
  EXPECT_EQ(orvml_io::PrintNodes(nodes, 0, stream), 0);

  std::fclose(stream);
  EXPECT_STREQ(text, "1 1.000000 2.000000 3.000000\n");
  std::free(text);
}

}  // namespace
