// A file that cannot be saved: the reason is told, the old file stays byte for byte, and nothing is
// left beside it.
#include <orvml/orvml.hpp>

#include "cpp/sample_documents.h"
#include "cpp/told.h"
#include "faults/transfers.h"
#include "files/child_process.h"
#include "processes/exchange_folder.h"
#include "support/open_ids.h"
#include "support/row_name.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Attribute;
using orvml::Attributes;
using orvml::DocumentParts;
using orvml::InputView;

const std::string kOldContent(100, 'o');
const std::string kEighty(80, 'n');
const std::vector<int> kThreeInts = {1, 2, 3};
const std::vector<double> kCoordinates = {0, 0, 0, 1, 0, 0, 0, 1, 0};

/// A folder and the path of a file to be saved in it.
struct Target {
  ExchangeFolder folder;
  std::string path = folder.path("f.h5");
  std::unique_ptr<WritingProcess> writer;
  std::function<bool()> prepareChild;  // empty: nothing has to be done in a child process

  void makeOld() const { std::ofstream(path, std::ios::binary) << kOldContent << std::flush; }
};

/// Gives the folder of a target a file system of its own, for a child process.
bool mount(const std::string& folder, unsigned long flags, const char* options) {
  const int user = ::geteuid() == 0 ? 0 : CLONE_NEWUSER;
  return ::unshare(CLONE_NEWNS | user) == 0 &&
         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", folder.c_str(), "tmpfs", flags, options) == 0;
}

void saveFull(const std::string& path) { orvml::save(path, fullInput()); }

/// Something that keeps a sound document from being saved.
struct PlaceRow {
  const char* name;
  void (*make)(Target& target);
  std::string code;
  std::string sentence;  // FOLDER stands for the path of the folder
  void (*save)(const std::string& path) = saveFull;

  friend std::ostream& operator<<(std::ostream& stream, const PlaceRow& row) {
    return stream << row.name;
  }
};

void saveToADyingDisk(const std::string& path) {
  const FailingSystemCall failure(SystemCall::write, 3, Mishap::inputOutputError);
  saveFull(path);
}

/// Lets no file of this process grow beyond a size while it lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
    const struct rlimit small = {bytes, before_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  FileSizeLimit(FileSizeLimit&&) = delete;
  FileSizeLimit& operator=(FileSizeLimit&&) = delete;
  ~FileSizeLimit() {
    (void)::setrlimit(RLIMIT_FSIZE, &before_);
    (void)std::signal(SIGXFSZ, handler_);
  }

 private:
  struct rlimit before_ = {};
  sighandler_t handler_;
};

void saveWithinLimit(const std::string& path) {
  const FileSizeLimit limit(2048);
  saveFull(path);
}

constexpr char kNoFolder[] = "there is no folder FOLDER/no to write it in";

const PlaceRow kPlaces[] = {
    {"InAFolderThatIsNotThere", [](Target& target) { target.path = target.folder.path("no/f.h5"); },
     "orvml.folder.not-found", kNoFolder},
    {"BelowAFile",
     [](Target& target) {
       std::ofstream(target.folder.path("no")) << "a file";
       target.path = target.folder.path("no/f.h5");
     },
     "orvml.folder.not-found", kNoFolder},
    {"ThatIsAFolder",
     [](Target& target) {
       target.path = target.folder.path("a");
       std::filesystem::create_directory(target.path);
     },
     "orvml.file.directory", "is a folder, not a file"},
    {"ThatIsAPipe", [](Target& target) { ASSERT_EQ(::mkfifo(target.path.c_str(), 0600), 0); },
     "orvml.file.not-regular", "is a device or a pipe, not a file"},
    {"InAFolderWithoutWriteRight", [](Target& target) { target.prepareChild = becomeOrdinaryUser; },
     "orvml.folder.not-writable", "no file can be made in the folder FOLDER, which saving needs"},
    {"ThatIsReadOnly",
     [](Target& target) {
       target.makeOld();
       ASSERT_EQ(::chmod(target.path.c_str(), 0444), 0);
       target.prepareChild = becomeOrdinaryUser;
     },
     "orvml.file.permission-denied", "permission to write it is denied"},
    {"OnAReadOnlyFileSystem",
     [](Target& target) {
       target.prepareChild = [&target] { return mount(target.folder.path(), MS_RDONLY, nullptr); };
     },
     "orvml.folder.not-writable", "no file can be made in the folder FOLDER, which saving needs"},
    {"OnASmallDisk",
     [](Target& target) {
       target.prepareChild = [&target] { return mount(target.folder.path(), 0, "size=4096"); };
     },
     "orvml.file.no-space", "there is no space left on the device"},
    {"OnADyingDisk", [](Target& target) { target.makeOld(); }, "orvml.file.not-written",
     "cannot be written: Input/output error", saveToADyingDisk},
    {"LargerThanFilesMayBe", [](Target& target) { target.makeOld(); }, "orvml.file.too-large",
     "would be larger than files may be here", saveWithinLimit},
    {"ThatAnotherProcessWrites",
     [](Target& target) {
       saveFull(target.path);
       target.writer = std::make_unique<WritingProcess>(target.path);
     },
     "orvml.file.held-for-writing", "is held open for writing by another process, or by this one"}};

