#pragma once

#include "communicator.h"
#include "dealt_cells.h"
#include "node_use.h"
#include "slice_cells.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// Which rank each cell of a lower dimension goes to: the lowest that owns a dealt cell with all of
/// its nodes, as an element has those of its faces; where none does, the owner of its lowest node.
/// One without nodes stays here. Collective.
///
/// @param lower    those of this rank's slice
/// @param offsets  where the nodes of each slice begin, and the total
/// @param use      of the nodes of this rank's slice by the dealt cells
/// @param dealt    the cells that this rank owns
[[nodiscard]] std::vector<int> ownersOfLowerCells(const Communicator& comm, const SliceCells& lower,
                                                  std::span<const std::int64_t> offsets,
                                                  const NodeUse& use, const DealtCells& dealt);

}  // namespace orvml::parallel::detail
