// The mesh members of OrvInputAndOrvOutput: what the accessor functions decide.
#include "model/document.h"

namespace orvml_io {

namespace {

bool isElementKind(ORVML_TYPE_OF_ENTITY entity) noexcept {
  return entity == ORVML_EDGES || entity == ORVML_FACES || entity == ORVML_ELEMENTS;
}

/// Returns the document's pointer to the container of a kind; null for an unknown kind.
Elems** containerSlot(OrvInputAndOrvOutput& document, ORVML_TYPE_OF_ENTITY entity) noexcept {
  switch (entity) {
    case ORVML_EDGES:
      return &document.edges;
    case ORVML_FACES:
      return &document.faces;
    case ORVML_ELEMENTS:
      return &document.elements;
    default:
      return nullptr;
  }
}

template <class T>
NewArray<T> makeOneEntryArray(T value) {
  NewArray<T> array = makeNewArray<T>(1);
  array[0] = value;
  return array;
}

bool namesGroup(const Elems* elems, int typeIndex) noexcept {
  return elems != nullptr && typeIndex >= 0 && typeIndex < elems->numberOfElementTypes;
}

void storeGroups(Elems& elems, int count, int* connectivities, int numberOfElementTypes,
                 ElemType* elementTypes, int* numberOfNodesByElement,
                 int* numberOfElementsByType) noexcept {
  elems.numberOfElements = count;
  elems.connectivities = connectivities;
  elems.connectivitiesAreBorrowed = false;
  elems.numberOfElementTypes = numberOfElementTypes;
  elems.elementTypes = elementTypes;
  elems.numberOfNodesByElement = numberOfNodesByElement;
  elems.numberOfElementsByType = numberOfElementsByType;
  elems.groupArraysMadeByLibrary = false;
}

}  // namespace

void OrvInputAndOrvOutput::SetNodesCoords(int count, const double* coordinates) {
  if (!arraysOwnedByCaller) {
    return;
  }
  if (nodes == nullptr) {
    nodes = std::make_unique<Nodes>().release();
  }
  // The array is adopted: the caller who asks for it back may change it, the library does not.
  nodes->coords = const_cast<double*>(coordinates);  // NOLINT(*-pro-type-const-cast)
  nodes->coordsAreBorrowed = false;
  nodes->coordsLength = Nodes::kUnknownLength;
  nodes->numberOfNodes = count;
}

double* OrvInputAndOrvOutput::GetNodesCoords() const noexcept {
  return nodes == nullptr ? nullptr : nodes->coords;
}

void OrvInputAndOrvOutput::SetNumberOfNodes(int count) noexcept {
  if (nodes != nullptr) {
    nodes->numberOfNodes = count;
  }
}

int OrvInputAndOrvOutput::GetNumberOfNodes() const noexcept {
  return nodes == nullptr ? 0 : nodes->numberOfNodes;
}

Elems* OrvInputAndOrvOutput::GetGenericElems(ORVML_TYPE_OF_ENTITY entity) const noexcept {
  switch (entity) {
    case ORVML_EDGES:
      return edges;
    case ORVML_FACES:
      return faces;
    case ORVML_ELEMENTS:
      return elements;
    default:
      return nullptr;
  }
}

int OrvInputAndOrvOutput::GetElems(ORVML_TYPE_OF_ENTITY entity,
                                   int*& connectivities) const noexcept {
  if (!isElementKind(entity)) {
    return -1;
  }
  if (const Elems* elems = GetGenericElems(entity)) {
    connectivities = elems->connectivities;
  }
  return 0;
}

int OrvInputAndOrvOutput::GetElems(ORVML_TYPE_OF_ENTITY entity, int*& connectivities,
                                   ElemType*& elementTypes, int*& numberOfNodesByElement,
                                   int*& numberOfElementsByType) const noexcept {
  if (!isElementKind(entity)) {
    return -1;
  }
  if (const Elems* elems = GetGenericElems(entity)) {
    connectivities = elems->connectivities;
    elementTypes = elems->elementTypes;
    numberOfNodesByElement = elems->numberOfNodesByElement;
    numberOfElementsByType = elems->numberOfElementsByType;
  }
  return 0;
}

int OrvInputAndOrvOutput::GetNumberOfElems(ORVML_TYPE_OF_ENTITY entity) const noexcept {
  if (!isElementKind(entity)) {
    return -1;
  }
  const Elems* elems = GetGenericElems(entity);
  return elems == nullptr ? 0 : elems->numberOfElements;
}

int OrvInputAndOrvOutput::GetNumberOfElementTypes(ORVML_TYPE_OF_ENTITY entity) const noexcept {
  if (!isElementKind(entity)) {
    return -1;
  }
  const Elems* elems = GetGenericElems(entity);
  return elems == nullptr ? 0 : elems->numberOfElementTypes;
}

int OrvInputAndOrvOutput::GetNNodeElement(ORVML_TYPE_OF_ENTITY entity,
                                          int typeIndex) const noexcept {
  const Elems* elems = GetGenericElems(entity);
  if (!namesGroup(elems, typeIndex) || elems->numberOfNodesByElement == nullptr) {
    return 0;
  }
  return elems->numberOfNodesByElement[typeIndex];
}

ElemType OrvInputAndOrvOutput::GetElementType(ORVML_TYPE_OF_ENTITY entity,
                                              int typeIndex) const noexcept {
  const Elems* elems = GetGenericElems(entity);
  if (!namesGroup(elems, typeIndex) || elems->elementTypes == nullptr) {
    return NONE;
  }
  return elems->elementTypes[typeIndex];
}

void OrvInputAndOrvOutput::SetElems(int count, int* connectivities, int numberOfElementTypes,
                                    ElemType* elementTypes, int* numberOfNodesByElement,
                                    int* numberOfElementsByType, ORVML_TYPE_OF_ENTITY entity) {
  Elems** slot = containerSlot(*this, entity);
  if (!arraysOwnedByCaller || slot == nullptr) {
    return;
  }
  if (connectivities == nullptr) {
    if (*slot != nullptr) {
      storeGroups(**slot, 0, nullptr, 0, nullptr, nullptr, nullptr);
    }
    return;
  }
  if (*slot == nullptr) {
    *slot = std::make_unique<Elems>().release();
  }
  storeGroups(**slot, count, connectivities, numberOfElementTypes, elementTypes,
              numberOfNodesByElement, numberOfElementsByType);
}

void OrvInputAndOrvOutput::SetElems(int count, int* connectivities, ElemType elementType,
                                    int numberOfNodesByElement, ORVML_TYPE_OF_ENTITY entity) {
  NewArray<ElemType> shapes = makeOneEntryArray(elementType);
  NewArray<int> nodesPerCell = makeOneEntryArray(numberOfNodesByElement);
  NewArray<int> cellsPerGroup = makeOneEntryArray(count);
  SetElems(count, connectivities, 1, shapes.get(), nodesPerCell.get(), cellsPerGroup.get(), entity);
  Elems* elems = GetGenericElems(entity);
  if (elems == nullptr) {
    return;
  }
  // Contract: the flag is cleared on whatever container exists, also when nothing was stored in it.
  elems->typeArraysOwnedByCaller = false;
  if (elems->elementTypes == shapes.get()) {
    elems->groupArraysMadeByLibrary = true;
    (void)shapes.release();
    (void)nodesPerCell.release();
    (void)cellsPerGroup.release();
  }
}

OML_AttributesVector* OrvInputAndOrvOutput::attributesOf(
    ORVML_TYPE_OF_ENTITY entity) const noexcept {
  if (entity == ORVML_NODES) {
    return nodes == nullptr ? nullptr : &nodes->attributes;
  }
  Elems* elems = GetGenericElems(entity);
  return elems == nullptr ? nullptr : &elems->attributes;
}

}  // namespace orvml_io
