#pragma once

#include <orvml/view.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvml_report {

/// A group of cells, and the number that the first one has in the document.
struct StoredGroup {
  orvml::CellGroup cells;
  int firstNumber = 0;
  std::size_t firstIndex = 0;  ///< among the stored cells
};

/// The cells of a document of which the nodes are known. Of others a tolerant reader found the
/// number alone, and a few bytes of a file can claim billions of them: whatever has a value for
/// each cell has one for these only.
class StoredCells {
 public:
  explicit StoredCells(const orvml::CellsView& cells);

  /// They alone, without attributes.
  [[nodiscard]] const orvml::CellsView& cells() const noexcept { return cells_; }
  /// The groups of them.
  [[nodiscard]] std::span<const StoredGroup> groups() const noexcept { return groups_; }

  /// How many cells the document has beside them.
  [[nodiscard]] std::int64_t claimed() const noexcept { return claimed_; }

  /// Which of these cells has a number of the document, which has to be that of one.
  [[nodiscard]] std::size_t indexOf(int number) const noexcept;

 private:
  orvml::CellsView cells_;
  std::int64_t claimed_ = 0;
  std::vector<StoredGroup> groups_;
};

/// The cells of all kinds of a document.
struct StoredMesh {
  explicit StoredMesh(const orvml::DocumentView& document)
      : edges(document.edges()), faces(document.faces()), elements(document.elements()) {}

  [[nodiscard]] const StoredCells& of(orvml::Entity entity) const noexcept {
    return entity == orvml::Entity::edges   ? edges
           : entity == orvml::Entity::faces ? faces
                                            : elements;
  }

  StoredCells edges;
  StoredCells faces;
  StoredCells elements;
};

}  // namespace orvml_report
