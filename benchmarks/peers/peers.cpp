#include "harness/measurement.h"
#include "peers/formats.h"
#include "peers/peer.h"

#include <cstdio>

namespace orvml_io_bench {

const std::vector<Peer>& peers() {
  static const std::vector<Peer> instance = {
#ifdef ORVML_IO_BENCH_CGNS
      {"CGNS", cgns::write, cgns::read},
#endif
#ifdef ORVML_IO_BENCH_MED
      {"MED", med::write, med::read},
#endif
#ifdef ORVML_IO_BENCH_EXODUS
      {"Exodus II, NetCDF-4", exodus::writeNetcdf4, exodus::read, false},
      {"Exodus II, classic NetCDF", exodus::writeClassic, exodus::read, false, false},
#endif
  };
  return instance;
}

const std::vector<Peer>& peersInOtherOrders() {
  static const std::vector<Peer> instance = {
#ifdef ORVML_IO_BENCH_MED
      {"MED, interlaced", med::writeInterlaced, med::readInterlaced},
#endif
  };
  return instance;
}

void startPeers(const std::string& folder) {
  const std::string path = folder + "peer";
  for (const Content& content : {smallDocument(), mixedSurface(10), nodeAttributes(2, 10)}) {
    const PeerMesh mesh(content);
    for (const auto& formats : {peers(), peersInOtherOrders()}) {
      for (const Peer& peer : formats) {
        peer.write(path, mesh);
        require(peer.read(path).checksum() == mesh.checksum(), peer.name.c_str());
        (void)std::remove(path.c_str());
      }
    }
  }
}

const std::vector<std::string>& missingPeers() {
  static const std::vector<std::string> instance = {
#ifndef ORVML_IO_BENCH_CGNS
      "CGNS",
#endif
#ifndef ORVML_IO_BENCH_MED
      "MED",
#endif
#ifndef ORVML_IO_BENCH_EXODUS
      "Exodus II",
#endif
  };
  return instance;
}

}  // namespace orvml_io_bench
