#pragma once

#include "contests/file_runs.h"
#include "harness/contest.h"
#include "peers/peer.h"

#include <memory>

namespace orvml_io_bench {

/// The library has to be ahead of every other format.
constexpr double kAhead = 1.0;
/// Where it cannot be: whoever writes a large mesh takes the time of a plain write of its bytes.
constexpr double kLevel = 1.05;

using SharedMesh = std::shared_ptr<const PeerMesh>;

/// What HDF5 itself costs is no goal against a format without it.
inline void addPeer(Contest& contest, const Peer& peer, double atMost, const Run& run) {
  if (peer.isBoundByHdf5) {
    contest.addGoal(peer.name, atMost, run);
  } else {
    contest.add(peer.name, run);
  }
}

inline void addPeerWriter(Contest& contest, const Peer& peer, double atMost,
                          const std::string& path, const SharedMesh& mesh) {
  addPeer(contest, peer, atMost, creating(path, [=, write = peer.write] { write(path, *mesh); }));
}

/// Adds a reader of the mesh in the peer's own file, after it has shown that it reads all of it.
/// Something may be done before each run.
inline void addPeerReader(Contest& contest, const Peer& peer,
                          const std::shared_ptr<KeptFiles>& files, const SharedMesh& mesh,
                          const std::function<Run(Run)>& prepared) {
  const std::string path = files->add([&](const std::string& name) { peer.write(name, *mesh); });
  preparedInChild(
      [&] { require(peer.read(path).checksum() == mesh->checksum(), "another format read back"); });
  addPeer(contest, peer, kAhead,
          prepared(reading([=, kept = files, read = peer.read] { return read(path); })));
}

}  // namespace orvml_io_bench
