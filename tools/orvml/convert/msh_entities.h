#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/placed_groups.h"

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace orvml_tool {

/// The smallest box around some nodes, parallel to the axes. Coordinates that are not finite do not
/// count.
struct MshBox {
  void add(std::span<const double> point) noexcept;
  /// Both corners are the origin for a box around nothing.
  [[nodiscard]] std::array<double, 3> least() const noexcept;
  [[nodiscard]] std::array<double, 3> greatest() const noexcept;

 private:
  std::array<std::optional<std::pair<double, double>>, 3> axes_;
};

/// The entities of Gmsh that the cells of a document belong to: one for each value of an attribute,
/// with that value as its tag where it is positive, else one for each container and dimension.
class MshEntities {
 public:
  /// @param attribute  of ints; empty: none. Throws Refusal when no container has it, and when it
  /// is
  ///                   none of entities.
  MshEntities(const orvml::DocumentView& document, std::span<const PlacedGroup> groups,
              const std::string& attribute, ConversionReport& report);

  /// By dimension and tag.
  using Key = std::pair<int, int>;
  [[nodiscard]] const std::map<Key, MshBox>& all() const noexcept { return all_; }
  /// Whether they are physical groups, too.
  [[nodiscard]] bool arePhysical() const noexcept { return !attribute_.empty(); }
  /// One of the greatest dimension, on which all nodes are said to lie.
  [[nodiscard]] Key ofNodes() const { return all_.rbegin()->first; }

  /// Calls `visit(key, first, cells)` for all consecutive cells of a group that are of one entity.
  template <class Visit>
  void forEachBlock(const PlacedGroup& placed, Visit visit) const {
    const auto cells = static_cast<std::size_t>(placed.group.size());
    const auto values = valuesOf(placed);
    for (std::size_t first = 0; first < cells;) {
      std::size_t last = values.empty() ? cells : first + 1;
      while (last < cells && values[last] == values[first]) {
        ++last;
      }
      visit(keyOf(placed, values, first), first, last - first);
      first = last;
    }
  }

 private:
  [[nodiscard]] std::span<const int> valuesOf(const PlacedGroup& placed) const;
  [[nodiscard]] Key keyOf(const PlacedGroup& placed, std::span<const int> values,
                          std::size_t cell) const;
  void requireAttribute(std::span<const PlacedGroup> groups) const;
  void takeValues(const PlacedGroup& placed);
  void nameOthers(const PlacedGroup& placed, ConversionReport& report);
  void requireFew(const PlacedGroup& placed) const;
  int addFree(int dimension);
  void addBoxes(const PlacedGroup& placed);

  const orvml::DocumentView& document_;
  std::string attribute_;
  std::map<Key, MshBox> all_;
  std::array<int, 4> nextTag_ = {1, 1, 1, 1};  // by dimension: no tag below is free
  std::map<Key, int> tagOfValue_;              // of values that are no tags, by dimension and value
  std::map<std::pair<int, orvml::Entity>, int> tagOfContainer_;
};

}  // namespace orvml_tool
