#include "model/nodes.h"

namespace orvml_io {

bool Nodes::holdsCoordinates(int dimension) const noexcept {
  if (coordsLength == kUnknownLength) {
    return true;
  }
  return static_cast<long long>(numberOfNodes) * dimension <= coordsLength;
}

int Nodes::DeleteContent() noexcept {
  const NewArray<double> released(coords);
  coords = nullptr;
  coordsLength = kUnknownLength;
  numberOfNodes = 0;
  attributes.DeleteAll();
  return 0;
}

}  // namespace orvml_io
