#include "check/checked_mesh.h"

#include "check/rules.h"

#include <utility>

namespace orvml::detail {

namespace {

std::string ofGroup(const CellGroup& group, std::size_t number) {
  return countText(group.size(), "cell", "cells") + " in its group " + std::to_string(number);
}

/// Looks up what is known of a group; tells when it cannot be looked at further.
const ShapeFacts* usableFactsOf(const CellGroup& group, std::size_t number,
                                const CheckedCells& cells, int dimension, FindingList& findings) {
  const ShapeFacts* facts = factsOf(group.shape());
  if (!isKnown(group.shape())) {
    findings.add(ruleOf(CheckCode::unknownShape), cells.object,
                 "has " + ofGroup(group, number) + " of the shape " +
                     std::to_string(static_cast<int>(group.shape())) +
                     ", which the format does not name");
    return nullptr;
  }
  const std::string shape(name(group.shape()));
  if (facts != nullptr && !belongsTo(*facts, cells.entity, dimension)) {
    findings.add(ruleOf(CheckCode::misplacedShape), cells.object,
                 "has " + ofGroup(group, number) + " of the shape " + shape +
                     ", which does not belong there");
    return nullptr;
  }
  if (facts != nullptr && !hasNodeCount(*facts, group.nodesPerCell())) {
    findings.add(ruleOf(CheckCode::wrongNodeCount), cells.object,
                 "has " + ofGroup(group, number) + " of the shape " + shape + " with " +
                     countText(group.nodesPerCell(), "node", "nodes") +
                     " each, for which there is no order");
    return nullptr;
  }
  return facts;
}

CheckedCells cellsOf(const DocumentView& document, Entity entity, FindingList& findings) {
  CheckedCells cells{entity, objectOf(document.kind(), entity), {}, true};
  std::int64_t first = 0;
  std::size_t number = 0;
  for (const CellGroup& group : document.cells(entity).groups()) {
    if (group.size() > 0) {
      const ShapeFacts* facts = usableFactsOf(group, number, cells, document.dimension(), findings);
      cells.groups.push_back({group, first, facts, {}, false});
      cells.isWhole = cells.isWhole && facts != nullptr;
    }
    first += group.size();
    ++number;
  }
  return cells;
}

}  // namespace

std::int64_t knownCells(const CheckedCells& cells, int shapeDimension) noexcept {
  std::int64_t count = 0;
  for (const CheckedGroup& group : cells.groups) {
    count +=
        group.facts != nullptr && group.facts->dimension == shapeDimension ? group.cells.size() : 0;
  }
  return count;
}

CheckedMesh meshOf(const DocumentView& document, const Believed& believed, FindingList& findings) {
  const NodesView& nodes = document.nodes();
  CheckedMesh mesh;
  mesh.dimension = document.dimension();
  mesh.nodes = nodes.size();
  mesh.nodesObject = objectOf(document.kind(), Entity::nodes);
  const bool isWhole = nodes.dimension() == document.dimension() && !nodes.coordinates().empty();
  if (isWhole && believed.coordinates && (mesh.dimension == 2 || mesh.dimension == 3)) {
    mesh.coordinates = nodes.coordinates().data();
  }
  if (nodes.size() > 0 && nodes.coordinates().empty() && believed.coordinates) {
    findings.add(ruleOf(CheckCode::coordinatesMissing), mesh.nodesObject,
                 "has " + countText(nodes.size(), "node", "nodes") + " without coordinates");
  }
  std::size_t kind = 0;
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    mesh.kinds[kind] = believed.holdsCells(entity)
                           ? cellsOf(document, entity, findings)
                           : CheckedCells{entity, objectOf(document.kind(), entity), {}, false};
    ++kind;
  }
  return mesh;
}

}  // namespace orvml::detail
