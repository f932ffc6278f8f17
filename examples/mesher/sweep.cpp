#include "exchange/check.h"
#include "mesher/filling.h"
#include "mesher/node_locator.h"

#include <algorithm>

namespace orvml_examples {

namespace {

/// Columns of elements of one shape.
struct Columns {
  std::vector<int> connectivities;
  std::vector<int> colors;
};

/// Moves a node to a layer of the sweep.
int moved(int node, int layer, const Sweep& sweep, NodeLocator& nodes) {
  Point point = pointAt(nodes.coordinates(), node);
  for (std::size_t axis = 0; axis < point.size(); ++axis) {
    point[axis] += sweep.vector[axis] * layer / sweep.layers;
  }
  return nodes.nodeAt(point);
}

/// Adds the column over one base, which is seen counter-clockwise from where it is moved to.
void addColumn(const std::vector<int>& base, int color, const Sweep& sweep, NodeLocator& nodes,
               Columns& columns) {
  std::vector<int> below = base;
  for (int layer = 1; layer <= sweep.layers; ++layer) {
    std::vector<int> above;
    above.reserve(base.size());
    for (const int node : base) {
      above.push_back(moved(node, layer, sweep, nodes));
    }
    columns.connectivities.insert(columns.connectivities.end(), below.begin(), below.end());
    columns.connectivities.insert(columns.connectivities.end(), above.begin(), above.end());
    columns.colors.push_back(color);
    below = above;
  }
}

/// The place of a surface among the sources, from 1; 0 for any other surface.
int colorOf(int surfaceId, const std::vector<int>& sources) {
  const auto found = std::find(sources.begin(), sources.end(), surfaceId);
  return found == sources.end() ? 0 : static_cast<int>(found - sources.begin()) + 1;
}

}  // namespace

Filling fillBySweeping(const Mesh& surface, const std::vector<int>& surfaceIds,
                       const Request& request) {
  NodeLocator nodes(surface.coordinates, request.toleranceForGaps);
  Columns prisms;
  Columns hexahedra;
  std::size_t face = 0;
  surface.faces.forEach([&](ElemType shape, const std::vector<int>& corners) {
    const int color = colorOf(surfaceIds[face++], request.sweep->sourceSurfaces);
    if (color > 0) {
      // Faces look outwards, away from the volume that the sweep fills.
      const std::vector<int> base(corners.rbegin(), corners.rend());
      addColumn(base, color, *request.sweep, nodes, shape == TRIANGLE ? prisms : hexahedra);
    }
  });
  Filling filling;
  filling.coordinates = nodes.coordinates();
  filling.elements.addGroup(HEXAHEDRA, 8, hexahedra.connectivities);
  filling.elements.addGroup(PRISM, 6, prisms.connectivities);
  filling.colors = hexahedra.colors;
  filling.colors.insert(filling.colors.end(), prisms.colors.begin(), prisms.colors.end());
  require(!filling.colors.empty(), "no face lies on a source of the sweep");
  return filling;
}

}  // namespace orvml_examples
