// The deep copy of a document: CopyFromOther of the document, the nodes and the elements.
#include "model/document.h"

#include <algorithm>
#include <cstring>

namespace orvml_io {

namespace {

std::size_t bytesOf(const OML_AttributesVector& vectors) {
  std::size_t bytes = 0;
  for (const auto& [name, entry] : vectors) {
    const std::size_t valueBytes = entry.code == kIntCode ? sizeof(int) : sizeof(double);
    bytes += static_cast<std::size_t>(entry.length) * valueBytes;
  }
  return bytes;
}

std::size_t bytesOf(const Elems* elems) {
  return elems == nullptr ? 0
                          : static_cast<std::size_t>(elems->connectivityLength()) * sizeof(int) +
                                bytesOf(elems->attributes);
}

std::size_t bytesOf(const Nodes* nodes, int dimension) {
  return nodes == nullptr
             ? 0
             : static_cast<std::size_t>(nodes->heldCoordinates(dimension)) * sizeof(double) +
                   bytesOf(nodes->attributes);
}

/// About what the large arrays of a copy need; nothing but speed depends on it.
std::size_t bytesOfMesh(const OrvInputAndOrvOutput& document) {
  return bytesOf(document.nodes, document.meshDimension) + bytesOf(document.edges) +
         bytesOf(document.faces) + bytesOf(document.elements);
}

/// Copies an array. Values that the source should have and lacks are missing in the copy too; an
/// array of no values is an array all the same.
template <class T>
NewArray<T> copyArray(const T* values, long long length, FreshMemory* operation) {
  if (length > 0 && values == nullptr) {
    return nullptr;
  }
  NewArray<T> copy = makeNewArray<T>(length, operation);
  std::copy_n(values, std::max(length, 0LL), copy.get());
  return copy;
}

/// Stores the container before it is filled, so that the document releases what was copied so far
/// when memory runs out.
int copyElemsInto(Elems*& destination, const Elems* source, FreshMemory* operation) {
  if (source == nullptr) {
    return 0;
  }
  destination = std::make_unique<Elems>().release();
  return destination->CopyFromOther(source, operation);
}

}  // namespace

int Nodes::CopyFromOther(const Nodes* other, int dimension, FreshMemory* operation) {
  if (other->numberOfNodes == 0) {
    return 0;
  }
  if (other->coords != nullptr) {
    coordsLength = other->heldCoordinates(dimension);
    coords = copyArray(other->coords, coordsLength, operation).release();
  }
  numberOfNodes = other->numberOfNodes;
  return attributes.CopyFromOther(other->attributes, operation);
}

int Elems::CopyFromOther(const Elems* other, FreshMemory* operation) {
  const int groups = other->numberOfElementTypes;
  NewArray<int> counts = copyArray(other->numberOfElementsByType, groups, operation);
  NewArray<ElemType> shapes = copyArray(other->elementTypes, groups, operation);
  NewArray<int> nodeCounts = copyArray(other->numberOfNodesByElement, groups, operation);
  NewArray<int> nodeIndices =
      copyArray(other->connectivities, other->connectivityLength(), operation);

  numberOfElements = other->numberOfElements;
  numberOfElementTypes = groups;
  numberOfElementsByType = counts.release();
  elementTypes = shapes.release();
  numberOfNodesByElement = nodeCounts.release();
  connectivities = nodeIndices.release();
  typeArraysOwnedByCaller = false;
  groupArraysMadeByLibrary = true;
  return attributes.CopyFromOther(other->attributes, operation);
}

int OrvInputAndOrvOutput::CopyFromOther(const OrvInputAndOrvOutput* source) {
  std::memcpy(fileFormatVersion, source->fileFormatVersion, sizeof fileFormatVersion);
  std::memcpy(moduleName, source->moduleName, sizeof moduleName);
  std::memcpy(moduleFormatVersion, source->moduleFormatVersion, sizeof moduleFormatVersion);
  std::memcpy(ioCreator, source->ioCreator, sizeof ioCreator);
  meshDimension = source->meshDimension;
  FreshMemory operation(bytesOfMesh(*source));
  CopyNodesFromOther(source->nodes, &operation);
  CopyElemsFromOther(source->elements, &operation);
  CopyFacesFromOther(source->faces, &operation);
  CopyEdgesFromOther(source->edges, &operation);
  CopyParametersFromOther(source, &operation);
  // Last, because a document that owns its arrays releases the copies when memory runs out.
  arraysOwnedByCaller = source->arraysOwnedByCaller;
  return 0;
}

int OrvInputAndOrvOutput::CopyNodesFromOther(const Nodes* source, FreshMemory* operation) {
  if (source == nullptr) {
    return 0;
  }
  nodes = std::make_unique<Nodes>().release();
  return nodes->CopyFromOther(source, meshDimension, operation);
}

int OrvInputAndOrvOutput::CopyElemsFromOther(const Elems* source, FreshMemory* operation) {
  return copyElemsInto(elements, source, operation);
}

int OrvInputAndOrvOutput::CopyFacesFromOther(const Elems* source, FreshMemory* operation) {
  return copyElemsInto(faces, source, operation);
}

int OrvInputAndOrvOutput::CopyEdgesFromOther(const Elems* source, FreshMemory* operation) {
  return copyElemsInto(edges, source, operation);
}

int OrvInputAndOrvOutput::CopyParametersFromOther(const OrvInputAndOrvOutput* source,
                                                  FreshMemory* operation) {
  if (source->parametersScalar.count() == 0) {
    // Contract: vector parameters travel with scalar ones only; callers rely on the copy of a
    // document without scalar parameters having none at all.
    return 0;
  }
  parametersScalar = OML_AttributesScalar<double>(source->parametersScalar);
  return parametersVector.CopyFromOther(source->parametersVector, operation);
}

}  // namespace orvml_io
