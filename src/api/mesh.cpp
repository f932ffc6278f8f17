// Exported functions of the mesh: each tests the handle and forwards to the document. The results
// for a null handle differ from function to function; they are promises and listed in the header.
#include "model/document.h"
#include "orvml_io.h"

using orvml_io::documentOf;

void* OrvML_IO_NewOrvInputHandleWithNodes(const char* moduleName, const char* moduleFormatVersion,
                                          const char* ioCreator, int meshDimension,
                                          int numberOfNodes, const double* coords) {
  void* handle =
      OrvML_IO_NewOrvInputHandle(moduleName, moduleFormatVersion, ioCreator, meshDimension);
  std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document(documentOf(handle));
  document->SetNodesCoords(numberOfNodes, coords);
  return orvml_io::handleOf(document.release());
}

void* OrvML_IO_NewOrvInputHandleWithFaces(const char* moduleName, const char* moduleFormatVersion,
                                          const char* ioCreator, int meshDimension,
                                          int numberOfNodes, const double* coords,
                                          int numberOfFaces, int* connectivities,
                                          ElemType elementType, int numberOfNodesByElement) {
  void* handle = OrvML_IO_NewOrvInputHandleWithNodes(moduleName, moduleFormatVersion, ioCreator,
                                                     meshDimension, numberOfNodes, coords);
  std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document(documentOf(handle));
  document->SetElems(numberOfFaces, connectivities, elementType, numberOfNodesByElement,
                     ORVML_FACES);
  return orvml_io::handleOf(document.release());
}

void* OrvML_IO_NewOrvInputHandleWithVolumeElements(
    const char* moduleName, const char* moduleFormatVersion, const char* ioCreator,
    int meshDimension, int numberOfNodes, double* coords, int numberOfElements, int* connectivities,
    ElemType elementType, int numberOfNodesByElement) {
  void* handle = OrvML_IO_NewOrvInputHandleWithNodes(moduleName, moduleFormatVersion, ioCreator,
                                                     meshDimension, numberOfNodes, coords);
  std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document(documentOf(handle));
  document->SetElems(numberOfElements, connectivities, elementType, numberOfNodesByElement,
                     ORVML_ELEMENTS);
  return orvml_io::handleOf(document.release());
}

void OrvML_IO_SetNodesCoords(void* handle, int numberOfNodes, const double* coords) {
  if (handle != nullptr) {
    documentOf(handle)->SetNodesCoords(numberOfNodes, coords);
  }
}

int OrvML_IO_GetNodesCoords(void* handle, double*& coords) {
  coords = handle == nullptr ? nullptr : documentOf(handle)->GetNodesCoords();
  return handle == nullptr ? 1 : 0;
}

void OrvML_IO_SetNumberOfNodes(void* handle, int numberOfNodes) {
  if (handle != nullptr) {
    documentOf(handle)->SetNumberOfNodes(numberOfNodes);
  }
}

int OrvML_IO_GetNumberOfNodes(void* handle) {
  return handle == nullptr ? 0 : documentOf(handle)->GetNumberOfNodes();
}

int OrvML_IO_GetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity, int*& connectivities) {
  return handle == nullptr ? 0 : documentOf(handle)->GetElems(entity, connectivities);
}

int OrvML_IO_GetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity, int*& connectivities,
                                ElemType*& elementTypes, int*& numberOfNodesByElement,
                                int*& numberOfElementsByType) {
  if (handle == nullptr) {
    return 0;
  }
  return documentOf(handle)->GetElems(entity, connectivities, elementTypes, numberOfNodesByElement,
                                      numberOfElementsByType);
}

int OrvML_IO_GetNumberOfGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  return handle == nullptr ? -1 : documentOf(handle)->GetNumberOfElems(entity);
}

int OrvML_IO_GetNumberOfGenericElementTypes(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  return handle == nullptr ? -1 : documentOf(handle)->GetNumberOfElementTypes(entity);
}

int OrvML_IO_GetNNodeGenericElement(void* handle, ORVML_TYPE_OF_ENTITY entity, int typeIndex) {
  return handle == nullptr ? -1 : documentOf(handle)->GetNNodeElement(entity, typeIndex);
}

ElemType OrvML_IO_GetGenericElementType(void* handle, ORVML_TYPE_OF_ENTITY entity, int typeIndex) {
  return handle == nullptr ? NONE : documentOf(handle)->GetElementType(entity, typeIndex);
}

void OrvML_IO_SetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity, int numberOfElements,
                                 int* connectivities, int numberOfElementTypes,
                                 ElemType* elementTypes, int* numberOfNodesByElement,
                                 int* numberOfElementsByType) {
  if (handle != nullptr) {
    documentOf(handle)->SetElems(numberOfElements, connectivities, numberOfElementTypes,
                                 elementTypes, numberOfNodesByElement, numberOfElementsByType,
                                 entity);
  }
}

void OrvML_IO_SetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity, int numberOfElements,
                                 int* connectivities, ElemType elementType,
                                 int numberOfNodesByElement) {
  if (handle != nullptr) {
    documentOf(handle)->SetElems(numberOfElements, connectivities, elementType,
                                 numberOfNodesByElement, entity);
  }
}

