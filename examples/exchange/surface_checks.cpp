#include "exchange/surface_checks.h"

#include "exchange/check.h"
#include "exchange/geometry.h"

#include <set>
#include <string>
#include <utility>

namespace orvml_examples {

namespace {

using Side = std::pair<int, int>;

std::string textOf(const Side& side) {
  return "from node " + std::to_string(side.first) + " to node " + std::to_string(side.second);
}

/// The sides of all faces in the sense in which the faces run through them.
std::set<Side> sidesOf(const Cells& faces) {
  std::set<Side> sides;
  faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    for (std::size_t corner = 0; corner < nodes.size(); ++corner) {
      const Side side(nodes[corner], nodes[(corner + 1) % nodes.size()]);
      if (!sides.insert(side).second) {
        throw CheckFailed("two faces have the same side " + textOf(side));
      }
    }
  });
  return sides;
}

}  // namespace

SurfaceCounts requireClosedSurface(const Mesh& mesh) {
  const std::set<Side> sides = sidesOf(mesh.faces);
  std::set<int> usedNodes;
  for (const Side& side : sides) {
    usedNodes.insert(side.first);
    if (sides.count({side.second, side.first}) == 0) {
      throw CheckFailed("the surface is open at the side " + textOf(side));
    }
  }
  const SurfaceCounts counts{static_cast<int>(usedNodes.size()), static_cast<int>(sides.size() / 2),
                             mesh.faces.count()};
  require(counts.nodes == mesh.numberOfNodes(), "the surface does not use all nodes");
  require(enclosedVolume(mesh.coordinates, mesh.faces) > 0, "the faces look inwards");
  return counts;
}

void requireEdgesOnSurface(const Mesh& mesh) {
  const std::set<Side> sides = sidesOf(mesh.faces);
  mesh.edges.forEach([&](ElemType, const std::vector<int>& nodes) {
    const Side edge(nodes[0], nodes[1]);
    if (sides.count(edge) == 0) {
      throw CheckFailed("no face has the edge " + textOf(edge));
    }
  });
}

}  // namespace orvml_examples
