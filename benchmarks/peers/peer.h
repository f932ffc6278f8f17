#pragma once

#include "peers/peer_mesh.h"
#include "references/loaded.h"

#include <string>
#include <vector>

namespace orvml_io_bench {

/// Another mesh format, used through its own library the way its manual shows. The reader is told
/// nothing but the path: sizes and names it asks for.
struct Peer {
  std::string name;
  void (*write)(const std::string& path, const PeerMesh& mesh);
  Loaded (*read)(const std::string& path);
  /// Whether vectors of parameters come back as what they were. A format without them keeps their
  /// values in one flat list, which is no measure for those that keep them.
  bool keepsVectors = true;
  /// False for a format that is no HDF5 file: what HDF5 itself costs, it need not pay.
  bool isBoundByHdf5 = true;
};

/// The formats whose libraries were there when this program was built.
const std::vector<Peer>& peers();

/// Orders that a format takes besides its own.
const std::vector<Peer>& peersInOtherOrders();

/// Lets the library of each format write and read small meshes: it starts here, and not again in
/// every child, and it reads back what it was given.
void startPeers(const std::string& folder);

/// The formats that are left out because their libraries were not there.
const std::vector<std::string>& missingPeers();

}  // namespace orvml_io_bench
