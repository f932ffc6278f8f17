// The Jacobians of quadratic cells, against those of polynomials that the cells follow exactly.
#include "check/curved_cells.h"

#include "cpp_check/meshes.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>

namespace orvml_io_tests {

std::ostream& operator<<(std::ostream& stream, const FormOfShape& form);

namespace {

using orvml::Shape;
using orvml::detail::CurvedForm;
using orvml::detail::Vec;

/// A map of space of degree 2 near the identity.
struct QuadraticMap {
  std::array<std::array<double, 10>, 3> factors{};  // of 1 x y z xx yy zz xy xz yz

  QuadraticMap(unsigned seed, bool isLinearAcross, bool isFlat) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> small(-0.1, 0.1);
    for (std::size_t row = 0; row < (isFlat ? 2U : 3U); ++row) {
      for (double& factor : factors[row]) {
        factor = small(random);
      }
      factors[row][1 + row] += 1;
      // 6-node quadrilaterals are linear in y, 12-node prisms in z.
      factors[row][isFlat ? 5 : 6] *= isLinearAcross ? 0 : 1;
    }
    if (isFlat) {
      factors[2] = {};
    }
  }

  [[nodiscard]] Vec at(const Vec& p) const {
    const std::array<double, 10> terms = {1,         p.x,       p.y,       p.z,       p.x * p.x,
                                          p.y * p.y, p.z * p.z, p.x * p.y, p.x * p.z, p.y * p.z};
    return {sum(0, terms), sum(1, terms), sum(2, terms)};
  }
  [[nodiscard]] double jacobianAt(const Vec& p, bool isFlat) const {
    const std::array<double, 10> dx = {0, 1, 0, 0, 2 * p.x, 0, 0, p.y, p.z, 0};
    const std::array<double, 10> dy = {0, 0, 1, 0, 0, 2 * p.y, 0, p.x, 0, p.z};
    const std::array<double, 10> dz = {0, 0, 0, 1, 0, 0, 2 * p.z, 0, p.x, p.y};
    const Vec a{sum(0, dx), sum(1, dx), sum(2, dx)};
    const Vec b{sum(0, dy), sum(1, dy), sum(2, dy)};
    const Vec c{sum(0, dz), sum(1, dz), sum(2, dz)};
    return triple(a, b, isFlat ? Vec{0, 0, 1} : c);
  }

 private:
  [[nodiscard]] double sum(std::size_t row, const std::array<double, 10>& terms) const {
    double result = 0;
    for (std::size_t i = 0; i < terms.size(); ++i) {
      result += factors[row][i] * terms[i];
    }
    return result;
  }
};

std::vector<FormOfShape> quadraticForms() {
  std::vector<FormOfShape> forms;
  for (const FormOfShape& form : formsOfShapes()) {
    if (!form.middles.empty()) {
      forms.push_back(form);
    }
  }
  return forms;
}

/// The nodes of a form in the reference cell of its shape, where the Jacobian is that of the map.
std::vector<Vec> referenceNodes(const FormOfShape& form) {
  const TestMesh cell = cellOf(form);
  std::vector<Vec> nodes;
  for (int node = 0; node < form.nodes; ++node) {
    nodes.push_back(orvml::detail::pointAt(cell.x.data(), cell.coordinatesPerNode, node));
  }
  if (form.shape == Shape::pyramid) {
    for (Vec& node : nodes) {  // its base goes from -1 to 1
      node.x = 2 * node.x - 1;
      node.y = 2 * node.y - 1;
    }
  }
  return nodes;
}

class QuadraticCells : public ::testing::TestWithParam<FormOfShape> {
 protected:
  [[nodiscard]] static CurvedForm curvedForm() {
    return CurvedForm(*orvml::detail::factsOf(GetParam().shape), GetParam().nodes);
  }
};

TEST_P(QuadraticCells, HaveTheJacobiansOfTheMapThatTheyFollow) {
  const bool isFlat = GetParam().faces.empty();
  const bool isLinearAcross = GetParam().nodes == 12 || (isFlat && GetParam().nodes == 6 &&
                                                         GetParam().shape == Shape::quadrilateral);
  for (unsigned seed = 0; seed < 20; ++seed) {
    const QuadraticMap map(seed, isLinearAcross, isFlat);
    std::vector<Vec> points = referenceNodes(GetParam());
    std::vector<Vec> x;
    for (const Vec& point : points) {
      x.push_back(map.at(point));
    }
    if (GetParam().shape == Shape::pyramid) {
      points[4].z = 0.9;
    }
    Vec centre;
    for (const Vec& point : points) {
      centre = centre + (1.0 / GetParam().nodes) * point;
    }
    points.push_back(centre);
    orvml::detail::Jacobians expected;
    for (const Vec& point : points) {
      expected.add(map.jacobianAt(point, isFlat));
    }

    const auto found = curvedForm().jacobians(x.data(), !isFlat);

    EXPECT_NEAR(found.lowest, expected.lowest, 1e-12) << seed;
    EXPECT_NEAR(found.highest, expected.highest, 1e-12) << seed;
    EXPECT_FALSE(curvedForm().isStraight(x.data()));
  }
}

TEST_P(QuadraticCells, AreStraightWhenTheirMiddleNodesAreInTheMiddle) {
  const TestMesh cell = cellOf(GetParam());
  std::vector<Vec> x;
  for (int node = 0; node < GetParam().nodes; ++node) {
    x.push_back(orvml::detail::pointAt(cell.x.data(), cell.coordinatesPerNode, node));
  }

  EXPECT_TRUE(curvedForm().isStraight(x.data()));
  x.back().x += 1e-3;
  EXPECT_FALSE(curvedForm().isStraight(x.data()));
}

INSTANTIATE_TEST_SUITE_P(Forms, QuadraticCells, ::testing::ValuesIn(quadraticForms()), RowName());

}  // namespace
}  // namespace orvml_io_tests
