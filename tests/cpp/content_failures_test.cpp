// Documents of a file that are not as the format says: a strict reader throws the first trouble, a
// tolerant one finds the same, in the same words.
#include <orvml/orvml.hpp>

#include "cpp/told.h"
#include "files/exchange_file_fixture.h"

#include <ostream>

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;

/// Replaces an object by one that has its values in another file, or is there itself.
void replaceByExternalLink(RawFile& file, const std::string& path) {
  // The file itself is another one by its name.
  std::string name(1024, '\0');
  name.resize(static_cast<std::size_t>(H5Fget_name(file.id(), name.data(), name.size())));
  file.remove(path);
  ASSERT_GE(H5Lcreate_external(name.c_str(), "/OrvInput", file.id(), path.c_str(), H5P_DEFAULT,
                               H5P_DEFAULT),
            0);
}

/// Makes a dataset of two ints with a list of creation properties of its own.
void intsMadeWith(RawFile& file, const std::string& path, hid_t properties) {
  const hsize_t length = 2;
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t dataset = H5Dcreate2(file.id(), path.c_str(), H5T_NATIVE_INT, space, H5P_DEFAULT,
                                   properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
}

void externalInts(RawFile& file, const std::string& path) {
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, "values.raw", 0, H5F_UNLIMITED);
  intsMadeWith(file, path, properties);
}

void virtualInts(RawFile& file, const std::string& path) {
  const hsize_t length = 2;
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_virtual(properties, space, "values.h5", "/values", space);
  H5Sclose(space);
  intsMadeWith(file, path, properties);
}

/// Replaces the coordinates by a compressed chunk that no compressor made.
void damageChunkOfCoordinates(RawFile& file) {
  const char* path = "/OrvInput/Nodes/coordinates";
  const hsize_t extents[] = {3, 3};
  const hsize_t begin[] = {0, 0};
  const hid_t space = H5Screate_simple(2, extents, nullptr);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(properties, 2, extents);
  H5Pset_deflate(properties, 6);
  file.remove(path);
  const hid_t dataset =
      H5Dcreate2(file.id(), path, H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  const std::string junk(40, '\x5a');
  ASSERT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, begin, junk.size(), junk.data()), 0);
  H5Dclose(dataset);
  H5Pclose(properties);
  H5Sclose(space);
}

/// Makes five faces that need 20 node indices, and so many of them.
void replaceFaces(RawFile& file, std::size_t connectivities) {
  file.remove("/OrvInput/Faces");
  file.elements("/OrvInput/Faces", {5}, {QUADRILATERAL}, {4}, Ints(connectivities));
}

/// Replaces the cells of the faces by groups of so many.
void replaceCounts(RawFile& file, const Ints& cells, const Ints& nodesPerCell) {
  file.remove("/OrvInput/Faces");
  file.elements("/OrvInput/Faces", cells, Ints(cells.size(), POINT), nodesPerCell, {});
}

void addVectors(RawFile& file) { file.group("/OrvInput/ParametersVector"); }

const std::string kLongName(1010, 'n');

/// How a file with a small document is changed, and what is said of it.
struct ContentRow {
  const char* name;
  void (*change)(RawFile& file);
  std::string code;
  std::string object;
  std::string rest;  // of the sentence, which begins with the object
  bool hasHdf5Reason = false;

  friend std::ostream& operator<<(std::ostream& stream, const ContentRow& row) {
    return stream << row.name;
  }
};

const ContentRow kDimensions[] = {
    {"Four", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {4}); },
     "orvml.values.not-allowed", "/OrvInput/dimension", "is 4, a mesh has dimension 2 or 3"},
    {"One", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {1}); },
     "orvml.values.not-allowed", "/OrvInput/dimension", "is 1, a mesh has dimension 2 or 3"},
    {"Zero", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {0}); },
     "orvml.values.not-allowed", "/OrvInput/dimension", "is 0, a mesh has dimension 2 or 3"},
    {"OfTwoNumbers",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/dimension", {3, 3});
     },
     "orvml.object.wrong-shape", "/OrvInput/dimension", "is not one number"},
    {"OfText",
     [](RawFile& file) { replaceDataset(file, "/OrvInput/dimension", H5T_C_S1, {1}, "3"); },
     "orvml.object.unreadable", "/OrvInput/dimension", "cannot be read", true},
    {"ThatIsMissing", [](RawFile& file) { file.remove("/OrvInput/dimension"); },
     "orvml.object.missing", "/OrvInput/dimension", "is missing", true},
    {"ThatIsAGroup",
     [](RawFile& file) {
       file.remove("/OrvInput/dimension");
       file.group("/OrvInput/dimension");
     },
     "orvml.object.unopenable", "/OrvInput/dimension", "cannot be opened", true}};

