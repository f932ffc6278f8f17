// Where findings are: across groups and blocks of cells, as many as are asked for.
#include "cpp_check/meshes.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace orvml_io_tests {
namespace {

using orvml::CheckPlace;
using orvml::PlaceKind;
using orvml::Shape;

std::vector<std::int64_t> indicesOf(const orvml::CheckFinding& finding) {
  std::vector<std::int64_t> indices;
  for (const CheckPlace& place : finding.places) {
    indices.push_back(place.index);
  }
  return indices;
}

TEST(Places, CountCellsOverAllGroups) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  mesh.elements = {{Shape::tetrahedron, 4, std::vector<int>(8, 77)},
                   {static_cast<Shape>(42), 4, {0, 1, 2, 3}},
                   {Shape::tetrahedron, 4, {0, 1, 2, 3, 0, 1, 2, 78}}};

  const orvml::CheckReport report = mesh.checked();

  ASSERT_EQ(codesOf(report), (std::vector<std::string>{"orvml.mesh.unknown-shape",
                                                       "orvml.mesh.index-out-of-range"}));
  EXPECT_EQ(indicesOf(report.findings[1]), (std::vector<std::int64_t>{0, 1, 4}));
}

TEST(Places, AreAsManyAsAreAskedFor) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 3);
  for (double& value : mesh.x) {
    value = 0 - value;  // mirrored at the origin, which inverts every cell
  }

  for (const int places : {0, 1, 25}) {
    const orvml::CheckReport report = mesh.checked({.places = places});
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].count, 162);
    ASSERT_EQ(report.findings[0].places.size(), static_cast<std::size_t>(places));
    for (int i = 0; i < places; ++i) {
      EXPECT_EQ(report.findings[0].places[static_cast<std::size_t>(i)].index, i);
    }
  }
}

TEST(Places, AreFoundBeyondTheFirstBlockOfCells) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 12);
  auto& indices = mesh.elements[0].indices;
  indices[8 * 700] = 1 << 30;
  indices[8 * 1500 + 1] = indices[8 * 1500];
  mesh.faces.clear();

  const orvml::CheckReport report = mesh.checked();

  ASSERT_EQ(codesOf(report), (std::vector<std::string>{"orvml.mesh.index-out-of-range",
                                                       "orvml.mesh.repeated-node"}));
  EXPECT_EQ(indicesOf(report.findings[0]), std::vector<std::int64_t>{700});
  EXPECT_EQ(indicesOf(report.findings[1]), std::vector<std::int64_t>{1500});
}

/// Without faces of the document the two sides of the faces are not balanced, so that each has to
/// be looked at.
TEST(Places, AreFoundAtFacesOfAnOpenMesh) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 12);
  renumber(mesh, 7);
  mesh.faces.clear();
  auto& indices = mesh.elements[0].indices;
  const auto cells = static_cast<std::int64_t>(indices.size()) / 4;
  ASSERT_EQ(toldOf(mesh.checked()), toldOf({}));

  const std::vector<int> again(indices.begin() + 4 * 3000, indices.begin() + 4 * 3001);
  indices.insert(indices.end(), again.begin(), again.end());
  const orvml::CheckReport report = mesh.checked({.places = 1000});

  ASSERT_EQ(codesOf(report), (std::vector<std::string>{"orvml.mesh.duplicate-cell",
                                                       "orvml.mesh.face-shared-by-many"}));
  EXPECT_EQ(indicesOf(report.findings[0]), std::vector<std::int64_t>{cells});
  const std::vector<std::int64_t> beside = indicesOf(report.findings[1]);
  EXPECT_TRUE(std::binary_search(beside.begin(), beside.end(), 3000));
  EXPECT_TRUE(std::binary_search(beside.begin(), beside.end(), cells));
}

/// The numbers of cells that have the nodes of an earlier one.
std::set<std::int64_t> repetitions(const std::vector<int>& indices, std::size_t width) {
  std::map<std::set<int>, int> met;
  std::set<std::int64_t> repeated;
  for (std::size_t i = 0; i < indices.size(); i += width) {
    const std::set<int> nodes(indices.begin() + static_cast<std::ptrdiff_t>(i),
                              indices.begin() + static_cast<std::ptrdiff_t>(i + width));
    if (met[nodes]++ > 0) {
      repeated.insert(static_cast<std::int64_t>(i / width));
    }
  }
  return repeated;
}

