// Each code has a document that makes it come, and it alone.
#include "cpp_check/meshes.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::CheckCode;
using orvml::CheckPlace;
using orvml::PlaceKind;
using orvml::Shape;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TestMesh tetrahedron() {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  mesh.elements = {{Shape::tetrahedron, 4, {0, 1, 2, 3}}};
  return mesh;
}

TestMesh tetrahedronOf(std::vector<int> nodes) {
  TestMesh mesh = tetrahedron();
  mesh.elements[0].indices = std::move(nodes);
  return mesh;
}

/// The closed surface of a tetrahedron, but for what is changed in it.
TestMesh surface(std::vector<int> triangles = {0, 1, 3, 1, 2, 3, 2, 0, 3, 0, 2, 1}) {
  TestMesh mesh = tetrahedron();
  mesh.elements.clear();
  mesh.faces = {{Shape::triangle, 3, std::move(triangles)}};
  return mesh;
}

TestMesh withNode(TestMesh mesh, double x, double y, double z) {
  mesh.x.insert(mesh.x.end(), {x, y, z});
  return mesh;
}

/// A document and the one thing that is found in it.
struct CodeRow {
  const char* name;
  TestMesh (*make)();
  std::string_view code;
  std::string sentence;
  std::vector<CheckPlace> places = {};
  std::int64_t count = 1;

  friend std::ostream& operator<<(std::ostream& stream, const CodeRow& row) {
    return stream << row.name;
  }
};

std::vector<CodeRow> rowsOfCells() {
  return {
      {"IndexOutOfRange",
       [] {
         return tetrahedronOf({0, 1, 2, 3, 0, 1, 2, -1, 0, 1, 2, 4});
       },
       text(CheckCode::indexOutOfRange),
       "/OrvInput/Elements has 2 elements with node indices outside 0 to 3",
       {{PlaceKind::element, 1}, {PlaceKind::element, 2}},
       2},
      {"NodesOfNobody",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.x.clear();
         return mesh;
       },
       text(CheckCode::indexOutOfRange),
       "/OrvInput/Elements has 1 element with node indices, and there are no nodes",
       {{PlaceKind::element, 0}}},
      {"RepeatedNode",
       [] {
         return tetrahedronOf({0, 1, 2, 3, 0, 1, 2, 2});
       },
       text(CheckCode::repeatedNode),
       "/OrvInput/Elements has 1 element with a node that is named twice",
       {{PlaceKind::element, 1}}},
      {"NodeCount",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.elements[0].shape = Shape::pyramid;
         return mesh;
       },
       text(CheckCode::wrongNodeCount),
       "/OrvInput/Elements has 1 cell in its group 0 of the shape pyramid with 4 nodes each, for "
       "which there is no order"},
      {"UnknownShape",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.elements[0].shape = static_cast<Shape>(42);
         return mesh;
       },
       text(CheckCode::unknownShape),
       "/OrvInput/Elements has 1 cell in its group 0 of the shape 42, which the format does not "
       "name"},
      {"MisplacedShape",
       [] {
         TestMesh mesh = tetrahedron();
         std::swap(mesh.elements, mesh.faces);
         return mesh;
       },
       text(CheckCode::misplacedShape),
       "/OrvInput/Faces has 1 cell in its group 0 of the shape tetrahedron, which does not belong "
       "there"},
      {"DuplicateElement",
       [] {
         return tetrahedronOf({0, 1, 2, 3, 1, 2, 0, 3});
       },
       text(CheckCode::duplicateCell),
       "/OrvInput/Elements has 1 element with the nodes of another one",
       {{PlaceKind::element, 1}}},
      {"DuplicateFaceOfAnElement",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.faces = {{Shape::triangle, 3, {0, 2, 1, 0, 1, 3, 1, 0, 2}}};
         return mesh;
       },
       text(CheckCode::duplicateCell),
       "/OrvInput/Faces has 1 face with the nodes of another one",
       {{PlaceKind::face, 2}}},
      {"DuplicateEdge",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.edges = {{Shape::line, 2, {0, 1, 1, 2, 1, 0}}};
         return mesh;
       },
       text(CheckCode::duplicateCell),
       "/OrvInput/Edges has 1 edge with the nodes of another one",
       {{PlaceKind::edge, 2}}},
      {"UnusedNode",
       [] { return withNode(tetrahedron(), 5, 5, 5); },
       text(CheckCode::unusedNode),
       "/OrvInput/Nodes has 1 node that no cell names",
       {{PlaceKind::node, 4}}}};
}

