#include "curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

namespace orvml_parallel_tests {

namespace {

using orvml::parallel::detail::placeOnCurve;

struct Step {
  std::uint64_t place;
  std::vector<int> cell;
};

/// The cells of a grid of 8 cells a side, in the order of the curve.
std::vector<Step> gridAlongCurve(int dimensions) {
  constexpr int kSide = 8;
  std::vector<Step> steps;
  for (int i = 0; i < (dimensions == 2 ? kSide * kSide : kSide * kSide * kSide); ++i) {
    std::vector<int> cell;
    std::vector<double> middle;
    for (int d = 0, left = i; d < dimensions; ++d, left /= kSide) {
      cell.push_back(left % kSide);
      middle.push_back((cell.back() + 0.5) / kSide);
    }
    steps.push_back({placeOnCurve(middle), cell});
  }
  std::sort(steps.begin(), steps.end(),
            [](const Step& a, const Step& b) { return a.place < b.place; });
  return steps;
}

class PlaceOnCurve : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Dimensions, PlaceOnCurve, testing::Values(2, 3));

TEST_P(PlaceOnCurve, GoesFromEachCellOfAGridToOneBesideIt) {
  const std::vector<Step> steps = gridAlongCurve(GetParam());

  for (std::size_t i = 1; i < steps.size(); ++i) {
    int distance = 0;
    for (std::size_t d = 0; d < steps[i].cell.size(); ++d) {
      distance += std::abs(steps[i].cell[d] - steps[i - 1].cell[d]);
    }
    EXPECT_EQ(1, distance) << "step " << i;
  }
}

TEST(PlaceOnCurveLimits, WhatIsOutsideOrNoNumberCountsAsTheNextInside) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kFar = std::numeric_limits<double>::infinity();
  const std::vector<double> corner = {0, 1, 0};
  const std::vector<double> outside = {-kFar, kFar, kNone};

  EXPECT_EQ(placeOnCurve(corner), placeOnCurve(outside));
  EXPECT_LT(placeOnCurve(std::vector<double>{kFar, kFar, kFar}), std::uint64_t{1} << 63U);
  EXPECT_LT(placeOnCurve(std::vector<double>{kFar, kFar}), std::uint64_t{1} << 63U);
}

}  // namespace

}  // namespace orvml_parallel_tests
