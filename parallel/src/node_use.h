#pragma once

#include "communicator.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// Which ranks use which nodes.
struct NodeUse {
  /// Of each node of this rank's slice: the lowest rank that uses it; this rank for one of no use.
  std::vector<int> owners;
  /// Of each node that this rank uses and others too: its number, and each of the other ranks;
  /// ascending.
  std::vector<std::pair<int, int>> others;
};

/// Collective.
///
/// @param offsets  where the nodes of each slice begin, and the total
/// @param used     the nodes that this rank uses, by their numbers in the whole, each once
[[nodiscard]] NodeUse useOfNodes(const Communicator& comm, std::span<const std::int64_t> offsets,
                                 std::span<const int> used);

}  // namespace orvml::parallel::detail
