#include "model/elems.h"

namespace orvml_io {

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
