// Files that others have made, and objects in another form than the format says: what is kept all
// the same, and what is told of it.
#include "cpp/content.h"
#include "cpp_rescue/small_file.h"
#include "files/exchange_file_fixture.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orvml_io_tests {
namespace {

constexpr const char* kVersion = "ORVMESHLIBRARY_FORMAT_VERSION";

/// A change of the small file that loses nothing, and what is told of it.
struct FormRow {
  const char* name;
  void (*change)(RawFile& file);
  std::string changed;

  friend std::ostream& operator<<(std::ostream& stream, const FormRow& row) {
    return stream << row.name;
  }
};

const FormRow kForms[] = {
    {"TheFormatItself", [](RawFile&) {}, ""},
    {"NoMarker", [](RawFile& file) { file.removeAttribute("/", "FORMAT"); },
     "/FORMAT is missing, or not the marker of exchange files\n"},
    {"AnotherMarker",
     [](RawFile& file) {
       file.removeAttribute("/", "FORMAT");
       file.textAttribute("/", "FORMAT", "ORVMESHLIBRAR");
     },
     "/FORMAT is missing, or not the marker of exchange files\n"},
    {"NoVersion", [](RawFile& file) { file.removeAttribute("/", kVersion); },
     "/ORVMESHLIBRARY_FORMAT_VERSION is missing, and the objects have names as in the present "
     "format\n"},
    {"AnOldVersion",
     [](RawFile& file) {
       file.removeAttribute("/", kVersion);
       file.textAttribute("/", kVersion, "0.4");
     },
     "/ORVMESHLIBRARY_FORMAT_VERSION is 0.4, and the objects have names as in the present "
     "format\n"},
    {"NoDimension", [](RawFile& file) { file.remove("/OrvInput/dimension"); },
     "/OrvInput/dimension is the number of columns of the coordinates, 3\n"},
    {"ADimensionThatIsNone", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {77}); },
     "/OrvInput/dimension is the number of columns of the coordinates, 3\n"},
    {"ADimensionThatTheCoordinatesContradict",
     [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {2}); },
     "/OrvInput/dimension is the number of columns of the coordinates, 3\n"},
    {"NodeIndicesAsDoubles",
     [](RawFile& file) {
       file.remove("/OrvInput/Elements/connectivities");
       file.doubleVector("/OrvInput/Elements/connectivities", {0, 1, 2, 3, 1, 2, 3, 4});
     },
     ""},
    {"NodeIndicesInRows",
     [](RawFile& file) {
       const int indices[] = {0, 1, 2, 3, 1, 2, 3, 4};
       file.remove("/OrvInput/Elements/connectivities");
       file.dataset("/OrvInput/Elements/connectivities", H5T_NATIVE_INT, {2, 4}, indices);
     },
     ""}};

class ForeignForms : public ::testing::TestWithParam<FormRow> {
 protected:
  ForeignForms() {
    makeSmallFile(small_.path());
    makeSmallFile(foreign_.path());
    RawFile file = RawFile::openForWriting(foreign_.path());
    GetParam().change(file);
    file.close();
  }
  TempFile small_;
  TempFile foreign_;
  TempFile sound_;
};

TEST_P(ForeignForms, LoseNothing) {
  const orvml::RescueReport report = orvml::rescue(foreign_.path(), sound_.path());

  EXPECT_EQ(toldOf(report), "");
  EXPECT_EQ(toldOf(report.changed), GetParam().changed);
  EXPECT_EQ(contentOf(orvml::load(sound_.path())), contentOf(orvml::load(small_.path())));
}

INSTANTIATE_TEST_SUITE_P(Rescue, ForeignForms, ::testing::ValuesIn(kForms), RowName());

TEST(ForeignObjects, WhoseNodeIndicesAreFractionsAreLost) {
  const TempFile foreign;
  const TempFile sound;
  makeSmallFile(foreign.path());
  RawFile file = RawFile::openForWriting(foreign.path());
  file.remove("/OrvInput/Elements/connectivities");
  file.doubleVector("/OrvInput/Elements/connectivities", {0, 1, 2, 3, 1, 2, 3, 3.5});
  file.close();

  const orvml::RescueReport report = orvml::rescue(foreign.path(), sound.path());

  EXPECT_NE(toldOf(report).find("orvml.object.wrong-type: /OrvInput/Elements/connectivities holds "
                                "no integers\n"),
            std::string::npos)
      << toldOf(report);
  EXPECT_EQ(countOf(sound.path(), orvml::Entity::elements), 0);
}

TEST(ForeignObjects, InAnotherFileAreLost) {
  const TempFile foreign;
  const TempFile other;
  const TempFile sound;
  makeSmallFile(foreign.path());
  makeSmallFile(other.path());
  RawFile file = RawFile::openForWriting(foreign.path());
  file.remove("/OrvInput/Faces");
  H5Lcreate_external(other.path(), "/OrvInput/Faces", file.id(), "/OrvInput/Faces", H5P_DEFAULT,
                     H5P_DEFAULT);
  file.close();

  const orvml::RescueReport report = orvml::rescue(foreign.path(), sound.path());

  EXPECT_EQ(toldOf(report), "orvml.object.other-file: /OrvInput/Faces is a link to another file\n");
  EXPECT_EQ(countOf(sound.path(), orvml::Entity::faces), 0);
}

TEST(OneOfTwoDocuments, IsRescuedWithoutTheOther) {
  const TempFile damaged;
  const TempFile sound;
  makeSmallFile(damaged.path());
  RawFile file = RawFile::openForWriting(damaged.path());
  file.group("/OrvOutput");
  file.parameterTable("/OrvOutput/parameters", {{"seconds", 1.0}});
  file.close();

  const orvml::RescueReport report = orvml::rescue(damaged.path(), sound.path());

  EXPECT_EQ(toldOf(report),
            "orvml.rescue.depends-on-lost: /OrvOutput has no dimension, without which it is no "
            "document\n"
            "orvml.object.missing: /OrvOutput/dimension is missing\n");
  EXPECT_TRUE(orvml::load(sound.path()).input.has_value());
  EXPECT_FALSE(orvml::load(sound.path()).output.has_value());
}

}  // namespace
}  // namespace orvml_io_tests
