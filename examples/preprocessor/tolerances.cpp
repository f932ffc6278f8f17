#include "preprocessor/tolerances.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvml_examples {

double allowedChordalError(const Part& part, const MeshSizes& sizes) {
  double largest = 0.0;
  for (const double radius : part.radii) {
    const double bySize = sizes.size * sizes.size / (8 * radius);
    const double byTurn = radius * (1 - std::cos(M_PI / MeshSizes::kEdgesOnATurn));
    largest = std::max(largest, std::min(bySize, byTurn));
  }
  return 2 * largest;
}

double volumeTolerance(const CadMeasures& cad, const std::vector<double>& faceAreas,
                       const std::vector<double>& chordalErrors) {
  constexpr double kRounding = 1e-9;
  return std::inner_product(faceAreas.begin(), faceAreas.end(), chordalErrors.begin(),
                            kRounding * cad.volume);
}

double areaTolerance(const CadMeasures& cad) {
  const double angle = 2 * M_PI / MeshSizes::kEdgesOnATurn;
  return cad.area * angle * angle / 6;
}

}  // namespace orvml_examples
