// Files of every older format, written in the present one with nothing lost.
#include "cpp/content.h"
#include "cpp/errors.h"
#include "cpp_rescue/small_file.h"
#include "files/exchange_file_fixture.h"
#include "hostile/valid_files.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Code;

void addPositions(RawFile& file, const std::string& group, int maxId) {
  file.group(group);
  file.intAttributeValue(group, "MAX_ID", maxId);
}

/// A document with everything that positional layouts hold, each value once.
void addLegacyDocument(RawFile& file, const std::string& group) {
  file.documentGroup(group, 3);
  file.group(group + "/Nodes");
  file.doubleTable(group + "/Nodes/coordinates", 5, 3,
                   {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  file.elements(group + "/Faces", {3}, {TRIANGLE}, {3}, {0, 2, 1, 0, 1, 3, 0, 3, 2});
  file.elements(group + "/Elements", {2}, {TETRAHEDRA}, {4}, {0, 1, 2, 3, 1, 2, 3, 4});
  addPositions(file, group + "/Nodes/FunctionAttributes", 1);
  file.doubleVector(group + "/Nodes/FunctionAttributes/0", {0.5, 1.5, 2.5, 3.5, 4.5});
  addPositions(file, group + "/Faces/FunctionMarkers", 4);
  file.intVector(group + "/Faces/FunctionMarkers/1", {11, 12, 13});
  file.intVector(group + "/Faces/FunctionMarkers/3", {31, 32, 33});
  addPositions(file, group + "/Faces/UserMarkers", 1);
  file.intVector(group + "/Faces/UserMarkers/0", {7, 8, 9});
  file.doubleVector(group + "/parameters", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 2, 0.1, 0.2, 14});
  addPositions(file, group + "/GenericMarkers", 1);
  file.intVector(group + "/GenericMarkers/0", {1, 2, 3});
}

void makeOldFile(const char* path, const std::string& version) {
  RawFile file = RawFile::createMarked(path, version);
  file.textAttribute("/", "ORVML_IO_CREATOR", "tests");
  file.textAttribute("/", "ORVML_MODULE_NAME", "ORVML_OCTREE_MESHER");
  file.textAttribute("/", "ORVML_MODULE_FORMAT_VERSION", "2.1");
  addLegacyDocument(file, "/OrvInput");
  addLegacyDocument(file, "/OrvOutput");
  file.close();
}

class OldFiles : public ::testing::TestWithParam<ValidFile> {
 protected:
  OldFiles() { makeOldFile(old_.path(), GetParam().version); }
  TempFile old_;
  TempFile present_;
};

TEST_P(OldFiles, LoseNothing) {
  const orvml::UpgradeReport report = orvml::upgrade(old_.path(), present_.path());

  EXPECT_EQ(report.version, GetParam().version);
  const orvml::Loaded before = orvml::load(old_.path());
  const orvml::Loaded after = orvml::load(present_.path());
  EXPECT_EQ(contentOf(after), contentOf(before));
  EXPECT_EQ(fingerprint(after.input->view()), fingerprint(before.input->view()));
  EXPECT_TRUE(diff(before.output->view(), after.output->view()).areSame());
}

TEST_P(OldFiles, BecomeFilesOfThePresentFormat) {
  (void)orvml::upgrade(old_.path(), present_.path());

  const RawFile file = RawFile::open(present_.path());
  EXPECT_EQ(file.attributeBytes("/", "ORVMESHLIBRARY_FORMAT_VERSION"), std::string("1.4\0", 4));
  EXPECT_EQ(file.ints("/OrvInput/Faces/Attributes/function-marker-3"),
            (std::vector<int>{31, 32, 33}));
  EXPECT_EQ(errorsOf(present_.path()), "");
}

INSTANTIATE_TEST_SUITE_P(Upgrade, OldFiles,
                         ::testing::ValuesIn(validFiles().begin() + 1, validFiles().end()),
                         RowName());

TEST(Upgrade, TellsWhatItConverts) {
  const TempFile old;
  const TempFile present;
  RawFile file = RawFile::createMarked(old.path(), "1.3");
  file.textAttribute("/", "ORVML_MODULE_NAME", "OrvML_OCTREE_MESHER");
  addLegacyDocument(file, "/OrvInput");
  file.close();

  EXPECT_EQ(toldOf(orvml::upgrade(old.path(), present.path()).changed),
            "/ORVML_MODULE_NAME has an old spelling, and is now ORVML_OCTREE_MESHER\n"
            "/OrvInput/Faces/FunctionMarkers/1 is now "
            "/OrvInput/Faces/Attributes/ORVML_OCTREEMESHER_FACES_INTERFACES_1\n"
            "/OrvInput/Faces/FunctionMarkers/3 is now "
            "/OrvInput/Faces/Attributes/function-marker-3\n"
            "/OrvInput/Faces/UserMarkers/0 is now "
            "/OrvInput/Faces/Attributes/ORVML_OCTREEMESHER_FACES_SURFACE_ID\n"
            "/OrvInput/GenericMarkers/0 is now /OrvInput/ParametersVector/0\n"
            "/OrvInput/Nodes/FunctionAttributes/0 is now "
            "/OrvInput/Nodes/Attributes/ORVML_OCTREEMESHER_NODES_SIZES\n"
            "/OrvInput/parameters is now a table of names and values\n");
}

/// The format has no name for them, and a file no place for one without.
TEST(Upgrade, NamesTheAttributesOfElementsThatHaveAnEmptyName) {
  const TempFile old;
  const TempFile present;
  RawFile file = RawFile::createMarked(old.path(), "1.3");
  addLegacyDocument(file, "/OrvInput");
  addPositions(file, "/OrvInput/Elements/UserMarkers", 1);
  file.intVector("/OrvInput/Elements/UserMarkers/0", {5, 6});
  addPositions(file, "/OrvInput/Elements/FunctionAttributes", 1);
  file.doubleVector("/OrvInput/Elements/FunctionAttributes/0", {0.25, 0.75});
  file.close();

  (void)orvml::upgrade(old.path(), present.path());

  const orvml::Input upgraded = orvml::loadInput(present.path());
  const orvml::Attributes attributes = upgraded.elements().attributes();
  ASSERT_EQ(attributes.size(), 2U);
  EXPECT_EQ(attributes.at("function-attribute-0").doubles()[1], 0.75);
  EXPECT_EQ(attributes.at("user-marker-0").ints()[1], 6);
  EXPECT_TRUE(attributes.at("user-marker-0").mustBeTransmitted);
}

TEST(Upgrade, WritesAFileOfThePresentFormatAgain) {
  const TempFile old;
  const TempFile present;
  makeCurrentFile(old.path());

  const orvml::UpgradeReport report = orvml::upgrade(old.path(), present.path());

  EXPECT_EQ(report.version, "1.4");
  EXPECT_EQ(toldOf(report.changed), "");
  EXPECT_EQ(contentOf(orvml::load(present.path())), contentOf(orvml::load(old.path())));
}

/// A change of an old file, and what would be lost by it.
struct UpgradeLossRow {
  const char* name;
  void (*change)(RawFile& file);
  std::string sentence;

  friend std::ostream& operator<<(std::ostream& stream, const UpgradeLossRow& row) {
    return stream << row.name;
  }
};

const UpgradeLossRow kUpgradeLosses[] = {
    {"AForeignObject", [](RawFile& file) { file.group("/Extras"); },
     "/Extras does not belong to the format"},
    {"TwoVectorsOfOneName",
     [](RawFile& file) {
       addPositions(file, "/OrvInput/GenericAttributes", 2);
       file.doubleVector("/OrvInput/GenericAttributes/1", {0.5});
       addPositions(file, "/OrvOutput/GenericAttributes", 1);
       file.removeAttribute("/", "ORVML_MODULE_NAME");
       file.textAttribute("/", "ORVML_MODULE_NAME", "another");
       file.doubleVector("/OrvOutput/GenericAttributes/0", {0.5});
     },
     "/OrvOutput/GenericMarkers/0 has values of the name 0, as /OrvOutput/GenericAttributes/0 "
     "has"},
    {"AParameterThatIsAlsoAVector",
     [](RawFile& file) {
       addPositions(file, "/OrvInput/GenericAttributes", 1);
       file.doubleVector("/OrvInput/GenericAttributes/0", {0.5});
     },
     "/OrvInput/parameters has values of the name ORVML_OCTREEMESHER_VOLUMES_SIZES, as "
     "/OrvInput/GenericAttributes/0 has"},
    {"AVectorBehindMaxId", [](RawFile& file) { file.intVector("/OrvInput/GenericMarkers/1", {1}); },
     "/OrvInput/GenericMarkers/1 lies behind the MAX_ID of its group"},
    {"ParametersWithoutAMeaning",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.doubleVector("/OrvInput/parameters", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 11, 12, 13});
     },
     "/OrvInput/parameters has 2 values that have no meaning"},
    {"AnAttributeWithTooFewValues",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/Faces/UserMarkers/0", {7, 8});
     },
     "/OrvInput/Faces/UserMarkers/0 has fewer values than it should, or values that were never "
     "stored"}};

