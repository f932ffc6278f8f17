#pragma once

#include <orvml/view.hpp>

#include "outline.h"

#include <array>
#include <string>
#include <vector>

namespace orvml::parallel::detail {

/// The arrays of some nodes, or some cells of one kind, that a rank owns.
struct OwnedEntity {
  std::vector<double> coordinates;   ///< of nodes: [nodes x dimension]
  std::vector<GroupOutline> groups;  ///< of cells: those that are here
  std::vector<int> nodeIndices;      ///< of cells: group after group
  std::vector<Values> attributes;    ///< in the order of the outline
};

/// A part of a document on one rank: an outline, which says what the whole is like, and the arrays
/// of this part.
class OwnedParts {
 public:
  OwnedParts() = default;
  explicit OwnedParts(DocumentOutline outline);

  [[nodiscard]] const DocumentOutline& outline() const noexcept { return outline_; }
  [[nodiscard]] OwnedEntity& of(Entity entity) noexcept {
    return entities_[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const OwnedEntity& of(Entity entity) const noexcept {
    return entities_[static_cast<std::size_t>(entity)];
  }

  /// A view of this part, which borrows from it. Every part of a document has its groups of cells,
  /// also those that have no cell here.
  [[nodiscard]] DocumentView view() const;

 private:
  [[nodiscard]] Attributes attributesOf(Entity entity) const;
  [[nodiscard]] CellsView cellsOf(Entity entity) const;

  DocumentOutline outline_;
  std::array<OwnedEntity, 4> entities_;
};

/// An empty array of ints or doubles, or one of zeros.
[[nodiscard]] Values makeValues(bool areInts, std::size_t size = 0);

/// A named vector that borrows values.
[[nodiscard]] Attribute attributeOf(const std::string& name, const Values& values,
                                    bool mustBeTransmitted);

}  // namespace orvml::parallel::detail
