#pragma once

#include <orvml/view.hpp>
#include <orvml/vtk_cells.hpp>

#include "packed_arrays.h"
#include "stored_cells.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvml_report {

/// Where the nodes of a document lie.
class NodePlaces {
 public:
  explicit NodePlaces(const orvml::NodesView& nodes);

  /// How many nodes have coordinates that are all finite.
  [[nodiscard]] std::int64_t numberPlaced() const noexcept { return numberPlaced_; }
  [[nodiscard]] bool areAllPlaced() const noexcept { return numberPlaced_ == size_; }
  [[nodiscard]] std::int64_t size() const noexcept { return size_; }

  /// Whether there is a node of that index.
  [[nodiscard]] bool has(int node) const noexcept { return node >= 0 && node < size_; }
  /// Whether it has a place, which nodes that there are not have none of.
  [[nodiscard]] bool isPlaced(int node) const noexcept;
  /// Of a node with a place.
  [[nodiscard]] Point operator[](int node) const noexcept;

 private:
  std::span<const double> coordinates_;
  std::int64_t size_ = 0;
  std::size_t dimension_ = 0;
  std::int64_t numberPlaced_ = 0;
};

/// Cells of one form, of which each node is there and has a place.
struct DrawnGroup {
  orvml::CellForm form;
  std::span<const int> lent;  ///< of the document, where these are its cells as they are
  std::vector<int> own;       ///< else

  /// `[cells x nodes of the form]`, nodes of the document.
  [[nodiscard]] std::span<const int> nodes() const noexcept { return own.empty() ? lent : own; }
  [[nodiscard]] std::size_t size() const noexcept {
    return nodes().size() / static_cast<std::size_t>(form.nodesPerCell);
  }
};

/// Cells of one kind that are drawn.
struct DrawnCells {
  orvml::Entity entity = orvml::Entity::faces;
  bool isSkin = false;  ///< whether they are the outer faces of what they are called by
  std::vector<DrawnGroup> groups;
  /// The cell of the document that each one is or belongs to; none where that is 0, 1, 2, ...
  std::optional<std::vector<int>> numbers;
  std::vector<std::uint8_t> outer;  ///< of elements: bit i says that side i is outside

  [[nodiscard]] std::size_t size() const noexcept;
  [[nodiscard]] int numberOf(std::size_t cell) const noexcept {
    return numbers ? (*numbers)[cell] : static_cast<int>(cell);
  }
};

/// The cells of a kind that a page can draw: lines, faces with linear parts, and elements with
/// faces. Notes tell how many it cannot, and why.
[[nodiscard]] DrawnCells drawableCells(orvml::Entity entity, const StoredCells& stored,
                                       const NodePlaces& places, std::vector<std::string>& notes);

}  // namespace orvml_report
