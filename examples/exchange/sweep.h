#pragma once

#include <array>
#include <vector>

namespace orvml_examples {

/// How a part came about by moving some of its surfaces, and so how it can be filled in layers.
struct Sweep {
  std::array<double, 3> vector;
  int layers;
  std::vector<int> sourceSurfaces;
};

}  // namespace orvml_examples