const ContentRow kNodes[] = {
    {"WithoutCoordinates", [](RawFile& file) { file.remove("/OrvInput/Nodes/coordinates"); },
     "orvml.object.missing", "/OrvInput/Nodes/coordinates", "is missing", true},
    {"OfTwoColumnsInSpace",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {3, 2}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Nodes/coordinates",
     "has 6 values, 3 nodes of dimension 3 need 9"},
    {"InOneRow",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {9}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Nodes/coordinates",
     "has 9 values, 9 nodes of dimension 3 need 27"},
    {"OfOneNumber",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Nodes/coordinates",
     "has no rows, or more values than 32 bits count"},
    {"OfText",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_C_S1, {3, 3}, "123456789");
     },
     "orvml.object.unreadable", "/OrvInput/Nodes/coordinates", "cannot be read", true},
    {"InADamagedChunk", damageChunkOfCoordinates, "orvml.object.unreadable",
     "/OrvInput/Nodes/coordinates", "cannot be read", true},
    {"OutOfProportion",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE,
                      {3, hsize_t{1} << 28U}, nullptr);
     },
     "orvml.values.out-of-proportion", "/OrvInput/Nodes/coordinates",
     "would take memory out of proportion to the file"},
    {"Beyond32Bits",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE,
                      {hsize_t{1} << 31U, 3}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Nodes/coordinates",
     "has no rows, or more values than 32 bits count"},
    {"InAnotherFile",
     [](RawFile& file) { replaceByExternalLink(file, "/OrvInput/Nodes/coordinates"); },
     "orvml.object.other-file", "/OrvInput/Nodes/coordinates", "is a link to another file", true},
    {"ThatAreADataset",
     [](RawFile& file) {
       file.remove("/OrvInput/Nodes");
       file.intVector("/OrvInput/Nodes", {1});
     },
     "orvml.object.unopenable", "/OrvInput/Nodes", "cannot be opened", true}};

const ContentRow kFaces[] = {
    {"WithConnectivitiesTooShort", [](RawFile& file) { replaceFaces(file, 17); },
     "orvml.values.too-few", "/OrvInput/Faces/connectivities",
     "has 17 entries, the groups need 20"},
    {"WithOneConnectivity", [](RawFile& file) { replaceFaces(file, 1); }, "orvml.values.too-few",
     "/OrvInput/Faces/connectivities", "has 1 entry, the groups need 20"},
    {"WithConnectivitiesTooLong", [](RawFile& file) { replaceFaces(file, 21); },
     "orvml.values.too-many", "/OrvInput/Faces/connectivities",
     "has 21 entries, the groups need 20"},
    {"WithoutConnectivities", [](RawFile& file) { file.remove("/OrvInput/Faces/connectivities"); },
     "orvml.object.missing", "/OrvInput/Faces/connectivities", "is missing", true},
    {"WithoutShapes", [](RawFile& file) { file.remove("/OrvInput/Faces/element_types"); },
     "orvml.object.missing", "/OrvInput/Faces/element_types", "is missing", true},
    {"WithTheShapesOfOneNumber",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Faces/element_types", H5T_NATIVE_INT, {}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Faces/element_types", "is no list of shapes"},
    {"WithTwoColumnsOfShapes",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Faces/element_types", H5T_NATIVE_INT, {1, 2}, nullptr);
     },
     "orvml.object.wrong-shape", "/OrvInput/Faces/element_types",
     "has more than one value in a row"},
    {"WithFewerCountsThanShapes",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/Faces/element_types", {TRIANGLE, QUADRILATERAL});
       replaceInts(file, "/OrvInput/Faces/number_of_nodes_by_element", {3, 4});
     },
     "orvml.values.too-few", "/OrvInput/Faces/number_of_elements_by_type",
     "has 1 entry, the groups need 2"},
    {"OfANegativeNumber", [](RawFile& file) { replaceCounts(file, {-1}, {3}); },
     "orvml.values.bad-count", "/OrvInput/Faces/number_of_elements_by_type",
     "has a negative count, or counts that 32 bits cannot add"},
    {"Beyond32Bits",
     [](RawFile& file) {
       replaceCounts(file, {2000000000, 2000000000}, {0, 0});
     },
     "orvml.values.bad-count", "/OrvInput/Faces/number_of_elements_by_type",
     "has a negative count, or counts that 32 bits cannot add"},
    {"OfANegativeNumberOfNodes", [](RawFile& file) { replaceCounts(file, {1}, {-3}); },
     "orvml.values.bad-count", "/OrvInput/Faces/number_of_nodes_by_element",
     "has a negative count"},
    {"OfMoreNodesThan32BitsCount", [](RawFile& file) { replaceCounts(file, {2000000000}, {3}); },
     "orvml.values.bad-count", "/OrvInput/Faces/connectivities",
     "would need more entries than 32 bits count"},
    {"InAnotherFile", [](RawFile& file) { replaceByExternalLink(file, "/OrvInput/Faces"); },
     "orvml.object.other-file", "/OrvInput/Faces", "is a link to another file", true},
    {"ThatAreADataset",
     [](RawFile& file) {
       file.remove("/OrvInput/Faces");
       file.intVector("/OrvInput/Faces", {1});
     },
     "orvml.object.unopenable", "/OrvInput/Faces", "cannot be opened", true}};

