#pragma once

#include <cstdint>
#include <string>

namespace orvml_io_bench {

/// Meshes without a fault, whose checks have to look at everything: a block of cubes with its
/// boundary faces, a double per node and an int per element.
enum class SoundMesh {
  tetrahedra,          ///< six for each cube, the nodes and the cells in the order of the cubes
  shuffledTetrahedra,  ///< the same with the nodes and the cells in random order
  mixed                ///< hexahedra in every other layer of cubes, two prisms a cube in the others
};

/// Writes the largest block with at most so many nodes. Returns the number of its elements.
std::int64_t writeSoundMesh(const std::string& path, SoundMesh mesh, int mostNodes);

}  // namespace orvml_io_bench
