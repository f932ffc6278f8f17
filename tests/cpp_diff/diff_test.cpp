// What two documents differ in: each kind of difference alone, tolerances, and the comparison of
// the flat interface beside it.
#include <orvml/orvml.hpp>

#include "cpp/sample_documents.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace orvml_io_tests {
namespace {

using orvml::Change;
using orvml::Difference;
using orvml::DiffOptions;
using orvml::DiffReport;
using orvml::Entity;
using orvml::Input;
using orvml::Shape;
using orvml::Transmission;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

/// The differences in one line each.
std::string told(const DiffReport& report) {
  std::string lines;
  for (const Difference& difference : report.differences) {
    lines += difference.object + " " + std::string(text(difference.change)) + ": " +
             difference.sentence + "\n";
  }
  return lines;
}

DiffReport diffOf(const Input& first, const Input& second, const DiffOptions& options = {}) {
  return diff(first.view(), second.view(), options);
}

TEST(Diff, FindsNothingBetweenADocumentAndItsCopy) {
  const DiffReport report = diffOf(fullInput(), fullInput().clone());

  EXPECT_TRUE(report.areSame()) << told(report);
  EXPECT_EQ(report.areEqualByContract, true);
  EXPECT_FALSE(report.match.has_value());
}

/// A change of the full document, what is told of it, and what the flat interface says.
struct OneChange {
  const char* name;
  std::function<void(Input&)> make;
  const char* told;
  bool areEqualByContract;

