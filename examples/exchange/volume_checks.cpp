#include "exchange/volume_checks.h"

#include "exchange/cell_shapes.h"
#include "exchange/check.h"
#include "exchange/geometry.h"

#include <algorithm>
#include <set>
#include <string>

namespace orvml_examples {

namespace {

using Face = std::vector<int>;

/// The same face, beginning with its smallest node and run through in the same sense.
Face fromSmallestNode(Face face) {
  std::rotate(face.begin(), std::min_element(face.begin(), face.end()), face.end());
  return face;
}

Face turned(Face face) {
  std::reverse(face.begin(), face.end());
  return fromSmallestNode(std::move(face));
}

/// The faces of all elements but those that two elements share, each from its own side.
std::set<Face> boundaryOf(const Cells& elements) {
  std::set<Face> boundary;
  elements.forEach([&](ElemType shape, const std::vector<int>& nodes) {
    for (Face& face : facesOf(shape, nodes)) {
      if (boundary.erase(turned(face)) == 0 &&
          !boundary.insert(fromSmallestNode(std::move(face))).second) {
        throw CheckFailed("two elements lie on the same side of one face");
      }
    }
  });
  return boundary;
}

bool isRightHanded(const Mesh& mesh, ElemType shape, const std::vector<int>& nodes) {
  const auto at = [&](int corner) {
    return pointAt(mesh.coordinates, nodes[static_cast<std::size_t>(corner)]);
  };
  const auto& corners = cellShape(shape).corners;
  return std::all_of(corners.begin(), corners.end(), [&](const std::array<int, 4>& corner) {
    return tripleProduct(at(corner[0]), at(corner[1]), at(corner[2]), at(corner[3])) > 0;
  });
}

}  // namespace

std::vector<double> requirePositiveElements(const Mesh& mesh) {
  std::vector<double> volumes;
  mesh.elements.forEach([&](ElemType shape, const std::vector<int>& nodes) {
    if (!isRightHanded(mesh, shape, nodes)) {
      throw CheckFailed("volume element " + std::to_string(volumes.size()) +
                        " is not positively oriented");
    }
    double volume = 0.0;
    for (const Face& face : facesOf(shape, nodes)) {
      volume += volumeBelow(mesh.coordinates, face);
    }
    volumes.push_back(volume);
  });
  return volumes;
}

void requireBoundaryIsFaces(const Mesh& mesh) {
  std::set<Face> boundary = boundaryOf(mesh.elements);
  mesh.faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    if (boundary.erase(fromSmallestNode(nodes)) == 0) {
      throw CheckFailed("a face with node " + std::to_string(nodes[0]) +
                        " is not on the boundary of the volume elements");
    }
  });
  require(boundary.empty(), std::to_string(boundary.size()) +
                                " boundary faces of the volume elements are no faces of the mesh");
}

}  // namespace orvml_examples
