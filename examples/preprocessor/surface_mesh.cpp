#include "preprocessor/surface_mesh.h"

#include "exchange/check.h"

#include <gmsh.h>

#include <map>

namespace orvml_examples {

namespace {

namespace mesh = gmsh::model::mesh;

enum GmshElementType : int { kGmshLine = 1, kGmshTriangle = 2, kGmshQuadrangle = 3 };

/// Elements of one type on some entities: their nodes by Gmsh's tags and the entity of each.
struct TaggedElements {
  std::vector<std::size_t> nodeTags;
  std::vector<int> entities;
};

TaggedElements elementsOf(const std::vector<int>& entities, GmshElementType type) {
  TaggedElements found;
  for (const int entity : entities) {
    std::vector<std::size_t> tags;
    std::vector<std::size_t> nodeTags;
    mesh::getElementsByType(type, tags, nodeTags, entity);
    found.nodeTags.insert(found.nodeTags.end(), nodeTags.begin(), nodeTags.end());
    found.entities.insert(found.entities.end(), tags.size(), entity);
  }
  return found;
}

/// The nodes of the faces, numbered from 0 in the order of Gmsh's tags.
class NodeNumbers {
 public:
  NodeNumbers(const TaggedElements& triangles, const TaggedElements& quadrangles) {
    for (const TaggedElements* elements : {&triangles, &quadrangles}) {
      for (const std::size_t tag : elements->nodeTags) {
        indices_.emplace(tag, 0);
      }
    }
    int next = 0;
    for (auto& [tag, index] : indices_) {
      index = next++;
    }
  }

  [[nodiscard]] std::vector<int> of(const std::vector<std::size_t>& tags) const {
    std::vector<int> numbers;
    numbers.reserve(tags.size());
    for (const std::size_t tag : tags) {
      numbers.push_back(indices_.at(tag));
    }
    return numbers;
  }

  /// Coordinates and the dimension of the CAD entity for every node.
  void place(SurfaceMesh& surface) const {
    surface.mesh.coordinates.resize(indices_.size() * Mesh::kDimension);
    surface.topologicalDimensions.resize(indices_.size());
    for (int dimension = 0; dimension <= 2; ++dimension) {
      std::vector<std::size_t> tags;
      std::vector<double> coordinates;
      std::vector<double> parameters;
      mesh::getNodes(tags, coordinates, parameters, dimension, -1, false, false);
      for (std::size_t i = 0; i < tags.size(); ++i) {
        placeOne(tags[i], &coordinates[i * Mesh::kDimension], dimension, surface);
      }
    }
  }

 private:
  void placeOne(std::size_t tag, const double* point, int dimension, SurfaceMesh& surface) const {
    const auto found = indices_.find(tag);
    if (found == indices_.end()) {
      return;  // a node within the part, on a surface between two volumes
    }
    const auto index = static_cast<std::size_t>(found->second);
    surface.topologicalDimensions[index] = dimension;
    for (std::size_t axis = 0; axis < Mesh::kDimension; ++axis) {
      surface.mesh.coordinates[index * Mesh::kDimension + axis] = point[axis];
    }
  }

  std::map<std::size_t, int> indices_;
};

void generateSurfaceMesh(const CadModel& model, const MeshSizes& sizes) {
  gmsh::option::setNumber("Mesh.MeshSizeMax", sizes.size);
  gmsh::option::setNumber("Mesh.MeshSizeFromCurvature", MeshSizes::kEdgesOnATurn);
  for (const int volume : model.volumes) {
    mesh::setOutwardOrientation(volume);
  }
  mesh::generate(2);
}

}  // namespace

SurfaceMesh meshSurface(const CadModel& model, const MeshSizes& sizes) {
  generateSurfaceMesh(model, sizes);
  const TaggedElements lines = elementsOf(model.curves, kGmshLine);
  const TaggedElements triangles = elementsOf(model.surfaces, kGmshTriangle);
  const TaggedElements quadrangles = elementsOf(model.surfaces, kGmshQuadrangle);
  const NodeNumbers numbers(triangles, quadrangles);

  SurfaceMesh surface;
  numbers.place(surface);
  surface.mesh.edges.addGroup(LINEAR, 2, numbers.of(lines.nodeTags));
  surface.lineIds = lines.entities;
  surface.mesh.faces.addGroup(TRIANGLE, 3, numbers.of(triangles.nodeTags));
  surface.mesh.faces.addGroup(QUADRILATERAL, 4, numbers.of(quadrangles.nodeTags));
  surface.surfaceIds = triangles.entities;
  surface.surfaceIds.insert(surface.surfaceIds.end(), quadrangles.entities.begin(),
                            quadrangles.entities.end());
  return surface;
}

}  // namespace orvml_examples