/// What is in a folder, without what readers of the test may not read.
std::string contentOf(const Target& target) {
  std::string content;
  for (const std::string& name : target.folder.listing()) {
    content += name + "\n";
    content += std::filesystem::is_regular_file(name) ? bytesIn(name) + "\n" : "";
  }
  return content;
}

std::string withFolder(std::string sentence, const std::string& folder) {
  const std::size_t place = sentence.find("FOLDER");
  return place == std::string::npos ? sentence : sentence.replace(place, 6, folder);
}

class FileThatCannotBeSaved : public ::testing::TestWithParam<PlaceRow> {};

INSTANTIATE_TEST_SUITE_P(Each, FileThatCannotBeSaved, ::testing::ValuesIn(kPlaces), RowName());

TEST_P(FileThatCannotBeSaved, SaysWhyAndChangesNothing) {
  const PlaceRow& row = GetParam();
  Target target;
  row.make(target);
  const std::string before = contentOf(target);
  const OpenIds ids;
  const auto work = [&] { row.save(target.path); };

  const Told told = target.prepareChild ? toldInChild(target.prepareChild, work) : toldBy(work);

  const std::string sentence = withFolder(row.sentence, target.folder.path());
  EXPECT_EQ(told.code, row.code);
  EXPECT_EQ(told.sentence, sentence);
  EXPECT_EQ(told.what, target.path + ": " + sentence);
  EXPECT_EQ(told.file, target.path);
  EXPECT_EQ(told.object, "");
  EXPECT_EQ(told.hdf5Reason, "");  // the system fails, and HDF5 does not learn of it
  EXPECT_EQ(told.printed, "");
  EXPECT_EQ(contentOf(target), before);
  EXPECT_EQ(ids.opened(), IdCounts());
}

DocumentParts soundParts() {
  DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = {kCoordinates, 3};
  return parts;
}

/// A view that no file can hold.
struct ViewRow {
  const char* name;
  void (*change)(DocumentParts& parts);
  std::string code;
  std::string sentence;
  std::string object;

  friend std::ostream& operator<<(std::ostream& stream, const ViewRow& row) {
    return stream << row.name;
  }
};

Attributes vectorCalled(std::string_view name) { return Attributes({Attribute(name, kThreeInts)}); }