const ContentRow kValues[] = {
    {"TableOfNumbers",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.doubleVector("/OrvInput/parameters", {0.5});
     },
     "orvml.object.wrong-type", "/OrvInput/parameters", "is no table of names and values"},
    {"VectorInAnotherFile",
     [](RawFile& file) {
       addVectors(file);
       externalInts(file, "/OrvInput/ParametersVector/v");
     },
     "orvml.object.other-file", "/OrvInput/ParametersVector/v", "has its values in another file"},
    {"VirtualVector",
     [](RawFile& file) {
       addVectors(file);
       virtualInts(file, "/OrvInput/ParametersVector/v");
     },
     "orvml.object.other-file", "/OrvInput/ParametersVector/v", "has its values in another file"},
    {"VectorOfRows",
     [](RawFile& file) {
       addVectors(file);
       file.doubleTable("/OrvInput/ParametersVector/v", 1, 2, {1, 2});
     },
     "orvml.object.wrong-shape", "/OrvInput/ParametersVector/v", "is no vector"},
    {"VectorBehindALostFilter",
     [](RawFile& file) {
       addVectors(file);
       unreadableDataset(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {2});
     },
     "orvml.object.unreadable", "/OrvInput/ParametersVector/v", "cannot be read", true},
    {"VectorOutOfProportion",
     [](RawFile& file) {
       addVectors(file);
       file.dataset("/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE, {hsize_t{1} << 30U},
                    nullptr);
     },
     "orvml.values.out-of-proportion", "/OrvInput/ParametersVector/v",
     "would take memory out of proportion to the file"},
    {"VectorOfALongName",
     [](RawFile& file) {
       addVectors(file);
       file.intVector("/OrvInput/ParametersVector/" + kLongName, {1});
     },
     "orvml.object.path-too-long", "/OrvInput/ParametersVector/" + kLongName,
     "has a path that is too long"},
    {"AttributeBehindADanglingLink",
     [](RawFile& file) {
       file.group("/OrvInput/Faces/Attributes");
       ASSERT_GE(H5Lcreate_soft("/nothing", file.id(), "/OrvInput/Faces/Attributes/id", H5P_DEFAULT,
                                H5P_DEFAULT),
                 0);
     },
     "orvml.object.missing", "/OrvInput/Faces/Attributes/id", "is missing", true},
    {"AttributesThatAreADataset",
     [](RawFile& file) { file.intVector("/OrvInput/Faces/Attributes", {1}); },
     "orvml.object.unopenable", "/OrvInput/Faces/Attributes", "cannot be opened", true}};

