#pragma once

#include "communicator.h"
#include "owned_parts.h"
#include "routes.h"

#include <array>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// What is known of the nodes, or of the cells of one kind, of a part.
struct PartEntity {
  std::vector<int> numbers;  ///< in the whole document
  std::vector<int> owners;   ///< ranks
  std::vector<int> owned;    ///< how many are owned: of nodes one number, of cells each group's
  Routes fromOwners;         ///< from owners to the copies on other ranks
  Routes toSlice;            ///< from owners to the slices
  /// What exchanges keep their values in, so that only the first of a width needs memory, and how
  /// many bytes of each thing all ranks have agreed on.
  mutable Cargo cargo;
  mutable std::size_t room = 0;
  std::size_t sizeOfSlice = 0;
};

class PartContent {
 public:
  PartContent(Communicator newComm, DocumentOutline outline)
      : comm(std::move(newComm)), parts(std::move(outline)) {}

  [[nodiscard]] PartEntity& of(Entity entity) noexcept {
    return entities_[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const PartEntity& of(Entity entity) const noexcept {
    return entities_[static_cast<std::size_t>(entity)];
  }

  Communicator comm;
  OwnedParts parts;

 private:
  std::array<PartEntity, 4> entities_;
};

}  // namespace orvml::parallel::detail
