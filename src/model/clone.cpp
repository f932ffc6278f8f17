// The deep copy of a document: CopyFromOther of the document, the nodes and the elements.
#include "model/document.h"

#include <algorithm>
#include <cstring>

namespace orvml_io {

namespace {

/// Copies an array. Values that the source should have and lacks are missing in the copy too; an
/// array of no values is an array all the same.
template <class T>
NewArray<T> copyArray(const T* values, long long length) {
  if (length > 0 && values == nullptr) {
    return nullptr;
  }
  NewArray<T> copy = makeNewArray<T>(length);
  std::copy_n(values, std::max(length, 0LL), copy.get());
  return copy;
}

/// Stores the container before it is filled, so that the document releases what was copied so far
/// when memory runs out.
int copyElemsInto(Elems*& destination, const Elems* source) {
  if (source == nullptr) {
    return 0;
  }
  destination = std::make_unique<Elems>().release();
  return destination->CopyFromOther(source);
}

}  // namespace

int Nodes::CopyFromOther(const Nodes* other, int dimension) {
  if (other->numberOfNodes == 0) {
    return 0;
  }
  if (other->coords != nullptr) {
    coordsLength = other->heldCoordinates(dimension);
    coords = copyArray(other->coords, coordsLength).release();
  }
  numberOfNodes = other->numberOfNodes;
  return attributes.CopyFromOther(other->attributes);
}

int Elems::CopyFromOther(const Elems* other) {
  const int groups = other->numberOfElementTypes;
  NewArray<int> counts = copyArray(other->numberOfElementsByType, groups);
  NewArray<ElemType> shapes = copyArray(other->elementTypes, groups);
  NewArray<int> nodeCounts = copyArray(other->numberOfNodesByElement, groups);
  NewArray<int> nodeIndices = copyArray(other->connectivities, other->connectivityLength());

  numberOfElements = other->numberOfElements;
  numberOfElementTypes = groups;
  numberOfElementsByType = counts.release();
  elementTypes = shapes.release();
  numberOfNodesByElement = nodeCounts.release();
  connectivities = nodeIndices.release();
  typeArraysOwnedByCaller = false;
  groupArraysMadeByLibrary = true;
  return attributes.CopyFromOther(other->attributes);
}

int OrvInputAndOrvOutput::CopyFromOther(const OrvInputAndOrvOutput* source) {
  std::memcpy(fileFormatVersion, source->fileFormatVersion, sizeof fileFormatVersion);
  std::memcpy(moduleName, source->moduleName, sizeof moduleName);
  std::memcpy(moduleFormatVersion, source->moduleFormatVersion, sizeof moduleFormatVersion);
  std::memcpy(ioCreator, source->ioCreator, sizeof ioCreator);
  meshDimension = source->meshDimension;
  CopyNodesFromOther(source->nodes);
  CopyElemsFromOther(source->elements);
  CopyFacesFromOther(source->faces);
  CopyEdgesFromOther(source->edges);
  CopyParametersFromOther(source);
  // Last, because a document that owns its arrays releases the copies when memory runs out.
  arraysOwnedByCaller = source->arraysOwnedByCaller;
  return 0;
}

int OrvInputAndOrvOutput::CopyNodesFromOther(const Nodes* source) {
  if (source == nullptr) {
    return 0;
  }
  nodes = std::make_unique<Nodes>().release();
  return nodes->CopyFromOther(source, meshDimension);
}

int OrvInputAndOrvOutput::CopyElemsFromOther(const Elems* source) {
  return copyElemsInto(elements, source);
}

int OrvInputAndOrvOutput::CopyFacesFromOther(const Elems* source) {
  return copyElemsInto(faces, source);
}

int OrvInputAndOrvOutput::CopyEdgesFromOther(const Elems* source) {
  return copyElemsInto(edges, source);
}

int OrvInputAndOrvOutput::CopyParametersFromOther(const OrvInputAndOrvOutput* source) {
  if (source->parametersScalar.count() == 0) {
    // Contract: vector parameters travel with scalar ones only; callers rely on the copy of a
    // document without scalar parameters having none at all.
    return 0;
  }
  parametersScalar = OML_AttributesScalar<double>(source->parametersScalar);
  return parametersVector.CopyFromOther(source->parametersVector);
}

}  // namespace orvml_io