std::vector<CodeRow> rowsOfGeometry() {
  return {{"CoordinatesMissing",
           [] {
             TestMesh mesh = tetrahedron();
             mesh.hasCoordinates = false;
             return mesh;
           },
           text(CheckCode::coordinatesMissing), "/OrvInput/Nodes has 4 nodes without coordinates"},
          {"CoordinateNotFinite",
           [] {
             TestMesh mesh = tetrahedron();
             mesh.x[7] = kNan;
             mesh.x[9] = std::numeric_limits<double>::infinity();
             return mesh;
           },
           text(CheckCode::coordinateNotFinite),
           "/OrvInput/Nodes has 2 nodes with a coordinate that is infinite or no number",
           {{PlaceKind::node, 2}, {PlaceKind::node, 3}},
           2},
          {"CoincidentNodes",
           [] {
             TestMesh mesh = tetrahedron();
             mesh.x.insert(mesh.x.end(), {1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, -1});
             mesh.elements[0].indices.insert(mesh.elements[0].indices.end(), {4, 5, 6, 7});
             return mesh;
           },
           text(CheckCode::coincidentNodes),
           "/OrvInput/Nodes has 3 nodes at the place of another one; node 4 is where node 1 is",
           {{PlaceKind::node, 4}, {PlaceKind::node, 5}, {PlaceKind::node, 6}},
           3},
          {"ZeroSizeElement",
           [] {
             TestMesh mesh = tetrahedron();
             mesh.x[11] = 0;
             mesh.x[10] = -1;
             return mesh;
           },
           text(CheckCode::zeroSizeCell),
           "/OrvInput/Elements has 1 element without size",
           {{PlaceKind::element, 0}}},
          {"InvertedElement",
           [] {
             return tetrahedronOf({0, 2, 1, 3});
           },
           text(CheckCode::invertedCell),
           "/OrvInput/Elements has 1 element inside out",
           {{PlaceKind::element, 0}}},
          {"InvertedPrismOfTheMirroredOrder",
           [] {
             TestMesh mesh = cellOf(formOf(Shape::prism, 6));
             mesh.elements[0].indices = {0, 2, 1, 3, 5, 4};
             return mesh;
           },
           text(CheckCode::invertedCell),
           "/OrvInput/Elements has 1 element inside out",
           {{PlaceKind::element, 0}}},
          {"InvertedFaceOfThePlane",
           [] {
             TestMesh mesh = cellOf(formOf(Shape::triangle, 3));
             mesh.faces[0].indices = {0, 2, 1};
             return mesh;
           },
           text(CheckCode::invertedCell),
           "/OrvInput/Faces has 1 face inside out",
           {{PlaceKind::face, 0}}},
          {"FoldedHexahedron",
           [] {
             TestMesh mesh = cellOf(formOf(Shape::hexahedron, 8));
             mesh.x[18] = mesh.x[19] = mesh.x[20] = -0.5;  // the corner 6 behind corner 0
             return mesh;
           },
           text(CheckCode::foldedCell),
           "/OrvInput/Elements has 1 element inside out in a part",
           {{PlaceKind::element, 0}}},
          {"FoldedByAMiddleNode",
           [] {
             TestMesh mesh = cellOf(formOf(Shape::tetrahedron, 10));
             mesh.x[12] = 0.9;  // of the edge from corner 0 to 1
             return mesh;
           },
           text(CheckCode::foldedCell),
           "/OrvInput/Elements has 1 element inside out in a part",
           {{PlaceKind::element, 0}}},
          {"FoldedQuadrilateralInSpace",
           [] {
             TestMesh mesh;
             mesh.x = {0, 0, 0, 1, 0, 0, 0.2, 0.2, 0, 0, 1, 0, 0.5, 0.5, 3};
             mesh.faces = {{Shape::quadrilateral, 4, {0, 1, 2, 3}},
                           {Shape::triangle, 3, {1, 0, 4, 0, 3, 4, 3, 2, 4, 2, 1, 4}}};
             for (std::size_t i = 0; i < 12; i += 3) {
               std::swap(mesh.faces[1].indices[i], mesh.faces[1].indices[i + 1]);
             }
             std::swap(mesh.faces[0].indices[1], mesh.faces[0].indices[3]);
             return mesh;
           },
           text(CheckCode::foldedCell),
           "/OrvInput/Faces has 1 face inside out in a part",
           {{PlaceKind::face, 0}}}};
}

