#include "check/curved_cells.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvml::detail {

namespace {

/// The function x^a y^b z^c / (1 - z)^e of the place in the reference cell. Those of pyramids alone
/// have e above 0; they are 0 at the apex, where x and y are.
struct Monomial {
  int a = 0;
  int b = 0;
  int c = 0;
  int e = 0;
};

double power(double base, int exponent) noexcept {
  double result = 1.0;
  for (int i = 0; i < exponent; ++i) {
    result *= base;
  }
  return result;
}

/// The derivative of base^exponent.
double slope(double base, int exponent) noexcept {
  return exponent == 0 ? 0.0 : exponent * power(base, exponent - 1);
}

double valueOf(const Monomial& m, const Vec& at) noexcept {
  const double rest = 1 - at.z;
  const double over = m.e == 0 ? 1.0 : rest > 0 ? 1 / power(rest, m.e) : 0.0;
  return power(at.x, m.a) * power(at.y, m.b) * power(at.z, m.c) * over;
}

double derivativeOf(const Monomial& m, const Vec& at, int axis) noexcept {
  const double rest = 1 - at.z;
  const double over = m.e == 0 ? 1.0 : 1 / power(rest, m.e);
  const double x = power(at.x, m.a);
  const double y = power(at.y, m.b);
  const double z = power(at.z, m.c);
  switch (axis) {
    case 0:
      return slope(at.x, m.a) * y * z * over;
    case 1:
      return x * slope(at.y, m.b) * z * over;
    default:
      return x * y * (slope(at.z, m.c) * over + (m.e == 0 ? 0.0 : z * m.e * over / rest));
  }
}

/// All monomials up to x^most y^most z^most, `dimension` variables of them, that pass a test.
template <class Test>
std::vector<Monomial> monomials(int dimension, Test test) {
  std::vector<Monomial> kept;
  for (int c = 0; c <= (dimension == 3 ? 2 : 0); ++c) {
    for (int b = 0; b <= 2; ++b) {
      for (int a = 0; a <= 2; ++a) {
        if (test(a, b, c)) {
          kept.push_back({a, b, c, 0});
        }
      }
    }
  }
  return kept;
}

/// What an exponent counts in the degree of serendipity elements, where variables that stand alone
/// count nothing.
int superlinear(int exponent) noexcept { return exponent < 2 ? 0 : exponent; }

bool isSerendipity(int a, int b) noexcept { return superlinear(a) + superlinear(b) <= 2; }

std::vector<Monomial> basisOfHexahedron(int nodes) {
  return monomials(3, [nodes](int a, int b, int c) {
    return nodes == 27 || (nodes == 24 && isSerendipity(a, b)) ||
           superlinear(a) + superlinear(b) + superlinear(c) <= 2;
  });
}

std::vector<Monomial> basisOfPrism(int nodes) {
  return monomials(3, [nodes](int a, int b, int c) {
    const bool isBelow = c < 2 || nodes == 18 || (nodes == 15 && a + b <= 1);
    return a + b <= 2 && isBelow;
  });
}

std::vector<Monomial> basisOfPyramid() {
  auto basis = monomials(3, [](int a, int b, int c) { return a + b + c <= 2; });
  basis.push_back({1, 1, 0, 1});
  basis.push_back({2, 1, 0, 1});
  basis.push_back({1, 2, 0, 1});
  return basis;
}

/// The functions that the shape functions of a form are made of, as many as it has nodes.
std::vector<Monomial> basisOf(Shape shape, int nodes) {
  switch (shape) {
    case Shape::triangle:
      return monomials(2, [](int a, int b, int) { return a + b <= 2; });
    case Shape::quadrilateral:
      return monomials(2, [nodes](int a, int b, int) {
        return nodes == 9 || (nodes == 6 ? b <= 1 : isSerendipity(a, b));
      });
    case Shape::tetrahedron:
      return monomials(3, [](int a, int b, int c) { return a + b + c <= 2; });
    case Shape::hexahedron:
      return basisOfHexahedron(nodes);
    case Shape::prism:
      return basisOfPrism(nodes);
    default:
      return basisOfPyramid();
  }
}

std::vector<Vec> cornersOf(Shape shape) {
  switch (shape) {
    case Shape::triangle:
      return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    case Shape::quadrilateral:
      return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    case Shape::tetrahedron:
      return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    case Shape::hexahedron:
      return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
              {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    case Shape::prism:
      return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
    default:
      return {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {0, 0, 1}};
  }
}

Vec middleOf(const MiddleNode& middle, const Vec* x) noexcept {
  Vec sum;
  for (std::size_t i = 0; i < middle.count; ++i) {
    sum = sum + x[middle.corners[i]];
  }
  return (1.0 / middle.count) * sum;
}

Vec centreOf(const std::vector<Vec>& points) noexcept {
  Vec sum;
  for (const Vec& point : points) {
    sum = sum + point;
  }
  return (1.0 / static_cast<double>(points.size())) * sum;
}

/// Inverts a matrix of the size n by elimination with row exchanges.
std::vector<double> inverted(std::vector<double> matrix, std::size_t n) {
  std::vector<double> inverse(n * n);
  for (std::size_t i = 0; i < n; ++i) {
    inverse[i * n + i] = 1;
  }
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column; row < n; ++row) {
      if (std::abs(matrix[row * n + column]) > std::abs(matrix[pivot * n + column])) {
        pivot = row;
      }
    }
    const double factor = 1 / matrix[pivot * n + column];
    for (std::size_t k = 0; k < n; ++k) {
      std::swap(matrix[pivot * n + k], matrix[column * n + k]);
      std::swap(inverse[pivot * n + k], inverse[column * n + k]);
      matrix[column * n + k] *= factor;
      inverse[column * n + k] *= factor;
    }
    for (std::size_t row = 0; row < n; ++row) {
      const double times = row == column ? 0.0 : matrix[row * n + column];
      for (std::size_t k = 0; k < n; ++k) {
        matrix[row * n + k] -= times * matrix[column * n + k];
        inverse[row * n + k] -= times * inverse[column * n + k];
      }
    }
  }
  return inverse;
}

