// Files that are none that can be read: every way to open one says so alike, and prints nothing.
#include <orvml/orvml.hpp>

#include "cpp/told.h"
#include "files/child_process.h"
#include "processes/exchange_folder.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/row_name.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <tuple>

namespace orvml_io_tests {
namespace {

/// A folder with the path of a file that a row of the table makes, or does not make.
struct Place {
  ExchangeFolder folder;
  std::string path = folder.path("f.h5");
  std::unique_ptr<WritingProcess> writer;
  std::function<bool()> prepareChild;  // empty: nothing has to be done in a child process

  void makeSound() const {
    const BuiltDocument input = fullDocument();
    const BuiltDocument output = documentWithMixedShapes();
    ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path.c_str(), input.handle(), output.handle()), 0);
  }
  void makeText(const std::string& text) const {
    std::ofstream(path, std::ios::binary) << text << std::flush;
  }
  void makeSoundPart(std::size_t first, std::size_t bytes) const {
    makeSound();
    makeText(bytesIn(path).substr(first, bytes));
  }
  void asOrdinaryUser() { prepareChild = becomeOrdinaryUser; }
};

/// How a file is made, and what is said of it.
struct FileRow {
  const char* name;
  void (*make)(Place& place);
  std::string code;
  std::string sentence;
  bool hasHdf5Reason = false;  // whether HDF5 was the one to fail

  friend std::ostream& operator<<(std::ostream& stream, const FileRow& row) {
    return stream << row.name;
  }
};

const FileRow kFiles[] = {
    {"ThatIsNotThere", [](Place&) {}, "orvml.file.not-found", "there is no such file"},
    {"InAFolderThatIsNotThere", [](Place& place) { place.path = place.folder.path("no/f.h5"); },
     "orvml.file.not-found", "there is no such file"},
    {"BelowAFile",
     [](Place& place) {
       place.makeText("a file");
       place.path += "/f.h5";
     },
     "orvml.file.not-found", "there is no such file"},
    {"BehindADanglingLink",
     [](Place& place) { std::filesystem::create_symlink("nothing", place.path); },
     "orvml.file.not-found", "there is no such file"},
    {"BehindALoopOfLinks",
     [](Place& place) { std::filesystem::create_symlink("f.h5", place.path); },
     "orvml.file.unreachable", "cannot be opened: Too many levels of symbolic links"},
    {"OfALongName", [](Place& place) { place.path = place.folder.path(std::string(300, 'n')); },
     "orvml.file.unreachable", "cannot be opened: File name too long"},
    {"OfSomebodyElse",
     [](Place& place) {
       place.makeSound();
       ASSERT_EQ(::chmod(place.path.c_str(), 0), 0);
       place.asOrdinaryUser();
     },
     "orvml.file.permission-denied", "permission to read it is denied"},
    {"InAFolderOfSomebodyElse",
     [](Place& place) {
       place.makeSound();
       ASSERT_EQ(::chmod(place.folder.path().c_str(), 0), 0);
       place.asOrdinaryUser();
     },
     "orvml.file.permission-denied", "permission to read it is denied"},
    {"ThatIsAFolder", [](Place& place) { place.path = place.folder.path(); },
     "orvml.file.directory", "is a folder, not a file"},
    {"ThatIsAPipe", [](Place& place) { ASSERT_EQ(::mkfifo(place.path.c_str(), 0600), 0); },
     "orvml.file.not-regular", "is a device or a pipe, not a file"},
    {"ThatIsADevice", [](Place& place) { place.path = "/dev/zero"; }, "orvml.file.not-regular",
     "is a device or a pipe, not a file"},
    {"OfNoBytes", [](Place& place) { place.makeText(""); }, "orvml.file.empty", "is empty", true},
    {"OfAFewBytes", [](Place& place) { place.makeText("HDF"); }, "orvml.file.not-hdf5",
     "is not an HDF5 file", true},
    {"OfText", [](Place& place) { place.makeText(std::string(5000, 't')); }, "orvml.file.not-hdf5",
     "is not an HDF5 file", true},
    {"WithoutItsFirstByte", [](Place& place) { place.makeSoundPart(1, std::string::npos); },
     "orvml.file.not-hdf5", "is not an HDF5 file", true},
    {"CutOffInTheMiddle", [](Place& place) { place.makeSoundPart(0, 5000); }, "orvml.file.cut-off",
     "is an HDF5 file whose end is missing", true},
    {"CutOffBehindItsSignature", [](Place& place) { place.makeSoundPart(0, 8); },
     "orvml.file.damaged", "is an HDF5 file that HDF5 cannot open", true},
    {"WithADamagedSuperblock",
     [](Place& place) {
       place.makeSound();
       std::string bytes = bytesIn(place.path);
       bytes[8] = '\x7f';  // the version of the superblock
       place.makeText(bytes);
     },
     "orvml.file.damaged", "is an HDF5 file that HDF5 cannot open", true},
    {"WithoutTheMarker", [](Place& place) { RawFile::create(place.path.c_str()).close(); },
     "orvml.file.not-exchange", "is an HDF5 file without the marker of exchange files"},
    {"OfAnotherFormat",
     [](Place& place) { RawFile::create(place.path.c_str()).textAttribute("/", "FORMAT", "CGNS"); },
     "orvml.file.not-exchange", "is an HDF5 file without the marker of exchange files"},
    {"WithANumberAsItsMarker",
     [](Place& place) { RawFile::create(place.path.c_str()).intAttributeValue("/", "FORMAT", 1); },
     "orvml.file.not-exchange", "is an HDF5 file without the marker of exchange files"},
    {"ThatAnotherProcessWrites",
     [](Place& place) {
       place.makeSound();
       place.writer = std::make_unique<WritingProcess>(place.path);
     },
     "orvml.file.held-for-writing", "is held open for writing by another process, or by this one",
     true}};