std::vector<CodeRow> rowsOfFaces() {
  return {
      {"FaceWithoutElement",
       [] {
         TestMesh mesh = withNode(tetrahedron(), 5, 5, 5);
         mesh.faces = {{Shape::triangle, 3, {0, 2, 1, 0, 1, 4}}};
         return mesh;
       },
       text(CheckCode::faceWithoutElement),
       "/OrvInput/Faces has 1 face without a volume element",
       {{PlaceKind::face, 1}}},
      {"FaceSharedByThree",
       [] {
         TestMesh mesh = withNode(withNode(tetrahedron(), 0.2, 0.2, 2), 0, 0, -1);
         mesh.elements[0].indices = {0, 1, 2, 3, 0, 1, 2, 4, 0, 2, 1, 5};
         return mesh;
       },
       text(CheckCode::faceSharedByMany),
       "/OrvInput/Elements has 1 face that more than two elements share",
       {{PlaceKind::element, 0}, {PlaceKind::element, 1}, {PlaceKind::element, 2}}},
      {"InwardFace",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.faces = {{Shape::triangle, 3, {0, 1, 2, 0, 1, 3}}};
         return mesh;
       },
       text(CheckCode::inwardFace),
       "/OrvInput/Faces has 1 face looking inwards",
       {{PlaceKind::face, 0}}},
      {"OpenSurface",
       [] {
         return surface({0, 1, 3, 1, 2, 3, 2, 0, 3});
       },
       text(CheckCode::openSurface),
       "/OrvInput/Faces has 3 edges between nodes with one face only",
       {{PlaceKind::face, 0}, {PlaceKind::face, 1}, {PlaceKind::face, 2}},
       3},
      {"NonManifoldSurface",
       [] {
         // A second tetrahedron hangs on the edge between the nodes 0 and 1.
         TestMesh mesh = withNode(withNode(surface(), 0, -1, 0), 0, 0, -1);
         auto& triangles = mesh.faces[0].indices;
         triangles.insert(triangles.end(), {0, 1, 5, 1, 4, 5, 4, 0, 5, 0, 4, 1});
         for (std::size_t i = 12; i < 24; i += 3) {
           std::swap(triangles[i], triangles[i + 1]);
         }
         for (std::size_t i = 12; i < 24; i += 3) {
           std::swap(triangles[i + 1], triangles[i + 2]);
         }
         return mesh;
       },
       text(CheckCode::nonManifoldSurface),
       "/OrvInput/Faces has 1 edge between nodes that more than two faces share",
       {{PlaceKind::face, 0}, {PlaceKind::face, 3}, {PlaceKind::face, 4}, {PlaceKind::face, 7}}},
      {"InconsistentSurface",
       [] {
         return surface({0, 1, 3, 1, 2, 3, 2, 0, 3, 0, 1, 2});
       },
       text(CheckCode::inconsistentSurface),
       "/OrvInput/Faces has 3 edges between nodes whose faces look to different sides",
       {{PlaceKind::face, 0}, {PlaceKind::face, 1}, {PlaceKind::face, 2}, {PlaceKind::face, 3}},
       3},
      {"InwardSurface",
       [] {
         return surface({0, 3, 1, 1, 3, 2, 2, 3, 0, 0, 1, 2});
       },
       text(CheckCode::inwardSurface),
       "/OrvInput/Faces is a closed surface whose faces look inwards"}};
}

std::vector<CodeRow> rowsOfNames() {
  return {
      {"AttributeLength",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.attributes[3] = {{"size", {1, 2}}};
         return mesh;
       },
       text(CheckCode::attributeLength),
       "/OrvInput/Elements/Attributes/size has 2 values for 1 element"},
      {"NameAtLimit",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.parameters = {{std::string(79, 'n'), 1}};
         return mesh;
       },
       text(CheckCode::nameAtLimit),
       "/OrvInput/parameters/" + std::string(79, 'n') +
           " has a name of 79 bytes, which may have been cut"},
      {"NameTooLong",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.attributes[0] = {{std::string(80, 'n'), {1, 2, 3, 4}}};
         return mesh;
       },
       text(orvml::Code::nameTooLong),
       "/OrvInput/Nodes/Attributes/" + std::string(80, 'n') +
           " has a name of 80 bytes, at most 79 are allowed"},
      {"NameNotAllowed",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.attributes[0] = {{"", {1, 2, 3, 4}}};
         return mesh;
       },
       text(orvml::Code::nameNotAllowed),
       "/OrvInput/Nodes/Attributes/ has a name that is empty, or that stands for a path"},
      {"TextAtLimit",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.creator = std::string(79, 'c');
         return mesh;
       },
       text(CheckCode::textAtLimit), "/ORVML_IO_CREATOR has 79 bytes, and may have been cut"},
      {"TextTooLong",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.creator = std::string(80, 'c');
         return mesh;
       },
       text(orvml::Code::textTooLong), "/ORVML_IO_CREATOR has 80 bytes, at most 79 are allowed"},
      {"WrongDimension",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.coordinatesPerNode = 2;
         mesh.x.resize(8);
         return mesh;
       },
       text(orvml::Code::wrongDimension),
       "/OrvInput/dimension is 3, and the nodes have 2 coordinates"},
      {"LostInClone",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.vectors = {{"sizes", {1, 2}}};
         return mesh;
       },
       text(CheckCode::lostInClone),
       "/OrvInput/ParametersVector has 1 vector that a clone of the flat functions loses, for "
       "there is no scalar parameter"},
      {"LostWhenWritten",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.attributes[1] = {{"colour", {}}};
         return mesh;
       },
       text(CheckCode::lostWhenWritten),
       "/OrvInput/Edges/Attributes/colour is not written, as there are no edges"},
      {"FlagNotRead",
       [] {
         TestMesh mesh = tetrahedron();
         mesh.attributes[0] = {{"a", {1, 2, 3, 4}, true}, {"b", {1, 2, 3, 4}, true}};
         return mesh;
       },
       text(CheckCode::flagNotRead),
       "/OrvInput has 2 attributes to be transmitted, which the flat readers do not see"}};
}

