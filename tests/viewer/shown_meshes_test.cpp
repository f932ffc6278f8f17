// What a page shows of a mesh, unpacked and held against the document.
#include "cpp_check/meshes.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <map>
#include <set>

namespace orvml_io_tests {
namespace {

using orvml::Shape;

std::vector<double> indicesOf(const std::vector<TestCells>& groups) {
  std::vector<double> all;
  for (const TestCells& group : groups) {
    all.insert(all.end(), group.indices.begin(), group.indices.end());
  }
  return all;
}

class ShownForms : public ::testing::TestWithParam<FormOfShape> {};

TEST_P(ShownForms, ComeWithAllOfTheirNodes) {
  const TestMesh mesh = blockOf(GetParam(), 2);

  const DecodedPage page = decoded(mesh.view());

  const auto coordinates = page.values(page.nodes().at("coordinates"));
  ASSERT_EQ(coordinates.size(), 3 * static_cast<std::size_t>(mesh.nodes()));
  for (std::size_t node = 0; node < coordinates.size() / 3; ++node) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto width = static_cast<std::size_t>(mesh.coordinatesPerNode);
      const double expected = axis < width ? mesh.x[node * width + axis] : 0;
      EXPECT_NEAR(coordinates[node * 3 + axis], expected, 1e-9) << node;
    }
  }
  EXPECT_TRUE(page.nodes().at("numbers").is_null());
  const bool isFlat = GetParam().faces.empty();
  const Json cells = page.cells(isFlat ? "faces" : "elements");
  ASSERT_FALSE(cells.is_null());
  EXPECT_EQ(page.indices(cells), indicesOf(isFlat ? mesh.faces : mesh.elements));
  EXPECT_EQ(cells.at("groups").at(0).at("shape"), name(GetParam().shape));
  EXPECT_EQ(cells.at("groups").at(0).at("nodesPerCell"), GetParam().nodes);
  EXPECT_FALSE(cells.at("isSkin").get<bool>());
  EXPECT_TRUE(cells.at("numbers").is_null());
  EXPECT_EQ(cells.at("outer").is_null(), isFlat);
  EXPECT_EQ(notesOf(page.document()), "");
}

TEST_P(ShownForms, TellWhichSidesAreOutside) {
  if (GetParam().faces.empty()) {
    return;
  }
  const TestMesh mesh = blockOf(GetParam(), 2);
  std::map<std::vector<int>, int> sides;
  const TestCells& group = mesh.elements.at(0);
  const auto width = static_cast<std::size_t>(group.nodes);
  const auto sideOf = [&](std::size_t cell, const std::string& face) {
    std::vector<int> side;
    for (const char digit : face) {
      side.push_back(group.indices[cell * width + static_cast<std::size_t>(digit - '0')]);
    }
    std::sort(side.begin(), side.end());
    return side;
  };
  const std::size_t count = group.indices.size() / width;
  for (std::size_t cell = 0; cell < count; ++cell) {
    for (const std::string& face : GetParam().faces) {
      ++sides[sideOf(cell, face)];
    }
  }

  const DecodedPage page = decoded(mesh.view());

  const auto outer = page.values(page.cells("elements").at("outer"));
  ASSERT_EQ(outer.size(), count);
  for (std::size_t cell = 0; cell < count; ++cell) {
    for (std::size_t side = 0; side < GetParam().faces.size(); ++side) {
      const bool isOutside = (static_cast<unsigned>(outer[cell]) >> side & 1U) == 1U;
      EXPECT_EQ(isOutside, sides[sideOf(cell, GetParam().faces[side])] == 1) << cell << " " << side;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, ShownForms, ::testing::ValuesIn(formsOfShapes()),
                         [](const auto& row) { return row.param.name; });

TEST(ShownMeshes, HaveTheirEdgesAndTheirAttributes) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 1);
  mesh.edges = {{Shape::line, 2, {0, 1, 1, 2}}, {Shape::line, 3, {0, 3, 2}}};
  mesh.attributes[0] = {{"heat", std::vector<double>(static_cast<std::size_t>(mesh.nodes()), 0.1)}};
  mesh.attributes[1] = {{"side", {1.5, 2.5, 3.5}, true}};

  const DecodedPage page = decoded(mesh.view());

  const Json edges = page.cells("edges");
  EXPECT_EQ(page.indices(edges), (std::vector<double>{0, 1, 1, 2, 0, 3, 2}));
  EXPECT_EQ(page.field(edges, "side"), (std::vector<double>{1.5, 2.5, 3.5}));
  EXPECT_EQ(page.field(page.nodes(), "heat"), mesh.attributes[0][0].values);
  const Json& side = edges.at("fields").back();
  EXPECT_EQ(side.at("role"), "attribute");
  EXPECT_EQ(side.at("type"), "double");
  EXPECT_TRUE(side.at("mustBeTransmitted").get<bool>());
}

TEST(ShownMeshes, HaveIntegersAsSuch) {
  const std::vector<double> x = {0, 0, 1, 0, 0, 1};
  const std::vector<int> corners = {0, 1, 2};
  const std::vector<int> ints = {-5};
  const std::vector<orvml::Attribute> list = {{"set", std::span<const int>(ints)}};
  orvml::DocumentParts parts;
  parts.dimension = 2;
  parts.nodes = orvml::NodesView(x, 2);
  parts.faces =
      orvml::CellsView({orvml::CellGroup(Shape::triangle, 3, corners)}, orvml::Attributes(list));

  const DecodedPage page = decoded(orvml::OutputView(parts));

  const Json faces = page.cells("faces");
  EXPECT_EQ(page.field(faces, "set"), std::vector<double>{-5});
  EXPECT_EQ(faces.at("fields").back().at("type"), "int");
  EXPECT_EQ(page.document().at("kind"), "output");
  EXPECT_EQ(page.document().at("dimension"), 2);
  EXPECT_EQ(page.document().at("attributes").at(0).at("minimum"), -5);
}

