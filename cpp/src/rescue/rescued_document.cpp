#include "rescue/rescued_document.h"

#include <algorithm>

namespace orvml::detail {

namespace {

/// Keeps the rows of a table that are not dropped.
template <class Value>
void keepRows(std::vector<Value>& values, std::size_t width, const std::vector<bool>& isDropped,
              std::size_t firstRow = 0) {
  std::size_t kept = 0;
  for (std::size_t begin = 0, row = firstRow; begin + width <= values.size();
       begin += width, ++row) {
    if (!isDropped[row]) {
      std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(begin), width,
                  values.begin() + static_cast<std::ptrdiff_t>(kept));
      kept += width;
    }
  }
  values.resize(kept);
}

/// Values and file numbers of what is left.
void keepOthers(RescuedPart& part, const std::vector<bool>& isDropped) {
  for (RescuedVector& attribute : part.attributes) {
    std::visit([&](auto& values) { keepRows(values, 1, isDropped); }, attribute.values);
  }
  if (part.numbers.empty()) {
    part.numbers.resize(isDropped.size());
    for (std::size_t i = 0; i < isDropped.size(); ++i) {
      part.numbers[i] = static_cast<std::int64_t>(i);
    }
  }
  keepRows(part.numbers, 1, isDropped);
}

CellGroup viewOf(const RescuedGroup& group) {
  return group.nodesPerCell == 0
             ? CellGroup::withoutNodes(group.shape, static_cast<int>(group.cells))
             : CellGroup(group.shape, group.nodesPerCell, group.nodeIndices);
}

Attributes viewOf(const std::vector<RescuedVector>& vectors) {
  std::vector<Attribute> views;
  views.reserve(vectors.size());
  for (const RescuedVector& vector : vectors) {
    views.push_back(vector.view());
  }
  return Attributes(std::move(views));
}

CellsView viewOf(const RescuedPart& cells) {
  std::vector<CellGroup> groups;
  groups.reserve(cells.groups.size());
  for (const RescuedGroup& group : cells.groups) {
    if (!group.isDropped) {
      groups.push_back(viewOf(group));
    }
  }
  return CellsView(std::move(groups), viewOf(cells.attributes));
}

}  // namespace

std::size_t RescuedVector::size() const {
  return std::visit([](const auto& held) { return held.size(); }, values);
}

Attribute RescuedVector::view() const {
  return std::visit(
      [this](const auto& held) {
        using Value = typename std::decay_t<decltype(held)>::value_type;
        return Attribute(name, std::span<const Value>(held), mustBeTransmitted);
      },
      values);
}

std::int64_t RescuedDocument::size(Entity entity) const noexcept {
  if (entity == Entity::nodes) {
    return dimension == 0 ? 0 : static_cast<std::int64_t>(coordinates.size()) / dimension;
  }
  std::int64_t cells = 0;
  for (const RescuedGroup& group : part(entity).groups) {
    cells += group.cells;
  }
  return cells;
}

bool RescuedDocument::isEmpty() const noexcept {
  return parameters.empty() && vectorParameters.empty() &&
         std::all_of(kEntities.begin(), kEntities.end(),
                     [this](Entity entity) { return size(entity) == 0; });
}

std::int64_t RescuedDocument::numberOf(Entity entity, std::int64_t index) const noexcept {
  const std::vector<std::int64_t>& numbers = part(entity).numbers;
  return numbers.empty() ? index : numbers[static_cast<std::size_t>(index)];
}

void RescuedDocument::drop(Entity entity, const std::vector<bool>& isDropped) {
  if (entity == Entity::nodes) {
    dropNodes(isDropped);
  } else {
    dropCells(part(entity), isDropped);
  }
  keepOthers(part(entity), isDropped);
}

void RescuedDocument::dropNodes(const std::vector<bool>& isDropped) {
  keepRows(coordinates, static_cast<std::size_t>(dimension), isDropped);
  std::vector<int> numbers(isDropped.size());
  int next = 0;
  for (std::size_t node = 0; node < isDropped.size(); ++node) {
    numbers[node] = next;
    next += isDropped[node] ? 0 : 1;
  }
  for (const Entity entity : kKindsOfCells) {
    for (RescuedGroup& group : part(entity).groups) {
      for (int& node : group.nodeIndices) {
        // An index that is out of range stays so.
        const auto old = static_cast<std::size_t>(node);
        node = node >= 0 && old < numbers.size() ? numbers[old] : node;
      }
    }
  }
}

void RescuedDocument::dropCells(RescuedPart& cells, const std::vector<bool>& isDropped) {
  std::size_t first = 0;
  for (RescuedGroup& group : cells.groups) {
    const auto begin = isDropped.begin() + static_cast<std::ptrdiff_t>(first);
    const auto dropped = std::count(begin, begin + group.cells, true);
    if (group.nodesPerCell > 0) {
      keepRows(group.nodeIndices, static_cast<std::size_t>(group.nodesPerCell), isDropped, first);
    }
    first += static_cast<std::size_t>(group.cells);
    group.isDropped |= dropped > 0 && dropped == group.cells;
    group.cells -= dropped;
  }
}

void RescuedDocument::dropAll(Entity entity) {
  if (entity == Entity::nodes) {
    coordinates.clear();
  }
  part(entity) = RescuedPart();
}

DocumentParts RescuedDocument::view() const {
  DocumentParts parts;
  parts.identification = {moduleName, moduleFormatVersion, creator};
  parts.dimension = dimension;
  parts.nodes = NodesView(coordinates, dimension, viewOf(part(Entity::nodes).attributes));
  parts.edges = viewOf(part(Entity::edges));
  parts.faces = viewOf(part(Entity::faces));
  parts.elements = viewOf(part(Entity::elements));
  std::vector<Parameter> numbers;
  numbers.reserve(parameters.size());
  for (const auto& [name, value] : parameters) {
    numbers.emplace_back(std::string_view(name), value);
  }
  parts.parameters = Parameters(std::move(numbers));
  parts.vectorParameters = viewOf(vectorParameters);
  return parts;
}

}  // namespace orvml::detail