/// A way to open a file.
struct Door {
  const char* name;
  void (*open)(const std::string& path);

  friend std::ostream& operator<<(std::ostream& stream, const Door& door) {
    return stream << door.name;
  }
};

const Door kDoors[] = {
    {"load", [](const std::string& path) { (void)orvml::load(path); }},
    {"loadTolerantly",
     [](const std::string& path) {
       (void)orvml::load(path, {.policy = orvml::Policy::tolerant, .threads = 2});
     }},
    {"loadInput", [](const std::string& path) { (void)orvml::loadInput(path); }},
    {"loadOutput", [](const std::string& path) { (void)orvml::loadOutput(path); }},
    {"MappedFile", [](const std::string& path) { const orvml::MappedFile file(path); }},
    {"describe", [](const std::string& path) { (void)orvml::describe(path); }}};

class FileThatCannotBeRead : public ::testing::TestWithParam<std::tuple<FileRow, Door>> {};

TEST_P(FileThatCannotBeRead, SaysWhy) {
  const auto& [row, door] = GetParam();
  Place place;
  row.make(place);
  const OpenIds ids;
  const auto work = [&, open = door.open] { open(place.path); };

  const Told told = place.prepareChild ? toldInChild(place.prepareChild, work) : toldBy(work);

  EXPECT_EQ(told.code, row.code);
  EXPECT_EQ(told.sentence, row.sentence);
  EXPECT_EQ(told.what, place.path + ": " + row.sentence);
  EXPECT_EQ(told.file, place.path);
  EXPECT_EQ(told.object, "");
  EXPECT_EQ(!told.hdf5Reason.empty(), row.hasHdf5Reason) << told.hdf5Reason;
  EXPECT_EQ(told.printed, "");
  EXPECT_EQ(ids.opened(), IdCounts());
}

std::string nameOfRowAndDoor(const ::testing::TestParamInfo<std::tuple<FileRow, Door>>& test) {
  return std::string(std::get<0>(test.param).name) + "_" + std::get<1>(test.param).name;
}

INSTANTIATE_TEST_SUITE_P(Each, FileThatCannotBeRead,
                         ::testing::Combine(::testing::ValuesIn(kFiles),
                                            ::testing::ValuesIn(kDoors)),
                         nameOfRowAndDoor);

/// A sound file, and a document that it does not hold.
struct MissingRow {
  const char* name;
  bool hasInput;
  bool hasOutput;
  void (*open)(const std::string& path);
  std::string code;
  std::string sentence;
  std::string object;

  friend std::ostream& operator<<(std::ostream& stream, const MissingRow& row) {
    return stream << row.name;
  }
};

class MissingDocument : public ::testing::TestWithParam<MissingRow> {};

TEST_P(MissingDocument, IsNamed) {
  const MissingRow& row = GetParam();
  const ExchangeFolder folder;
  const std::string path = folder.path("f.h5");
  const BuiltDocument input = fullDocument();
  const BuiltDocument output = documentWithMixedShapes();
  ASSERT_EQ(
      OrvML_IO_WriteOrvInputAndOrvOutput(path.c_str(), row.hasInput ? input.handle() : nullptr,
                                         row.hasOutput ? output.handle() : nullptr),
      0);

  const Told told = toldBy([&] { row.open(path); });

  EXPECT_EQ(told.code, row.code);
  EXPECT_EQ(told.sentence, row.sentence);
  EXPECT_EQ(told.what, path + ": " + row.sentence);
  EXPECT_EQ(told.file, path);
  EXPECT_EQ(told.object, row.object);
  EXPECT_EQ(told.hdf5Reason, "");
  EXPECT_EQ(told.printed, "");
}

constexpr auto kLoad = [](const std::string& path) { (void)orvml::load(path); };
constexpr auto kLoadInput = [](const std::string& path) { (void)orvml::loadInput(path); };
constexpr auto kLoadOutput = [](const std::string& path) { (void)orvml::loadOutput(path); };
constexpr auto kMap = [](const std::string& path) { const orvml::MappedFile file(path); };
constexpr auto kMapInput = [](const std::string& path) {
  const orvml::MappedFile file(path);
  (void)file.input();
};
constexpr auto kMapOutput = [](const std::string& path) {
  const orvml::MappedFile file(path);
  (void)file.output();
};

INSTANTIATE_TEST_SUITE_P(
    Each, MissingDocument,
    ::testing::Values(MissingRow{"AnyForLoad", false, false, kLoad, "orvml.document.none",
                                 "holds no document", ""},
                      MissingRow{"AnyForMappedFile", false, false, kMap, "orvml.document.none",
                                 "holds no document", ""},
                      MissingRow{"InputForLoadInput", false, true, kLoadInput,
                                 "orvml.document.no-input", "holds no input document", "/OrvInput"},
                      MissingRow{"AnyForLoadInput", false, false, kLoadInput,
                                 "orvml.document.no-input", "holds no input document", "/OrvInput"},
                      MissingRow{"InputForMappedFile", false, true, kMapInput,
                                 "orvml.document.no-input", "holds no input document", "/OrvInput"},
                      MissingRow{"OutputForLoadOutput", true, false, kLoadOutput,
                                 "orvml.document.no-output", "holds no output document",
                                 "/OrvOutput"},
                      MissingRow{"OutputForMappedFile", true, false, kMapOutput,
                                 "orvml.document.no-output", "holds no output document",
                                 "/OrvOutput"}),
    RowName());

}  // namespace
}  // namespace orvml_io_tests
