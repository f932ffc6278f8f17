#pragma once

#include <orvml/parallel/distribute.hpp>

#include "communicator.h"
#include "slice_cells.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// The nodes of the whole, of which every rank has some.
struct SliceNodes {
  std::vector<std::int64_t> offsets;  ///< where those of each rank begin, and the total
  std::span<const double> coordinates;
  int dimension = 0;
};

/// Which rank each cell of this rank's slice goes to. Collective.
[[nodiscard]] std::vector<int> partition(const Communicator& comm, const SliceCells& cells,
                                         const SliceNodes& nodes, Method method);

/// The same by the Hilbert curve.
[[nodiscard]] std::vector<int> partitionByCurve(const Communicator& comm, const SliceCells& cells,
                                                const SliceNodes& nodes);

/// The same by PT-Scotch.
[[nodiscard]] std::vector<int> partitionByGraph(const Communicator& comm, const SliceCells& cells,
                                                const SliceNodes& nodes);

/// Which cells each cell of this rank's slice has a face in common with: their places in the list
/// of all cells, those of the ranks one after the other. Where more than two have one face, not all
/// hear of each other: what the graph is for, few faces between parts, needs no more.
struct CellGraph {
  std::vector<int> starts;  ///< where the neighbours of each begin, and where the last end
  std::vector<int> neighbours;
};

/// Collective. Throws Code::tooManyValues on every rank for a graph of more than 32 bits count.
///
/// @param offsetsOfNodes  where the nodes of each slice begin, and the total
[[nodiscard]] CellGraph graphOf(const Communicator& comm, const SliceCells& cells,
                                std::span<const std::int64_t> offsetsOfNodes);

}  // namespace orvml::parallel::detail
