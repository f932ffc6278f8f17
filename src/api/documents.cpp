// Exported functions of the document: creation, copies, deletion, identification, callbacks,
// content.
#include "model/document.h"
#include "orvml_io.h"

#include <cstring>
#include <memory>

using orvml_io::documentOf;
using orvml_io::handleOf;
using orvml_io::inputOf;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;
using orvml_io::OrvOutput;

namespace {

void setOrClear(char (&destination)[orvml_io::kIdentificationBytes], const char* text) {
  orvml_io::copyIdentification(destination, text == nullptr ? "" : text);
}

/// A copy owns every array that it holds, whoever owned those of the source.
template <class Document>
std::unique_ptr<Document> cloneOf(const OrvInputAndOrvOutput& source) {
  auto clone = std::make_unique<Document>();
  clone->arraysOwnedByCaller = false;
  clone->CopyFromOther(&source);
  clone->arraysOwnedByCaller = false;
  return clone;
}

void deleteDocument(void*& handle) {
  const std::unique_ptr<OrvInputAndOrvOutput> deleted(documentOf(handle));
  handle = nullptr;
}

}  // namespace

void* OrvML_IO_NewOrvInputHandle() { return handleOf(std::make_unique<OrvInput>().release()); }

void* OrvML_IO_NewOrvInputHandle(const char* moduleName, const char* moduleFormatVersion,
                                 const char* ioCreator, int meshDimension) {
  auto document = std::make_unique<OrvInput>();
  setOrClear(document->moduleName, moduleName);
  setOrClear(document->moduleFormatVersion, moduleFormatVersion);
  setOrClear(document->ioCreator, ioCreator);
  document->meshDimension = meshDimension;
  return handleOf(document.release());
}

void* OrvML_IO_NewOrvInputHandle(const char* moduleName, const char* moduleFormatVersion,
                                 const char* ioCreator) {
  return OrvML_IO_NewOrvInputHandle(moduleName, moduleFormatVersion, ioCreator, 0);
}

void* OrvML_IO_NewOrvOutputHandle() { return handleOf(std::make_unique<OrvOutput>().release()); }

void* OrvML_IO_NewOrvInputHandle(void* source) {
  if (source == nullptr) {
    return nullptr;
  }
  auto clone = cloneOf<OrvInput>(*documentOf(source));
  if (const OrvInput* input = inputOf(source)) {
    clone->statusCallback = input->statusCallback;
    clone->errorCallback = input->errorCallback;
  }
  return handleOf(clone.release());
}

void* OrvML_IO_NewOrvOutputHandle(void* source) {
  return source == nullptr ? nullptr : handleOf(cloneOf<OrvOutput>(*documentOf(source)).release());
}

void OrvML_IO_DeleteOrvInputHandle(void*& handle) { deleteDocument(handle); }

void OrvML_IO_DeleteOrvOutputHandle(void*& handle) { deleteDocument(handle); }

void OrvML_IO_SetOrvMeshLibraryModuleName(const char* moduleName, void* handle) {
  if (handle != nullptr) {
    setOrClear(documentOf(handle)->moduleName, moduleName);
  }
}

void OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(const char* moduleFormatVersion, void* handle) {
  if (handle != nullptr) {
    setOrClear(documentOf(handle)->moduleFormatVersion, moduleFormatVersion);
  }
}

void OrvML_IO_SetOrvMeshLibraryIOCreator(const char* ioCreator, void* handle) {
  // Contract: a null text keeps the old creator, while the two setters above clear theirs.
  if (handle != nullptr && ioCreator != nullptr) {
    orvml_io::copyIdentification(documentOf(handle)->ioCreator, ioCreator);
  }
}

const char* OrvML_IO_GetOrvMeshLibraryModuleName(void* handle) {
  return handle == nullptr ? nullptr : documentOf(handle)->moduleName;
}

const char* OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(void* handle) {
  return handle == nullptr ? nullptr : documentOf(handle)->moduleFormatVersion;
}

char* OrvML_IO_GetOrvMeshLibraryIOCreator(void* handle, char* ioCreator) {
  if (handle != nullptr) {
    // The signature carries no size; the caller's buffer is as long as the field.
    const char* stored = documentOf(handle)->ioCreator;
    std::memcpy(ioCreator, stored, std::strlen(stored) + 1);
  }
  return ioCreator;
}

int OrvML_IO_GetMeshDimension(void* handle) {
  return handle == nullptr ? -1 : documentOf(handle)->meshDimension;
}

void OrvML_IO_SetMeshDimension(void* handle, int meshDimension) {
  if (handle != nullptr) {
    documentOf(handle)->meshDimension = meshDimension;
  }
}

size_t OrvML_IO_GetNumberOfParameters(void* handle) {
  return handle == nullptr ? 0 : documentOf(handle)->parametersScalar.count();
}

size_t OrvML_IO_GetNumberOfParametersVector(void* handle) {
  return handle == nullptr ? 0 : documentOf(handle)->parametersVector.count();
}

void OrvML_IO_SetCallbackStatus(void*& handle, void* first, void* second) {
  if (OrvInput* input = inputOf(handle)) {
    input->statusCallback = {first, second};
  }
}

void OrvML_IO_GetCallbackStatus(void* const& handle, void*& first, void*& second) {
  if (const OrvInput* input = inputOf(handle)) {
    first = input->statusCallback.first;
    second = input->statusCallback.second;
  }
}

void OrvML_IO_SetCallbackError(void*& handle, void* first, void* second) {
  if (OrvInput* input = inputOf(handle)) {
    input->errorCallback = {first, second};
  }
}

void OrvML_IO_GetCallbackError(void* const& handle, void*& first, void*& second) {
  if (const OrvInput* input = inputOf(handle)) {
    first = input->errorCallback.first;
    second = input->errorCallback.second;
  }
}

void OrvML_IO_DeleteOrvInputContent(void*& handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteContent();
  }
}

void OrvML_IO_DeleteOrvOutputContent(void* handle) { OrvML_IO_DeleteOrvInputContent(handle); }

void OrvML_IO_DeleteParametersContent(void* handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteParametersContent();
  }
}

void OrvML_IO_DeleteNodesContent(void*& handle) {
  if (handle != nullptr && documentOf(handle)->nodes != nullptr) {
    documentOf(handle)->nodes->DeleteContent();
  }
}

void OrvML_IO_DeleteElementsContent(void*& handle) {
  if (handle != nullptr && documentOf(handle)->elements != nullptr) {
    documentOf(handle)->elements->DeleteContent();
  }
}

void OrvML_IO_DeleteFacesContent(void*& handle) {
  if (handle != nullptr && documentOf(handle)->faces != nullptr) {
    documentOf(handle)->faces->DeleteContent();
  }
}

void OrvML_IO_DeleteEdgesContent(void*& handle) {
  if (handle != nullptr && documentOf(handle)->edges != nullptr) {
    documentOf(handle)->edges->DeleteContent();
  }
}

void OrvML_IO_DeleteNodes(void* handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteNodes();
  }
}

void OrvML_IO_DeleteElements(void* handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteElements();
  }
}

void OrvML_IO_DeleteFaces(void* handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteFaces();
  }
}

void OrvML_IO_DeleteEdges(void* handle) {
  if (handle != nullptr) {
    documentOf(handle)->DeleteEdges();
  }
}
