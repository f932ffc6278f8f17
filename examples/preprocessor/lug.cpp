// A lug: a flat bar that ends in a round eye, as thick everywhere. Bar and eye are two volumes with
// a common surface; the base of the bar is meshed with quadrilaterals, that of the eye with
// triangles.
#include "exchange/check.h"
#include "preprocessor/part.h"

#include <gmsh.h>

namespace orvml_examples {

namespace {

namespace occ = gmsh::model::occ;

constexpr double kWidth = 40.0;
constexpr double kThickness = 8.0;
constexpr double kBarLength = 35.0;
constexpr double kEyeLength = 25.0;  // from the bar to the centre of the hole
constexpr double kHoleRadius = 9.0;
constexpr int kLayers = 4;

struct Bases {
  int bar;
  int eye;
};

gmsh::vectorpair eyeSurface() {
  const double radius = kWidth / 2;
  gmsh::vectorpair joined;
  gmsh::vectorpair pierced;
  std::vector<gmsh::vectorpair> origins;
  occ::fuse({{2, occ::addRectangle(-kEyeLength, -radius, 0, kEyeLength, kWidth)}},
            {{2, occ::addDisk(0, 0, 0, radius, radius)}}, joined, origins);
  occ::cut(joined, {{2, occ::addDisk(0, 0, 0, kHoleRadius, kHoleRadius)}}, pierced, origins);
  return pierced;
}

/// Two surfaces that share the line between bar and eye.
Bases addBases() {
  const int bar = occ::addRectangle(-kEyeLength - kBarLength, -kWidth / 2, 0, kBarLength, kWidth);
  gmsh::vectorpair pieces;
  std::vector<gmsh::vectorpair> origins;
  occ::fragment({{2, bar}}, eyeSurface(), pieces, origins);
  require(origins.size() == 2 && origins[0].size() == 1 && origins[1].size() == 1,
          "bar and eye were not joined along a line");
  return {origins[0][0].second, origins[1][0].second};
}

std::vector<int> volumesOf(const gmsh::vectorpair& entities) {
  std::vector<int> volumes;
  for (const auto& [dimension, tag] : entities) {
    if (dimension == 3) {
      volumes.push_back(tag);
    }
  }
  return volumes;
}

}  // namespace

CadModel buildLug() {
  const Bases bases = addBases();
  gmsh::vectorpair extruded;
  occ::extrude({{2, bases.bar}, {2, bases.eye}}, 0, 0, kThickness, extruded, {kLayers}, {}, true);
  occ::synchronize();
  CadModel model = outerBoundary(volumesOf(extruded));
  model.sweep = Sweep{{0, 0, kThickness}, kLayers, {bases.bar, bases.eye}};
  gmsh::model::mesh::setTransfiniteSurface(bases.bar);
  gmsh::model::mesh::setRecombine(2, bases.bar);
  return model;
}

}  // namespace orvml_examples
