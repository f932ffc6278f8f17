// Large meshes in programs that have just been started, with seconds between them. Their memory is
// what the system has at hand then: warm, or with the host of a virtual machine.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "harness/fresh_program.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"

#include <memory>

namespace orvml_io_bench {

namespace {

constexpr char kRead[] = "read by the library";
constexpr char kReadRaw[] = "read by raw HDF5";
constexpr char kCopy[] = "copy by the library";

/// A mesh of the same parts as a large one, for readers that want to know which to expect.
Content partsOfAMesh() {
  constexpr int kFew = 4;
  return tetrahedralMesh(kFew);
}

void copyDocument(const std::string& path, Measurement& measurement) {
  const Document document = Document::read(path);
  measurement.start();
  const Document copy(OrvML_IO_NewOrvInputHandle(document.handle()));
  measurement.stop();
}

std::shared_ptr<KeptFiles> fileOf(const Options& options, int nodes, std::string& path) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "fresh_");
  path = files->add(
      [=](const std::string& name) { lite_library::write(name, tetrahedralMesh(nodes)); });
  return files;
}

Contest readContest(const Options& options, int nodes, double atMost) {
  std::string path;
  const auto files = fileOf(options, nodes, path);
  const Run library = startedAfresh(kRead, path, options.pause);
  const Run raw = startedAfresh(kReadRaw, path, options.pause);
  Contest contest([files, library](Measurement& measurement) { library(measurement); });
  contest.addGoal("the library without huge pages", atMost, withoutHugePages(library));
  contest.add("raw HDF5", raw);
  contest.add("raw HDF5, huge pages at any price", withHugePagesEverywhere(raw));
  return contest;
}

Contest copyContest(const Options& options, int nodes, double atMost) {
  std::string path;
  const auto files = fileOf(options, nodes, path);
  const Run library = startedAfresh(kCopy, path, options.pause);
  Contest contest([files, library](Measurement& measurement) { library(measurement); });
  contest.addGoal("the library without huge pages", atMost, withoutHugePages(library));
  return contest;
}

constexpr int kSmall = 100000;
constexpr int kLarge = 2000000;
constexpr double kAsGood = 1.10;
constexpr double kNoGoal = 0;  // no huge page is asked for, so that there is nothing to judge

}  // namespace

Tasks tasksOfFreshProcesses() {
  return {{kRead,
           [](const std::string& path, Measurement& measurement) {
             reading([&] { return Document::read(path); })(measurement);
           }},
          {kReadRaw,
           [](const std::string& path, Measurement& measurement) {
             const Content parts = partsOfAMesh();
             reading([&] { return raw_hdf5::read(path, parts); })(measurement);
           }},
          {kCopy, copyDocument}};
}

void registerFreshProcesses(const Options& options) {
  registerContest("read, fresh process", "0.1 M nodes, tets", options,
                  [=] { return readContest(options, kSmall, kNoGoal); });
  registerContest("read, fresh process", "2 M nodes, tets", options,
                  [=] { return readContest(options, kLarge, kAsGood); });
  registerContest("deep copy, fresh process", "2 M nodes, tets", options,
                  [=] { return copyContest(options, kLarge, kAsGood); });
}

}  // namespace orvml_io_bench