/// The coefficients of the shape functions: that of node j has `[i * nodes + j]` of monomial i.
std::vector<double> shapeFunctions(const std::vector<Monomial>& basis,
                                   const std::vector<Vec>& nodes) {
  const std::size_t n = nodes.size();
  std::vector<double> values(n * n);
  for (std::size_t node = 0; node < n; ++node) {
    for (std::size_t i = 0; i < n; ++i) {
      values[node * n + i] = valueOf(basis[i], nodes[node]);
    }
  }
  return inverted(std::move(values), n);
}

}  // namespace

CurvedForm::CurvedForm(const ShapeFacts& facts, int nodes)
    : facts_(facts), nodes_(facts.corners), middles_(middlesOf(facts, nodes)) {
  std::vector<Vec> points = cornersOf(facts.shape);
  for (const MiddleNode& middle : middles_) {
    points.push_back(middleOf(middle, points.data()));
  }
  nodes_ = static_cast<int>(points.size());
  const std::vector<Monomial> basis = basisOf(facts.shape, nodes_);
  const std::vector<double> coefficients = shapeFunctions(basis, points);
  if (facts.shape == Shape::pyramid) {
    points[4].z = 0.9;  // below the apex, where the derivatives are not defined
  }
  points.push_back(centreOf(points));
  points_ = points.size();
  const auto n = static_cast<std::size_t>(nodes_);
  for (const Vec& point : points) {
    for (int axis = 0; axis < facts.dimension; ++axis) {
      for (std::size_t node = 0; node < n; ++node) {
        double sum = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
          sum += coefficients[i * n + node] * derivativeOf(basis[i], point, axis);
        }
        derivatives_.push_back(sum);
      }
    }
  }
}

bool CurvedForm::isStraight(const Vec* x) const noexcept {
  // Far more than rounding, far less than what matters to a Jacobian.
  constexpr double kSquaredShare = 1e-18;
  const Vec* middle = x + facts_.corners;
  for (const MiddleNode& node : middles_) {
    const Vec off = *middle++ - middleOf(node, x);
    const Vec across = x[node.corners[1]] - x[node.corners[0]];
    if (!(dot(off, off) <= kSquaredShare * dot(across, across))) {
      return false;
    }
  }
  return true;
}

Vec CurvedForm::derivative(const Vec* x, std::size_t point, int axis) const noexcept {
  const auto row =
      point * static_cast<std::size_t>(facts_.dimension) + static_cast<std::size_t>(axis);
  const double* factors = derivatives_.data() + row * static_cast<std::size_t>(nodes_);
  Vec sum;
  for (int node = 0; node < nodes_; ++node) {
    sum = sum + factors[node] * x[node];
  }
  return sum;
}

Jacobians CurvedForm::jacobians(const Vec* x, bool inSpace) const noexcept {
  Jacobians jacobians;
  Vec direction{0, 0, 1};
  if (facts_.dimension == 2 && inSpace) {
    Vec sum;
    for (std::size_t point = 0; point < points_; ++point) {
      sum = sum + cross(derivative(x, point, 0), derivative(x, point, 1));
    }
    const double size = length(sum);
    direction = size > 0 ? (1 / size) * sum : Vec();
  }
  for (std::size_t point = 0; point < points_; ++point) {
    const Vec a = derivative(x, point, 0);
    const Vec b = derivative(x, point, 1);
    const Vec c = facts_.dimension == 3 ? derivative(x, point, 2) : direction;
    const double lengths = dot(a, a) + dot(b, b) + (facts_.dimension == 3 ? dot(c, c) : 0.0);
    jacobians.add(triple(a, b, c));
    jacobians.squaredLength = std::max(jacobians.squaredLength, lengths);
  }
  return jacobians;
}

}  // namespace orvml::detail
