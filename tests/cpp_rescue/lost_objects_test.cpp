// What is told of an object that is not in the new file: each way to lose one, and the sentence.
#include "cpp_rescue/small_file.h"
#include "files/exchange_file_fixture.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <ostream>

namespace orvml_io_tests {
namespace {

constexpr const char* kCounts = "/OrvInput/Elements/number_of_elements_by_type";
constexpr const char* kWidths = "/OrvInput/Elements/number_of_nodes_by_element";
constexpr const char* kIndices = "/OrvInput/Elements/connectivities";
constexpr const char* kCoordinates = "/OrvInput/Nodes/coordinates";

/// A damage of the small file, what is told of it, and what the elements are afterwards.
struct LossRow {
  const char* name;
  void (*damage)(RawFile& file);
  std::string told;
  int nodes = 5;
  int faces = 3;
  int elements = 2;

  friend std::ostream& operator<<(std::ostream& stream, const LossRow& row) {
    return stream << row.name;
  }
};

void makeTwoGroups(RawFile& file, const std::vector<int>& counts) {
  replaceInts(file, kCounts, counts);
  replaceInts(file, "/OrvInput/Elements/element_types", {TETRAHEDRA, TETRAHEDRA});
  replaceInts(file, kWidths, {4, 4});
}

const LossRow kLosses[] = {
    {"Nothing", [](RawFile&) {}, ""},
    {"AnAttributeOfAnotherLength",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/Faces/Attributes/surface", {7, 8});
     },
     "orvml.attribute.length: /OrvInput/Faces/Attributes/surface has 2 values for 3 faces\n"},
    {"AnAttributeOfTexts",
     [](RawFile& file) { file.dataset("/OrvInput/Faces/Attributes/label", H5T_C_S1, {3}, "abc"); },
     "orvml.object.foreign: /OrvInput/Faces/Attributes/label holds no numbers\n"},
    {"AnAttributeThatCannotBeRead",
     [](RawFile& file) {
       unreadableDataset(file, "/OrvInput/Faces/Attributes/broken", H5T_NATIVE_INT, {3});
     },
     "orvml.object.unreadable: /OrvInput/Faces/Attributes/broken cannot be read\n"},
    {"AnAttributeThatWasNeverStored",
     [](RawFile& file) {
       file.dataset("/OrvInput/Faces/Attributes/planned", H5T_NATIVE_INT, {3}, nullptr);
     },
     "orvml.values.too-few: /OrvInput/Faces/Attributes/planned has fewer values than it should, "
     "or values that were never stored\n"},
    {"AnAttributeOfTooLargeIntegers",
     [](RawFile& file) {
       const long long large[] = {1, 1LL << 40, 3};
       file.dataset("/OrvInput/Faces/Attributes/id", H5T_NATIVE_LLONG, {3}, large);
     },
     "orvml.values.clamped: /OrvInput/Faces/Attributes/id holds integers of more than 32 bits\n"},
    {"AVectorWithALongName",
     [](RawFile& file) {
       file.intVector("/OrvInput/ParametersVector/" + std::string(80, 'n'), {1});
     },
     "orvml.name.too-long: /OrvInput/ParametersVector/" + std::string(80, 'n') +
         " has a name of 80 bytes, at most 79 are allowed\n"},
    {"AParameterWithASlash",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.parameterTable("/OrvInput/parameters", {{"a/b", 1.0}, {"growth", 1.5}});
     },
     "orvml.name.not-allowed: /OrvInput/parameters/a/b has a name that is empty, or stands for a "
     "path\n"},
    {"AParameterOfOneName",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.parameterTable("/OrvInput/parameters", {{"growth", 1.0}, {"growth", 1.5}});
     },
     "orvml.name.twice: /OrvInput/parameters has 1 record whose name comes again\n"},
    {"AForeignObject", [](RawFile& file) { file.group("/Extras"); },
     "orvml.object.foreign: /Extras does not belong to the format\n"},
    {"ATextThatIsTooLong",
     [](RawFile& file) {
       file.removeAttribute("/", "ORVML_IO_CREATOR");
       file.textAttribute("/", "ORVML_IO_CREATOR", std::string(90, 'c'));
     },
     "orvml.text.too-long: /ORVML_IO_CREATOR has 90 bytes, at most 79 are allowed\n"},
    {"CellsWithAnIndexOutOfRange",
     [](RawFile& file) {
       replaceInts(file, kIndices, {0, 1, 2, 3, 1, 2, 3, 5});
     },
     "orvml.mesh.index-out-of-range: /OrvInput/Elements has 1 element with node indices outside 0 "
     "to 4 (1: element 1)\n",
     5, 3, 1},
    {"CellsWithTooLargeIndices",
     [](RawFile& file) {
       const long long large[] = {0, 1, 2, 3, 1, 2, 3, 1LL << 32};
       file.remove(kIndices);
       file.dataset(kIndices, H5T_NATIVE_LLONG, {8}, large);
     },
     "orvml.mesh.index-out-of-range: /OrvInput/Elements has 1 element with node indices outside 0 "
     "to 4 (1: element 1)\n",
     5, 3, 1},
    {"AllCellsOfAKind",
     [](RawFile& file) {
       replaceInts(file, kIndices, {0, 1, 2, -3, 1, 2, 3, 5});
     },
     "orvml.mesh.index-out-of-range: /OrvInput/Elements has 2 elements with node indices outside 0 "
     "to 4 (2: element 0 element 1)\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements of "
     "which none is left\n",
     5, 3, 0},
    {"MissingNodeIndices", [](RawFile& file) { file.remove(kIndices); },
     "orvml.rescue.depends-on-lost: /OrvInput/Elements has no node indices that can be read\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements of "
     "which none can be read\n"
     "orvml.object.missing: /OrvInput/Elements/connectivities is missing\n",
     5, 3, 0},
    {"NodeIndicesThatContradictTheGroups",
     [](RawFile& file) {
       replaceInts(file, kIndices, {0, 1, 2, 3, 1, 2, 3});
     },
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements of "
     "which none can be read\n"
     "orvml.values.too-few: /OrvInput/Elements/connectivities has 7 entries, the groups need 8\n",
     5, 3, 0},
    {"MissingCounts", [](RawFile& file) { file.remove(kCounts); },
     "orvml.rescue.depends-on-lost: /OrvInput/Elements has groups of cells that cannot be told "
     "apart\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements "
     "whose number is lost\n"
     "orvml.object.missing: /OrvInput/Elements/number_of_elements_by_type is missing\n",
     5, 3, 0},
    {"TheGroupsBehindADamagedOne",
     [](RawFile& file) {
       makeTwoGroups(file, {1, -1});
     },
     "orvml.values.bad-count: /OrvInput/Elements has no usable size in its group 1, and with it "
     "nobody knows where the others lie\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements "
     "whose number is lost\n",
     5, 3, 1},
    {"CellsWithoutNodesOutOfProportion",
     [](RawFile& file) {
       makeTwoGroups(file, {1, INT_MAX - 1});
       replaceInts(file, kWidths, {4, 0});
     },
     "orvml.values.bad-count: /OrvInput/Elements has no usable size in its group 1, and with it "
     "nobody knows where the others lie\n"
     "orvml.object.unreadable: /OrvInput/Elements has 2147483647 elements, of which the first 1 "
     "can be read (2147483646: element 1 element 2 element 3 element 4 element 5 element 6 element "
     "7 element 8 element 9 element 10)\n"
     "orvml.attribute.length: /OrvInput/Elements/Attributes/quality has 2 values for 2147483647 "
     "elements\n",
     5, 3, 1},
    {"GroupsThatAreNotDescribedInFull",
     [](RawFile& file) {
       makeTwoGroups(file, {1, 1});
       replaceInts(file, kWidths, {4});
     },
     "orvml.values.too-few: /OrvInput/Elements describes 2 groups of cells, and 1 of them in full\n"
     "orvml.object.unreadable: /OrvInput/Elements has 2 elements, of which the first 1 can be read "
     "(1: element 1)\n",
     5, 3, 1},
    {"AGroupOfAShapeThatDoesNotBelong",
     [](RawFile& file) {
       makeTwoGroups(file, {1, 1});
       replaceInts(file, "/OrvInput/Elements/element_types", {QUADRILATERAL, TETRAHEDRA});
     },
     "orvml.mesh.misplaced-shape: /OrvInput/Elements has 1 cell in its group 0 of the shape "
     "quadrilateral, which does not belong there (1: element 0)\n",
     5, 3, 1},
    {"AGroupOfAShapeWithOtherNodes",
     [](RawFile& file) {
       makeTwoGroups(file, {1, 1});
       replaceInts(file, "/OrvInput/Elements/element_types", {TETRAHEDRA, PYRAMID});
     },
     "orvml.mesh.node-count: /OrvInput/Elements has 1 cell in its group 1 of the shape pyramid "
     "with 4 nodes each, for which there is no order (1: element 1)\n",
     5, 3, 1},
    {"NodesWithoutFiniteCoordinates",
     [](RawFile& file) {
       file.remove(kCoordinates);
       file.doubleTable(
           kCoordinates, 5, 3,
           {std::numeric_limits<double>::infinity(), 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
     },
     "orvml.rescue.depends-on-lost: /OrvInput/Elements has 1 element with nodes that are left out "
     "(1: element 0)\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Faces has 3 faces with nodes that are left out (3: "
     "face 0 face 1 face 2)\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Faces/Attributes/surface belongs to faces of which "
     "none is left\n"
     "orvml.mesh.coordinate-not-finite: /OrvInput/Nodes has 1 node with a coordinate that is "
     "infinite or no number (1: node 0)\n",
     4, 0, 1},
    {"CoordinatesThatAreNoRows",
     [](RawFile& file) {
       file.remove(kCoordinates);
       file.doubleVector(kCoordinates, std::vector<double>(15, 1.0));
     },
     "orvml.rescue.depends-on-lost: /OrvInput/Elements has 2 elements, whose nodes are lost (2: "
     "element 0 element 1)\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Elements/Attributes/quality belongs to elements of "
     "which none is left\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Faces has 3 faces, whose nodes are lost (3: face 0 "
     "face 1 face 2)\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Faces/Attributes/surface belongs to faces of which "
     "none is left\n"
     "orvml.rescue.depends-on-lost: /OrvInput/Nodes/Attributes/size belongs to nodes whose number "
     "is lost\n"
     "orvml.object.wrong-shape: /OrvInput/Nodes/coordinates has 15 values in 15 rows, which are no "
     "3 coordinates each\n",
     0, 0, 0}};

class LostObjects : public ::testing::TestWithParam<LossRow> {
 protected:
  LostObjects() {
    makeSmallFile(damaged_.path());
    RawFile file = RawFile::openForWriting(damaged_.path());
    GetParam().damage(file);
    file.close();
  }
  orvml::RescueReport rescue() const { return orvml::rescue(damaged_.path(), sound_.path()); }

  TempFile damaged_;
  TempFile sound_;
};

TEST_P(LostObjects, AreToldOfAndLeaveASoundFile) {
  const orvml::RescueReport report = rescue();

  EXPECT_EQ(toldOf(report), GetParam().told);
  EXPECT_EQ(report.isWhole(), GetParam().told.empty());
  EXPECT_EQ(errorsOf(sound_.path()), "");
}

TEST_P(LostObjects, LeaveTheRestAsItWas) {
  (void)rescue();

  const orvml::Input rescued = orvml::loadInput(sound_.path());
  EXPECT_EQ(rescued.nodes().size(), GetParam().nodes);
  EXPECT_EQ(rescued.faces().size(), GetParam().faces);
  EXPECT_EQ(rescued.elements().size(), GetParam().elements);
  EXPECT_EQ(rescued.parameters().at("growth"), 1.5);
  EXPECT_EQ(rescued.vectorParameters().at("layers").size(), 3U);
  EXPECT_EQ(rescued.identification().moduleName, "mesher");
}

INSTANTIATE_TEST_SUITE_P(Rescue, LostObjects, ::testing::ValuesIn(kLosses), RowName());

/// Values of the attributes of cells that go, go with them.
TEST(LostCells, TakeTheirValuesWithThem) {
  const TempFile damaged;
  const TempFile sound;
  makeSmallFile(damaged.path());
  RawFile file = RawFile::openForWriting(damaged.path());
  replaceInts(file, "/OrvInput/Faces/connectivities", {0, 2, 1, 0, 9, 3, 0, 3, 2});
  file.close();

  (void)orvml::rescue(damaged.path(), sound.path());

  const orvml::Input rescued = orvml::loadInput(sound.path());
  const std::span<const int> surface = rescued.faces().attributes().at("surface").ints();
  EXPECT_EQ(std::vector<int>(surface.begin(), surface.end()), (std::vector<int>{7, 9}));
  const std::span<const int> indices = rescued.faces().groups()[0].nodeIndices();
  EXPECT_EQ(std::vector<int>(indices.begin(), indices.end()), (std::vector<int>{0, 2, 1, 0, 3, 2}));
}

/// Nodes behind one that goes get other numbers, and the cells follow.
TEST(LostNodes, LetTheOthersBeNumberedAnew) {
  const TempFile damaged;
  const TempFile sound;
  makeSmallFile(damaged.path());
  RawFile file = RawFile::openForWriting(damaged.path());
  file.remove(kCoordinates);
  file.doubleTable(
      kCoordinates, 5, 3,
      {std::numeric_limits<double>::quiet_NaN(), 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  file.close();

  const orvml::RescueReport report = orvml::rescue(damaged.path(), sound.path());

  EXPECT_EQ(toldOf(report.changed), "/OrvInput/Nodes has nodes that are numbered anew, 4 of 5\n");
  const orvml::Input rescued = orvml::loadInput(sound.path());
  const std::span<const int> indices = rescued.elements().groups()[0].nodeIndices();
  EXPECT_EQ(std::vector<int>(indices.begin(), indices.end()), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(rescued.nodes()[3][0], 1.0);
  const std::span<const double> size = rescued.nodes().attributes().at("size").doubles();
  EXPECT_EQ(std::vector<double>(size.begin(), size.end()),
            (std::vector<double>{1.5, 2.5, 3.5, 4.5}));
}

TEST(LostCells, AreToldWithAtMostAsManyPlacesAsAreAskedFor) {
  const TempFile damaged;
  const TempFile sound;
  makeSmallFile(damaged.path());
  RawFile file = RawFile::openForWriting(damaged.path());
  replaceInts(file, kIndices, {0, 1, 2, -3, 1, 2, 3, 5});
  file.close();

  const orvml::RescueReport report = orvml::rescue(damaged.path(), sound.path(), {.places = 1});

  ASSERT_FALSE(report.lost.empty());
  EXPECT_EQ(report.lost[0].places.size(), 1U);
  EXPECT_EQ(report.lost[0].count, 2);
}

}  // namespace
}  // namespace orvml_io_tests
