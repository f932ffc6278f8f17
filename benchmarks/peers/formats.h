#pragma once

#include "peers/peer_mesh.h"
#include "references/loaded.h"

namespace orvml_io_bench {

// Each format in a file of its own, which is built where the library of the format is installed.

namespace cgns {
void write(const std::string& path, const PeerMesh& mesh);
Loaded read(const std::string& path);
}  // namespace cgns

/// In its own order, all values of a component together, as its library stores them; and
/// interlaced, all components of a node or cell together, as meshers keep them.
namespace med {
void write(const std::string& path, const PeerMesh& mesh);
Loaded read(const std::string& path);
void writeInterlaced(const std::string& path, const PeerMesh& mesh);
Loaded readInterlaced(const std::string& path);
}  // namespace med

/// In HDF5 through NetCDF-4, and in the flat file of classic NetCDF (its 64-bit offset form).
namespace exodus {
void writeNetcdf4(const std::string& path, const PeerMesh& mesh);
void writeClassic(const std::string& path, const PeerMesh& mesh);
Loaded read(const std::string& path);
}  // namespace exodus

}  // namespace orvml_io_bench
