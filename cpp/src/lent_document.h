#pragma once

#include <orvml/view.hpp>

#include "model/document.h"

#include <vector>

namespace orvml::detail {

/// The node indices of all groups of a view, one behind the other: where they lie when they do so,
/// else a copy.
[[nodiscard]] const int* joinedNodeIndices(const CellsView& cells, std::vector<int>& copied);

/// Cells in the form of the core. They borrow the node indices of a view whose groups lie one
/// behind the other, and hold a copy of others.
class LentCells {
 public:
  explicit LentCells(const CellsView& cells);
  LentCells(const LentCells&) = delete;
  LentCells& operator=(const LentCells&) = delete;
  LentCells(LentCells&&) = delete;
  LentCells& operator=(LentCells&&) = delete;
  ~LentCells() = default;

  /// What a document refers to; null without cells, which files do not keep.
  [[nodiscard]] orvml_io::Elems* elems() noexcept {
    return elems_.numberOfElements == 0 ? nullptr : &elems_;
  }

 private:
  std::vector<ElemType> shapes_;
  std::vector<int> nodesPerCell_;
  std::vector<int> cellsPerGroup_;
  std::vector<int> copied_;
  orvml_io::Elems elems_;
};

/// A view in the form of the core, which writes and compares it. It borrows all arrays.
class LentDocument {
 public:
  /// Throws Error for what no file can hold: Code::nameTooLong, Code::nameNotAllowed,
  /// Code::sizesDisagree, Code::textTooLong, Code::wrongDimension, Code::tooManyValues.
  explicit LentDocument(const DocumentView& view);
  LentDocument(const LentDocument&) = delete;
  LentDocument& operator=(const LentDocument&) = delete;
  LentDocument(LentDocument&&) = delete;
  LentDocument& operator=(LentDocument&&) = delete;
  ~LentDocument();

  [[nodiscard]] const orvml_io::OrvInputAndOrvOutput& core() const noexcept { return document_; }

 private:
  void setNodes(const DocumentView& view);

  orvml_io::Nodes nodes_;
  LentCells edges_;
  LentCells faces_;
  LentCells elements_;
  orvml_io::OrvInputAndOrvOutput document_;
};

}  // namespace orvml::detail