class CodesOfDocuments : public ::testing::TestWithParam<CodeRow> {};

TEST_P(CodesOfDocuments, ComeAlone) {
  const TestMesh mesh = GetParam().make();

  const orvml::CheckReport report = mesh.checked();

  ASSERT_EQ(codesOf(report), std::vector<std::string>{std::string(GetParam().code)})
      << toldOf(report);
  const orvml::CheckFinding& finding = report.findings[0];
  EXPECT_EQ(finding.sentence, GetParam().sentence);
  EXPECT_EQ(finding.sentence.rfind(finding.object, 0), 0U);
  EXPECT_EQ(finding.places, GetParam().places);
  EXPECT_EQ(finding.count, GetParam().count);
  EXPECT_FALSE(finding.cure.empty());
}

INSTANTIATE_TEST_SUITE_P(Cells, CodesOfDocuments, ::testing::ValuesIn(rowsOfCells()), RowName());
INSTANTIATE_TEST_SUITE_P(Geometry, CodesOfDocuments, ::testing::ValuesIn(rowsOfGeometry()),
                         RowName());
INSTANTIATE_TEST_SUITE_P(Faces, CodesOfDocuments, ::testing::ValuesIn(rowsOfFaces()), RowName());
INSTANTIATE_TEST_SUITE_P(Names, CodesOfDocuments, ::testing::ValuesIn(rowsOfNames()), RowName());

TEST(CheckRules, HaveARowInTheTablesEach) {
  // Those of files alone have theirs in file_codes_test.cpp.
  std::vector<std::string_view> met = {text(CheckCode::legacyLayout),
                                       text(CheckCode::integersClamped)};
  for (const auto& rows : {rowsOfCells(), rowsOfGeometry(), rowsOfFaces(), rowsOfNames()}) {
    for (const CodeRow& row : rows) {
      met.push_back(row.code);
    }
  }
  for (int code = 0; code <= static_cast<int>(CheckCode::integersClamped); ++code) {
    const std::string_view wanted = text(static_cast<CheckCode>(code));
    EXPECT_NE(std::find(met.begin(), met.end(), wanted), met.end()) << wanted;
  }
}

TEST(CheckRules, HaveCodesThatDiffer) {
  std::vector<std::string_view> codes;
  for (const orvml::CheckRule& rule : orvml::checkRules()) {
    codes.push_back(rule.code);
  }
  std::sort(codes.begin(), codes.end());

  EXPECT_EQ(std::adjacent_find(codes.begin(), codes.end()), codes.end());
  EXPECT_EQ(codes.size(), static_cast<std::size_t>(CheckCode::integersClamped) + 1 + 17);
}

TEST(Reports, AreCleanWithNotesAndNotWithWarnings) {
  TestMesh noted = tetrahedron();
  noted.creator = std::string(79, 'c');
  const TestMesh warned = withNode(tetrahedron(), 5, 5, 5);

  EXPECT_EQ(tetrahedron().checked().worst(), std::nullopt);
  EXPECT_EQ(noted.checked().worst(), orvml::Severity::note);
  EXPECT_EQ(warned.checked().worst(), orvml::Severity::warning);
  EXPECT_EQ(tetrahedronOf({0, 2, 1, 3}).checked().worst(), orvml::Severity::error);
  EXPECT_TRUE(noted.checked().isClean());
  EXPECT_FALSE(warned.checked().isClean());
}

TEST(Severities, HaveNames) {
  EXPECT_EQ(name(orvml::Severity::note), "note");
  EXPECT_EQ(name(orvml::Severity::warning), "warning");
  EXPECT_EQ(name(orvml::Severity::error), "error");
}

}  // namespace
}  // namespace orvml_io_tests