TEST(NodesThatNobodyHolds, TakeNoMemory) {
  const std::vector<int> cell = {0, 1, 2, 2000000000};
  const std::vector<int> face = {0, 1, 2};
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = orvml::NodesView::withoutCoordinates(2000000001, 3);
  parts.elements = orvml::CellsView({orvml::CellGroup(Shape::tetrahedron, 4, cell)});
  const orvml::CheckReport both = check(orvml::InputView(parts));
  parts.elements = {};
  parts.faces = orvml::CellsView({orvml::CellGroup(Shape::triangle, 3, face)});
  const orvml::CheckReport ofFaces = check(orvml::InputView(parts));

  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  EXPECT_LT(usage.ru_maxrss, 1 << 20);  // KiB; four bytes for each node would be eight times that
  EXPECT_EQ(codesOf(both), std::vector<std::string>{"orvml.mesh.coordinates-missing"});
  EXPECT_EQ(codesOf(ofFaces), std::vector<std::string>{"orvml.mesh.coordinates-missing"});
}

TEST(CheckOptions, GiveTheSameFindingsWithTwoThreads) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 4);
  mesh.x[0] = 40;                          // folds and inverts
  mesh.x.insert(mesh.x.end(), {1, 1, 1});  // unused, at a place that is taken
  mesh.faces[0].indices.insert(mesh.faces[0].indices.end(), {0, 50, 100});

  const orvml::CheckReport one = mesh.checked();

  EXPECT_GT(one.findings.size(), 3U);
  EXPECT_EQ(toldOf(mesh.checked({.threads = 2})), toldOf(one));
}

TEST(DuplicateCells, AreThoseThatComparingAllFinds) {
  for (unsigned seed = 0; seed < 10; ++seed) {
    std::mt19937 random(seed);
    TestMesh mesh;
    mesh.hasCoordinates = false;
    mesh.x.resize(3 * 12);
    mesh.elements = {{Shape::tetrahedron, 4, {}}};
    for (int i = 0; i < 300; ++i) {
      std::set<int> nodes;
      while (nodes.size() < 4) {
        nodes.insert(static_cast<int>(random() % 12));
      }
      std::vector<int> shuffled(nodes.begin(), nodes.end());
      std::shuffle(shuffled.begin(), shuffled.end(), random);
      mesh.elements[0].indices.insert(mesh.elements[0].indices.end(), shuffled.begin(),
                                      shuffled.end());
    }
    const std::set<std::int64_t> expected = repetitions(mesh.elements[0].indices, 4);

    const orvml::CheckReport report = mesh.checked({.places = 1000});

    for (const orvml::CheckFinding& finding : report.findings) {
      if (finding.code == "orvml.mesh.duplicate-cell") {
        const auto indices = indicesOf(finding);
        EXPECT_EQ(std::set<std::int64_t>(indices.begin(), indices.end()), expected);
        EXPECT_EQ(finding.count, static_cast<std::int64_t>(expected.size()));
      }
    }
    EXPECT_GT(expected.size(), 10U);
  }
}

TEST(SharedFaces, AreThoseThatCountingAllFinds) {
  std::mt19937 random(11);
  TestMesh mesh;
  mesh.hasCoordinates = false;
  mesh.x.resize(3 * 20);
  mesh.elements = {{Shape::tetrahedron, 4, {}}};
  std::map<std::set<int>, int> faces;
  for (int i = 0; i < 400; ++i) {
    std::set<int> nodes;
    while (nodes.size() < 4) {
      nodes.insert(static_cast<int>(random() % 20));
    }
    mesh.elements[0].indices.insert(mesh.elements[0].indices.end(), nodes.begin(), nodes.end());
    for (const int without : nodes) {
      std::set<int> face = nodes;
      face.erase(without);
      ++faces[face];
    }
  }
  const auto expected =
      std::count_if(faces.begin(), faces.end(), [](const auto& face) { return face.second > 2; });

  const orvml::CheckReport report = mesh.checked();

  const auto found =
      std::find_if(report.findings.begin(), report.findings.end(),
                   [](const auto& f) { return f.code == "orvml.mesh.face-shared-by-many"; });
  ASSERT_NE(found, report.findings.end());
  EXPECT_EQ(found->count, expected);
}

}  // namespace
}  // namespace orvml_io_tests
