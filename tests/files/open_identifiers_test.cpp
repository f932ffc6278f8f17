// Exactly which HDF5 identifiers stay open after a call, whether it succeeds or fails.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

/// Counts the identifiers that belong to no object of a file (spaces, types in memory, property
/// lists) and were made since its construction and not closed. HDF5 does not tell their number, but
/// it numbers the identifiers of a kind consecutively.
class OtherIds {
 public:
  [[nodiscard]] int left() const {
    return countFrom(firstSpace_, nextSpace()) + countFrom(firstType_, nextType()) +
           countFrom(firstList_, nextList());
  }

 private:
  static hid_t nextSpace() { return closed(H5Screate(H5S_SCALAR)); }
  static hid_t nextType() { return closed(H5Tcopy(H5T_NATIVE_INT)); }
  static hid_t nextList() { return closed(H5Pcreate(H5P_DATASET_ACCESS)); }
  static hid_t closed(hid_t id) {
    EXPECT_EQ(H5Idec_ref(id), 0);
    return id;
  }
  static int countFrom(hid_t first, hid_t end) {
    int count = 0;
    for (hid_t id = first + 1; id < end; ++id) {
      count += H5Iis_valid(id) > 0 ? 1 : 0;
    }
    return count;
  }

  hid_t firstSpace_ = nextSpace();
  hid_t firstType_ = nextType();
  hid_t firstList_ = nextList();
};

TEST(OtherIds, SeesEveryKindThatIsLeft) {
  const OtherIds ids;
  const hid_t left[] = {H5Screate(H5S_NULL), H5Tcopy(H5T_C_S1), H5Pcreate(H5P_FILE_ACCESS)};

  EXPECT_EQ(ids.left(), 3);

  for (const hid_t id : left) {
    H5Idec_ref(id);
  }
  EXPECT_EQ(ids.left(), 0);
}

IdCounts groupsAndDatasets(long groups, long datasets) { return {0, groups, datasets, 0, 0}; }

class OpenAfterWriting : public ExchangeFileTest {
 protected:
  void TearDown() override { EXPECT_EQ(opened(), IdCounts{}); }
  BuiltDocument document_ = fullDocument();
};

TEST_F(OpenAfterWriting, NothingOfADocument) {
  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 0);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), document_.handle()), 0);
}

TEST_F(OpenAfterWriting, NothingOfBothDocuments) {
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), document_.handle(), document_.handle()), 0);
}

TEST_F(OpenAfterWriting, NothingOfAFileWithoutDocuments) {
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), nullptr, nullptr), 0);
}

TEST_F(OpenAfterWriting, NothingWhenTheFileCannotBeCreated) {
  EXPECT_EQ(OrvML_IO_WriteOrvInput("/no/such/folder/file.h5", document_.handle()), 1);
}

TEST_F(OpenAfterWriting, NothingWhenAStepFails) {
  document_.attribute(ORVML_NODES, std::string(80, 'n').c_str(), std::vector<int>{1});

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 1);
}

TEST_F(OpenAfterWriting, NothingThatBelongsToNoFile) {
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 0);
  const OtherIds others;

  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 0);

  EXPECT_EQ(others.left(), 0);
}

// Datasets of missing arrays are made in another way than those of values.
TEST_F(OpenAfterWriting, NothingThatBelongsToNoFileOfMissingArrays) {
  OrvML_IO_SetNodesCoords(document_.handle(), 5, nullptr);
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 0);
  const OtherIds others;

  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 0);

  EXPECT_EQ(others.left(), 0);
}

class OpenAfterReading : public ExchangeFileTest {};

TEST_F(OpenAfterReading, GroupOfAnEmptyDocument) {
  written(BuiltDocument::input(3)).close();

  const ReadDocument document = readInput(path());

  EXPECT_EQ(opened(), groupsAndDatasets(1, 0));
}

// The document, the nodes and three kinds of cells; a probe in each container and one for each of
// the five attributes and the two vector parameters.
constexpr long kFullGroups = 5;
constexpr long kFullDatasets = 4 + 5 + 2;

TEST_F(OpenAfterReading, GroupsProbesAndVectorsOfAFullInput) {
  written(fullDocument()).close();

  const ReadDocument document = readInput(path());

  EXPECT_EQ(opened(), groupsAndDatasets(kFullGroups, kFullDatasets));
}

TEST_F(OpenAfterReading, GroupsProbesAndVectorsOfAFullOutput) {
  writtenOutput(fullDocument()).close();

  const ReadDocument document = readOutput(path());

  EXPECT_EQ(opened(), groupsAndDatasets(kFullGroups, kFullDatasets));
}

TEST_F(OpenAfterReading, TwiceAsManyOfBothDocuments) {
  writtenBoth(fullDocument(), fullDocument()).close();
  Handle input;
  Handle output;

  ASSERT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path(), input.out(), output.out()), 0);

  EXPECT_EQ(opened(), groupsAndDatasets(2 * kFullGroups, 2 * kFullDatasets));
}

TEST_F(OpenAfterReading, OnesOfTheInputAloneWhenTheFileHoldsNoOutput) {
  written(fullDocument()).close();
  Handle input;
  Handle output;

  ASSERT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path(), input.out(), output.out()), 0);

  EXPECT_EQ(opened(), groupsAndDatasets(kFullGroups, kFullDatasets));
}

TEST_F(OpenAfterReading, AsManyAgainWithEveryRead) {
  written(fullDocument()).close();

  const ReadDocument first = readInput(path());
  const ReadDocument second = readInput(path());

  EXPECT_EQ(opened(), groupsAndDatasets(2 * kFullGroups, 2 * kFullDatasets));
}

