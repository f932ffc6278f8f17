// Each dataset of a valid file in turn replaced by something that does not belong there. The result
// follows from what the dataset is for and from what the reader finds in its place.
#include "hostile/bytes.h"
#include "hostile/damages.h"
#include "hostile/payload.h"
#include "hostile/reading.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace orvml_io_tests {
namespace {

/// What a dataset is for.
enum class Role {
  dimension,
  coordinates,
  shapes,
  numbersOfCells,
  numbersOfNodes,
  connectivities,
  parameterTable,
  namedVector,
  positionalScalars,
  positionalParameter,
  positionalAttribute,         // in the last group of its container
  earlierPositionalAttribute,  // in a group whose result is replaced by that of the last
};

/// The results for one role, by finding. None where the answer depends on the values that are left:
/// a single one may be the dimension or a count, and none at all is neither.
struct Results {
  std::map<Finding, int> expected;

  [[nodiscard]] std::optional<int> of(Finding finding) const {
    const auto found = expected.find(finding);
    return found == expected.end() ? std::nullopt : std::optional<int>(found->second);
  }
};

const Results& resultsOf(Role role) {
  using F = Finding;
  static const std::map<Role, Results> results = {
      {Role::dimension,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 1},
         {F::elsewhere, 1},
         {F::twiceAsWide, 1},
         {F::empty, 1},
         {F::longer, 1},
         {F::shorter, 1},
         {F::unstored, 1},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      // Without the dataset there are no nodes, which is no failure; the number of columns is free.
      {Role::coordinates,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 0},
         {F::empty, 0},
         {F::longer, 0},
         {F::shorter, 0},
         {F::unstored, 0},
         {F::enumerated, 0},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      // Without shapes there are no cells, which is no failure. More shapes than counts are those
      // of empty type groups.
      {Role::shapes,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 0},
         {F::unstored, 0},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::numbersOfCells,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 1},
         {F::elsewhere, 1},
         {F::twiceAsWide, 1},
         {F::longer, 1},
         {F::unstored, 1},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::numbersOfNodes,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 1},
         {F::elsewhere, 1},
         {F::twiceAsWide, 1},
         {F::empty, 1},
         {F::longer, 1},
         {F::shorter, 1},
         {F::unstored, 1},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::connectivities,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 1},
         {F::elsewhere, 1},
         {F::noExtents, 0},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 1},
         {F::shorter, 0},
         {F::unstored, 1},
         {F::enumerated, 0},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      // Numbers are no table of parameters, however many there are.
      {Role::parameterTable,
       {{{F::moved, 0},
         {F::converted, 1},
         {F::nothing, 1},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 1},
         {F::empty, 1},
         {F::longer, 1},
         {F::shorter, 1},
         {F::unstored, 1},
         {F::enumerated, 1},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      // What is no dataset and what holds no numbers is skipped.
      {Role::namedVector,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 0},
         {F::shorter, 0},
         {F::unstored, 0},
         {F::enumerated, 0},
         {F::huge, 1},
         {F::noNumbers, 0}}}},
      {Role::positionalScalars,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 0},
         {F::shorter, 0},
         {F::unstored, 0},
         {F::enumerated, 0},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::positionalParameter,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 1},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 0},
         {F::shorter, 0},
         {F::unstored, 0},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::positionalAttribute,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 0},
         {F::twiceAsWide, 1},
         {F::empty, 0},
         {F::longer, 1},
         {F::shorter, 0},
         {F::unstored, 1},
         {F::huge, 1},
         {F::noNumbers, 1}}}},
      {Role::earlierPositionalAttribute,
       {{{F::moved, 0},
         {F::converted, 0},
         {F::nothing, 0},
         {F::elsewhere, 1},
         {F::noExtents, 0},
         {F::twiceAsWide, 0},
         {F::empty, 0},
         {F::longer, 0},
         {F::shorter, 0},
         {F::unstored, 0},
         {F::huge, 0},
         {F::noNumbers, 0}}}}};
  return results.at(role);
}

/// The container of a path, as its place in Reading::counts; none outside of the containers.
std::optional<std::size_t> containerOf(const std::string& path) {
  static const char* const names[] = {"/Nodes/", "/Edges/", "/Faces/", "/Elements/"};
  for (std::size_t i = 0; i < 4; ++i) {
    if (path.find(names[i]) != std::string::npos) {
      return i;
    }
  }
  return std::nullopt;
}

/// A dataset of a valid file.
struct Target {
  const char* name;
  std::size_t file;  // in validFiles()
  const char* path;
  Role role;
};

std::ostream& operator<<(std::ostream& stream, const Target& target) {
  return stream << target.path;
}

class AttackedDataset : public ::testing::TestWithParam<Target> {
 protected:
  AttackedDataset() : valid_(bytesOfNew(validFiles()[GetParam().file])) {
    const TempFile temp;
    writeBytes(temp.path(), valid_);
    whole_ = readInputInSilence(temp.path());
  }

  Reading readDamaged(const Damage& damage) const {
    const TempFile temp;
    writeBytes(temp.path(), valid_);
    RawFile file = RawFile::openForWriting(temp.path());
    damage.apply(file, GetParam().path);
    file.close();
    return readInputInSilence(temp.path());
  }