int OrvML_IO_GetEdges(void* handle, int*& connectivities) {
  return OrvML_IO_GetGenericElements(handle, ORVML_EDGES, connectivities);
}

int OrvML_IO_GetEdges(void* handle, int*& connectivities, ElemType*& elementTypes,
                      int*& numberOfNodesByElement, int*& numberOfElementsByType) {
  return OrvML_IO_GetGenericElements(handle, ORVML_EDGES, connectivities, elementTypes,
                                     numberOfNodesByElement, numberOfElementsByType);
}

int OrvML_IO_GetNumberOfEdges(void* handle) {
  // Contract: 0 for a null handle, while the generic count answers -1.
  return handle == nullptr ? 0 : documentOf(handle)->GetNumberOfElems(ORVML_EDGES);
}

int OrvML_IO_GetNumberOfElementTypesInEdges(void* handle) {
  return OrvML_IO_GetNumberOfGenericElementTypes(handle, ORVML_EDGES);
}

void OrvML_IO_SetEdges(void* handle, int numberOfElements, int* connectivities,
                       int numberOfElementTypes, ElemType* elementTypes,
                       int* numberOfNodesByElement, int* numberOfElementsByType) {
  OrvML_IO_SetGenericElements(handle, ORVML_EDGES, numberOfElements, connectivities,
                              numberOfElementTypes, elementTypes, numberOfNodesByElement,
                              numberOfElementsByType);
}

void OrvML_IO_SetEdges(void* handle, int numberOfElements, int* connectivities,
                       ElemType elementType, int numberOfNodesByElement) {
  OrvML_IO_SetGenericElements(handle, ORVML_EDGES, numberOfElements, connectivities, elementType,
                              numberOfNodesByElement);
}

int OrvML_IO_GetFaces(void* handle, int*& connectivities) {
  return OrvML_IO_GetGenericElements(handle, ORVML_FACES, connectivities);
}

int OrvML_IO_GetFaces(void* handle, int*& connectivities, ElemType*& elementTypes,
                      int*& numberOfNodesByElement, int*& numberOfElementsByType) {
  return OrvML_IO_GetGenericElements(handle, ORVML_FACES, connectivities, elementTypes,
                                     numberOfNodesByElement, numberOfElementsByType);
}

int OrvML_IO_GetNumberOfFaces(void* handle) {
  // Contract: 0 for a null handle, while the generic count answers -1.
  return handle == nullptr ? 0 : documentOf(handle)->GetNumberOfElems(ORVML_FACES);
}

int OrvML_IO_GetNumberOfElementTypesInFaces(void* handle) {
  return OrvML_IO_GetNumberOfGenericElementTypes(handle, ORVML_FACES);
}

void OrvML_IO_SetFaces(void* handle, int numberOfElements, int* connectivities,
                       int numberOfElementTypes, ElemType* elementTypes,
                       int* numberOfNodesByElement, int* numberOfElementsByType) {
  OrvML_IO_SetGenericElements(handle, ORVML_FACES, numberOfElements, connectivities,
                              numberOfElementTypes, elementTypes, numberOfNodesByElement,
                              numberOfElementsByType);
}

void OrvML_IO_SetFaces(void* handle, int numberOfElements, int* connectivities,
                       ElemType elementType, int numberOfNodesByElement) {
  OrvML_IO_SetGenericElements(handle, ORVML_FACES, numberOfElements, connectivities, elementType,
                              numberOfNodesByElement);
}

int OrvML_IO_GetElements(void* handle, int*& connectivities) {
  return OrvML_IO_GetGenericElements(handle, ORVML_ELEMENTS, connectivities);
}

int OrvML_IO_GetElements(void* handle, int*& connectivities, ElemType*& elementTypes,
                         int*& numberOfNodesByElement, int*& numberOfElementsByType) {
  return OrvML_IO_GetGenericElements(handle, ORVML_ELEMENTS, connectivities, elementTypes,
                                     numberOfNodesByElement, numberOfElementsByType);
}

int OrvML_IO_GetNumberOfElements(void* handle) {
  // Contract: 0 for a null handle, while the generic count answers -1.
  return handle == nullptr ? 0 : documentOf(handle)->GetNumberOfElems(ORVML_ELEMENTS);
}

int OrvML_IO_GetNumberOfElementTypesInElements(void* handle) {
  return OrvML_IO_GetNumberOfGenericElementTypes(handle, ORVML_ELEMENTS);
}

void OrvML_IO_SetElements(void* handle, int numberOfElements, int* connectivities,
                          int numberOfElementTypes, ElemType* elementTypes,
                          int* numberOfNodesByElement, int* numberOfElementsByType) {
  OrvML_IO_SetGenericElements(handle, ORVML_ELEMENTS, numberOfElements, connectivities,
                              numberOfElementTypes, elementTypes, numberOfNodesByElement,
                              numberOfElementsByType);
}

void OrvML_IO_SetElements(void* handle, int numberOfElements, int* connectivities,
                          ElemType elementType, int numberOfNodesByElement) {
  OrvML_IO_SetGenericElements(handle, ORVML_ELEMENTS, numberOfElements, connectivities, elementType,
                              numberOfNodesByElement);
}