  friend std::ostream& operator<<(std::ostream& stream, const OneChange& change) {
    return stream << change.name;
  }
};

class DiffOfOneChange : public ::testing::TestWithParam<OneChange> {};

TEST_P(DiffOfOneChange, TellsItAndNothingElse) {
  Input changed = fullInput();
  GetParam().make(changed);

  const DiffReport report = diffOf(fullInput(), changed);

  EXPECT_EQ(told(report), GetParam().told);
  EXPECT_FALSE(report.areSame());
  EXPECT_EQ(report.areEqualByContract, GetParam().areEqualByContract);
}

const OneChange kChanges[] = {
    {"ModuleName",
     [](Input& input) {
       input.setIdentification({"other", "2.1", "tests"});
     },
     "ORVML_MODULE_NAME text: is \"ORVML_OCTREE_MESHER\" in the first, \"other\" in the second\n",
     true},
    {"ModuleFormatVersion",
     [](Input& input) {
       input.setIdentification({"ORVML_OCTREE_MESHER", "2.2", "tests"});
     },
     "ORVML_MODULE_FORMAT_VERSION text: is \"2.1\" in the first, \"2.2\" in the second\n", true},
    {"Creator",
     [](Input& input) {
       input.setIdentification({"ORVML_OCTREE_MESHER", "2.1", ""});
     },
     "ORVML_IO_CREATOR text: is \"tests\" in the first, \"\" in the second\n", true},
    {"Coordinate",
     [](Input& input) {
       input.setNodes(Doubles{0, 0, 0, 1, 0, 0, 0, 1.5, 0, 0, 0, 1, 1, 1, 1.25});
     },
     "/Nodes/coordinates values: 2 of 15 values differ, at most by 0.5 at 7\n", false},
    {"NodeIndex",
     [](Input& input) {
       input.setCells(Entity::elements, Shape::tetrahedron, 4, Ints{0, 1, 2, 3, 1, 2, 4, 3});
     },
     "/Elements/connectivities values: 2 of 8 values differ, at most by 1 at 6\n", false},
    {"Shape",
     [](Input& input) {
       input.setCells(Entity::elements, Shape::quadrilateral, 4, Ints{0, 1, 2, 3, 1, 2, 3, 4});
     },
     "/Elements/element_types groups: the groups of cells have other shapes, sizes or orders\n",
     false},
    {"Groups",
     [](Input& input) {
       input.setCells(Entity::edges, {{Shape::line, 2, 1}, {Shape::line, 2, 2}},
                      Ints{0, 1, 1, 2, 2, 0});
     },
     "/Edges/element_types groups: the groups of cells have other shapes, sizes or orders\n",
     false},
    {"ParameterValue", [](Input& input) { input.setParameter("size", 0.5); },
     "/parameters/size values: is 0.25 in the first, 0.5 in the second\n", false},
    {"ParameterGone", [](Input& input) { input.removeParameter("angle"); },
     "/parameters/angle only-in-first: is in the first alone\n", false},
    {"ParameterMore", [](Input& input) { input.setParameter("more", 1.0); },
     "/parameters/more only-in-second: is in the second alone\n", false},
    {"VectorParameterValue",
     [](Input& input) {
       input.setVectorParameter("layers", Ints{3, 2, 4});
     },
     "/ParametersVector/layers values: 1 of 3 values differs, at most by 3 at 2\n", true},
    {"VectorParameterLength",
     [](Input& input) {
       input.setVectorParameter("layers", Ints{3, 2});
     },
     "/ParametersVector/layers size: 3 values in the first, 2 in the second\n", true},
    {"VectorParameterGone", [](Input& input) { input.removeVectorParameter("layers"); },
     "/ParametersVector/layers only-in-first: is in the first alone\n", true},
    {"AttributeValue",
     [](Input& input) {
       input.setAttribute(Entity::faces, "surface", Ints{1, 2, 3, 9}, Transmission::mandatory);
     },
     "/Faces/Attributes/surface values: 1 of 4 values differs, at most by 5 at 3\n", false},
    {"AttributeType",
     [](Input& input) {
       input.setAttribute(Entity::faces, "surface", Doubles{1, 2, 3, 4}, Transmission::mandatory);
     },
     "/Faces/Attributes/surface type: holds ints in the first, doubles in the second\n", false},
    {"Flag",
     [](Input& input) {
       input.setAttribute(Entity::faces, "surface", Ints{1, 2, 3, 4});
     },
     "/Faces/Attributes/surface flag: must be transmitted in the first alone\n", true},
    {"AttributeGone", [](Input& input) { input.removeAttribute(Entity::nodes, "forced"); },
     "/Nodes/Attributes/forced only-in-first: is in the first alone\n", false},
    {"Cells", [](Input& input) { input.remove(Entity::edges); },
     "/Edges size: 3 cells in the first, 0 in the second\n"
     "/Edges/Attributes/line only-in-first: is in the first alone\n",
     false},
};

INSTANTIATE_TEST_SUITE_P(Each, DiffOfOneChange, ::testing::ValuesIn(kChanges), RowName());

TEST(Diff, TellsTheDimension) {
  const Input flat({"ORVML_OCTREE_MESHER", "2.1", "tests"}, 2);
  const Input solid({"ORVML_OCTREE_MESHER", "2.1", "tests"}, 3);

  EXPECT_EQ(told(diffOf(flat, solid)), "/dimension number: is 2 in the first, 3 in the second\n");
}

TEST(Diff, ComparesAnInputWithAnOutputAndLeavesTheContractAside) {
  const orvml::Output output = mixedOutput();
  orvml::DocumentParts parts;
  parts.identification = output.identification();
  parts.dimension = output.dimension();
  const orvml::NodesView nodes = output.nodes();
  parts.nodes = nodes;
  parts.faces = output.faces();
  parts.parameters = output.parameters();

  const DiffReport report = diff(orvml::InputView(parts), output.view());

  EXPECT_EQ(told(report), "kind text: is \"input\" in the first, \"output\" in the second\n");
  EXPECT_FALSE(report.areEqualByContract.has_value());
}

TEST(Diff, KnowsNothingOfTheContractForWhatNoFileCanHold) {
  orvml::DocumentParts parts;
  parts.dimension = 7;

  const DiffReport report = diff(orvml::InputView(parts), orvml::InputView(parts));

  EXPECT_TRUE(report.areSame());
  EXPECT_FALSE(report.areEqualByContract.has_value());
}

TEST(Diff, TakesGroupsWithoutCellsForNothing) {
  const Input none({"m", "1", "c"}, 2);
  Input empty({"m", "1", "c"}, 2);
  empty.setCells(Entity::faces, {{Shape::triangle, 3, 0}, {Shape::quadrilateral, 4, 0}}, Ints{});

  EXPECT_EQ(told(diffOf(none, empty)), "");
}

TEST(Diff, SaysWhereTheFirstAndTheLargestDifferencesAre) {
  Input changed = fullInput();
  changed.setAttribute(Entity::nodes, "size", Doubles{1, 2.5, 3, 14, 5.5}, Transmission::mandatory);

  const DiffReport report = diffOf(fullInput(), changed);

  ASSERT_EQ(report.differences.size(), 1U);
  EXPECT_EQ(report.differences[0].count, 3);
  EXPECT_EQ(report.differences[0].first, 1);
  EXPECT_EQ(report.differences[0].worst, 3);
  EXPECT_EQ(report.differences[0].largest, 10.0);
}

Input withSizeParameter(double value) {
  Input input = fullInput();
  input.setParameter("size", value);
  return input;
}

TEST(DiffTolerance, HoldsBothWaysUpToItsEnd) {
  const Input a = withSizeParameter(1.0);
  const Input b = withSizeParameter(1.25);

  EXPECT_TRUE(diffOf(a, b, {.tolerance = {.absolute = 0.25}}).areSame());
  EXPECT_FALSE(diffOf(a, b, {.tolerance = {.absolute = 0.2499}}).areSame());
  EXPECT_TRUE(diffOf(a, b, {.tolerance = {.relative = 0.2}}).areSame());
  EXPECT_TRUE(diffOf(b, a, {.tolerance = {.relative = 0.2}}).areSame());
  EXPECT_FALSE(diffOf(a, b, {.tolerance = {.relative = 0.19}}).areSame());
}

TEST(DiffTolerance, IsTheOneOfItsNameWhereThatIsGiven) {
  Input changed = withSizeParameter(1.0);
  changed.setParameter("angle", 41.0);
  DiffOptions options{.tolerance = {.absolute = 0.1}};
  options.toleranceOf["size"] = {.absolute = 10.0};

  EXPECT_EQ(told(diffOf(fullInput(), changed, options)),
            "/parameters/angle values: is 40 in the first, 41 in the second\n");
}

TEST(DiffTolerance, OfCoordinatesHasTheirName) {
  Input moved = fullInput();
  moved.setNodes(Doubles{0.125, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  DiffOptions options;
  options.toleranceOf["coordinates"] = {.absolute = 0.125};

  EXPECT_TRUE(diffOf(fullInput(), moved, options).areSame());
  EXPECT_FALSE(diffOf(fullInput(), moved).areSame());
}

TEST(DiffTolerance, DoesNotMakeIntsEqual) {
  Input changed = fullInput();
  changed.setVectorParameter("layers", Ints{3, 2, 2});

  EXPECT_FALSE(diffOf(fullInput(), changed, {.tolerance = {.absolute = 100}}).areSame());
}

TEST(DiffTolerance, MakesNoNumberEqualToNoNumberAlone) {
  const double none = std::nan("");
  const double infinite = std::numeric_limits<double>::infinity();
  const DiffOptions wide{.tolerance = {.absolute = 1e300, .relative = 1.0}};

  EXPECT_TRUE(diffOf(withSizeParameter(none), withSizeParameter(none)).areSame());
  EXPECT_FALSE(diffOf(withSizeParameter(none), withSizeParameter(1.0), wide).areSame());
  EXPECT_FALSE(diffOf(withSizeParameter(infinite), withSizeParameter(-infinite), wide).areSame());
  EXPECT_TRUE(diffOf(withSizeParameter(infinite), withSizeParameter(infinite)).areSame());
  EXPECT_EQ(diffOf(withSizeParameter(infinite), withSizeParameter(1.0)).differences[0].largest,
            infinite);
}

TEST(DiffTolerance, IsRefusedWhenItIsNegativeOrNoNumber) {
  const Input input = fullInput();
  for (const double value : {-1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    DiffOptions ofAName;
    ofAName.toleranceOf["x"] = {.relative = value};

    EXPECT_THROW((void)diffOf(input, input, {.tolerance = {.absolute = value}}),
                 std::invalid_argument);
    EXPECT_THROW((void)diffOf(input, input, ofAName), std::invalid_argument);
    EXPECT_THROW((void)diffOf(input, input, {.matchWithin = value}), std::invalid_argument);
  }
}

TEST(Diff, FindsOneValueAmongManyAtBothEndsOfAStretch) {
  constexpr int kMany = 10000;
  for (const int place : {0, 4095, 4096, 8191, 8192, kMany - 1}) {
    Input a({"m", "1", "c"}, 2);
    Input b({"m", "1", "c"}, 2);
    Doubles values(kMany, 1.0);
    a.setVectorParameter("v", Doubles(values));
    values[static_cast<std::size_t>(place)] = 3.0;
    b.setVectorParameter("v", std::move(values));

    const DiffReport report = diffOf(a, b);

    ASSERT_EQ(report.differences.size(), 1U) << place;
    EXPECT_EQ(report.differences[0].count, 1);
    EXPECT_EQ(report.differences[0].worst, place);
  }
}

}  // namespace
}  // namespace orvml_io_tests
