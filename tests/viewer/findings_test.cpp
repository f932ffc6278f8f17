// Findings in pages, with where they are.
#include "cpp_check/meshes.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvml_io_tests {
namespace {

using orvml::CheckFinding;
using orvml::CheckPlace;
using orvml::PlaceKind;
using orvml::Severity;
using orvml::Shape;

/// What a page says of findings about a document.
Json findingsOf(const TestMesh& mesh, std::vector<CheckFinding> findings) {
  orvml::CheckReport report;
  report.findings = std::move(findings);
  const orvml::InputView view = mesh.view();
  const orvml_report::ReportedDocument document{&view, "part.h5", {}, &report};
  return DecodedPage(orvml_report::pageOf({&document, 1}).html).document().at("findings");
}

CheckFinding findingAt(const std::string& object, PlaceKind kind, std::int64_t index) {
  return {"orvml.test", Severity::warning, object, {{kind, index}}, 1, object + " is odd", "look"};
}

Json placeOf(const TestMesh& mesh, const std::string& object, PlaceKind kind, std::int64_t index) {
  return findingsOf(mesh, {findingAt(object, kind, index)}).at(0).at("places").at(0);
}

TestMesh mixed() {
  TestMesh mesh = cellOf(formOf(Shape::tetrahedron, 10));
  mesh.faces = {{Shape::triangle, 3, {0, 1, 2}}, {Shape::quadrilateral, 4, {0, 1, 2, 3}}};
  mesh.edges = {{Shape::line, 3, {0, 1, 4}}};
  return mesh;
}

TEST(FindingsInPages, AreThoseOfTheCheck) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 1);
  mesh.x[0] = std::numeric_limits<double>::quiet_NaN();
  const orvml::InputView view = mesh.view();
  const orvml::CheckReport report = check(view);
  const orvml_report::ReportedDocument document{&view, "part.h5", {}, &report};

  const DecodedPage page(orvml_report::pageOf({&document, 1}).html);

  const Json& findings = page.document().at("findings");
  ASSERT_FALSE(report.findings.empty());
  ASSERT_EQ(findings.size(), report.findings.size());
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const CheckFinding& finding = report.findings[i];
    EXPECT_EQ(findings[i].at("severity"), name(finding.severity));
    EXPECT_EQ(findings[i].at("code"), finding.code);
    EXPECT_EQ(findings[i].at("object"), finding.object);
    EXPECT_EQ(findings[i].at("count"), finding.count);
    EXPECT_EQ(findings[i].at("sentence"), finding.sentence);
    EXPECT_EQ(findings[i].at("cure"), finding.cure);
    EXPECT_EQ(findings[i].at("places").size(), finding.places.size());
  }
}

TEST(FindingsInPages, ThatAreNoneAreAnEmptyList) {
  EXPECT_EQ(findingsOf(mixed(), {}), Json::array());
}

TEST(FindingsInPages, AreOfTheDocumentOrOfTheFile) {
  const Json findings =
      findingsOf(mixed(), {findingAt("/OrvOutput/Faces", PlaceKind::face, 0),
                           findingAt("/OrvInput/Faces", PlaceKind::face, 0),
                           findingAt("/OrvOutputs", PlaceKind::face, 0),
                           findingAt("/ORVMESHLIBRARY_FORMAT_VERSION", PlaceKind::value, 0)});

  ASSERT_EQ(findings.size(), 3U);
  EXPECT_EQ(findings.at(0).at("object"), "/OrvInput/Faces");
  EXPECT_EQ(findings.at(1).at("object"), "/OrvOutputs");
}

TEST(PlacesOfFindings, OfNodesArePoints) {
  const Json place = placeOf(mixed(), "/OrvInput/Nodes", PlaceKind::node, 1);

  EXPECT_EQ(place.at("kind"), "node");
  EXPECT_EQ(place.at("index"), 1);
  EXPECT_EQ(place.at("points"), Json::parse("[[1.0, 0.0, 0.0]]"));
  EXPECT_TRUE(place.at("lines").empty());
}

