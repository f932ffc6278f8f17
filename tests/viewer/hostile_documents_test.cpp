// Documents that no mesher makes, and pages that are made of them all the same.
#include "cpp_check/meshes.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace orvml_io_tests {
namespace {

using orvml::CellGroup;
using orvml::CellsView;
using orvml::Shape;

constexpr int kFar = std::numeric_limits<int>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(HostileDocuments, MayBeEmpty) {
  const DecodedPage page = decoded(orvml::InputView(orvml::DocumentParts()));

  EXPECT_EQ(page.nodes().at("count"), 0);
  EXPECT_TRUE(page.document().at("mesh").at("cells").empty());
  EXPECT_TRUE(page.document().at("boundingBox").is_null());
  EXPECT_TRUE(page.document().at("histograms").empty());
  EXPECT_TRUE(page.document().at("findings").is_null());
  EXPECT_TRUE(page.report().at("differences").is_null());
  EXPECT_EQ(notesOf(page.document()), "");
}

TEST(HostileDocuments, LoseCellsWithoutNodesOrPlaces) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 0, 1, 0, kNan, 0, 0, 0, -kInfinity, 0};
  mesh.faces = {{Shape::triangle, 3, {0, 1, 5, 0, 1, -1, 0, 1, kFar, 0, 1, 3, 4, 1, 2, 2, 1, 0}},
                {static_cast<Shape>(99), 3, {0, 1, 2}},
                {Shape::triangle, 4, {0, 1, 2, 0}},
                {Shape::tetrahedron, 4, {0, 1, 2, 0}},
                {Shape::triangle, 3, {0, 2, 1}}};
  mesh.attributes[2] = {{"number", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}};

  const DecodedPage page = decoded(mesh.view());

  const Json faces = page.cells("faces");
  EXPECT_EQ(page.values(faces.at("numbers")), (std::vector<double>{5, 9}));
  EXPECT_EQ(page.field(faces, "number"), (std::vector<double>{5, 9}));
  EXPECT_EQ(page.values(page.nodes().at("numbers")), (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(page.indices(faces), (std::vector<double>{2, 1, 0, 0, 2, 1}));
  EXPECT_EQ(notesOf(page.document()),
            "8 faces are not drawn: 3 with a node index that is out of range, 2 with a node whose "
            "coordinates are not finite, 3 of a shape that has no picture here.\n"
            "2 nodes are not drawn: the coordinates are not finite.\n");
}

TEST(HostileDocuments, MayClaimBillionsOfCells) {
  const std::vector<double> x = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  const std::vector<int> cell = {0, 1, 2, 3};
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = orvml::NodesView(x, 3);
  parts.elements = CellsView({CellGroup::withoutNodes(Shape::tetrahedron, kFar - 1),
                              CellGroup(Shape::tetrahedron, 4, cell)});
  const orvml::InputView view(parts);
  const orvml_report::ReportedDocument documents[] = {{&view, "a"}, {&view, "b"}};

  const DecodedPage page(orvml_report::pageOf(documents).html);

  const Json elements = page.cells("elements");
  EXPECT_EQ(page.values(elements.at("numbers")), std::vector<double>{kFar - 1});
  EXPECT_NEAR(page.field(elements, "volume").at(0), 1. / 6, 1e-7);
  EXPECT_EQ(page.field(elements, "difference"), std::vector<double>{0});
  EXPECT_EQ(page.document().at("counts").at("elements"), kFar);
  EXPECT_EQ(page.document().at("histograms").at(0).at("without"), kFar - 1);
  EXPECT_NE(notesOf(page.document()).find("2,147,483,646 of which the number alone is known"),
            std::string::npos);
}

TEST(HostileDocuments, MayClaimBillionsOfNodes) {
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = orvml::NodesView::withoutCoordinates(kFar, 3);
  const std::vector<int> cell = {0, 1, kFar - 1};
  parts.faces = CellsView({CellGroup(Shape::triangle, 3, cell)});
  const orvml::InputView view(parts);
  const orvml_report::ReportedDocument documents[] = {{&view, "a"}, {&view, "b"}};

  const DecodedPage page(orvml_report::pageOf(documents).html);

  EXPECT_EQ(page.nodes().at("count"), 0);
  EXPECT_TRUE(page.document().at("mesh").at("cells").empty());
  EXPECT_NE(notesOf(page.document()).find("No node has coordinates that can be drawn."),
            std::string::npos);
}

class DimensionsOfNodes : public ::testing::TestWithParam<int> {};

TEST_P(DimensionsOfNodes, AreCutToSpaceOrFilled) {
  const auto width = static_cast<std::size_t>(GetParam());
  std::vector<double> x(2 * width, 0.0);
  x.back() = 1.0;
  orvml::DocumentParts parts;
  parts.dimension = GetParam();
  parts.nodes = orvml::NodesView(x, GetParam());

  const DecodedPage page = decoded(orvml::InputView(parts));

  std::vector<double> expected(6, 0.0);
  if (width <= 3) {
    expected[3 + width - 1] = 1.0;
  }
  EXPECT_EQ(page.values(page.nodes().at("coordinates")), expected);
  EXPECT_EQ(page.document().at("boundingBox").at("maximum").size(), width);
}

INSTANTIATE_TEST_SUITE_P(Widths, DimensionsOfNodes, ::testing::Values(1, 2, 3, 5));

TEST(HostileDocuments, HaveParametersThatAreNoNumbers) {
  TestMesh mesh;
  mesh.parameters = {{"a", kNan}, {"b", kInfinity}, {"c", -kInfinity}, {"d", 0.1}};
  mesh.vectors = {{"long", std::vector<double>(1000, 2.5)}, {"odd", {kNan, 1}}};

  const DecodedPage page = decoded(mesh.view());

  const Json& parameters = page.document().at("parameters");
  EXPECT_EQ(parameters.at(0).at("value"), "nan");
  EXPECT_EQ(parameters.at(1).at("value"), "inf");
  EXPECT_EQ(parameters.at(2).at("value"), "-inf");
  EXPECT_EQ(parameters.at(3).at("value"), 0.1);
  const Json& vectors = page.document().at("vectorParameters");
  EXPECT_EQ(vectors.at(0).at("size"), 1000);
  EXPECT_EQ(vectors.at(0).at("values").size(), 100U);
  EXPECT_EQ(vectors.at(1).at("values").at(0), "nan");
}

TEST(HostileDocuments, HaveAttributesOfOtherLengths) {
  TestMesh mesh = blockOf(formOf(Shape::quadrilateral, 4), 1);
  mesh.attributes[2] = {{"fits", {7}}, {"long", {1, 2, 3}}, {"none", {}}};

  const DecodedPage page = decoded(mesh.view());

  EXPECT_EQ(page.field(page.cells("faces"), "fits"), std::vector<double>{7});
  EXPECT_THROW((void)page.field(page.cells("faces"), "long"), std::runtime_error);
  EXPECT_EQ(page.document().at("attributes").size(), 3U);
  EXPECT_TRUE(page.document().at("attributes").at(2).at("minimum").is_null());
  EXPECT_EQ(notesOf(page.document()),
            "The attribute \"long\" has 3 values for 1 face and is not shown with them.\n"
            "The attribute \"none\" has 0 values for 1 face and is not shown with them.\n");
}

TEST(Pages, AreOfOneDocumentOrTwo) {
  const orvml::InputView view{orvml::DocumentParts()};
  const orvml_report::ReportedDocument one{&view, ""};
  const std::vector<orvml_report::ReportedDocument> three = {one, one, one};
  const orvml_report::ReportedDocument null{nullptr, ""};

  EXPECT_THROW((void)orvml_report::pageOf({}), std::invalid_argument);
  EXPECT_THROW((void)orvml_report::pageOf(three), std::invalid_argument);
  EXPECT_THROW((void)orvml_report::pageOf({&null, 1}), std::invalid_argument);
  EXPECT_NO_THROW((void)orvml_report::pageOf({three.data(), 2}));
}

}  // namespace
}  // namespace orvml_io_tests
