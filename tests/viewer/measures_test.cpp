// Measures of cells, and how they are distributed.
#include "cell_measures.h"
#include "cpp_check/meshes.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace orvml_io_tests {
namespace {

using orvml::CellMeasure;
using orvml::Shape;
using orvml_report::Histogram;
using orvml_report::histogramOf;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

std::int64_t sumOf(const Histogram& histogram) {
  return std::accumulate(histogram.counts.begin(), histogram.counts.end(), std::int64_t{0});
}

TEST(Histograms, HaveFortyBinsBetweenTheLeastAndTheGreatest) {
  std::vector<double> values = {0, 1, 39.5, 40, kNoNumber, 20};

  const Histogram histogram = histogramOf(values, CellMeasure::size, 2).value();

  EXPECT_EQ(histogram.counts[0], 1);
  EXPECT_EQ(histogram.counts[1], 1);
  EXPECT_EQ(histogram.counts[20], 1);
  EXPECT_EQ(histogram.counts[39], 2);
  EXPECT_EQ(histogram.minimum, 0);
  EXPECT_EQ(histogram.maximum, 40);
  EXPECT_EQ(histogram.cells, 8);
  EXPECT_EQ(histogram.without, 3);
  EXPECT_EQ(histogram.beyond, 0);
}

TEST(Histograms, OfOneValueHaveOneBin) {
  std::vector<double> values(7, 2.5);

  const Histogram histogram = histogramOf(values, CellMeasure::aspectRatio, 0).value();

  EXPECT_EQ(histogram.counts[0], 7);
  EXPECT_EQ(sumOf(histogram), 7);
}

TEST(Histograms, OfAspectRatiosEndWhereNearlyAllDo) {
  std::vector<double> values(1000);
  std::iota(values.begin(), values.end(), 1.0);
  values.back() = 1e6;

  const Histogram histogram = histogramOf(values, CellMeasure::aspectRatio, 0).value();

  EXPECT_EQ(histogram.maximum, 995);
  EXPECT_EQ(histogram.beyond, 5);
  EXPECT_EQ(sumOf(histogram), 1000);
  EXPECT_GT(histogram.counts[20], 20);
}

TEST(Histograms, OfAspectRatiosDoNotCareForCellsWithoutSize) {
  std::vector<double> values = {1, 1.5, 2, 1e30, 1e30, 1e30};

  const Histogram histogram = histogramOf(values, CellMeasure::aspectRatio, 0).value();

  EXPECT_EQ(histogram.maximum, 2);
  EXPECT_EQ(histogram.beyond, 3);
  EXPECT_EQ(histogram.counts[39], 4);
}

TEST(Histograms, OfCellsWithoutSizeAloneAreOfTheirRatio) {
  std::vector<double> values = {1e30, 1e30};

  const Histogram histogram = histogramOf(values, CellMeasure::aspectRatio, 0).value();

  EXPECT_EQ(histogram.minimum, 1e30);
  EXPECT_EQ(histogram.maximum, 1e30);
  EXPECT_EQ(histogram.counts[0], 2);
}

TEST(Histograms, OfSizesThatFillAllNumbersAreWhole) {
  std::vector<double> values = {-1.7e308, 0, 1.7e308};

  const Histogram histogram = histogramOf(values, CellMeasure::size, 0).value();

  EXPECT_EQ(histogram.counts[0], 1);
  EXPECT_EQ(histogram.counts[20], 1);
  EXPECT_EQ(histogram.counts[39], 1);
}

TEST(Histograms, OfNoNumbersAreNone) {
  std::vector<double> values = {kNoNumber};

  EXPECT_FALSE(histogramOf(values, CellMeasure::size, 0).has_value());
}

TEST(MeasuresInPages, AreThoseOfTheLibrary) {
  TestMesh mesh = blockOf(formOf(Shape::prism, 6), 2);
  warp(mesh);
  mesh.edges = {{Shape::line, 2, {0, 1}}};
  const orvml::InputView view = mesh.view();

  const DecodedPage page = decoded(view);

  for (const auto& [entity, kind, size] :
       {std::tuple("faces", orvml::Entity::faces, "area"),
        std::tuple("elements", orvml::Entity::elements, "volume")}) {
    for (const CellMeasure measure :
         {CellMeasure::scaledJacobian, CellMeasure::aspectRatio, CellMeasure::smallestAngle,
          CellMeasure::largestAngle, CellMeasure::size}) {
      const auto expected = measureCells(view.nodes(), view.cells(kind), measure);
      const std::string called = measure == CellMeasure::size ? size : std::string(name(measure));
      const auto found = page.field(page.cells(entity), called);
      ASSERT_EQ(found.size(), expected.size()) << called;
      for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i], double{static_cast<float>(expected[i])}) << called << " " << i;
      }
    }
  }
  EXPECT_EQ(page.field(page.cells("edges"), "length").size(), 1U);
  EXPECT_EQ(page.document().at("histograms").size(), 11U);
  EXPECT_EQ(page.document().at("histograms").at(3).at("unit"), "degrees");
  EXPECT_EQ(page.document().at("histograms").at(3).at("measure"), "smallest angle");
}

TEST(MeasuresInPages, AreDistributedOverAllCellsWhateverIsShown) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 3);
  mesh.faces.clear();

  const DecodedPage page = decoded(mesh.view(), {.elements = 1, .faces = 10});

  EXPECT_EQ(page.document().at("histograms").at(0).at("cells"), 27);
  EXPECT_LT(page.values(page.cells("elements").at("numbers")).size(), 11U);
}

}  // namespace
}  // namespace orvml_io_tests