TEST_F(OpenAfterReading, TheSameWhenTheDocumentIsDeleted) {
  written(fullDocument()).close();
  ReadDocument document = readInput(path());

  OrvML_IO_DeleteOrvInputHandle(document.document.out());

  EXPECT_EQ(opened(), groupsAndDatasets(kFullGroups, kFullDatasets));
}

TEST_F(OpenAfterReading, NothingThatBelongsToNoFile) {
  written(fullDocument()).close();
  const ReadDocument first = readInput(path());
  const OtherIds others;

  const ReadDocument second = readInput(path());

  EXPECT_EQ(others.left(), 0);
}

/// A change to the small input document, and what stays open after it was read. Unchanged it keeps
/// three groups (document, nodes, faces) and two datasets (coordinates, shapes of the faces).
struct Change {
  const char* name;
  void (*apply)(RawFile& file);
  long groups;
  long datasets;

  friend std::ostream& operator<<(std::ostream& stream, const Change& change) {
    return stream << change.name;
  }
};

class OpenAfterReadingChanged : public ExchangeFileTest,
                                public ::testing::WithParamInterface<Change> {};

TEST_P(OpenAfterReadingChanged, AreWhatWasFoundUpToTheFailure) {
  RawFile file = smallInput();
  GetParam().apply(file);

  const ReadDocument document = read(file);

  EXPECT_EQ(opened(), groupsAndDatasets(GetParam().groups, GetParam().datasets));
}

TEST_P(OpenAfterReadingChanged, AreAllThatTheReadLeaves) {
  RawFile file = smallInput();
  GetParam().apply(file);
  const ReadDocument first = read(file);
  const OtherIds others;

  const ReadDocument second = readInput(path());

  EXPECT_EQ(others.left(), 0);
}

void addVectors(RawFile& file, const std::string& group) {
  file.group(group);
  file.intVector(group + "/ints", {1});
  file.doubleVector(group + "/doubles", {1});
}

void withoutExtents(RawFile& file, const std::string& path) {
  const int value = 1;
  replaceDataset(file, path, H5T_NATIVE_INT, {}, &value);
}

constexpr char kFaces[] = "/OrvInput/Faces";

const Change kChanges[] = {
    {"Nothing", [](RawFile&) {}, 3, 2},
    {"NoDimension", [](RawFile& file) { file.remove("/OrvInput/dimension"); }, 3, 2},
    {"DimensionFour", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {4}); }, 3, 2},
    {"NoNodes", [](RawFile& file) { file.remove("/OrvInput/Nodes"); }, 2, 1},
    {"NoCoordinates", [](RawFile& file) { file.remove("/OrvInput/Nodes/coordinates"); }, 3, 1},
    {"CoordinatesWithoutExtents",
     [](RawFile& file) { withoutExtents(file, "/OrvInput/Nodes/coordinates"); }, 3, 2},
    {"UnreadableCoordinates",
     [](RawFile& file) {
       replaceByUnreadable(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {3, 3});
     },
     3, 2},
    {"NoFaces", [](RawFile& file) { file.remove(kFaces); }, 2, 1},
    {"NoShapes", [](RawFile& file) { file.remove(std::string(kFaces) + "/element_types"); }, 3, 1},
    {"ShapesWithoutExtents",
     [](RawFile& file) { withoutExtents(file, std::string(kFaces) + "/element_types"); }, 3, 2},
    {"NoCellsOfGroups",
     [](RawFile& file) { file.remove(std::string(kFaces) + "/number_of_elements_by_type"); }, 3, 2},
    {"NoNodesPerCell",
     [](RawFile& file) { file.remove(std::string(kFaces) + "/number_of_nodes_by_element"); }, 3, 2},
    {"NoConnectivities",
     [](RawFile& file) { file.remove(std::string(kFaces) + "/connectivities"); }, 3, 2},
    {"NoTable", [](RawFile& file) { file.remove("/OrvInput/parameters"); }, 3, 2},
    {"OtherTable", [](RawFile& file) { replaceInts(file, "/OrvInput/parameters", {1}); }, 3, 2},
    {"VectorParameters", [](RawFile& file) { addVectors(file, "/OrvInput/ParametersVector"); }, 3,
     4},
    {"NodeAttributes", [](RawFile& file) { addVectors(file, "/OrvInput/Nodes/Attributes"); }, 3, 4},
    {"FaceAttributes", [](RawFile& file) { addVectors(file, "/OrvInput/Faces/Attributes"); }, 3, 4},
    {"AttributesOfMissingKinds",
     [](RawFile& file) {
       file.group("/OrvInput/Edges");
       addVectors(file, "/OrvInput/Edges/Attributes");
     },
     4, 2},
    {"UnreadableVector",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       unreadableDataset(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {3});
     },
     3, 3},
    {"VectorOfText",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.dataset("/OrvInput/ParametersVector/v", H5T_C_S1, {1}, "a");
     },
     3, 3},
    {"SubgroupOfVectors",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.group("/OrvInput/ParametersVector/group");
     },
     3, 2},
    {"NameThatDoesNotFitAPath",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.intVector("/OrvInput/ParametersVector/" + std::string(1100, 'n'), {1});
     },
     3, 2},
};

INSTANTIATE_TEST_SUITE_P(Each, OpenAfterReadingChanged, ::testing::ValuesIn(kChanges), RowName());

}  // namespace
}  // namespace orvml_io_tests