struct PlaceRow {
  const char* name;
  PlaceKind kind;
  std::int64_t index;
  std::size_t points;
  std::size_t lines;
};

class PlacesOfCells : public ::testing::TestWithParam<PlaceRow> {};

TEST_P(PlacesOfCells, AreCornersWithEdges) {
  const PlaceRow& row = GetParam();

  const Json place = placeOf(mixed(), "/OrvInput", row.kind, row.index);

  EXPECT_EQ(place.at("points").size(), row.points);
  ASSERT_EQ(place.at("lines").size(), row.lines);
  for (const Json& line : place.at("lines")) {
    EXPECT_LT(line.at(0).get<std::size_t>(), row.points);
    EXPECT_LT(line.at(1).get<std::size_t>(), row.points);
  }
}

INSTANTIATE_TEST_SUITE_P(Cells, PlacesOfCells,
                         ::testing::Values(PlaceRow{"Edge", PlaceKind::edge, 0, 2, 1},
                                           PlaceRow{"Triangle", PlaceKind::face, 0, 3, 3},
                                           PlaceRow{"Quadrilateral", PlaceKind::face, 1, 4, 4},
                                           PlaceRow{"Tetrahedron", PlaceKind::element, 0, 4, 6},
                                           PlaceRow{"NoElement", PlaceKind::element, 1, 0, 0},
                                           PlaceRow{"NegativeFace", PlaceKind::face, -1, 0, 0},
                                           PlaceRow{"NoNode", PlaceKind::node, 1000, 0, 0},
                                           PlaceRow{"FarNode", PlaceKind::node,
                                                    std::int64_t{1} << 40U, 0, 0},
                                           PlaceRow{"Value", PlaceKind::value, 0, 0, 0}),
                         [](const auto& row) { return row.param.name; });

struct ValueRow {
  const char* name;
  std::string object;
  std::int64_t index;
  std::string kind;
  std::int64_t at;
};

class PlacesOfValues : public ::testing::TestWithParam<ValueRow> {};

TEST_P(PlacesOfValues, AreThoseOfWhatTheyBelongTo) {
  const ValueRow& row = GetParam();

  const Json place = placeOf(mixed(), row.object, PlaceKind::value, row.index);

  EXPECT_EQ(place.at("kind"), row.kind);
  EXPECT_EQ(place.at("index"), row.at);
  EXPECT_EQ(place.at("points").empty(), row.kind == "value");
}

INSTANTIATE_TEST_SUITE_P(
    Arrays, PlacesOfValues,
    ::testing::Values(ValueRow{"AttributeOfFaces", "/OrvInput/Faces/Attributes/size", 1, "face", 1},
                      ValueRow{"AttributeOfNodes", "/OrvInput/Nodes/Attributes/a", 2, "node", 2},
                      ValueRow{"Coordinates", "/OrvInput/Nodes/coordinates", 7, "node", 2},
                      ValueRow{"NodeIndices", "/OrvInput/Faces/connectivities", 3, "face", 1},
                      ValueRow{"BeyondIndices", "/OrvInput/Faces/connectivities", 70, "value", 70},
                      ValueRow{"Parameters", "/OrvInput/parameters", 3, "value", 3}),
    [](const auto& row) { return row.param.name; });

TEST(PlacesOfFindings, LeaveOutNodesWithoutAPlace) {
  TestMesh mesh = mixed();
  mesh.x[3] = std::numeric_limits<double>::infinity();
  mesh.faces = {{Shape::triangle, 3, {0, 1, 2}}, {Shape::triangle, 3, {0, -7, 2}}};

  for (const std::int64_t face : {0, 1}) {
    const Json place = placeOf(mesh, "/OrvInput/Faces", PlaceKind::face, face);

    EXPECT_EQ(place.at("points").size(), 2U) << face;
    EXPECT_EQ(place.at("lines"), Json::parse("[[0, 1]]")) << face;
  }
}

}  // namespace
}  // namespace orvml_io_tests
