// The faces of volume elements, and where a mesh ends.
#include "cpp_check/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>

namespace orvml_io_tests {
namespace {

using orvml::CellForm;
using orvml::CellGroup;
using orvml::CellsView;
using orvml::Shape;
using orvml::SkinFaces;

std::string digits(const std::vector<std::uint8_t>& places, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += static_cast<char>('0' + places[i]);
  }
  return text;
}

std::set<std::vector<int>> sortedFaces(const std::vector<TestCells>& groups, std::size_t corners) {
  std::set<std::vector<int>> faces;
  for (const TestCells& group : groups) {
    const auto width = static_cast<std::size_t>(group.nodes);
    for (std::size_t at = 0; at < group.indices.size(); at += width) {
      std::vector<int> face(group.indices.begin() + static_cast<std::ptrdiff_t>(at),
                            group.indices.begin() + static_cast<std::ptrdiff_t>(at + corners));
      std::sort(face.begin(), face.end());
      faces.insert(face);
    }
  }
  return faces;
}

class FormsOfSolids : public ::testing::TestWithParam<FormOfShape> {};

TEST_P(FormsOfSolids, HaveTheirFacesInOrder) {
  const FormOfShape& form = GetParam();

  const auto faces = facesOf(CellForm{form.shape, form.nodes});

  ASSERT_EQ(faces.size(), form.faces.size());
  for (std::size_t i = 0; i < faces.size(); ++i) {
    EXPECT_EQ(digits(faces[i].nodes, faces[i].corners), form.faces[i]) << i;
    EXPECT_EQ(static_cast<int>(faces[i].nodes.size()), faces[i].form.nodesPerCell) << i;
    EXPECT_FALSE(linearPartsOf(faces[i].form).empty()) << i;
  }
}

TEST_P(FormsOfSolids, EndWhereTheBoundaryOfABlockIs) {
  const TestMesh block = blockOf(GetParam(), 2);
  const orvml::InputView view = block.view();

  const std::vector<SkinFaces> skin = skinOf(view.elements(), view.nodes().size());

  std::set<std::vector<int>> found;
  std::int64_t count = 0;
  for (const SkinFaces& faces : skin) {
    const std::size_t corners = faces.form.shape == Shape::triangle ? 3 : 4;
    const auto some =
        sortedFaces({{faces.form.shape, faces.form.nodesPerCell, faces.nodes}}, corners);
    found.insert(some.begin(), some.end());
    count += faces.size();
  }
  std::set<std::vector<int>> expected;
  for (const TestCells& faces : block.faces) {
    const auto some = sortedFaces({faces}, faces.shape == Shape::triangle ? 3 : 4);
    expected.insert(some.begin(), some.end());
  }
  EXPECT_EQ(found, expected);
  EXPECT_EQ(count, static_cast<std::int64_t>(expected.size()));
}

TEST_P(FormsOfSolids, TellWhoseSidesTheFacesAre) {
  const TestMesh block = blockOf(GetParam(), 2);
  const orvml::InputView view = block.view();
  const auto sides = facesOf(CellForm{GetParam().shape, GetParam().nodes});
  ASSERT_EQ(view.elements().groups().size(), 1U);
  const CellGroup group = view.elements().groups()[0];

  for (const SkinFaces& faces : skinOf(view.elements(), view.nodes().size())) {
    ASSERT_EQ(faces.sides.size(), faces.elements.size());
    const auto width = static_cast<std::size_t>(faces.form.nodesPerCell);
    ASSERT_EQ(faces.nodes.size(), faces.elements.size() * width);
    for (std::size_t face = 0; face < faces.elements.size(); ++face) {
      const auto cell = group[faces.elements[face]];
      const orvml::CellFace& side = sides.at(faces.sides[face]);
      for (std::size_t i = 0; i < width; ++i) {
        ASSERT_EQ(faces.nodes[face * width + i], cell[side.nodes[i]]) << face;
      }
    }
  }
}

std::vector<FormOfShape> solids() {
  std::vector<FormOfShape> forms;
  std::copy_if(formsOfShapes().begin(), formsOfShapes().end(), std::back_inserter(forms),
               [](const FormOfShape& form) { return !form.faces.empty(); });
  return forms;
}

INSTANTIATE_TEST_SUITE_P(Solids, FormsOfSolids, ::testing::ValuesIn(solids()),
                         [](const auto& row) { return row.param.name; });

TEST(FacesOf, WhatIsNoSolidAreNone) {
  EXPECT_TRUE(facesOf(CellForm{Shape::triangle, 3}).empty());
  EXPECT_TRUE(facesOf(CellForm{Shape::tetrahedron, 5}).empty());
  EXPECT_TRUE(facesOf(CellForm{static_cast<Shape>(-7), 4}).empty());
  EXPECT_TRUE(facesOf(CellForm{Shape::hexahedron, std::numeric_limits<int>::max()}).empty());
}

TEST(LinearParts, OfAFaceHaveAllOfItsNodes) {
  for (const FormOfShape& form : formsOfShapes()) {
    std::set<int> nodes;
    const CellForm flat{form.shape, form.nodes};
    for (const auto& part : linearPartsOf(flat)) {
      EXPECT_TRUE(part.size() == 3 || part.size() == 4) << form.name;
      nodes.insert(part.begin(), part.end());
    }
    EXPECT_EQ(nodes.size(), form.faces.empty() ? static_cast<std::size_t>(form.nodes) : 0)
        << form.name;
  }
}

constexpr int kFar = std::numeric_limits<int>::max();

TEST(SkinOf, CountsElementsOverAllGroups) {
  const std::vector<int> first = {0, 1, 2, 3};
  const std::vector<int> second = {1, 2, 3, 4};
  const CellsView elements({CellGroup(Shape::tetrahedron, 4, first),
                            CellGroup::withoutNodes(Shape::hexahedron, 10),
                            CellGroup(Shape::tetrahedron, 4, second)});

  const auto skin = skinOf(elements, 5);

  ASSERT_EQ(skin.size(), 1U);
  EXPECT_EQ(skin[0].elements, (std::vector<int>{0, 0, 0, 11, 11, 11}));
}

TEST(SkinOf, LeavesOutCellsThatHaveNoFaces) {
  const std::vector<int> cells = {0, 1, 2, 3, 1, 2, 3, -1, 1, 2, 3, 5, 1, 2, 3, kFar};
  const std::vector<int> spheres = {0};
  const CellsView elements({CellGroup(Shape::tetrahedron, 4, cells),
                            CellGroup(Shape::sphere, 1, spheres),
                            CellGroup(static_cast<Shape>(42), 4, cells),
                            CellGroup::withoutNodes(Shape::tetrahedron, 1000000000)});

  const auto skin = skinOf(elements, 5);

  ASSERT_EQ(skin.size(), 1U);
  EXPECT_EQ(skin[0].elements, (std::vector<int>{0, 0, 0, 0}));
}

TEST(SkinOf, TakesNoMemoryForNodesThatAreClaimed) {
  const std::vector<int> cells = {0, 1, 2, kFar - 1, 1, 2, 3, kFar - 2, 1, 0, 2, 3};
  const CellsView elements({CellGroup(Shape::tetrahedron, 4, cells)});

  const auto skin = skinOf(elements, kFar);

  ASSERT_EQ(skin.size(), 1U);
  EXPECT_EQ(skin[0].size(), 8);  // two pairs of equal faces of twelve are inside
}

TEST(SkinOf, NothingIsNothing) {
  EXPECT_TRUE(orvml::skinOf(CellsView(), 0).empty());
  EXPECT_TRUE(orvml::skinOf(CellsView(), -1).empty());
  const std::vector<int> cell = {0, 1, 2, 3};
  EXPECT_TRUE(skinOf(CellsView({CellGroup(Shape::tetrahedron, 4, cell)}), 0).empty());
}

}  // namespace
}  // namespace orvml_io_tests
