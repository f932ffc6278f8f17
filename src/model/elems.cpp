#include "model/elems.h"

#include <algorithm>

namespace orvml_io {

long long Elems::connectivityLength() const noexcept {
  if (numberOfElementsByType == nullptr || numberOfNodesByElement == nullptr) {
    return 0;
  }
  long long length = 0;
  for (int group = 0; group < numberOfElementTypes; ++group) {
    length += static_cast<long long>(numberOfElementsByType[group]) * numberOfNodesByElement[group];
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

void Elems::DeleteContent() noexcept {
  if (!typeArraysOwnedByCaller) {
    DeleteAuxiliarContent();
  }
  const NewArray<int> released(connectivities);
  connectivities = nullptr;
  numberOfElements = 0;
  attributes.DeleteAll();
}

}  // namespace orvml_io