class LossyUpgrades : public ::testing::TestWithParam<UpgradeLossRow> {};

TEST_P(LossyUpgrades, AreRefused) {
  const TempFile old;
  const TempFile present;
  makeOldFile(old.path(), "1.2");
  RawFile file = RawFile::openForWriting(old.path());
  GetParam().change(file);
  file.close();

  const orvml::Error error = errorOf([&] { (void)orvml::upgrade(old.path(), present.path()); });

  EXPECT_EQ(text(error.code()), text(Code::upgradeLoses));
  EXPECT_EQ(error.sentence(),
            "would lose something: " + GetParam().sentence + "; a rescue keeps the rest");
  EXPECT_FALSE(std::filesystem::exists(present.path()));
}

TEST_P(LossyUpgrades, AreRescuedWithAReport) {
  const TempFile old;
  const TempFile present;
  makeOldFile(old.path(), "1.2");
  RawFile file = RawFile::openForWriting(old.path());
  GetParam().change(file);
  file.close();

  const orvml::RescueReport report = orvml::rescue(old.path(), present.path());

  EXPECT_NE(toldOf(report).find(GetParam().sentence), std::string::npos) << toldOf(report);
  EXPECT_EQ(errorsOf(present.path()), "");
}

INSTANTIATE_TEST_SUITE_P(Upgrade, LossyUpgrades, ::testing::ValuesIn(kUpgradeLosses), RowName());

}  // namespace
}  // namespace orvml_io_tests
