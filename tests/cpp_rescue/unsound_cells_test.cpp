// Cells whose numbers can be read and that are no good as cells: dropped, or kept where that is
// asked for.
#include "cpp_check/meshes.h"
#include "cpp_rescue/small_file.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Shape;

struct UnsoundRow {
  const char* name;
  void (*spoil)(std::vector<int>& indices);
  std::string told;
  int elements;

  friend std::ostream& operator<<(std::ostream& stream, const UnsoundRow& row) {
    return stream << row.name;
  }
};

/// The indices are those of two hexahedra, of which the second lies beside the first.
const UnsoundRow kUnsoundCells[] = {
    {"ANodeTwice", [](std::vector<int>& indices) { indices[9] = indices[8]; },
     "orvml.mesh.repeated-node: /OrvInput/Elements has 1 element with a node that is named twice "
     "(1: element 1)\n",
     1},
    {"InsideOut",
     [](std::vector<int>& indices) {
       std::swap_ranges(indices.begin() + 8, indices.begin() + 12, indices.begin() + 12);
     },
     "orvml.mesh.inverted-cell: /OrvInput/Elements has 1 element inside out (1: element "
     "1)\n",
     1},
    {"Twice",
     [](std::vector<int>& indices) {
       indices.insert(indices.end(), indices.begin(), indices.begin() + 8);
     },
     "orvml.mesh.duplicate-cell: /OrvInput/Elements has 1 element with the nodes of another one "
     "(1: element 2)\n",
     2}};

TestMesh twoCubes() {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1,
            1, 1, 1, 0, 1, 1, 2, 0, 0, 2, 1, 0, 2, 0, 1, 2, 1, 1};
  mesh.elements = {{Shape::hexahedron, 8, {0, 1, 2, 3, 4, 5, 6, 7, 1, 8, 9, 2, 5, 10, 11, 6}}};
  mesh.parameters = {{"size", 0.5}};
  return mesh;
}

class UnsoundCells : public ::testing::TestWithParam<UnsoundRow> {
 protected:
  UnsoundCells() : mesh_(twoCubes()) {
    GetParam().spoil(mesh_.elements[0].indices);
    orvml::save(damaged_.path(), mesh_.view());
  }
  TestMesh mesh_;
  TempFile damaged_;
  TempFile sound_;
};

TEST_P(UnsoundCells, AreDropped) {
  const orvml::RescueReport report = orvml::rescue(damaged_.path(), sound_.path());

  EXPECT_EQ(toldOf(report), GetParam().told);
  EXPECT_EQ(errorsOf(sound_.path()), "");
  EXPECT_EQ(countOf(sound_.path(), orvml::Entity::elements), GetParam().elements);
}

TEST_P(UnsoundCells, StayWhereThatIsAskedFor) {
  const orvml::RescueReport report =
      orvml::rescue(damaged_.path(), sound_.path(), {.dropUnsoundCells = false});

  EXPECT_EQ(toldOf(report), "");
  const orvml::Input kept = orvml::loadInput(sound_.path());
  EXPECT_TRUE(diff(kept.view(), mesh_.view()).areSame());
}

INSTANTIATE_TEST_SUITE_P(Rescue, UnsoundCells, ::testing::ValuesIn(kUnsoundCells), RowName());

/// A wrong index makes a cell a bad one; the good ones beside it stay.
TEST(CellsBesideABadOne, Stay) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 3);
  const int cells = mesh.view().elements().size();
  std::swap(mesh.elements[0].indices[40], mesh.elements[0].indices[41]);
  const TempFile damaged;
  const TempFile sound;
  orvml::save(damaged.path(), mesh.view());

  const orvml::RescueReport report = orvml::rescue(damaged.path(), sound.path());

  ASSERT_EQ(report.lost.size(), 1U) << toldOf(report);
  EXPECT_EQ(report.lost[0].count, 1);
  EXPECT_EQ(countOf(sound.path(), orvml::Entity::elements), cells - 1);
}

TEST(ElementsThatShareAFaceWithTwoOthers, AreDroppedTogether) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0.2, 0.2, 2, 0.2, 0.2, -1};
  mesh.elements = {{Shape::tetrahedron, 4, {0, 1, 2, 3, 0, 1, 2, 4, 0, 2, 1, 5}}};
  mesh.parameters = {{"size", 0.5}};
  const TempFile damaged;
  const TempFile sound;
  orvml::save(damaged.path(), mesh.view());

  const orvml::RescueReport report = orvml::rescue(damaged.path(), sound.path());

  EXPECT_EQ(toldOf(report),
            "orvml.mesh.face-shared-by-many: /OrvInput/Elements has 1 face that more than two "
            "elements share (3: element 0 element 1 element 2)\n");
  EXPECT_EQ(errorsOf(sound.path()), "");
}

}  // namespace
}  // namespace orvml_io_tests
