#pragma once

#include <orvml/view.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvml::detail {

/// The entities of a mesh, by which the arrays of a rescued document are indexed.
inline constexpr std::array<Entity, 4> kEntities = {Entity::nodes, Entity::edges, Entity::faces,
                                                    Entity::elements};
inline constexpr std::array<Entity, 3> kKindsOfCells = {Entity::edges, Entity::faces,
                                                        Entity::elements};

/// A named vector that owns its values.
struct RescuedVector {
  std::string name;
  std::variant<std::vector<int>, std::vector<double>> values;
  bool mustBeTransmitted = false;

  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] Attribute view() const;
};

/// Cells of one shape.
struct RescuedGroup {
  Shape shape = Shape::none;
  int nodesPerCell = 0;
  std::int64_t cells = 0;
  std::vector<int> nodeIndices;  // [cells x nodesPerCell]
  bool isDropped = false;        // whether none of its cells is left, so that it is no group either
};

/// The nodes, or the cells of one kind.
struct RescuedPart {
  std::vector<RescuedGroup> groups;       // of cells alone
  std::vector<RescuedVector> attributes;  // one value per node or cell in each
  /// What the file counted each of those that are left as; empty while none has gone.
  std::vector<std::int64_t> numbers;
};

/// What was read of a document, to be made sound. It owns all it holds.
class RescuedDocument {
 public:
  Kind kind = Kind::input;
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string creator;
  int dimension = 0;
  std::vector<double> coordinates;  // [nodes x dimension]
  std::vector<std::pair<std::string, double>> parameters;
  std::vector<RescuedVector> vectorParameters;

  [[nodiscard]] RescuedPart& part(Entity entity) noexcept {
    return parts_[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const RescuedPart& part(Entity entity) const noexcept {
    return parts_[static_cast<std::size_t>(entity)];
  }

  /// How many nodes or cells there are.
  [[nodiscard]] std::int64_t size(Entity entity) const noexcept;

  /// Whether there are neither nodes, cells, parameters nor vectors.
  [[nodiscard]] bool isEmpty() const noexcept;

  /// What the file counted a node or cell as.
  [[nodiscard]] std::int64_t numberOf(Entity entity, std::int64_t index) const noexcept;

  /// Drops nodes or cells, with their values of the attributes. Cells that name one of the dropped
  /// nodes have to be dropped before; the others follow the new numbers.
  ///
  /// @param isDropped  [size(entity)]
  void drop(Entity entity, const std::vector<bool>& isDropped);

  /// Drops all nodes or cells of a kind, with their attributes.
  void dropAll(Entity entity);

  /// What a view is made from; valid until this changes.
  [[nodiscard]] DocumentParts view() const;

 private:
  void dropNodes(const std::vector<bool>& isDropped);
  void dropCells(RescuedPart& cells, const std::vector<bool>& isDropped);

  std::array<RescuedPart, kEntities.size()> parts_;
};

}  // namespace orvml::detail
