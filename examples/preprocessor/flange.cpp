// A flange: a disc with a neck, a fillet between them, a bore and a circle of bolt holes.
#include "exchange/check.h"
#include "preprocessor/part.h"

#include <gmsh.h>

#include <cmath>

namespace orvml_examples {

namespace {

namespace occ = gmsh::model::occ;

constexpr double kDiscRadius = 60.0;
constexpr double kDiscHeight = 12.0;
constexpr double kNeckRadius = 28.0;
constexpr double kHeight = 40.0;
constexpr double kFilletRadius = 10.0;
constexpr double kBoreRadius = 16.0;
constexpr double kBoltHoleRadius = 5.5;
constexpr double kBoltCircleRadius = 46.0;
constexpr int kBoltHoles = 6;
constexpr double kClearance = 1.0;  // by which a tool sticks out of the body it cuts

int cylinder(double x, double y, double bottom, double top, double radius) {
  return occ::addCylinder(x, y, bottom, 0, 0, top - bottom, radius);
}

int onlyVolume(const gmsh::vectorpair& entities, const char* step) {
  require(entities.size() == 1 && entities[0].first == 3,
          std::string(step) + " did not give a single volume");
  return entities[0].second;
}

int discWithNeck() {
  gmsh::vectorpair fused;
  std::vector<gmsh::vectorpair> origins;
  occ::fuse({{3, cylinder(0, 0, 0, kDiscHeight, kDiscRadius)}},
            {{3, cylinder(0, 0, 0, kHeight, kNeckRadius)}}, fused, origins);
  occ::synchronize();
  return onlyVolume(fused, "joining disc and neck");
}

/// The circle where the neck stands on the disc.
int inwardCorner() {
  constexpr double kTolerance = 1e-3;
  gmsh::vectorpair found;
  gmsh::model::getEntitiesInBoundingBox(
      -kNeckRadius - kTolerance, -kNeckRadius - kTolerance, kDiscHeight - kTolerance,
      kNeckRadius + kTolerance, kNeckRadius + kTolerance, kDiscHeight + kTolerance, found, 1);
  require(found.size() == 1, "the circle between disc and neck was not found");
  return found[0].second;
}

int filleted(int body) {
  gmsh::vectorpair rounded;
  occ::fillet({body}, {inwardCorner()}, {kFilletRadius}, rounded);
  return onlyVolume(rounded, "rounding the corner");
}

gmsh::vectorpair drills() {
  gmsh::vectorpair tools = {{3, cylinder(0, 0, -kClearance, kHeight + kClearance, kBoreRadius)}};
  for (int i = 0; i < kBoltHoles; ++i) {
    const double angle = 2 * M_PI * i / kBoltHoles;
    tools.emplace_back(
        3, cylinder(kBoltCircleRadius * std::cos(angle), kBoltCircleRadius * std::sin(angle),
                    -kClearance, kDiscHeight + kClearance, kBoltHoleRadius));
  }
  return tools;
}

}  // namespace

CadModel buildFlange() {
  gmsh::vectorpair drilled;
  std::vector<gmsh::vectorpair> origins;
  occ::cut({{3, filleted(discWithNeck())}}, drills(), drilled, origins);
  occ::synchronize();
  return outerBoundary({onlyVolume(drilled, "drilling the holes")});
}

}  // namespace orvml_examples
