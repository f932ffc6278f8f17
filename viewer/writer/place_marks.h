#pragma once

#include <orvml/view.hpp>

#include "stored_cells.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvml_report {

/// What a node or cell is to the other document.
enum class Mark : std::uint8_t { same = 0, otherValues = 1, onlyHere = 2 };

/// The marks of all nodes and of all stored cells of a document, each kind in its order.
struct PlaceMarks {
  std::array<std::vector<std::uint8_t>, 4> of;  // by Entity

  [[nodiscard]] const std::vector<std::uint8_t>& operator[](orvml::Entity entity) const noexcept {
    return of[static_cast<std::size_t>(entity)];
  }
};

/// Compares two meshes by where things are, whatever their numbers. Nodes know each other by equal
/// coordinates, cells by their shape and the set of the places of their nodes; of several at one
/// place each has one partner at most, in the order of their numbers. Documents of the plane have
/// z = 0. Values are other ones where an attribute differs, or is in one document alone.
[[nodiscard]] std::array<PlaceMarks, 2> placeMarksOf(
    const std::array<const orvml::DocumentView*, 2>& documents,
    const std::array<const StoredMesh*, 2>& stored);

}  // namespace orvml_report
