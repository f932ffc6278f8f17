// The encodings of arrays, undone as a browser undoes them.
#include "packed_arrays.h"

#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace orvml_io_tests {
namespace {

using orvml_report::PackedArrays;
using orvml_report::Point;

/// What a page would hold that has some arrays alone.
DecodedPage pageWith(PackedArrays& arrays) {
  return DecodedPage(
      "<script type=\"application/json\" id=\"report\">{}</script>"
      "<script type=\"application/octet-stream\" id=\"arrays\">" +
      arrays.finish() + "</script>");
}

std::vector<double> flat(const std::vector<Point>& points) {
  std::vector<double> values;
  for (const Point& point : points) {
    values.insert(values.end(), point.begin(), point.end());
  }
  return values;
}

TEST(PackedArrays, GiveBackWhatTheyWereGiven) {
  const std::vector<std::uint8_t> bytes = {0, 255, 7};
  const std::vector<int> ints = {
      std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0, -1, 1,
      std::numeric_limits<int>::max()};
  const std::vector<float> floats = {0.F, -1.5F, std::numeric_limits<float>::infinity()};
  const std::vector<double> doubles = {1e308, 5e-324, -0.0, 0.1};
  PackedArrays arrays;

  const Json ofBytes = arrays.addBytes(bytes);
  const Json ofInts = arrays.addInts(ints);
  const Json ofRows = arrays.addInts(ints, 3);
  const Json ofFloats = arrays.addFloats(floats);
  const Json ofDoubles = arrays.addDoubles(doubles);
  const Json ofNothing = arrays.addInts({});
  const DecodedPage page = pageWith(arrays);

  EXPECT_EQ(page.values(ofBytes), (std::vector<double>{0, 255, 7}));
  EXPECT_EQ(page.values(ofInts), std::vector<double>(ints.begin(), ints.end()));
  EXPECT_EQ(page.values(ofRows), std::vector<double>(ints.begin(), ints.end()));
  EXPECT_EQ(page.values(ofFloats), std::vector<double>(floats.begin(), floats.end()));
  EXPECT_EQ(page.values(ofDoubles), doubles);
  EXPECT_TRUE(page.values(ofNothing).empty());
  EXPECT_EQ(ofInts.at("at"), 3);
  EXPECT_EQ(ofRows.at("stride"), 3);
}

TEST(PackedArrays, KeepValuesThatAreNoNumbers) {
  const std::vector<double> doubles = {std::numeric_limits<double>::quiet_NaN()};
  PackedArrays arrays;

  const Json array = arrays.addDoubles(doubles);

  EXPECT_TRUE(std::isnan(pageWith(arrays).values(array).at(0)));
}

TEST(PackedPoints, OnABinaryGridAreExact) {
  const std::vector<Point> points = {{0, 0.25, -1}, {1024, 0.75, -1}, {-3.5, 0.5, -1}};
  PackedArrays arrays;

  const Json array = arrays.addPoints(points);

  EXPECT_EQ(array.at("type"), "quantized");
  EXPECT_EQ(pageWith(arrays).values(array), flat(points));
}

class ScalesOfPoints : public ::testing::TestWithParam<double> {};

TEST_P(ScalesOfPoints, KeepNineDigitsOfTheExtent) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> coordinates(-GetParam(), GetParam());
  std::vector<Point> points(100);
  for (Point& point : points) {
    point = {coordinates(random), GetParam() + coordinates(random) / 1000, GetParam()};
  }
  PackedArrays arrays;

  const Json array = arrays.addPoints(points);
  const auto values = pageWith(arrays).values(array);

  const auto expected = flat(points);
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double extent = i % 3 == 0 ? 2 * GetParam() : i % 3 == 1 ? GetParam() / 500 : 0;
    EXPECT_NEAR(values[i], expected[i], extent * 1e-9) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Powers, ScalesOfPoints, ::testing::Values(1e-300, 1e-9, 1.0, 1e12, 1e300),
                         [](const auto& row) {
                           return std::to_string(static_cast<int>(300 + std::log10(row.param)));
                         });

TEST(PackedPoints, BeyondAllExtentsAreDoubles) {
  const std::vector<Point> points = {{-1.7e308, 0, 0}, {1.7e308, 1, 2}};
  PackedArrays arrays;

  const Json array = arrays.addPoints(points);

  EXPECT_EQ(array.at("type"), "float64");
  EXPECT_EQ(array.at("stride"), 3);
  EXPECT_EQ(pageWith(arrays).values(array), flat(points));
}

TEST(PackedPoints, OfTheSmallestNumbersAreExact) {
  const std::vector<Point> points = {{5e-324, 0, 0}, {-5e-324, 1e-322, 0}};
  PackedArrays arrays;

  const Json array = arrays.addPoints(points);

  EXPECT_EQ(pageWith(arrays).values(array), flat(points));
}

TEST(PackedPoints, MayBeNone) {
  PackedArrays arrays;

  const Json array = arrays.addPoints({});

  EXPECT_EQ(array.at("count"), 0);
  EXPECT_TRUE(pageWith(arrays).values(array).empty());
}

}  // namespace
}  // namespace orvml_io_tests
