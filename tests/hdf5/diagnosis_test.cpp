// What a reader says when it is asked: of each object that it did not take as it was, the path, the
// kind of trouble, one sentence and HDF5's reason. Asking changes no result.
#include "hdf5/diagnosis.h"

#include "files/exchange_file_fixture.h"
#include "hdf5/exchange_file.h"
#include "hdf5/silence.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <memory>

namespace orvml_io_tests {
namespace {

using orvml_io::Diagnosis;
using orvml_io::Finding;
using orvml_io::OrvInput;
using orvml_io::SourceFile;
using orvml_io::Trouble;

/// What a read came to.
struct DiagnosedRead {
  int status = 0;
  std::unique_ptr<OrvInput> document;
};

class DiagnosisTest : public ExchangeFileTest {
 protected:
  /// Reads the input document of a file that is closed, and tells the diagnosis if there is one.
  DiagnosedRead diagnose(Diagnosis* diagnosis) {
    const orvml_io::Silence silence;
    const orvml_io::FileId opened = orvml_io::OpenFileForReading(path());
    SourceFile source(opened.get(), diagnosis);
    DiagnosedRead read;
    read.status = orvml_io::ReadOrvInput(source, read.document);
    return read;
  }
};

/// Something in a file, and all that is said of it.
struct TroubleRow {
  const char* name;
  void (*make)(RawFile& file);
  int status;
  Trouble trouble;
  std::string path;
  std::string rest;    // of the sentence, which begins with the path
  bool hasHdf5Reason;  // whether HDF5 itself failed at it

  friend std::ostream& operator<<(std::ostream& stream, const TroubleRow& row) {
    return stream << row.name;
  }
};

class TroubleTest : public DiagnosisTest, public ::testing::WithParamInterface<TroubleRow> {
 protected:
  TroubleTest() {
    RawFile file = smallInput();
    GetParam().make(file);
  }
};

TEST_P(TroubleTest, IsReportedOnceWithItsPathAndReason) {
  Diagnosis diagnosis;

  const DiagnosedRead read = diagnose(&diagnosis);

  EXPECT_EQ(read.status, GetParam().status);
  ASSERT_EQ(diagnosis.findings().size(), 1U);
  const Finding& finding = diagnosis.findings().front();
  EXPECT_EQ(finding.trouble, GetParam().trouble);
  EXPECT_EQ(finding.path, GetParam().path);
  EXPECT_EQ(finding.sentence, GetParam().path + " " + GetParam().rest);
  EXPECT_EQ(!finding.hdf5Reason.empty(), GetParam().hasHdf5Reason) << finding.hdf5Reason;
}

TEST_P(TroubleTest, IsTheSameTroubleWhenNobodyAsks) {
  Diagnosis diagnosis;
  const DiagnosedRead asked = diagnose(&diagnosis);

  const DiagnosedRead read = diagnose(nullptr);

  EXPECT_EQ(read.status, asked.status);
  ASSERT_EQ(read.document != nullptr, asked.document != nullptr);
  if (read.document != nullptr) {
    EXPECT_TRUE(read.document->IsEqual(asked.document.get()));
    EXPECT_TRUE(asked.document->IsEqual(read.document.get()));
  }
}

void linkToOtherFile(RawFile& file, const char* path) {
  // The file itself is another one by its name.
  std::string name(1024, '\0');
  name.resize(static_cast<std::size_t>(H5Fget_name(file.id(), name.data(), name.size())));
  ASSERT_GE(
      H5Lcreate_external(name.c_str(), "/OrvInput", file.id(), path, H5P_DEFAULT, H5P_DEFAULT), 0);
}

void addExternalVector(RawFile& file, const char* path) {
  const hsize_t length = 2;
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, "values.raw", 0, H5F_UNLIMITED);
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t dataset =
      H5Dcreate2(file.id(), path, H5T_NATIVE_INT, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
}

/// Makes five faces that need 20 node indices, and so many of them.
void replaceFaces(RawFile& file, std::size_t connectivities) {
  file.remove("/OrvInput/Faces");
  file.elements("/OrvInput/Faces", {5}, {QUADRILATERAL}, {4}, std::vector<int>(connectivities));
}

std::string longName() { return std::string(1010, 'n'); }

const TroubleRow kTroubles[] = {
    {"DocumentMissing", [](RawFile& file) { file.remove("/OrvInput"); }, 1, Trouble::missing,
     "/OrvInput", "is missing", true},
    {"DimensionMissing", [](RawFile& file) { file.remove("/OrvInput/dimension"); }, 1,
     Trouble::missing, "/OrvInput/dimension", "is missing", true},
    {"DimensionFour", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {4}); }, 1,
     Trouble::badValue, "/OrvInput/dimension", "is 4, a mesh has dimension 2 or 3", false},
    {"TwoDimensions",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/dimension", {3, 3});
     },
     1, Trouble::wrongShape, "/OrvInput/dimension", "is not one number", false},
    {"DimensionOfText",
     [](RawFile& file) { replaceDataset(file, "/OrvInput/dimension", H5T_C_S1, {1}, "3"); }, 1,
     Trouble::unreadable, "/OrvInput/dimension", "cannot be read", true},
    {"NodesMissing", [](RawFile& file) { file.remove("/OrvInput/Nodes"); }, 1, Trouble::missing,
     "/OrvInput/Nodes", "is missing", true},
    {"NodesThatAreADataset",
     [](RawFile& file) {
       file.remove("/OrvInput/Nodes");
       file.intVector("/OrvInput/Nodes", {1});
     },
     1, Trouble::unopenable, "/OrvInput/Nodes", "cannot be opened", true},
    {"CoordinatesMissing", [](RawFile& file) { file.remove("/OrvInput/Nodes/coordinates"); }, 0,
     Trouble::missing, "/OrvInput/Nodes/coordinates", "is missing", true},
    {"CoordinatesOfTexts",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_C_S1, {3, 3}, "123456789");
     },
     1, Trouble::unreadable, "/OrvInput/Nodes/coordinates", "cannot be read", true},
    // HDF5 failed to open the attributes, which need not be there, just before.
    {"CoordinatesOfTwoColumns",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {3, 2}, nullptr);
     },
     0, Trouble::wrongShape, "/OrvInput/Nodes/coordinates",
     "has 6 values, 3 nodes of dimension 3 need 9", false},
    {"CoordinatesOutOfProportion",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE,
                      {3, hsize_t{1} << 28U}, nullptr);
     },
     1, Trouble::overBudget, "/OrvInput/Nodes/coordinates",
     "would take memory out of proportion to the file", false},
    {"CoordinatesBeyond32Bits",
     [](RawFile& file) {
       replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE,
                      {3, hsize_t{1} << 30U}, nullptr);
     },
     1, Trouble::wrongShape, "/OrvInput/Nodes/coordinates",
     "has no rows, or more values than 32 bits count", false},
    {"ConnectivitiesTooShort", [](RawFile& file) { replaceFaces(file, 17); }, 0, Trouble::tooShort,
     "/OrvInput/Faces/connectivities", "has 17 entries, the groups need 20", false},
    {"ConnectivitiesTooLong", [](RawFile& file) { replaceFaces(file, 21); }, 1, Trouble::tooLong,
     "/OrvInput/Faces/connectivities", "has 21 entries, the groups need 20", false},
    {"ConnectivitiesMissing", [](RawFile& file) { file.remove("/OrvInput/Faces/connectivities"); },
     1, Trouble::missing, "/OrvInput/Faces/connectivities", "is missing", true},
    {"NegativeCells",
     [](RawFile& file) { replaceInts(file, "/OrvInput/Faces/number_of_elements_by_type", {-1}); },
     1, Trouble::badCount, "/OrvInput/Faces/number_of_elements_by_type",
     "has a negative count, or counts that 32 bits cannot add", false},
    {"NegativeNodes",
     [](RawFile& file) { replaceInts(file, "/OrvInput/Faces/number_of_nodes_by_element", {-3}); },
     1, Trouble::badCount, "/OrvInput/Faces/number_of_nodes_by_element", "has a negative count",
     false},
    {"TableMissing", [](RawFile& file) { file.remove("/OrvInput/parameters"); }, 1,
     Trouble::missing, "/OrvInput/parameters", "is missing", true},
    {"TableOfNumbers",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.doubleVector("/OrvInput/parameters", {0.5});
     },
     1, Trouble::wrongType, "/OrvInput/parameters", "is no table of names and values", false},
    {"VectorsInAnotherFile",
     [](RawFile& file) { linkToOtherFile(file, "/OrvInput/ParametersVector"); }, 1,
     Trouble::otherFile, "/OrvInput/ParametersVector", "is a link to another file", true},
    {"ValuesInAnotherFile",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       addExternalVector(file, "/OrvInput/ParametersVector/v");
     },
     1, Trouble::otherFile, "/OrvInput/ParametersVector/v", "has its values in another file",
     false},
    {"GroupAmongVectors",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.group("/OrvInput/ParametersVector/g");
     },
     0, Trouble::foreign, "/OrvInput/ParametersVector/g", "is no dataset", false},
    {"TableOfVectors",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.doubleTable("/OrvInput/ParametersVector/v", 1, 2, {1, 2});
     },
     1, Trouble::wrongShape, "/OrvInput/ParametersVector/v", "is no vector", false},
    {"NameTooLong",
     [](RawFile& file) {
       file.group("/OrvInput/ParametersVector");
       file.intVector("/OrvInput/ParametersVector/" + longName(), {1});
     },
     1, Trouble::longPath, "/OrvInput/ParametersVector/" + longName(),
     "has a path that is too long", false}};

