#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/placed_groups.h"

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

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

/// An entity of Gmsh.
struct MshEntity {
  MshBox box;
  int group = 0;  ///< the tag of the physical group that it is in, where there are some
};

/// The entities of Gmsh that the cells of a document belong to: one for each value of an attribute,
/// with that value as its tag where it is positive, else one for each container and dimension.
///
/// Gmsh takes all cells of one shape in an entity to have as many nodes as the first one, and reads
/// beyond its arrays when they have not. So they are in an entity for each number of nodes.
class MshEntities {
 public:
  /// @param attribute  of ints; empty: none. Throws Refusal when no container has it, and when it
  /// is
  ///                   none of entities.
  MshEntities(const orvml::DocumentView& document, std::span<const PlacedGroup> groups,
              const std::string& attribute, ConversionReport& report);

  /// By dimension and tag.
  using Key = std::pair<int, int>;
  [[nodiscard]] const std::map<Key, MshEntity>& all() const noexcept { return all_; }
  /// Whether they are in physical groups, one for each value.
  [[nodiscard]] bool areGrouped() const noexcept { return !attribute_.empty(); }
  /// One of the greatest dimension, on which all nodes are said to lie.
  [[nodiscard]] Key ofNodes() const { return all_.rbegin()->first; }

  /// Calls `visit(key, first, cells)` for all consecutive cells of a group that are of one entity.
  template <class Visit>
  void forEachBlock(const PlacedGroup& placed, Visit visit) const {
    forEachSet(placed, [&](Key set, std::size_t first, std::size_t cells) {
      visit(keyOf(placed, set), first, cells);
    });
  }

 private:
  /// The same for consecutive cells of one value.
  template <class Visit>
  void forEachSet(const PlacedGroup& placed, Visit visit) const {
    const auto cells = static_cast<std::size_t>(placed.group.size());
    const auto values = valuesOf(placed);
    for (std::size_t first = 0; first < cells;) {
      std::size_t last = values.empty() ? cells : first + 1;
      while (last < cells && values[last] == values[first]) {
        ++last;
      }
      visit(setOf(placed, values, first), first, last - first);
      first = last;
    }
  }

  [[nodiscard]] std::span<const int> valuesOf(const PlacedGroup& placed) const;
  [[nodiscard]] Key setOf(const PlacedGroup& placed, std::span<const int> values,
                          std::size_t cell) const;
  [[nodiscard]] Key keyOf(const PlacedGroup& placed, Key set) const;
  [[nodiscard]] int variantOf(const PlacedGroup& placed) const;

  void requireAttribute(std::span<const PlacedGroup> groups) const;
  void requireFew(const PlacedGroup& placed) const;
  void takeValues(const PlacedGroup& placed);
  void nameOthers(const PlacedGroup& placed, ConversionReport& report);
  int addFree(int dimension);
  void addEntities(const PlacedGroup& placed);
  void addWholeBox();

  const orvml::DocumentView& document_;
  std::string attribute_;
  std::map<orvml::Shape, std::vector<int>> nodeCounts_;  // as they come first
  std::set<Key> taken_;                                  // as tags
  std::array<int, 4> nextTag_ = {1, 1, 1, 1};            // by dimension: no tag below is free
  std::map<Key, int> tagOfValue_;                        // of values that are no tags
  std::map<std::pair<int, orvml::Entity>, int> tagOfContainer_;  // by dimension
  std::map<std::pair<Key, int>, int> tagOfVariant_;              // by set and number of nodes
  std::map<Key, MshEntity> all_;
};

}  // namespace orvml_tool
