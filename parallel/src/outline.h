#pragma once

#include <orvml/view.hpp>

#include "bytes.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvml::parallel::detail {

/// Values that a rank owns.
using Values = std::variant<std::vector<int>, std::vector<double>>;

/// A named vector without its values.
struct VectorOutline {
  std::string name;
  bool holdsInts = false;
  bool mustBeTransmitted = false;
  std::int64_t size = 0;
  std::string object;  ///< absolute path in the file; empty when there is nothing to read
  /// Of a vector that ranks share: on how many of them it has not a value for each node or cell.
  std::int64_t ranksWithAnotherSize = 0;
};

struct GroupOutline {
  int shape = 0;
  int nodesPerCell = 0;
  std::int64_t cells = 0;
};

/// Nodes, or the cells of one kind.
struct EntityOutline {
  std::int64_t size = 0;
  std::vector<GroupOutline> groups;  ///< none for nodes
  std::vector<VectorOutline> attributes;
  std::string object;  ///< the coordinates or the node indices, as above

  [[nodiscard]] std::int64_t numberOfIndices() const noexcept;
};

struct NamedValues {
  std::string name;
  Values values;
};

inline constexpr std::array<Entity, 4> kEntities = {Entity::nodes, Entity::edges, Entity::faces,
                                                    Entity::elements};
inline constexpr std::array<Entity, 3> kCellEntities = {Entity::edges, Entity::faces,
                                                        Entity::elements};

/// A document without the arrays that ranks share: what one rank tells the others of it.
struct DocumentOutline {
  Kind kind = Kind::input;
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string creator;
  int dimension = 0;
  std::array<EntityOutline, 4> entities;  ///< in the order of Entity
  std::vector<std::pair<std::string, double>> parameters;
  std::vector<NamedValues> vectorParameters;

  [[nodiscard]] EntityOutline& of(Entity entity) noexcept {
    return entities[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const EntityOutline& of(Entity entity) const noexcept {
    return entities[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] Identification identification() const noexcept {
    return {moduleName, moduleFormatVersion, creator};
  }

  /// Everything that is counted in nodes, cells and values.
  [[nodiscard]] std::vector<std::int64_t> counts() const;
  /// The same with other counts, as many.
  [[nodiscard]] DocumentOutline withCounts(const std::vector<std::int64_t>& counts) const;

  void pack(ByteWriter& writer) const;
  [[nodiscard]] static DocumentOutline unpacked(ByteReader& reader);
};

/// The outline of what a view shows, with the paths that the file of such a document has, and
/// without parameters: those of most ranks are not asked for.
[[nodiscard]] DocumentOutline outlineOf(const DocumentView& view);

/// Gives an outline copies of the parameters of a view.
void takeParameters(const DocumentView& view, DocumentOutline& outline);

/// The absolute path of the group of an entity in a document's file.
[[nodiscard]] std::string groupPathOf(Kind kind, Entity entity);

}  // namespace orvml::parallel::detail
