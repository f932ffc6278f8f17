#include "vtkhdf/shown_cells.h"

#include <orvml/error.hpp>
#include <orvml/vtk_cells.hpp>

#include "check/checked_mesh.h"
#include "hdf5/layout.h"

#include <algorithm>
#include <map>
#include <utility>

namespace orvml::detail {

namespace {

void requireIndices(const ShownGroup& group, int nodes, const std::string& object) {
  const auto indices = group.cells.nodeIndices();
  const auto bad = std::find_if(indices.begin(), indices.end(),
                                [nodes](int index) { return index < 0 || index >= nodes; });
  if (bad != indices.end()) {
    const std::int64_t cell =
        group.firstCell + std::distance(indices.begin(), bad) / group.cells.nodesPerCell();
    throw Error(Code::conversionBadIndex,
                object + " has a cell, number " + std::to_string(cell) + ", that names node " +
                    std::to_string(*bad) + " of " + std::to_string(nodes),
                {{}, object, {}});
  }
}

/// The cells without a type, by shape and number of nodes.
using Untyped = std::map<std::pair<Shape, int>, std::int64_t>;

void addUntyped(const Untyped& untyped, const std::string& object,
                std::vector<ConversionNote>& notes) {
  for (const auto& [form, cells] : untyped) {
    notes.push_back({Fate::dropped, object,
                     object + " has " + countText(cells, "cell", "cells") + " of shape " +
                         std::string(name(form.first)) + " with " +
                         countText(form.second, "node", "nodes") +
                         " each, which VTK has no type for and does not see"});
  }
}

template <class StretchOf>
std::vector<Stretch> merged(const std::vector<ShownGroup>& groups, StretchOf stretchOf) {
  std::vector<Stretch> stretches;
  for (const ShownGroup& group : groups) {
    const Stretch next = stretchOf(group);
    const bool continues = !stretches.empty() && stretches.back().entity == next.entity &&
                           stretches.back().isTurned == next.isTurned &&
                           stretches.back().first + stretches.back().count == next.first;
    if (continues) {
      stretches.back().count += next.count;
    } else {
      stretches.push_back(next);
    }
  }
  return stretches;
}

}  // namespace

ShownCells::ShownCells(const DocumentView& document, const VtkLinkOptions& options,
                       std::vector<ConversionNote>& notes) {
  if (options.edges) {
    take(document, Entity::edges, false, notes);
  }
  if (options.faces) {
    take(document, Entity::faces, options.turnsPrisms, notes);
  }
  if (options.elements) {
    take(document, Entity::elements, options.turnsPrisms, notes);
  }
}

void ShownCells::take(const DocumentView& document, Entity entity, bool turnsPrisms,
                      std::vector<ConversionNote>& notes) {
  const std::string object = objectOf(document.kind(), entity);
  ShownGroup group{entity, {}, 0, 0, 0, false};
  Untyped untyped;
  std::int64_t turned = 0;
  for (const CellGroup& cells : document.cells(entity).groups()) {
    group.cells = cells;
    group.vtkType = vtkCellType({cells.shape(), cells.nodesPerCell()}).value_or(0);
    group.isTurned = turnsPrisms && cells.shape() == Shape::prism;
    const std::int64_t indices = std::int64_t{cells.size()} * cells.nodesPerCell();
    if (group.vtkType == 0 && cells.size() > 0) {
      untyped[{cells.shape(), cells.nodesPerCell()}] += cells.size();
    } else if (cells.size() > 0) {
      requireIndices(group, document.nodes().size(), object);
      groups_.push_back(group);
      cells_ += cells.size();
      indices_ += indices;
      turned += group.isTurned ? cells.size() : 0;
    }
    group.firstCell += cells.size();
    group.firstIndex += indices;
  }
  addUntyped(untyped, object, notes);
  if (turned > 0) {
    const std::string indices = object + orvml_io::layout::kConnectivities;
    notes.push_back({Fate::copied, indices,
                     indices + " has " + countText(turned, "prism", "prisms") +
                         ", copied in the order of VTK before 9.7"});
  }
}

std::vector<Stretch> ShownCells::stretchesOfCells() const {
  return merged(groups_, [](const ShownGroup& group) {
    return Stretch{group.entity, group.firstCell, group.cells.size(), false};
  });
}

std::vector<Stretch> ShownCells::stretchesOfIndices() const {
  return merged(groups_, [](const ShownGroup& group) {
    const std::int64_t indices = std::int64_t{group.cells.size()} * group.cells.nodesPerCell();
    return Stretch{group.entity, group.firstIndex, indices, group.isTurned};
  });
}

}  // namespace orvml::detail
