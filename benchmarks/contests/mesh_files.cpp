// Meshes written to and read from one file.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "contests/peer_runs.h"
#include "harness/fresh_program.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"
#include "references/posix_files.h"

#include <memory>

namespace orvml_io_bench {

namespace {

using SharedContent = std::shared_ptr<Content>;

constexpr int kLargest = 10000000;

/// The other formats, but for the largest mesh, with which they take a quarter of an hour.
std::vector<Peer> peersFor(const Content& content) {
  std::vector<Peer> chosen;
  if (content.numberOfNodes() < kLargest) {
    chosen = peers();
    chosen.insert(chosen.end(), peersInOtherOrders().begin(), peersInOtherOrders().end());
  }
  return chosen;
}

Contest writeContest(const Options& options, const SharedContent& content, double atMost) {
  const std::string path = options.folder + "written";
  const auto document = std::make_shared<Document>(*content);
  Contest contest(creating(path, [=] {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  }));
  contest.addGoal("raw HDF5", atMost, creating(path, [=] { raw_hdf5::write(path, *content); }));
  contest.add("Lite and Table", creating(path, [=] { lite_library::write(path, *content); }));
  contest.add("POSIX write", creating(path, [=] { posix_files::write(path, *content); }));
  const std::vector<Peer> others = peersFor(*content);
  const auto mesh = others.empty() ? nullptr : std::make_shared<const PeerMesh>(*content);
  for (const Peer& peer : others) {
    addPeerWriter(contest, peer, kLevel, path, mesh);
  }
  return contest;
}

Contest readContest(const Options& options, const SharedContent& content, double atMost) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "read_");
  const std::string exchange =
      files->add([&](const std::string& path) { lite_library::write(path, *content); });
  const std::string bytes =
      files->add([&](const std::string& path) { posix_files::write(path, *content); });
  const auto warm = [content](Run run) {
    return withWarmMemory(content->meshBytes(), std::move(run));
  };
  const Run library = warm(reading([=, kept = files] { return Document::read(exchange); }));
  const Run raw = warm(reading([=] { return raw_hdf5::read(exchange, *content); }));
  Contest contest(library);
  contest.addGoal("raw HDF5", atMost, raw);
  contest.add("the library without huge pages", withoutHugePages(library));
  contest.add("Lite and Table",
              warm(reading([=] { return lite_library::read(exchange, *content); })));
  contest.add("POSIX read", warm(reading([=] { return posix_files::read(bytes, *content); })));
  const std::vector<Peer> others = peersFor(*content);
  const auto mesh = others.empty() ? nullptr : std::make_shared<const PeerMesh>(*content);
  for (const Peer& peer : others) {
    addPeerReader(contest, peer, files, mesh, warm);
  }
  return contest;
}

struct Size {
  const char* name;
  int nodes;
  double writeAtMost;
  double readAtMost;
};
constexpr Size kSizes[] = {{"0.1 M nodes, tets", 100000, 1.30, 1.10},
                           {"2 M nodes, tets", 2000000, 1.10, 0.75},
                           {"10 M nodes, tets", kLargest, 1.05, 0.75}};
constexpr int kSurfaceNodes = 2000000;

}  // namespace

void registerMeshFiles(const Options& options) {
  for (const Size& size : kSizes) {
    if (size.nodes == kLargest && options.quick) {
      continue;
    }
    registerContest("write", size.name, options, [=] {
      return writeContest(options, std::make_shared<Content>(tetrahedralMesh(size.nodes)),
                          size.writeAtMost);
    });
    registerContest("read", size.name, options, [=] {
      return readContest(options, std::make_shared<Content>(tetrahedralMesh(size.nodes)),
                         size.readAtMost);
    });
  }
  registerContest("write", "mixed surface, 2 M nodes", options, [=] {
    return writeContest(options, std::make_shared<Content>(mixedSurface(kSurfaceNodes)), 1.15);
  });
}

}  // namespace orvml_io_bench