const ViewRow kViews[] = {
    {"WithAParameterOfALongName",
     [](DocumentParts& parts) {
       parts.parameters = orvml::Parameters({{kEighty, 1.0}});
     },
     "orvml.name.too-long",
     "the parameter \"" + kEighty + "\" has 80 bytes, at most 79 are allowed", kEighty},
    {"WithAVectorOfALongName",
     [](DocumentParts& parts) { parts.vectorParameters = vectorCalled(kEighty); },
     "orvml.name.too-long",
     "the vector parameter \"" + kEighty + "\" has 80 bytes, at most 79 are allowed", kEighty},
    {"WithAnAttributeOfALongName",
     [](DocumentParts& parts) {
       parts.nodes = {kCoordinates, 3, vectorCalled(kEighty)};
     },
     "orvml.name.too-long",
     "the attribute \"" + kEighty + "\" has 80 bytes, at most 79 are allowed", kEighty},
    {"WithAnAttributeOfCellsNamedLikeAPath",
     [](DocumentParts& parts) {
       parts.faces =
           orvml::CellsView({{orvml::Shape::triangle, 3, kThreeInts}}, vectorCalled("a/b"));
     },
     "orvml.name.not-allowed", "the attribute \"a/b\" has a name that stands for a path", "a/b"},
    {"WithAParameterWithoutAName",
     [](DocumentParts& parts) {
       parts.parameters = orvml::Parameters({{"", 1.0}});
     },
     "orvml.name.not-allowed", "the parameter has an empty name", ""},
    {"WithALongModuleName",
     [](DocumentParts& parts) {
       parts.identification = {kEighty, "", ""};
     },
     "orvml.text.too-long", "the name of the module has 80 bytes, at most 79 are allowed",
     "the name of the module"},
    {"WithALongVersion",
     [](DocumentParts& parts) {
       parts.identification = {"", kEighty, ""};
     },
     "orvml.text.too-long", "the format version of the module has 80 bytes, at most 79 are allowed",
     "the format version of the module"},
    {"WithALongCreator",
     [](DocumentParts& parts) {
       parts.identification = {"", "", kEighty};
     },
     "orvml.text.too-long", "the name of the creator has 80 bytes, at most 79 are allowed",
     "the name of the creator"},
    {"OfDimensionFour", [](DocumentParts& parts) { parts.dimension = 4; },
     "orvml.document.dimension", "a mesh of dimension 4, it has to be 2 or 3", ""},
    {"OfNoDimension", [](DocumentParts& parts) { parts.dimension = 0; }, "orvml.document.dimension",
     "a mesh of dimension 0, it has to be 2 or 3", ""},
    {"WithNodesOfAnotherDimension", [](DocumentParts& parts) { parts.dimension = 2; },
     "orvml.use.sizes-disagree", "the nodes have 3 coordinates, the mesh has 2", ""},
    {"WithNodesWithoutCoordinates",
     [](DocumentParts& parts) { parts.nodes = orvml::NodesView::withoutCoordinates(3, 3); },
     "orvml.use.sizes-disagree", "the nodes have no coordinates", ""}};

class ViewThatCannotBeSaved : public ::testing::TestWithParam<ViewRow> {};

INSTANTIATE_TEST_SUITE_P(Each, ViewThatCannotBeSaved, ::testing::ValuesIn(kViews), RowName());

TEST_P(ViewThatCannotBeSaved, SaysWhyBeforeAnythingIsTouched) {
  const ViewRow& row = GetParam();
  DocumentParts parts = soundParts();
  row.change(parts);
  Target target;
  target.makeOld();
  const std::string before = contentOf(target);

  const Told told = toldBy([&] { orvml::save(target.path, InputView(parts)); });

  EXPECT_EQ(told.code, row.code);
  EXPECT_EQ(told.sentence, row.sentence);
  EXPECT_EQ(told.what, row.sentence);
  EXPECT_EQ(told.file, "");
  EXPECT_EQ(told.object, row.object);
  EXPECT_EQ(told.hdf5Reason, "");
  EXPECT_EQ(told.printed, "");
  EXPECT_EQ(contentOf(target), before);
}

TEST_P(ViewThatCannotBeSaved, IsRefusedBesideASoundOne) {
  DocumentParts parts = soundParts();
  GetParam().change(parts);
  const Target target;

  const Told told =
      toldBy([&] { orvml::save(target.path, InputView(soundParts()), orvml::OutputView(parts)); });

  EXPECT_EQ(told.code, GetParam().code);
  EXPECT_EQ(told.sentence, GetParam().sentence);
  EXPECT_FALSE(std::filesystem::exists(target.path));
}

}  // namespace
}  // namespace orvml_io_tests