  /// What a damage leaves alone: containers other than that of the dataset.
  void expectOtherContainers(const Reading& reading) const {
    const std::optional<std::size_t> damaged = containerOf(GetParam().path);
    for (std::size_t i = 0; reading.hasDocument && i < 4; ++i) {
      if (i != damaged) {
        EXPECT_EQ(reading.counts[i], whole_.counts[i]) << "container " << i;
      }
    }
  }

 private:
  Bytes valid_;
  Reading whole_;
};

TEST_P(AttackedDataset, GivesTheResultOfItsRoleAndLeavesTheRestAlone) {
  for (const Damage& damage : damages()) {
    SCOPED_TRACE(damage.name);
    const std::optional<int> expected = resultsOf(GetParam().role).of(damage.finding);

    const Reading reading = readDamaged(damage);

    if (expected) {
      EXPECT_EQ(reading.status, *expected);
      EXPECT_EQ(reading.hasDocument, GetParam().role != Role::dimension || *expected == 0);
    }
    expectOtherContainers(reading);
  }
}

constexpr std::size_t kCurrent = 0;
constexpr std::size_t kOneThree = 1;

const Target kTargets[] = {
    {"Dimension", kCurrent, "/OrvInput/dimension", Role::dimension},
    {"Coordinates", kCurrent, "/OrvInput/Nodes/coordinates", Role::coordinates},
    {"NodeDoubles", kCurrent, "/OrvInput/Nodes/Attributes/size", Role::namedVector},
    {"NodeInts", kCurrent, "/OrvInput/Nodes/Attributes/forced", Role::namedVector},
    {"EdgeShapes", kCurrent, "/OrvInput/Edges/element_types", Role::shapes},
    {"EdgeNumbersOfCells", kCurrent, "/OrvInput/Edges/number_of_elements_by_type",
     Role::numbersOfCells},
    {"EdgeNumbersOfNodes", kCurrent, "/OrvInput/Edges/number_of_nodes_by_element",
     Role::numbersOfNodes},
    {"EdgeConnectivities", kCurrent, "/OrvInput/Edges/connectivities", Role::connectivities},
    {"EdgeInts", kCurrent, "/OrvInput/Edges/Attributes/line", Role::namedVector},
    {"FaceShapes", kCurrent, "/OrvInput/Faces/element_types", Role::shapes},
    {"FaceNumbersOfCells", kCurrent, "/OrvInput/Faces/number_of_elements_by_type",
     Role::numbersOfCells},
    {"FaceNumbersOfNodes", kCurrent, "/OrvInput/Faces/number_of_nodes_by_element",
     Role::numbersOfNodes},
    {"FaceConnectivities", kCurrent, "/OrvInput/Faces/connectivities", Role::connectivities},
    {"FaceInts", kCurrent, "/OrvInput/Faces/Attributes/surface", Role::namedVector},
    {"ElementShapes", kCurrent, "/OrvInput/Elements/element_types", Role::shapes},
    {"ElementNumbersOfCells", kCurrent, "/OrvInput/Elements/number_of_elements_by_type",
     Role::numbersOfCells},
    {"ElementNumbersOfNodes", kCurrent, "/OrvInput/Elements/number_of_nodes_by_element",
     Role::numbersOfNodes},
    {"ElementConnectivities", kCurrent, "/OrvInput/Elements/connectivities", Role::connectivities},
    {"ElementDoubles", kCurrent, "/OrvInput/Elements/Attributes/quality", Role::namedVector},
    {"ParameterTable", kCurrent, "/OrvInput/parameters", Role::parameterTable},
    {"IntParameter", kCurrent, "/OrvInput/ParametersVector/layers", Role::namedVector},
    {"DoubleParameter", kCurrent, "/OrvInput/ParametersVector/volumes_sizes", Role::namedVector},
    {"LegacyDimension", kOneThree, "/OrvInput/dimension", Role::dimension},
    {"LegacyFaceShapes", kOneThree, "/OrvInput/Faces/element_types", Role::shapes},
    {"LegacyScalars", kOneThree, "/OrvInput/parameters", Role::positionalScalars},
    {"LegacyMarker", kOneThree, "/OrvInput/GenericMarkers/0", Role::positionalParameter},
    {"LegacyAttribute", kOneThree, "/OrvInput/GenericAttributes/2", Role::positionalParameter},
    {"LegacyNodeFunctionDoubles", kOneThree, "/OrvInput/Nodes/FunctionAttributes/0",
     Role::earlierPositionalAttribute},
    {"LegacyNodeUserDoubles", kOneThree, "/OrvInput/Nodes/UserAttributes/2",
     Role::earlierPositionalAttribute},
    {"LegacyNodeFunctionInts", kOneThree, "/OrvInput/Nodes/FunctionMarkers/0",
     Role::earlierPositionalAttribute},
    {"LegacyNodeUserInts", kOneThree, "/OrvInput/Nodes/UserMarkers/0", Role::positionalAttribute},
    {"LegacyEdgeUserInts", kOneThree, "/OrvInput/Edges/UserMarkers/2", Role::positionalAttribute},
    {"LegacyFaceUserInts", kOneThree, "/OrvInput/Faces/UserMarkers/0", Role::positionalAttribute},
    {"LegacyElementUserInts", kOneThree, "/OrvInput/Elements/UserMarkers/0",
     Role::positionalAttribute}};

INSTANTIATE_TEST_SUITE_P(Datasets, AttackedDataset, ::testing::ValuesIn(kTargets), RowName());

}  // namespace
}  // namespace orvml_io_tests
