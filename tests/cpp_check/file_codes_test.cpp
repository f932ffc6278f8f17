// What is found in files: each code has one that makes it come, and it alone.
#include "cpp_check/meshes.h"
#include "files/exchange_file_fixture.h"
#include "hostile/valid_files.h"

#include <climits>
#include <filesystem>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Code;

constexpr const char* kIndices = "/OrvInput/Elements/connectivities";

/// A file with one tetrahedron in its input document.
void makeFile(const char* path, const std::string& version = "1.4") {
  RawFile file = RawFile::createMarked(path, version);
  file.documentGroup("/OrvInput", 3);
  file.group("/OrvInput/Nodes");
  file.doubleTable("/OrvInput/Nodes/coordinates", 4, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  file.elements("/OrvInput/Elements", {1}, {TETRAHEDRA}, {4}, {0, 1, 2, 3});
  if (version == "1.4") {
    file.parameterTable("/OrvInput/parameters", {{"growth", 1.5}});
  }
  file.close();
}

void addVectors(RawFile& file) { file.group("/OrvInput/ParametersVector"); }

/// Replaces the node indices by other numbers.
void replaceIndices(RawFile& file, const std::vector<int>& indices) {
  file.remove(kIndices);
  file.intVector(kIndices, indices);
}

struct FileRow {
  const char* name;
  void (*change)(RawFile& file);
  std::string_view code;
  std::string sentence;
  std::vector<orvml::CheckPlace> places = {};

  friend std::ostream& operator<<(std::ostream& stream, const FileRow& row) {
    return stream << row.name;
  }
};

void linkToItself(RawFile& file, const std::string& path) {
  // The file itself is another one by its name.
  std::string name(1024, '\0');
  name.resize(static_cast<std::size_t>(H5Fget_name(file.id(), name.data(), name.size())));
  ASSERT_GE(H5Lcreate_external(name.c_str(), "/OrvInput", file.id(), path.c_str(), H5P_DEFAULT,
                               H5P_DEFAULT),
            0);
}

const FileRow kRows[] = {
    {"ObjectMissing", [](RawFile& file) { file.remove(kIndices); }, text(Code::objectMissing),
     "/OrvInput/Elements/connectivities is missing"},
    {"ObjectUnopenable",
     [](RawFile& file) {
       file.remove(kIndices);
       file.group(kIndices);
     },
     text(Code::objectUnopenable), "/OrvInput/Elements/connectivities cannot be opened"},
    {"ValuesInAnotherFile",
     [](RawFile& file) {
       file.remove(kIndices);
       linkToItself(file, kIndices);
     },
     text(Code::objectInAnotherFile),
     "/OrvInput/Elements/connectivities is a link to another file"},
    {"ForeignLinkToAnotherFile", [](RawFile& file) { linkToItself(file, "/elsewhere"); },
     text(Code::objectInAnotherFile), "/elsewhere is a link to another file"},
    {"PathTooLong",
     [](RawFile& file) {
       addVectors(file);
       file.intVector("/OrvInput/ParametersVector/" + std::string(1010, 'n'), {1});
     },
     text(Code::objectPathTooLong),
     "/OrvInput/ParametersVector/" + std::string(1010, 'n') + " has a path that is too long"},
    {"WrongShape",
     [](RawFile& file) {
       addVectors(file);
       file.doubleTable("/OrvInput/ParametersVector/v", 1, 2, {1, 2});
     },
     text(Code::objectWrongShape), "/OrvInput/ParametersVector/v is no vector"},
    {"WrongType",
     [](RawFile& file) {
       file.remove("/OrvInput/parameters");
       file.doubleVector("/OrvInput/parameters", {1, 2});
     },
     text(Code::objectWrongType), "/OrvInput/parameters is no table of names and values"},
    {"Unreadable",
     [](RawFile& file) {
       addVectors(file);
       unreadableDataset(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {2});
     },
     text(Code::objectUnreadable), "/OrvInput/ParametersVector/v cannot be read"},
    {"UnreadableWideIntegers",
     [](RawFile& file) {
       addVectors(file);
       unreadableDataset(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_LLONG, {2});
     },
     text(Code::objectUnreadable), "/OrvInput/ParametersVector/v cannot be read"},
    {"ForeignGroup", [](RawFile& file) { file.group("/Extras"); }, text(Code::objectForeign),
     "/Extras does not belong to the format"},
    {"ForeignDataset", [](RawFile& file) { file.intVector("/OrvInput/Elements/colours", {1}); },
     text(Code::objectForeign), "/OrvInput/Elements/colours does not belong to the format"},
    {"ForeignGroupAmongAttributes",
     [](RawFile& file) {
       addVectors(file);
       file.group("/OrvInput/ParametersVector/notes");
     },
     text(Code::objectForeign), "/OrvInput/ParametersVector/notes is no dataset"},
    {"GroupOfAnOldLayout", [](RawFile& file) { file.group("/OrvInput/Nodes/UserMarkers"); },
     text(Code::objectForeign), "/OrvInput/Nodes/UserMarkers does not belong to the format"},
    {"TooManyValues",
     [](RawFile& file) {
       replaceIndices(file, {0, 1, 2, 3, 0});
     },
     text(Code::valuesTooMany),
     "/OrvInput/Elements/connectivities has 5 entries, the groups need 4"},
    {"TooFewValues",
     [](RawFile& file) {
       replaceIndices(file, {0, 1, 2});
     },
     text(Code::valuesTooFew),
     "/OrvInput/Elements/connectivities has 3 entries, the groups need 4"},
    {"NegativeCount",
     [](RawFile& file) {
       replaceInts(file, "/OrvInput/Elements/number_of_elements_by_type", {-1});
     },
     text(Code::valuesNegativeOrTooLarge),
     "/OrvInput/Elements/number_of_elements_by_type has a negative count, or counts that 32 bits "
     "cannot add"},
    {"DimensionFour", [](RawFile& file) { replaceInts(file, "/OrvInput/dimension", {4}); },
     text(Code::valueNotAllowed), "/OrvInput/dimension is 4, a mesh has dimension 2 or 3"},
    {"OutOfProportion",
     [](RawFile& file) {
       addVectors(file);
       file.dataset("/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE, {hsize_t{1} << 30U},
                    nullptr);
     },
     text(Code::memoryOutOfProportion),
     "/OrvInput/ParametersVector/v would take memory out of proportion to the file"},
    {"ClampedIntegers",
     [](RawFile& file) {
       addVectors(file);
       const long long values[] = {1, INT_MAX, INT_MIN, 2147483648LL, -2147483649LL};
       file.dataset("/OrvInput/ParametersVector/ids", H5T_NATIVE_LLONG, {5}, values);
     },
     text(orvml::CheckCode::integersClamped),
     "/OrvInput/ParametersVector/ids has 2 values that 32 bits do not hold, read as the nearest "
     "that they do",
     {{orvml::PlaceKind::value, 3}, {orvml::PlaceKind::value, 4}}},
    {"ClampedUnsignedIntegers",
     [](RawFile& file) {
       addVectors(file);
       std::vector<unsigned> values(200000, 7);
       values[150000] = 4000000000U;
       file.dataset("/OrvInput/ParametersVector/ids", H5T_NATIVE_UINT, {200000, 1}, values.data());
     },
     text(orvml::CheckCode::integersClamped),
     "/OrvInput/ParametersVector/ids has 1 value that 32 bits do not hold, read as the nearest "
     "that they do",
     {{orvml::PlaceKind::value, 150000}}}};

class CodesOfFiles : public ::testing::TestWithParam<FileRow> {};

TEST_P(CodesOfFiles, ComeAlone) {
  const TempFile temp;
  makeFile(temp.path());
  RawFile file = RawFile::openForWriting(temp.path());
  GetParam().change(file);
  file.close();
  const OpenIds ids;

  const orvml::CheckReport report = orvml::check(std::filesystem::path(temp.path()));

  EXPECT_EQ(ids.opened(), IdCounts());
  ASSERT_EQ(codesOf(report), std::vector<std::string>{std::string(GetParam().code)})
      << toldOf(report);
  EXPECT_EQ(report.findings[0].sentence, GetParam().sentence);
  EXPECT_EQ(report.findings[0].places, GetParam().places);
}

INSTANTIATE_TEST_SUITE_P(Files, CodesOfFiles, ::testing::ValuesIn(kRows), RowName());

TEST(CheckedFiles, HaveNoFindingsWhenTheyAreSound) {
  const TempFile temp;
  makeFile(temp.path());

  EXPECT_EQ(toldOf(orvml::check(std::filesystem::path(temp.path()))), "");
}

TEST(CheckedFiles, AreToldWhenTheirLayoutIsOld) {
  const TempFile temp;
  makeFile(temp.path(), "1.3");

  const orvml::CheckReport report = orvml::check(std::filesystem::path(temp.path()));

  ASSERT_EQ(codesOf(report), std::vector<std::string>{"orvml.file.legacy-layout"})
      << toldOf(report);
  EXPECT_EQ(report.findings[0].sentence,
            "/ORVMESHLIBRARY_FORMAT_VERSION is 1.3, so parameters and attributes are known by "
            "their positions");
}

TEST(CheckedFiles, KnowEverythingThatOldLayoutsHold) {
  for (const ValidFile& valid : validFiles()) {
    const TempFile temp;
    valid.make(temp.path());

    const orvml::CheckReport report = orvml::check(std::filesystem::path(temp.path()));

    for (const orvml::CheckFinding& finding : report.findings) {
      EXPECT_NE(finding.code, text(Code::objectForeign)) << valid.name << ": " << finding.sentence;
    }
  }
}

TEST(CheckedFiles, TellOfBothDocumentsWithTheirPaths) {
  TestMesh mesh = cellOf(formOf(orvml::Shape::tetrahedron, 4));
  mesh.x.insert(mesh.x.end(), {9, 9, 9});
  mesh.parameters = {{"growth", 1.5}};
  const TempFile temp;
  orvml::save(temp.path(), mesh.view(), mesh.outputView());

  const orvml::CheckReport report =
      orvml::check(std::filesystem::path(temp.path()), {.quality = true});

  ASSERT_EQ(report.findings.size(), 2U) << toldOf(report);
  EXPECT_EQ(report.findings[0].object, "/OrvInput/Nodes");
  EXPECT_EQ(report.findings[1].object, "/OrvOutput/Nodes");
  ASSERT_EQ(report.quality.size(), 2U);
  EXPECT_EQ(report.quality[0].kind, orvml::Kind::input);
  EXPECT_EQ(report.quality[1].kind, orvml::Kind::output);
}

TEST(CheckedFiles, ThatAreNoneAreThrown) {
  EXPECT_THROW((void)orvml::check(std::filesystem::path("/nowhere/part.h5")), orvml::Error);
}

}  // namespace
}  // namespace orvml_io_tests
