#pragma once

#include "owned_parts.h"
#include "selection.h"

#include <array>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// A slice: what is here, and which part of the whole that is.
class SliceContent {
 public:
  SliceContent(DocumentOutline outline, int rank, int ranks);

  OwnedParts parts;
  Range nodes;
  std::array<std::vector<Range>, 4> groups;  ///< in the order of Entity; none for nodes
};

}  // namespace orvml::parallel::detail
