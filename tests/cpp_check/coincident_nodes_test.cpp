// Nodes at the same place are found whatever the tolerance, against comparing all with all.
#include "cpp_check/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace orvml_io_tests {
namespace {

using orvml::CheckFinding;

/// A cloud of points in a cube, some of which have others within a distance.
TestMesh cloud(int points, double distance, unsigned seed, int dimension = 3) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> place(0, 1);
  TestMesh mesh;
  mesh.dimension = dimension;
  mesh.coordinatesPerNode = dimension;
  for (int i = 0; i < points; ++i) {
    const bool isNear = i > 10 && random() % 4 == 0;
    const auto other = isNear ? random() % static_cast<unsigned>(i) : 0;
    for (int axis = 0; axis < dimension; ++axis) {
      const auto at = static_cast<std::size_t>(axis) + other * static_cast<unsigned>(dimension);
      mesh.x.push_back(isNear ? mesh.x[at] + distance * (2 * place(random) - 1) : place(random));
    }
  }
  return mesh;
}

double diagonalOf(const TestMesh& mesh) {
  double squares = 0;
  for (int axis = 0; axis < mesh.dimension; ++axis) {
    double low = 1e300;
    double high = -1e300;
    for (std::size_t i = static_cast<std::size_t>(axis); i < mesh.x.size();
         i += static_cast<std::size_t>(mesh.dimension)) {
      low = std::min(low, mesh.x[i]);
      high = std::max(high, mesh.x[i]);
    }
    squares += (high - low) * (high - low);
  }
  return std::sqrt(squares);
}

/// How many nodes have another one before them, in the order of coordinates, within a distance.
int coincidentByHand(const TestMesh& mesh, double distance) {
  const auto width = static_cast<std::size_t>(mesh.dimension);
  std::vector<std::vector<double>> nodes;
  for (std::size_t i = 0; i < mesh.x.size(); i += width) {
    nodes.emplace_back(mesh.x.begin() + static_cast<std::ptrdiff_t>(i),
                       mesh.x.begin() + static_cast<std::ptrdiff_t>(i + width));
  }
  std::sort(nodes.begin(), nodes.end());
  int count = 0;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    bool isFound = false;
    for (std::size_t j = 0; j < i && !isFound; ++j) {
      double squares = 0;
      for (std::size_t axis = 0; axis < width; ++axis) {
        squares += (nodes[i][axis] - nodes[j][axis]) * (nodes[i][axis] - nodes[j][axis]);
      }
      isFound = std::sqrt(squares) <= distance;
    }
    count += isFound ? 1 : 0;
  }
  return count;
}

std::int64_t found(const TestMesh& mesh, double tolerance) {
  for (const CheckFinding& finding : mesh.checked({.coincidenceTolerance = tolerance}).findings) {
    if (finding.code == "orvml.mesh.coincident-nodes") {
      return finding.count;
    }
  }
  return 0;
}

class Clouds : public ::testing::TestWithParam<std::tuple<double, int>> {};

TEST_P(Clouds, HaveTheCoincidencesThatComparingAllFinds) {
  const auto [share, dimension] = GetParam();
  for (unsigned seed = 0; seed < 5; ++seed) {
    const TestMesh mesh = cloud(1500, share, seed, dimension);
    const double distance = share * diagonalOf(mesh);

    const int expected = coincidentByHand(mesh, distance);

    ASSERT_GT(expected, 100);
    EXPECT_EQ(found(mesh, share), expected) << "seed " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Tolerances, Clouds,
                         ::testing::Combine(::testing::Values(1e-12, 1e-9, 1e-6, 1e-4, 3e-3),
                                            ::testing::Values(2, 3)));

TEST(CoincidentNodes, AreThoseOfEqualCoordinatesWithoutATolerance) {
  const TestMesh mesh = cloud(1000, 0, 3);

  EXPECT_EQ(found(mesh, 0), coincidentByHand(mesh, 0));
  EXPECT_GT(found(mesh, 0), 100);
}

TEST(CoincidentNodes, AreNotLookedForWhenTheToleranceIsNegative) {
  EXPECT_EQ(found(cloud(100, 0, 3), -1), 0);
}

TEST(CoincidentNodes, AreFoundInANumberThatComparingAllWouldNotBearIt) {
  TestMesh mesh;
  mesh.x.assign(3 * 1000000, 0.25);

  EXPECT_EQ(found(mesh, 1e-10), 999999);
}

TEST(CoincidentNodes, AreFoundInSpiteOfCoordinatesThatAreNotFinite) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  TestMesh mesh;
  mesh.x = {0, 0, 0, kInfinity, 0, 0, 0, 0, 0, kNan, kNan, kNan, 1, 1, 1, -kInfinity, 1, 1};

  EXPECT_EQ(found(mesh, 1e-10), 1);
}

TEST(CoincidentNodes, AreNoneOfARegularGridWhoseNodesAreOnTheLinesOfEveryOtherGrid) {
  TestMesh mesh;
  for (int i = 0; i < 64000; ++i) {
    mesh.x.insert(mesh.x.end(), {double(i % 40), double(i / 40 % 40), double(i / 1600)});
  }

  EXPECT_EQ(found(mesh, 1e-10), 0);
  EXPECT_EQ(found(mesh, 0.01), 0);  // 0.7 of the 1 that nodes are apart
}

TEST(CoincidentNodes, AreNotLookedForBeyondTheRangeOfDoubles) {
  TestMesh mesh;
  mesh.x = {-1e308, 0, 0, 1e308, 0, 0, 1e308, 0, 0};

  EXPECT_EQ(found(mesh, 1e-10), 0);
}

}  // namespace
}  // namespace orvml_io_tests
