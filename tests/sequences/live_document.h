#pragma once

#include "sequences/caller_memory.h"
#include "sequences/document_model.h"

#include <string>

namespace orvml_io_tests {

/// A document and what it must hold. Whoever made it deletes it.
struct LiveDocument {
  void* handle = nullptr;
  DocumentModel model;
  std::string label;                        // in the list of calls
  const char* moduleNameAddress = nullptr;  // stays the same while the document lives
  const char* moduleFormatAddress = nullptr;

  LiveDocument(void* document, DocumentModel expected, std::string name);
};

/// Notes where the arrays and blocks lie that the library made for a document, so that it can be
/// expected that they stay there. Those that are known already are left as they are.
void noteAddresses(LiveDocument& document);

/// Expects that a document holds what it must: whatever the exported functions answer about it, the
/// kinds and names that it does not have included.
void expectState(const LiveDocument& document);

/// Expects the neutral answers for a null handle of the functions that accept one.
void expectNullHandleState();

/// Puts the arrays of cells into arrays of the caller.
void putIntoArrays(CellsModel& cells, CallerMemory& memory);

/// Makes a document that holds what the model says, in arrays of the caller's memory.
LiveDocument build(const DocumentModel& model, CallerMemory& memory);

/// Hands over to the memory what deleting a document leaves allocated: the attribute blocks, when
/// the document was made by a constructor.
void takeLeftovers(const LiveDocument& document, CallerMemory& memory);

/// Hands over to the memory the group arrays of a container that the library made: whoever got them
/// may still read them when the container no longer refers to them.
void takeGroupArraysOfTheLibrary(const CellsModel& cells, CallerMemory& memory);

/// Names that sequences give to parameters and attributes. The last ones cannot be written.
const std::vector<std::string>& commonNames();
inline constexpr int kUnwritableNames = 2;

}  // namespace orvml_io_tests
