#include "owned_parts.h"

#include <span>
#include <utility>

namespace orvml::parallel::detail {

Values makeValues(bool areInts, std::size_t size) {
  return areInts ? Values(std::vector<int>(size)) : Values(std::vector<double>(size));
}

Attribute attributeOf(const std::string& name, const Values& values, bool mustBeTransmitted) {
  return std::visit(
      [&](const auto& vector) {
        return Attribute(std::string_view(name), std::span(vector.data(), vector.size()),
                         mustBeTransmitted);
      },
      values);
}

OwnedParts::OwnedParts(DocumentOutline outline) : outline_(std::move(outline)) {
  for (const Entity entity : kEntities) {
    of(entity).groups = outline_.of(entity).groups;
    for (GroupOutline& group : of(entity).groups) {
      group.cells = 0;
    }
    for (const VectorOutline& attribute : outline_.of(entity).attributes) {
      of(entity).attributes.push_back(makeValues(attribute.holdsInts));
    }
  }
}

Attributes OwnedParts::attributesOf(Entity entity) const {
  const std::vector<VectorOutline>& outlines = outline_.of(entity).attributes;
  std::vector<Attribute> attributes;
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    attributes.push_back(
        attributeOf(outlines[i].name, of(entity).attributes[i], outlines[i].mustBeTransmitted));
  }
  return Attributes(std::move(attributes));
}

CellsView OwnedParts::cellsOf(Entity entity) const {
  const OwnedEntity& owned = of(entity);
  std::vector<CellGroup> groups;
  const std::span<const int> indices(owned.nodeIndices);
  std::size_t next = 0;
  for (const GroupOutline& group : owned.groups) {
    const auto shape = static_cast<Shape>(group.shape);
    const auto count = static_cast<std::size_t>(group.cells * group.nodesPerCell);
    groups.push_back(group.nodesPerCell == 0
                         ? CellGroup::withoutNodes(shape, static_cast<int>(group.cells))
                         : CellGroup(shape, group.nodesPerCell, indices.subspan(next, count)));
    next += count;
  }
  return CellsView(std::move(groups), attributesOf(entity));
}

DocumentView OwnedParts::view() const {
  DocumentParts parts;
  parts.identification = outline_.identification();
  parts.dimension = outline_.dimension;
  parts.nodes = NodesView(std::span<const double>(of(Entity::nodes).coordinates),
                          outline_.dimension, attributesOf(Entity::nodes));
  parts.edges = cellsOf(Entity::edges);
  parts.faces = cellsOf(Entity::faces);
  parts.elements = cellsOf(Entity::elements);
  std::vector<Parameter> parameters;
  for (const auto& [name, value] : outline_.parameters) {
    parameters.emplace_back(std::string_view(name), value);
  }
  parts.parameters = Parameters(std::move(parameters));
  std::vector<Attribute> vectors;
  for (const NamedValues& vector : outline_.vectorParameters) {
    vectors.push_back(attributeOf(vector.name, vector.values, false));
  }
  parts.vectorParameters = Attributes(std::move(vectors));
  if (outline_.kind == Kind::input) {
    return InputView(std::move(parts));
  }
  return OutputView(std::move(parts));
}

}  // namespace orvml::parallel::detail