TEST(ShownMeshes, AboveTheLimitOfElementsAreTheirOuterFaces) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 20), 3);
  std::vector<double> numbers;
  for (int cell = 0; cell < 27; ++cell) {
    numbers.push_back(cell);
  }
  mesh.attributes[3] = {{"number", numbers}};

  const DecodedPage page = decoded(mesh.view(), {.elements = 26});

  const Json elements = page.cells("elements");
  EXPECT_TRUE(elements.at("isSkin").get<bool>());
  EXPECT_TRUE(elements.at("outer").is_null());
  const auto owners = page.values(elements.at("numbers"));
  ASSERT_EQ(owners.size(), 54U);
  EXPECT_EQ(page.field(elements, "number"), owners);
  EXPECT_EQ(std::set<double>(owners.begin(), owners.end()).size(), 26U);  // not the middle one
  EXPECT_EQ(std::count(owners.begin(), owners.end(), 13), 0);
  EXPECT_EQ(elements.at("groups").at(0).at("nodesPerCell"), 8);
  EXPECT_EQ(page.field(elements, "volume").size(), 54U);
  EXPECT_NE(notesOf(page.document())
                .find("Of the 27 elements the 54 outer faces are shown alone: clip planes show a "
                      "hollow body."),
            std::string::npos);
}

TEST(ShownMeshes, AtTheLimitOfElementsAreWhole) {
  const TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 3);

  const DecodedPage page = decoded(mesh.view(), {.elements = 27});

  EXPECT_FALSE(page.cells("elements").at("isSkin").get<bool>());
}

TEST(ShownMeshes, HaveTheNodesOfTheirCellsAloneAboveTheLimitOfNodes) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 3);
  mesh.faces.clear();
  std::vector<double> heat;
  for (int node = 0; node < mesh.nodes(); ++node) {
    heat.push_back(node);
  }
  mesh.attributes[0] = {{"heat", heat}};

  const DecodedPage page = decoded(mesh.view(), {.elements = 1, .nodes = 60});

  const auto numbers = page.values(page.nodes().at("numbers"));
  EXPECT_EQ(numbers.size(), 56U);  // of 64, without the 8 inside
  EXPECT_EQ(page.nodes().at("count"), 56);
  EXPECT_EQ(page.field(page.nodes(), "heat"), numbers);
  const Json elements = page.cells("elements");
  const auto coordinates = page.values(page.nodes().at("coordinates"));
  for (const double index : page.indices(elements)) {
    ASSERT_LT(index, 56);
    const double* point = &coordinates[3 * static_cast<std::size_t>(index)];
    const bool isOutside = std::any_of(point, point + 3, [](double value) {
      return std::abs(value) < 1e-9 || std::abs(value - 3) < 1e-9;
    });
    EXPECT_TRUE(isOutside) << index;
  }
  EXPECT_NE(notesOf(page.document()).find("Of the 64 nodes 56 are in the page"), std::string::npos);
}

TEST(ShownMeshes, OfNodesAloneAreThinnedEvenly) {
  TestMesh mesh;
  for (int node = 0; node < 1000; ++node) {
    mesh.x.insert(mesh.x.end(), {static_cast<double>(node), 0, 0});
  }

  const DecodedPage page = decoded(mesh.view(), {.nodes = 100});

  const auto numbers = page.values(page.nodes().at("numbers"));
  ASSERT_EQ(numbers.size(), 100U);
  for (std::size_t i = 1; i < numbers.size(); ++i) {
    EXPECT_EQ(numbers[i] - numbers[i - 1], 10) << i;
  }
  EXPECT_EQ(notesOf(page.document()), "Of the 1,000 nodes 100 are shown, evenly chosen.\n");
}

TEST(ShownMeshes, HaveSoManyEdgesAtMost) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0};
  std::vector<int> lines;
  for (int edge = 0; edge < 99; ++edge) {
    lines.insert(lines.end(), {0, 1});
  }
  mesh.edges = {{Shape::line, 2, lines}, {Shape::line, 2, {1, 0}}};

  const DecodedPage page = decoded(mesh.view(), {.edges = 10});

  const auto numbers = page.values(page.cells("edges").at("numbers"));
  EXPECT_EQ(numbers.size(), 10U);
  EXPECT_EQ(page.field(page.cells("edges"), "length"), std::vector<double>(10, 1.0));
  EXPECT_EQ(notesOf(page.document()), "Of the 100 edges 10 are shown, evenly chosen.\n");
}

TEST(ShownMeshes, RoundAttributesThatAreManyAndLeaveOutThoseThatAreMore) {
  TestMesh mesh = blockOf(formOf(Shape::quadrilateral, 4), 2);
  const std::vector<double> tenths(4, 0.1);
  mesh.attributes[2] = {{"a", tenths}, {"b", tenths}, {"c", tenths}};

  const DecodedPage page = decoded(mesh.view(), {.exactAttributeBytes = 40, .attributeBytes = 48});

  const Json faces = page.cells("faces");
  EXPECT_EQ(page.field(faces, "a"), tenths);
  EXPECT_EQ(page.field(faces, "b"), std::vector<double>(4, double{0.1F}));
  EXPECT_THROW((void)page.field(faces, "c"), std::runtime_error);
  EXPECT_EQ(notesOf(page.document()),
            "The values of 1 attribute have 7 digits here, for their number.\n"
            "The values of 1 attribute are not in the page, for their number.\n");
}

}  // namespace
}  // namespace orvml_io_tests
