// The parts that the preprocessor can model. All lengths are in millimetres.
#pragma once

#include "exchange/sweep.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml_examples {

/// What a build left in the current Gmsh model.
struct CadModel {
  std::vector<int> volumes;
  std::vector<int> surfaces;  // the outer ones
  std::vector<int> curves;    // of the outer surfaces
  std::optional<Sweep> sweep;
};

struct Part {
  const char* name;
  int eulerCharacteristic;    // of the outer surface: 2 - 2 x number of holes through the part
  std::vector<double> radii;  // of curvature, of the surfaces that are not plane
  CadModel (*build)();
};

const Part& partNamed(const std::string& name);

/// The outer boundary of the volumes in the current Gmsh model.
CadModel outerBoundary(const std::vector<int>& volumes);

CadModel buildFlange();
CadModel buildLug();

}  // namespace orvml_examples
