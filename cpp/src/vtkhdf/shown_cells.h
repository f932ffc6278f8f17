#pragma once

#include <orvml/conversion.hpp>
#include <orvml/vtkhdf.hpp>

#include <cstdint>
#include <vector>

namespace orvml::detail {

/// A group of cells that VTK has a type for.
struct ShownGroup {
  Entity entity = Entity::edges;
  CellGroup cells;
  std::int64_t firstCell = 0;   ///< counted among the cells of its kind
  std::int64_t firstIndex = 0;  ///< counted among the node indices of its kind
  std::uint8_t vtkType = 0;
  bool isTurned = false;  ///< whether its nodes are shown in another order
};

/// Consecutive cells, or node indices, of one kind.
struct Stretch {
  Entity entity = Entity::edges;
  std::int64_t first = 0;  ///< counted among those of its kind
  std::int64_t count = 0;
  bool isTurned = false;
};

/// The cells of a document that VTK is shown, in this order.
class ShownCells {
 public:
  /// Adds what is not shown, or turned, to the notes. Throws Code::conversionBadIndex.
  ShownCells(const DocumentView& document, const VtkLinkOptions& options,
             std::vector<ConversionNote>& notes);

  [[nodiscard]] const std::vector<ShownGroup>& groups() const noexcept { return groups_; }
  [[nodiscard]] std::int64_t cells() const noexcept { return cells_; }
  [[nodiscard]] std::int64_t indices() const noexcept { return indices_; }

  /// All cells, and all node indices, in as few stretches as can be.
  [[nodiscard]] std::vector<Stretch> stretchesOfCells() const;
  [[nodiscard]] std::vector<Stretch> stretchesOfIndices() const;

 private:
  void take(const DocumentView& document, Entity entity, bool turnsPrisms,
            std::vector<ConversionNote>& notes);

  std::vector<ShownGroup> groups_;
  std::int64_t cells_ = 0;
  std::int64_t indices_ = 0;
};

}  // namespace orvml::detail
