#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/placed_groups.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace orvml_tool {

/// The attributes of one name that edges, faces and elements have, for formats in which all cells
/// of a file have the same arrays.
struct JoinedAttribute {
  std::string_view name;
  bool holdsInts = true;  ///< whether all of them do; else the integers become doubles, exactly
  /// Those of edges, faces and elements, in this order; none where there is no such attribute.
  std::array<std::optional<orvml::Attribute>, 3> ofContainers;

  [[nodiscard]] const std::optional<orvml::Attribute>& of(orvml::Entity container) const {
    return ofContainers[static_cast<std::size_t>(container) - 1];
  }
};

/// The attributes of the containers that some groups are from, by ascending names. Cells without
/// a value are reported as padded.
[[nodiscard]] std::vector<JoinedAttribute> joinedAttributes(const orvml::DocumentView& document,
                                                            std::span<const PlacedGroup> groups,
                                                            ConversionReport& report);

}  // namespace orvml_tool
