#include "model/document.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace orvml_io {

namespace {

/// Deletes a container object. Its store leaves the attribute blocks allocated: deleting a document
/// whose arrays are the caller's must not invalidate the blocks that it handed out.
template <class Container>
void deleteContainer(Container*& container) noexcept {
  const std::unique_ptr<Container> deleted(std::exchange(container, nullptr));
}

/// Empties a container of a document that owns its arrays. A read that failed half-way leaves group
/// arrays behind that DeleteContent takes for the caller's; they are released here.
void releaseElems(Elems& elems) noexcept {
  elems.DeleteContent();
  if (elems.groupArraysMadeByLibrary) {
    elems.DeleteAuxiliarContent();
  }
}

/// Deletes an element container, alone or with its document.
///
/// Contract: of a document whose arrays are the caller's no group array is released, the one-entry
/// arrays of a single-shape setter neither: a caller may have handed them on to another document.
void deleteElems(Elems*& elems, bool arraysOwnedByCaller) noexcept {
  if (elems != nullptr && !arraysOwnedByCaller) {
    releaseElems(*elems);
  }
  deleteContainer(elems);
}

}  // namespace

void copyIdentification(char (&destination)[kIdentificationBytes], const char* text) noexcept {
  const std::size_t length = std::min<std::size_t>(std::strlen(text), kIdentificationBytes - 1);
  std::memmove(destination, text, length);
  destination[length] = '\0';
}

OrvInputAndOrvOutput::~OrvInputAndOrvOutput() {
  if (!arraysOwnedByCaller && nodes != nullptr) {
    nodes->DeleteContent();
  }
  deleteContainer(nodes);
  deleteElems(elements, arraysOwnedByCaller);
  deleteElems(faces, arraysOwnedByCaller);
  deleteElems(edges, arraysOwnedByCaller);
  DeleteParametersContent();
}

void OrvInputAndOrvOutput::DeleteContent() noexcept {
  if (nodes != nullptr) {
    nodes->DeleteContent();
  }
  for (Elems* elems : {elements, faces, edges}) {
    if (elems != nullptr) {
      elems->DeleteContent();
    }
  }
  DeleteParametersContent();
}

void OrvInputAndOrvOutput::DeleteParametersContent() noexcept {
  parametersScalar.clear();
  parametersVector.DeleteAll();
}

void OrvInputAndOrvOutput::DeleteNodes() noexcept {
  if (nodes != nullptr && !arraysOwnedByCaller) {
    nodes->DeleteContent();
  }
  deleteContainer(nodes);
}

void OrvInputAndOrvOutput::DeleteElements() noexcept {
  if (elements != nullptr && elements->groupArraysMadeByLibrary) {
    elements->DeleteAuxiliarContent();
  }
  deleteElems(elements, arraysOwnedByCaller);
}

// Contract: removing faces or edges from a document whose arrays are the caller's keeps the
// one-entry arrays of the single-shape setter allocated, as its deletion does, while removing
// volume elements releases theirs.
void OrvInputAndOrvOutput::DeleteFaces() noexcept { deleteElems(faces, arraysOwnedByCaller); }

void OrvInputAndOrvOutput::DeleteEdges() noexcept { deleteElems(edges, arraysOwnedByCaller); }

}  // namespace orvml_io
