// What the CAD kernel knows about a part, to hold a mesh against.
#pragma once

#include "exchange/mesh.h"
#include "preprocessor/part.h"

#include <vector>

namespace orvml_examples {

struct CadSurface {
  int id;
  double area;
  bool isPlane;
};

struct CadMeasures {
  double volume = 0.0;
  double area = 0.0;
  std::vector<double> boundingBox;  // xmin, ymin, zmin, xmax, ymax, zmax
  std::vector<CadSurface> surfaces;

  [[nodiscard]] bool isPlane(int surfaceId) const;
};

CadMeasures measure(const CadModel& model);

/// For each face, how far it strays from its surface of the CAD model. Corners lie on the surface;
/// the middles of the sides and of the face are where a chord is farthest away.
std::vector<double> chordalErrors(const Mesh& mesh, const std::vector<int>& surfaceIds);

}  // namespace orvml_examples
