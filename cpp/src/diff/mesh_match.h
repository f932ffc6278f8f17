#pragma once

#include <orvml/diff.hpp>

#include <vector>

namespace orvml::detail {

/// Which node or cell of the second mesh is the one of the first.
struct EntityMatch {
  std::vector<int> numbering;  ///< for each of the first mesh, the one of the second; -1 for none
  MatchedEntity counts;
};

struct MeshMatch {
  EntityMatch nodes;
  EntityMatch edges;
  EntityMatch faces;
  EntityMatch elements;

  [[nodiscard]] const EntityMatch& of(Entity entity) const noexcept;
};

/// Finds the nodes that lie within a distance of each other, each with one of the other mesh, the
/// nearest first come; and the cells of one shape that have the same nodes in any order. Meshes of
/// different dimensions, or of more than three, have nothing in common.
[[nodiscard]] MeshMatch matchMeshes(const DocumentView& first, const DocumentView& second,
                                    double distance);

}  // namespace orvml::detail
