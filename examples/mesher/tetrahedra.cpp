#include "exchange/check.h"
#include "gmsh_session.h"
#include "mesher/filling.h"

#include <gmsh.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <utility>

namespace orvml_examples {

namespace {

namespace mesh = gmsh::model::mesh;

constexpr int kGmshTriangle = 2;
constexpr int kGmshTetrahedron = 4;

std::vector<std::size_t> toTags(const std::vector<int>& nodes) {
  std::vector<std::size_t> tags;
  tags.reserve(nodes.size());
  for (const int node : nodes) {
    tags.push_back(static_cast<std::size_t>(node) + 1);
  }
  return tags;
}

/// A discrete surface whose nodes have their 0-based index plus 1 as tag.
void addDiscreteSurface(const Mesh& surface) {
  std::vector<std::size_t> tags(static_cast<std::size_t>(surface.numberOfNodes()));
  std::iota(tags.begin(), tags.end(), std::size_t{1});
  const int entity = gmsh::model::addDiscreteEntity(2);
  mesh::addNodes(2, entity, tags, surface.coordinates);
  mesh::addElementsByType(entity, kGmshTriangle, {}, toTags(surface.faces.connectivities));
}

/// Divides the surface at its sharp edges and makes a volume inside of it. The pieces get no
/// parametrisation: with one, Gmsh would mesh them anew.
void addVolume(double sharpAngle) {
  mesh::classifySurfaces(sharpAngle, true, true, M_PI);
  gmsh::vectorpair surfaces;
  gmsh::model::getEntities(surfaces, 2);
  std::vector<int> shell;
  for (const auto& [dimension, tag] : surfaces) {
    shell.push_back(tag);
  }
  gmsh::model::geo::addVolume({gmsh::model::geo::addSurfaceLoop(shell)});
  gmsh::model::geo::synchronize();
}

/// Inside, sizes go on from those of the surface, but not above that of the volume.
void generateTetrahedra(const Request& request) {
  gmsh::option::setNumber("Geometry.Tolerance", request.toleranceForGaps);
  gmsh::option::setNumber("Mesh.MeshSizeExtendFromBoundary", 1);
  gmsh::option::setNumber("Mesh.MeshSizeMax", request.volumeSize);
  gmsh::option::setNumber("Mesh.Renumber", 0);
  mesh::generate(3);
}

/// Node indices: those of the surface are their tags less 1, those that Gmsh added follow without a
/// gap in the order of their tags.
class NodeIndices {
 public:
  NodeIndices(std::vector<std::size_t> tags, int surfaceNodes)
      : surfaceNodes_(static_cast<std::size_t>(surfaceNodes)), added_(std::move(tags)) {
    std::sort(added_.begin(), added_.end());
    const auto firstAdded = std::upper_bound(added_.begin(), added_.end(), surfaceNodes_);
    require(firstAdded - added_.begin() == surfaceNodes, "a node of the surface is gone");
    added_.erase(added_.begin(), firstAdded);
  }

  [[nodiscard]] std::size_t of(std::size_t tag) const {
    if (tag <= surfaceNodes_) {
      return tag - 1;
    }
    const auto found = std::lower_bound(added_.begin(), added_.end(), tag);
    return surfaceNodes_ + static_cast<std::size_t>(found - added_.begin());
  }

 private:
  std::size_t surfaceNodes_;
  std::vector<std::size_t> added_;  // tags in ascending order
};

Filling filledBy(int surfaceNodes) {
  std::vector<std::size_t> tags;
  std::vector<double> coordinates;
  std::vector<double> parameters;
  mesh::getNodes(tags, coordinates, parameters, -1, -1, false, false);
  const NodeIndices indices(tags, surfaceNodes);

  Filling filling;
  filling.coordinates.resize(coordinates.size());
  for (std::size_t i = 0; i < tags.size(); ++i) {
    std::memcpy(&filling.coordinates[3 * indices.of(tags[i])], &coordinates[3 * i],
                3 * sizeof(double));
  }
  std::vector<std::size_t> elementTags;
  std::vector<std::size_t> nodeTags;
  mesh::getElementsByType(kGmshTetrahedron, elementTags, nodeTags);
  std::vector<int> corners;
  corners.reserve(nodeTags.size());
  for (const std::size_t tag : nodeTags) {
    corners.push_back(static_cast<int>(indices.of(tag)));
  }
  filling.elements.addGroup(TETRAHEDRA, 4, corners);
  filling.colors.assign(elementTags.size(), 1);
  return filling;
}

}  // namespace

Filling fillWithTetrahedra(const Mesh& surface, const Request& request) {
  require(surface.faces.count() == surface.faces.countOf(TRIANGLE),
          "only a surface of triangles can be filled with tetrahedra");
  const GmshSession session("surface");
  addDiscreteSurface(surface);
  addVolume(request.sharpAngle);
  generateTetrahedra(request);
  Filling filling = filledBy(surface.numberOfNodes());
  require(filling.elements.count() > 0, "Gmsh made no tetrahedra");
  return filling;
}

}  // namespace orvml_examples
