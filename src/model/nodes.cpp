#include "model/nodes.h"

#include <algorithm>

namespace orvml_io {

bool Nodes::holdsCoordinates(int dimension) const noexcept {
  if (coordsLength == kUnknownLength) {
    return true;
  }
  return static_cast<long long>(numberOfNodes) * dimension <= coordsLength;
}

long long Nodes::heldCoordinates(int dimension) const noexcept {
  const long long wanted = static_cast<long long>(numberOfNodes) * dimension;
  if (coords == nullptr || wanted < 0) {
    return 0;
  }
  return coordsLength == kUnknownLength ? wanted : std::min(wanted, coordsLength);
}

void Nodes::setCoordinates(NewArray<double> values, long long length) noexcept {
  const NewArray<double> released(coords, DeleteArray<double>{coordsAreBorrowed});
  coordsLength = values ? length : kUnknownLength;
  coordsAreBorrowed = values && values.get_deleter().isBorrowed;
  coords = values.release();
}

int Nodes::DeleteContent() noexcept {
  setCoordinates(nullptr, 0);
  numberOfNodes = 0;
  attributes.DeleteAll();
  return 0;
}

}  // namespace orvml_io
