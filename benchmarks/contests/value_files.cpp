// Files of many named values: scalar parameters, vector parameters, attribute vectors.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "contests/peer_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace orvml_io_bench {

namespace {

using SharedContent = std::shared_ptr<Content>;

/// The other formats are set beside the smaller inputs only: they have no place for many parameters
/// and take minutes for 10,000.
enum class Peers { measured, leftOut };

struct Values {
  const char* name;
  Content (*make)();
  double writeAtMost;
  double readAtMost;
  Peers peers;
};

std::vector<Peer> peersFor(const Values& values, const Content& content) {
  std::vector<Peer> chosen;
  if (values.peers == Peers::measured) {
    std::copy_if(peers().begin(), peers().end(), std::back_inserter(chosen),
                 [&](const Peer& peer) { return content.vectors.empty() || peer.keepsVectors; });
  }
  return chosen;
}

Contest writeContest(const Options& options, const SharedContent& content, const Values& values) {
  const std::string path = options.folder + "values";
  const auto document = std::make_shared<Document>(*content);
  Contest contest(creating(path, [=] {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  }));
  contest.addGoal("raw HDF5", values.writeAtMost,
                  creating(path, [=] { raw_hdf5::write(path, *content); }));
  contest.add("Lite and Table", creating(path, [=] { lite_library::write(path, *content); }));
  const auto mesh = std::make_shared<const PeerMesh>(*content);
  for (const Peer& peer : peersFor(values, *content)) {
    addPeerWriter(contest, peer, kAhead, path, mesh);
  }
  return contest;
}

Contest readContest(const Options& options, const SharedContent& content, const Values& values) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "values_read_");
  const std::string path =
      files->add([&](const std::string& name) { lite_library::write(name, *content); });
  Contest contest(reading([=, kept = files] { return Document::read(path); }));
  contest.addGoal("raw HDF5, as much left open", values.readAtMost,
                  reading([=] { return raw_hdf5::readLeavingOpen(path, *content); }));
  contest.add("raw HDF5, all closed", reading([=] { return raw_hdf5::read(path, *content); }));
  contest.add("Lite and Table", reading([=] { return lite_library::read(path, *content); }));
  const auto mesh = std::make_shared<const PeerMesh>(*content);
  for (const Peer& peer : peersFor(values, *content)) {
    addPeerReader(contest, peer, files, mesh, [](Run run) { return run; });
  }
  return contest;
}

const Values kValues[] = {
    {"100,000 scalars", [] { return scalarParameters(100000); }, 1.25, 1.35, Peers::leftOut},
    {"1,000 vectors of 3", [] { return vectorParameters(1000); }, 1.20, 1.15, Peers::measured},
    {"10,000 vectors of 3", [] { return vectorParameters(10000); }, 1.20, 1.15, Peers::leftOut},
    {"1,000 attributes of 1,000", [] { return nodeAttributes(1000, 1000); }, 1.25, 1.15,
     Peers::measured},
    {"10,000 attributes of 1,000", [] { return nodeAttributes(10000, 1000); }, 1.25, 1.15,
     Peers::leftOut},
};

/// Written only: a flag is looked for once per group when a file is read, not on its members.
const Values kTransmitted = {"1,000 attributes of 1,000, to be sent back",
                             [] { return transmittedAttributes(1000, 1000); }, 1.10, 0,
                             Peers::leftOut};

}  // namespace

void registerValueFiles(const Options& options) {
  for (const Values& values : kValues) {
    registerContest("write", values.name, options, [=] {
      return writeContest(options, std::make_shared<Content>(values.make()), values);
    });
    registerContest("read", values.name, options, [=] {
      return readContest(options, std::make_shared<Content>(values.make()), values);
    });
  }
  registerContest("write", kTransmitted.name, options, [=] {
    return writeContest(options, std::make_shared<Content>(kTransmitted.make()), kTransmitted);
  });
}

}  // namespace orvml_io_bench
