#pragma once

#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/memory_watch.h"

#include <array>
#include <vector>

namespace orvml_io_tests {

/// The arrays of one kind of element as a caller makes them: with new[].
struct CellArrays {
  int* connectivities;
  ElemType* shapes;
  int* nodesPerCell;
  int* cellsPerGroup;
};

/// The blocks of one container of a document, as the document held them at a moment.
struct HeldBlocks {
  std::vector<const void*> arrays;       // coordinates or connectivities
  std::vector<const void*> groupArrays;  // none for nodes
  std::vector<const void*> attributes;
};

/// Collects the blocks of the container of a kind.
HeldBlocks blocksOf(void* handle, ORVML_TYPE_OF_ENTITY entity);
/// Collects the blocks of all four containers.
HeldBlocks everyBlockOf(void* handle);
/// Collects the blocks of the vector parameters.
std::vector<const void*> vectorParametersOf(void* handle);

/// Counts the blocks of a list that were released with array delete.
std::size_t arrayDeleted(const ReleasedBlocks& released, const std::vector<const void*>& blocks);
/// Counts the blocks of a list that were released with `free`.
std::size_t freed(const ReleasedBlocks& released, const std::vector<const void*>& blocks);

inline constexpr std::array<ORVML_TYPE_OF_ENTITY, 4> kEveryEntity = {ORVML_NODES, ORVML_EDGES,
                                                                     ORVML_FACES, ORVML_ELEMENTS};

/// A document made by a constructor, with nodes, edges, faces and volume elements in type groups,
/// one attribute on each, and parameters. Its arrays come from new[], so that clearing functions
/// may be called. It records what is released, and what is left allocated it releases at the end.
class FilledDocument {
 public:
  FilledDocument();
  FilledDocument(const FilledDocument&) = delete;
  FilledDocument& operator=(const FilledDocument&) = delete;
  FilledDocument(FilledDocument&&) = delete;
  FilledDocument& operator=(FilledDocument&&) = delete;
  ~FilledDocument();

  [[nodiscard]] void* handle() const noexcept { return document_.get(); }
  /// The variable itself, for functions that take a handle by reference.
  [[nodiscard]] void*& out() noexcept { return document_.out(); }
  [[nodiscard]] const ReleasedBlocks& released() const noexcept { return released_; }
  [[nodiscard]] const double* coords() const noexcept { return coords_; }
  [[nodiscard]] const CellArrays& cells(ORVML_TYPE_OF_ENTITY entity) const {
    return cells_.at(static_cast<std::size_t>(entity) - 1);
  }

 private:
  double* coords_;
  std::array<CellArrays, 3> cells_;  // edges, faces, volume elements
  std::vector<void*> attributes_;
  Handle document_;
  ReleasedBlocks released_;
};

}  // namespace orvml_io_tests
