// Two documents in one page: what differs, and where.
#include "cpp_check/meshes.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvml_io_tests {
namespace {

using orvml::Shape;

DecodedPage compared(const TestMesh& first, const TestMesh& second) {
  const orvml::InputView a = first.view();
  const orvml::InputView b = second.view();
  const orvml_report::ReportedDocument documents[] = {{&a, "a.h5"}, {&b, "b.h5"}};
  return DecodedPage(orvml_report::pageOf(documents).html);
}

std::vector<double> marksOfNodes(const DecodedPage& page, std::size_t document) {
  return page.field(page.nodes(document), "difference");
}

std::vector<double> marksOfFaces(const DecodedPage& page, std::size_t document) {
  return page.field(page.cells("faces", document), "difference");
}

TestMesh square() {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  mesh.faces = {{Shape::triangle, 3, {0, 1, 2, 0, 2, 3}}};
  mesh.attributes[0] = {{"heat", {1, 2, 3, 4}}};
  mesh.attributes[2] = {{"set", {7, 8}}};
  return mesh;
}

TEST(MarksOfDifferences, OfEqualMeshesAreNone) {
  const DecodedPage page = compared(square(), square());

  EXPECT_EQ(page.report().at("differences"), Json::array());
  for (const std::size_t document : {0U, 1U}) {
    EXPECT_EQ(marksOfNodes(page, document), (std::vector<double>{0, 0, 0, 0}));
    EXPECT_EQ(marksOfFaces(page, document), (std::vector<double>{0, 0}));
  }
  const Json& field = page.nodes().at("fields").at(0);
  EXPECT_EQ(field.at("role"), "difference");
  EXPECT_EQ(field.at("type"), "int");
}

TEST(MarksOfDifferences, DoNotCareForNumbers) {
  TestMesh other;
  other.x = {0, 1, 0, 1, 1, 0, 1, 0, 0, 0, 0, -0.0};
  other.faces = {{Shape::triangle, 3, {0, 3, 1}}, {Shape::triangle, 3, {2, 1, 3}}};
  other.attributes[0] = {{"heat", {4, 3, 2, 1}}};
  other.attributes[2] = {{"set", {8, 7}}};

  const DecodedPage page = compared(square(), other);

  EXPECT_FALSE(page.report().at("differences").empty());
  for (const std::size_t document : {0U, 1U}) {
    EXPECT_EQ(marksOfNodes(page, document), (std::vector<double>{0, 0, 0, 0}));
    EXPECT_EQ(marksOfFaces(page, document), (std::vector<double>{0, 0}));
  }
}

TEST(MarksOfDifferences, TellOtherValues) {
  TestMesh other = square();
  other.attributes[0][0].values[2] = 3.5;
  other.attributes[2][0].values[0] = std::numeric_limits<double>::quiet_NaN();

  const DecodedPage page = compared(square(), other);

  for (const std::size_t document : {0U, 1U}) {
    EXPECT_EQ(marksOfNodes(page, document), (std::vector<double>{0, 0, 1, 0}));
    EXPECT_EQ(marksOfFaces(page, document), (std::vector<double>{1, 0}));
  }
}

TEST(MarksOfDifferences, ThatAreNoNumbersAreTheSame) {
  TestMesh mesh = square();
  mesh.attributes[2][0].values[0] = std::numeric_limits<double>::quiet_NaN();

  EXPECT_EQ(marksOfFaces(compared(mesh, mesh), 0), (std::vector<double>{0, 0}));
}

TEST(MarksOfDifferences, TellAttributesOfOneDocument) {
  TestMesh other = square();
  other.attributes[2].clear();

  const DecodedPage page = compared(square(), other);

  EXPECT_EQ(marksOfFaces(page, 0), (std::vector<double>{1, 1}));
  EXPECT_EQ(marksOfFaces(page, 1), (std::vector<double>{1, 1}));
  EXPECT_EQ(marksOfNodes(page, 0), (std::vector<double>{0, 0, 0, 0}));
}

TEST(MarksOfDifferences, TellWhatIsInOneAlone) {
  TestMesh other = square();
  other.x[3] = 1.5;  // node 1

  const DecodedPage page = compared(square(), other);

  for (const std::size_t document : {0U, 1U}) {
    EXPECT_EQ(marksOfNodes(page, document), (std::vector<double>{0, 2, 0, 0}));
    EXPECT_EQ(marksOfFaces(page, document), (std::vector<double>{2, 0}));
  }
  EXPECT_FALSE(page.report().at("differences").at(0).at("sentence").empty());
  EXPECT_EQ(page.report().at("differences").at(0).at("object"), "/Nodes/coordinates");
  EXPECT_EQ(page.report().at("differences").at(0).at("change"), "values");
}

TEST(MarksOfDifferences, PairWhatIsThereTwice) {
  TestMesh other = square();
  other.faces.push_back({Shape::triangle, 3, {2, 0, 1}});
  other.attributes[2][0].values.push_back(7);
  other.x.insert(other.x.end(), {0, 0, 0});
  other.attributes[0][0].values.push_back(9);

  const DecodedPage page = compared(square(), other);

  EXPECT_EQ(marksOfFaces(page, 0), (std::vector<double>{0, 0}));
  EXPECT_EQ(marksOfFaces(page, 1), (std::vector<double>{0, 0, 2}));
  EXPECT_EQ(marksOfNodes(page, 1), (std::vector<double>{0, 0, 0, 0, 2}));
}

TEST(MarksOfDifferences, CompareThePlaneWithSpace) {
  TestMesh flat;
  flat.dimension = flat.coordinatesPerNode = 2;
  flat.x = {0, 0, 1, 0, 1, 1, 0, 2};
  flat.faces = {{Shape::triangle, 3, {0, 1, 2, 0, 2, 3}}};
  flat.attributes = square().attributes;

  const DecodedPage page = compared(flat, square());

  EXPECT_EQ(marksOfNodes(page, 0), (std::vector<double>{0, 0, 0, 2}));
  EXPECT_EQ(marksOfFaces(page, 1), (std::vector<double>{0, 2}));
}

TEST(MarksOfDifferences, AreOfWhatIsShown) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 2);
  TestMesh other = mesh;
  std::vector<double> values(8, 0.0);
  mesh.attributes[3] = {{"set", values}};
  values[5] = 1;
  other.attributes[3] = {{"set", values}};
  const orvml::InputView a = mesh.view();
  const orvml::InputView b = other.view();
  const orvml_report::ReportedDocument documents[] = {{&a, "a"}, {&b, "b"}};

  const DecodedPage page(orvml_report::pageOf(documents, {.limits = {.elements = 7}}).html);

  const Json elements = page.cells("elements", 1);
  const auto marks = page.field(elements, "difference");
  const auto owners = page.values(elements.at("numbers"));
  ASSERT_EQ(marks.size(), owners.size());
  for (std::size_t i = 0; i < marks.size(); ++i) {
    EXPECT_EQ(marks[i], owners[i] == 5 ? 1 : 0) << i;
  }
}

TEST(MarksOfDifferences, OfDocumentsWithoutMeshesAreNone) {
  const DecodedPage page = compared(square(), TestMesh());

  EXPECT_EQ(marksOfNodes(page, 0), (std::vector<double>{2, 2, 2, 2}));
  EXPECT_EQ(marksOfFaces(page, 0), (std::vector<double>{2, 2}));
  EXPECT_TRUE(marksOfNodes(page, 1).empty());
}

}  // namespace
}  // namespace orvml_io_tests
