#pragma once

#include "communicator.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// A node, by its number in the whole, and a rank that uses it.
using Use = std::pair<int, int>;

/// Which ranks use the nodes of this rank's slice.
struct NodeUse {
  std::vector<Use> users;   ///< ascending
  std::vector<int> owners;  ///< of each node the lowest rank; this one for a node of no use
};

/// Collective.
///
/// @param offsets  where the nodes of each slice begin, and the total
/// @param used     the nodes that this rank uses, by their numbers in the whole, each once
[[nodiscard]] NodeUse useOfNodes(const Communicator& comm, std::span<const std::int64_t> offsets,
                                 std::span<const int> used);

/// Of each node that this rank uses and others too, each of the others; ascending. Collective.
[[nodiscard]] std::vector<Use> otherUsers(const Communicator& comm, const NodeUse& use);

}  // namespace orvml::parallel::detail
