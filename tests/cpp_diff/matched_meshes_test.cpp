// Meshes whose nodes and cells have other numbers are found to be the same by their geometry.
#include <orvml/orvml.hpp>

#include "cpp/sample_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace orvml_io_tests {
namespace {

using orvml::DiffReport;
using orvml::Entity;
using orvml::Input;
using orvml::Shape;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

constexpr int kSide = 12;
constexpr int kGridNodes = kSide * kSide;
constexpr int kGridCells = (kSide - 1) * (kSide - 1);

Ints shuffled(int count, std::mt19937& random) {
  Ints order(static_cast<std::size_t>(count));
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), random);
  return order;
}

/// A grid of quadrilaterals whose nodes and cells have the numbers of the two orders, moved by up
/// to `shift`, with an attribute that each node and cell keeps.
Input grid(const Ints& nodeOrder, const Ints& cellOrder, double shift, std::mt19937& random) {
  std::uniform_real_distribution<double> move(-shift, shift);
  Doubles coordinates(2 * kGridNodes);
  Doubles ofNodes(kGridNodes);
  for (int node = 0; node < kGridNodes; ++node) {
    const auto place = static_cast<std::size_t>(nodeOrder[static_cast<std::size_t>(node)]);
    coordinates[2 * place] = node % kSide + move(random);
    coordinates[2 * place + 1] = node / kSide + move(random);
    ofNodes[place] = node;
  }
  Ints indices(4 * kGridCells);
  Ints ofCells(kGridCells);
  for (int cell = 0; cell < kGridCells; ++cell) {
    const auto place = static_cast<std::size_t>(cellOrder[static_cast<std::size_t>(cell)]);
    const int corner = cell / (kSide - 1) * kSide + cell % (kSide - 1);
    const int corners[] = {corner, corner + 1, corner + kSide + 1, corner + kSide};
    for (std::size_t i = 0; i < 4; ++i) {
      // Begins at another corner in each cell.
      const auto turned = (i + place) % 4;
      indices[4 * place + i] = nodeOrder[static_cast<std::size_t>(corners[turned])];
    }
    ofCells[place] = cell;
  }
  Input input({"m", "1", "c"}, 2);
  input.setNodes(std::move(coordinates));
  input.setCells(Entity::faces, Shape::quadrilateral, 4, std::move(indices));
  input.setAttribute(Entity::nodes, "number", std::move(ofNodes));
  input.setAttribute(Entity::faces, "number", std::move(ofCells));
  return input;
}

class MatchedMeshes : public ::testing::Test {
 protected:
  Input renumbered(double shift) {
    return grid(shuffled(kGridNodes, random_), shuffled(kGridCells, random_), shift, random_);
  }

  std::mt19937 random_{1};  // NOLINT(cert-msc51-cpp): the same meshes in each run
};

TEST_F(MatchedMeshes, AreTheSameWhateverTheirNumbers) {
  const Input a = renumbered(0.0);
  const Input b = renumbered(0.0);

  const DiffReport report = diff(a.view(), b.view(), {.matchWithin = 0.0});

  EXPECT_TRUE(report.areSame());
  ASSERT_TRUE(report.match.has_value());
  EXPECT_EQ(report.match->nodes.matched, kGridNodes);
  EXPECT_TRUE(report.match->nodes.isRenumbered);
  EXPECT_EQ(report.match->faces.matched, kGridCells);
  EXPECT_TRUE(report.match->faces.isRenumbered);
  EXPECT_FALSE(diff(a.view(), b.view()).areSame());
}

TEST_F(MatchedMeshes, MayBeMovedByTheDistance) {
  const Input a = renumbered(0.0);
  const Input b = renumbered(0.1);

  EXPECT_TRUE(diff(a.view(), b.view(), {.matchWithin = 0.1 * std::sqrt(2.0)}).areSame());
  EXPECT_FALSE(diff(a.view(), b.view(), {.matchWithin = 0.01}).areSame());
}

TEST_F(MatchedMeshes, AreNotRenumberedWhenTheyAreEqual) {
  const Input input = fullInput();

  const DiffReport report = diff(input.view(), input.view(), {.matchWithin = 1e-9});

  EXPECT_TRUE(report.areSame());
  EXPECT_EQ(report.match->elements.matched, 2);
  EXPECT_FALSE(report.match->nodes.isRenumbered);
  EXPECT_FALSE(report.match->elements.isRenumbered);
}

