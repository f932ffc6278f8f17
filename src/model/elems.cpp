#include "model/elems.h"

#include <algorithm>
#include <limits>

namespace orvml_io {

long long Elems::connectivityLength() const noexcept {
  if (numberOfElementsByType == nullptr || numberOfNodesByElement == nullptr) {
    return 0;
  }
  // No array is that long, and the next group's product still fits.
  constexpr long long kLongest = std::numeric_limits<long long>::max() / 2;
  long long length = 0;
  for (int group = 0; group < numberOfElementTypes; ++group) {
    length += static_cast<long long>(numberOfElementsByType[group]) * numberOfNodesByElement[group];
    length = std::clamp(length, -kLongest, kLongest);
  }
  return std::max(length, 0LL);
}

void Elems::DeleteAuxiliarContent() noexcept {
  const NewArray<ElemType> releasedTypes(elementTypes);
  const NewArray<int> releasedNodes(numberOfNodesByElement);
  const NewArray<int> releasedCounts(numberOfElementsByType);
  elementTypes = nullptr;
  numberOfNodesByElement = nullptr;
  numberOfElementsByType = nullptr;
  numberOfElementTypes = 0;
  groupArraysMadeByLibrary = false;
}

void Elems::setConnectivities(NewArray<int> values) noexcept {
  const NewArray<int> released(connectivities, DeleteArray<int>{connectivitiesAreBorrowed});
  connectivitiesAreBorrowed = values && values.get_deleter().isBorrowed;
  connectivities = values.release();
}

void Elems::DeleteContent() noexcept {
  if (!typeArraysOwnedByCaller) {
    DeleteAuxiliarContent();
  }
  setConnectivities(nullptr);
  numberOfElements = 0;
  attributes.DeleteAll();
}

}  // namespace orvml_io