class TroubleInADocument : public ExchangeFileTest,
                           public ::testing::WithParamInterface<ContentRow> {
 protected:
  TroubleInADocument() {
    RawFile file = smallInput();
    GetParam().change(file);
  }

  void expectTold(const Told& told) const {
    const ContentRow& row = GetParam();
    EXPECT_EQ(told.code, row.code);
    EXPECT_EQ(told.sentence, row.object + " " + row.rest);
    EXPECT_EQ(told.what, std::string(path()) + ": " + row.object + " " + row.rest);
    EXPECT_EQ(told.file, path());
    EXPECT_EQ(told.object, row.object);
    EXPECT_EQ(!told.hdf5Reason.empty(), row.hasHdf5Reason) << told.hdf5Reason;
    EXPECT_EQ(told.printed, "");
    EXPECT_EQ(opened(), IdCounts());
  }

  template <class Findings>
  void expectFound(const Findings& findings) const {
    const ContentRow& row = GetParam();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(orvml::text(findings[0].code), row.code);
    EXPECT_EQ(findings[0].object, row.object);
    EXPECT_EQ(findings[0].sentence, row.object + " " + row.rest);
    EXPECT_EQ(!findings[0].hdf5Reason.empty(), row.hasHdf5Reason) << findings[0].hdf5Reason;
    EXPECT_EQ(opened(), IdCounts());
  }
};

INSTANTIATE_TEST_SUITE_P(Dimension, TroubleInADocument, ::testing::ValuesIn(kDimensions),
                         RowName());
INSTANTIATE_TEST_SUITE_P(Nodes, TroubleInADocument, ::testing::ValuesIn(kNodes), RowName());
INSTANTIATE_TEST_SUITE_P(Faces, TroubleInADocument, ::testing::ValuesIn(kFaces), RowName());
INSTANTIATE_TEST_SUITE_P(Values, TroubleInADocument, ::testing::ValuesIn(kValues), RowName());

TEST_P(TroubleInADocument, IsThrownByLoad) {
  expectTold(toldBy([this] { (void)orvml::load(path()); }));
}

TEST_P(TroubleInADocument, IsThrownByLoadOnThreads) {
  expectTold(toldBy([this] { (void)orvml::load(path(), {.threads = 4}); }));
}

TEST_P(TroubleInADocument, IsThrownByLoadInput) {
  expectTold(toldBy([this] { (void)orvml::loadInput(path()); }));
}

TEST_P(TroubleInADocument, IsThrownByMappedFile) {
  expectTold(toldBy([this] { const orvml::MappedFile file(path()); }));
}

TEST_P(TroubleInADocument, IsFoundByATolerantLoad) {
  expectFound(orvml::load(path(), {.policy = orvml::Policy::tolerant}).findings);
}

TEST_P(TroubleInADocument, IsFoundByATolerantMappedFile) {
  const orvml::MappedFile file(path(), orvml::Policy::tolerant);

  expectFound(file.findings());
}

class ForeignObject : public ExchangeFileTest {
 protected:
  static constexpr auto kTolerant = orvml::LoadOptions{.policy = orvml::Policy::tolerant};

  ForeignObject() : file_(smallInput()) {
    file_.group("/OrvInput/Faces/Attributes");
    file_.intVector("/OrvInput/Faces/Attributes/id", {7});
  }

  RawFile file_;
};

TEST_F(ForeignObject, AmongAttributesIsNoTroubleForAStrictReader) {
  file_.group("/OrvInput/Faces/Attributes/notes");
  file_.dataset("/OrvInput/Faces/Attributes/text", H5T_C_S1, {1}, "t");
  file_.close();

  const orvml::Loaded loaded = orvml::load(path());

  EXPECT_EQ(loaded.input->faces().attributes().size(), 1U);
  EXPECT_TRUE(loaded.findings.empty());
}

TEST_F(ForeignObject, AmongAttributesIsFoundByATolerantReader) {
  file_.group("/OrvInput/Faces/Attributes/notes");
  file_.dataset("/OrvInput/Faces/Attributes/text", H5T_C_S1, {1}, "t");
  file_.close();

  const orvml::Loaded loaded = orvml::load(path(), kTolerant);

  EXPECT_EQ(loaded.input->faces().attributes().size(), 1U);
  ASSERT_EQ(loaded.findings.size(), 2U);
  EXPECT_EQ(orvml::text(loaded.findings[0].code), "orvml.object.foreign");
  EXPECT_EQ(loaded.findings[0].sentence, "/OrvInput/Faces/Attributes/notes is no dataset");
  EXPECT_EQ(orvml::text(loaded.findings[1].code), "orvml.object.foreign");
  EXPECT_EQ(loaded.findings[1].sentence, "/OrvInput/Faces/Attributes/text holds no numbers");
}

}  // namespace
}  // namespace orvml_io_tests
