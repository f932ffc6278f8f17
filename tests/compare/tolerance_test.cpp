// Two doubles are different when they are more than 1e-15 apart, wherever they stand: in
// coordinates, attributes and scalar parameters.
#include "compare/comparison.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace orvml_io_tests;

constexpr double kBound = 1e-15;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallestDenormal = std::numeric_limits<double>::denorm_min();

struct Values {
  const char* name;
  double first;
  double second;
  bool areEqual;

  friend std::ostream& operator<<(std::ostream& stream, const Values& values) {
    return stream << values.first << " and " << values.second;
  }
};

double nextAbove(double value) { return std::nextafter(value, kInfinity); }

/// Where a document holds the value.
struct Place {
  const char* name;
  BuiltDocument (*documentWith)(double value);

  friend std::ostream& operator<<(std::ostream& stream, const Place& place) {
    return stream << place.name;
  }
};

BuiltDocument withCoordinate(double value) {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({0, value});
  return document;
}

BuiltDocument withNodeAttribute(double value) {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({0, 0}).attribute(ORVML_NODES, "size", std::vector<double>{value});
  return document;
}

BuiltDocument withScalarParameter(double value) {
  BuiltDocument document = BuiltDocument::input(2);
  document.scalar("size", value);
  return document;
}

class Tolerance : public ::testing::TestWithParam<std::tuple<Values, Place>> {
 protected:
  const Values values_ = std::get<Values>(GetParam());
  const BuiltDocument first_ = std::get<Place>(GetParam()).documentWith(values_.first);
  const BuiltDocument second_ = std::get<Place>(GetParam()).documentWith(values_.second);
};

TEST_P(Tolerance, DecidesWhetherTheDocumentsAreEqual) {
  EXPECT_EQ(equal(first_, second_), values_.areEqual);
}

TEST_P(Tolerance, DecidesTheSameTheOtherWayRound) {
  EXPECT_EQ(equal(second_, first_), values_.areEqual);
}

INSTANTIATE_TEST_SUITE_P(
    Values, Tolerance,
    ::testing::Combine(
        ::testing::Values(Values{"SameValue", 0.1, 0.1, true},
                          Values{"TheBoundItself", 0, kBound, true},
                          Values{"MinusTheBound", 0, -kBound, true},
                          Values{"NextAboveTheBound", 0, nextAbove(kBound), false},
                          Values{"NextBelowMinusTheBound", 0, -nextAbove(kBound), false},
                          Values{"TwiceTheBound", 0, 2e-15, false},
                          Values{"HalfTheBoundOnBothSidesOfZero", -kBound / 2, kBound / 2, true},
                          Values{"OneAndATenthOfTheBoundMore", 1, 1 + 1e-16, true},
                          // Neighbours at 4 are 8.9e-16 apart, at 8 they are 1.8e-15 apart.
                          Values{"NeighboursAtFour", 4, nextAbove(4), true},
                          Values{"NeighboursAtEight", 8, nextAbove(8), false},
                          Values{"NeighboursAtALargeValue", 1e300, nextAbove(1e300), false},
                          Values{"ZerosOfBothSigns", 0.0, -0.0, true},
                          Values{"ZeroAndTheSmallestDenormal", 0, kSmallestDenormal, true},
                          Values{"DifferenceThatOverflows", kLargest, -kLargest, false},
                          Values{"NanAndANumber", kNan, 5, true},
                          Values{"NanAndInfinity", kNan, kInfinity, true},
                          Values{"NanAndNan", kNan, -kNan, true},
                          Values{"SameInfinity", kInfinity, kInfinity, true},
                          Values{"SameNegativeInfinity", -kInfinity, -kInfinity, true},
                          Values{"OppositeInfinities", kInfinity, -kInfinity, false},
                          Values{"InfinityAndANumber", kInfinity, kLargest, false}),
        ::testing::Values(Place{"Coordinate", withCoordinate},
                          Place{"NodeAttribute", withNodeAttribute},
                          Place{"ScalarParameter", withScalarParameter})),
    [](const auto& row) {
      return std::string(std::get<Values>(row.param).name) + "As" + std::get<Place>(row.param).name;
    });

}  // namespace
