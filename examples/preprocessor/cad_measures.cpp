#include "preprocessor/cad_measures.h"

#include "exchange/geometry.h"

#include <gmsh.h>

#include <algorithm>
#include <string>

namespace orvml_examples {

namespace {

namespace occ = gmsh::model::occ;

void append(const Point& point, std::vector<double>& coordinates) {
  coordinates.insert(coordinates.end(), point.begin(), point.end());
}

/// The middles of the sides and of the face.
std::vector<double> middlesOf(const Mesh& mesh, const std::vector<int>& face) {
  std::vector<double> middles;
  Point centre = {0, 0, 0};
  for (std::size_t corner = 0; corner < face.size(); ++corner) {
    const Point here = pointAt(mesh.coordinates, face[corner]);
    const Point next = pointAt(mesh.coordinates, face[(corner + 1) % face.size()]);
    append(midpoint(here, next), middles);
    for (std::size_t axis = 0; axis < centre.size(); ++axis) {
      centre[axis] += here[axis] / static_cast<double>(face.size());
    }
  }
  append(centre, middles);
  return middles;
}

double farthestFrom(int surfaceId, const std::vector<double>& points) {
  std::vector<double> closest;
  std::vector<double> parameters;
  gmsh::model::getClosestPoint(2, surfaceId, points, closest, parameters);
  double farthest = 0.0;
  for (int i = 0; i < static_cast<int>(points.size()) / Mesh::kDimension; ++i) {
    farthest = std::max(farthest, distance(pointAt(points, i), pointAt(closest, i)));
  }
  return farthest;
}

}  // namespace

bool CadMeasures::isPlane(int surfaceId) const {
  return std::any_of(surfaces.begin(), surfaces.end(), [&](const CadSurface& surface) {
    return surface.id == surfaceId && surface.isPlane;
  });
}

CadMeasures measure(const CadModel& model) {
  CadMeasures cad;
  for (const int volume : model.volumes) {
    double mass = 0.0;
    occ::getMass(3, volume, mass);
    cad.volume += mass;
  }
  for (const int surface : model.surfaces) {
    double area = 0.0;
    std::string type;
    occ::getMass(2, surface, area);
    gmsh::model::getType(2, surface, type);
    cad.surfaces.push_back({surface, area, type == "Plane"});
    cad.area += area;
  }
  cad.boundingBox.resize(6);
  gmsh::model::getBoundingBox(-1, -1, cad.boundingBox[0], cad.boundingBox[1], cad.boundingBox[2],
                              cad.boundingBox[3], cad.boundingBox[4], cad.boundingBox[5]);
  return cad;
}

std::vector<double> chordalErrors(const Mesh& mesh, const std::vector<int>& surfaceIds) {
  std::vector<double> errors;
  mesh.faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    errors.push_back(farthestFrom(surfaceIds[errors.size()], middlesOf(mesh, nodes)));
  });
  return errors;
}

}  // namespace orvml_examples