INSTANTIATE_TEST_SUITE_P(Each, TroubleTest, ::testing::ValuesIn(kTroubles), RowName());

class SoundDocument : public DiagnosisTest {};

TEST_F(SoundDocument, IsNotReported) {
  const BuiltDocument built = fullDocument();
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), built.handle()), 0);
  Diagnosis diagnosis;

  EXPECT_EQ(diagnose(&diagnosis).status, 0);

  EXPECT_EQ(diagnosis.findings().size(), 0U);
}

// Edges, volume elements, attributes and vector parameters may all be absent.
TEST_F(SoundDocument, IsNotReportedForWhatItNeedNotHave) {
  smallInput().close();
  Diagnosis diagnosis;

  EXPECT_EQ(diagnose(&diagnosis).status, 0);

  EXPECT_EQ(diagnosis.findings().size(), 0U);
}

class SeveralTroubles : public DiagnosisTest {};

TEST_F(SeveralTroubles, AreReportedInTheOrderOfTheRead) {
  {
    RawFile file = smallInput();
    file.remove("/OrvInput/Nodes");
    file.remove("/OrvInput/parameters");
    replaceFaces(file, 17);
  }
  Diagnosis diagnosis;

  EXPECT_EQ(diagnose(&diagnosis).status, 1);

  std::vector<std::string> paths;
  for (const Finding& finding : diagnosis.findings()) {
    paths.push_back(finding.path);
  }
  EXPECT_EQ(paths, (std::vector<std::string>{"/OrvInput/Nodes", "/OrvInput/Faces/connectivities",
                                             "/OrvInput/parameters"}));
}

}  // namespace
}  // namespace orvml_io_tests