TEST_F(MatchedMeshes, TellTheValuesThatDifferWhereTheyBelong) {
  const Input a = renumbered(0.0);
  Input b = renumbered(0.0);
  Doubles values(kGridNodes);
  const orvml::Attributes attributes = b.nodes().attributes();
  const std::span<const double> numbers = attributes.at("number").doubles();
  std::copy(numbers.begin(), numbers.end(), values.begin());
  const auto place = std::find(values.begin(), values.end(), 17.0);
  *place = 20.0;
  b.setAttribute(Entity::nodes, "number", std::move(values));

  const DiffReport report = diff(a.view(), b.view(), {.matchWithin = 0.0});

  ASSERT_EQ(report.differences.size(), 1U);
  EXPECT_EQ(report.differences[0].object, "/Nodes/Attributes/number");
  EXPECT_EQ(report.differences[0].count, 1);
  EXPECT_EQ(report.differences[0].largest, 3.0);
  const auto node = static_cast<std::size_t>(report.differences[0].worst);
  const orvml::Attributes ofA = a.nodes().attributes();
  EXPECT_EQ(ofA.at("number").doubles()[node], 17.0);
}

TEST_F(MatchedMeshes, TellWhatHasNoCounterpart) {
  Input a = fullInput();
  a.remove(Entity::edges);
  Input b = fullInput();
  b.remove(Entity::edges);
  b.setNodes(Doubles{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 5, 5});

  const DiffReport report = diff(a.view(), b.view(), {.matchWithin = 1e-6});

  EXPECT_EQ(report.match->nodes.matched, 4);
  EXPECT_EQ(report.match->nodes.onlyInFirst, 1);
  EXPECT_EQ(report.match->nodes.onlyInSecond, 1);
  EXPECT_EQ(report.match->elements.matched, 1);
  EXPECT_EQ(report.match->faces.matched, 4);
  ASSERT_EQ(report.differences.size(), 4U);
  EXPECT_EQ(report.differences[0].sentence, "1 node without a counterpart");
  EXPECT_EQ(report.differences[2].object, "/Elements");
}

TEST_F(MatchedMeshes, TakeEachOfManyNodesAtOnePlaceOnce) {
  constexpr int kMany = 20000;
  Input a({"m", "1", "c"}, 2);
  a.setNodes(Doubles(2 * kMany, 1.0));

  const DiffReport report = diff(a.view(), a.view(), {.matchWithin = 0.5});

  EXPECT_EQ(report.match->nodes.matched, kMany);
}

TEST_F(MatchedMeshes, OfOtherDimensionsHaveNothingInCommon) {
  Input flat({"m", "1", "c"}, 2);
  flat.setNodes(Doubles{0, 0, 1, 1});
  Input solid({"m", "1", "c"}, 3);
  solid.setNodes(Doubles{0, 0, 0, 1, 1, 1});

  const DiffReport report = diff(flat.view(), solid.view(), {.matchWithin = 10.0});

  EXPECT_EQ(report.match->nodes.matched, 0);
  EXPECT_FALSE(report.areSame());
}

/// Views may be of anything, though meshes have 2 or 3 dimensions.
TEST_F(MatchedMeshes, OfMoreThanThreeDimensionsHaveNothingInCommon) {
  const Doubles coordinates(8 * 4, 0.5);
  orvml::DocumentParts parts;
  parts.dimension = 8;
  parts.nodes = orvml::NodesView(coordinates, 8);
  const orvml::InputView view(parts);

  const DiffReport report = diff(view, view, {.matchWithin = 1.0});

  EXPECT_EQ(report.match->nodes.matched, 0);
}

/// A value whose counterpart is missing does not pass for equal.
TEST_F(MatchedMeshes, TellOfAttributesThatAreShorterThanTheirNodes) {
  const Doubles coordinates{0, 0, 1, 1};
  const Ints whole{1, 2};
  const Ints half{1};
  const auto viewOf = [&](const Ints& values) {
    orvml::DocumentParts parts;
    parts.dimension = 2;
    parts.nodes = orvml::NodesView(coordinates, 2,
                                   orvml::Attributes({orvml::Attribute("a", std::span(values))}));
    return orvml::InputView(parts);
  };

  const DiffReport report = diff(viewOf(whole), viewOf(half), {.matchWithin = 0.0});

  ASSERT_EQ(report.differences.size(), 1U);
  EXPECT_EQ(report.differences[0].change, orvml::Change::size);
}

TEST_F(MatchedMeshes, WithIndicesOutOfRangeAreComparedAll) {
  Input a({"m", "1", "c"}, 2);
  a.setNodes(Doubles{0, 0, 1, 1});
  a.setCells(Entity::edges, Shape::line, 2, Ints{0, 7, -1, 1, 0, 1});

  const DiffReport report = diff(a.view(), a.view(), {.matchWithin = 0.0});

  EXPECT_EQ(report.match->edges.matched, 1);
  EXPECT_EQ(report.match->edges.onlyInFirst, 2);
}

}  // namespace
}  // namespace orvml_io_tests
