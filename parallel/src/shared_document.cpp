#include "shared_document.h"

#include <orvml/error.hpp>

#include "agreement.h"
#include "lent_document.h"
#include "model/limits.h"
#include "requirements.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

namespace orvml::parallel::detail {

namespace {

using orvml::detail::StandIn;

/// What has to be the same on every rank: an outline without counts and without what only the first
/// rank is asked for.
std::vector<char> structureOf(const DocumentOutline& outline) {
  DocumentOutline structure =
      outline.withCounts(std::vector<std::int64_t>(outline.counts().size()));
  structure.moduleName.clear();
  structure.moduleFormatVersion.clear();
  structure.creator.clear();
  ByteWriter writer;
  structure.pack(writer);
  return writer.take();
}

void requireSameStructure(const Communicator& comm, std::vector<char> here) {
  std::vector<char> first;
  together(comm, [&] { first = here; });
  comm.broadcast(first);
  together(comm, [&] {
    if (first != here) {
      throw Error(Code::sizesDisagree,
                  "rank " + std::to_string(comm.rank()) +
                      " gives another kind of document, dimension, groups of cells or attributes "
                      "than rank 0");
    }
  });
}

void require32(std::int64_t count, const std::string& object, const char* what) {
  if (count > orvml_io::kMostValues) {
    throw Error(Code::tooManyValues,
                object + " would have " + std::to_string(count) + " " + what +
                    ", the format counts up to " + std::to_string(orvml_io::kMostValues),
                {{}, object, {}});
  }
}

/// Checks what only the whole tells.
void requireWritable(const DocumentOutline& whole) {
  const EntityOutline& nodes = whole.of(Entity::nodes);
  require32(nodes.size * whole.dimension, nodes.object, "coordinates");
  for (const EntityOutline& entity : whole.entities) {
    const bool areNodes = &entity == &nodes;
    require32(entity.size, entity.object, areNodes ? "nodes" : "cells");
    require32(entity.numberOfIndices(), entity.object, "node indices");
    for (const VectorOutline& attribute : entity.attributes) {
      require32(attribute.size, attribute.object, "values");
      if (attribute.size == entity.size && attribute.ranksWithAnotherSize > 0) {
        throw Error(Code::sizesDisagree,
                    attribute.object + " has not a value for each node or cell on " +
                        std::to_string(attribute.ranksWithAnotherSize) + " ranks",
                    {{}, attribute.object, {}});
      }
    }
  }
}

Attributes standInAttributes(const EntityOutline& whole, const StandIn& values) {
  std::vector<Attribute> attributes;
  for (const VectorOutline& outline : whole.attributes) {
    const auto size = static_cast<std::size_t>(outline.size);
    if (outline.holdsInts) {
      attributes.emplace_back(std::string_view(outline.name),
                              std::span(static_cast<const int*>(values.address()), size),
                              outline.mustBeTransmitted);
    } else {
      attributes.emplace_back(std::string_view(outline.name),
                              std::span(static_cast<const double*>(values.address()), size),
                              outline.mustBeTransmitted);
    }
  }
  return Attributes(std::move(attributes));
}

/// Groups that lie one behind the other, so that nobody copies them.
CellsView standInCells(const EntityOutline& whole, const StandIn& values) {
  std::vector<CellGroup> groups;
  const int* next = static_cast<const int*>(values.address());
  for (const GroupOutline& group : whole.groups) {
    const auto shape = static_cast<Shape>(group.shape);
    const auto count = static_cast<std::size_t>(group.cells * group.nodesPerCell);
    groups.push_back(group.nodesPerCell == 0
                         ? CellGroup::withoutNodes(shape, static_cast<int>(group.cells))
                         : CellGroup(shape, group.nodesPerCell, std::span(next, count)));
    next += count;
  }
  return CellsView(std::move(groups), standInAttributes(whole, values));
}

const void* dataOf(const Attribute& attribute) {
  return std::visit([](auto values) -> const void* { return values.data(); }, attribute.values);
}

}  // namespace

SharedDocument::SharedDocument(const Communicator& comm, const DocumentView& view) : view_(view) {
  std::vector<char> structure;
  std::vector<std::int64_t> before;
  std::vector<std::int64_t> whole;
  together(comm, [&] {
    orvml::detail::requireDimension(view_.dimension());
    orvml::detail::requireCoordinates(view_);
    here_ = outlineOf(view_);
    structure = structureOf(here_);
    before = whole = here_.counts();
  });
  requireSameStructure(comm, std::move(structure));
  comm.addUpBefore(before);
  comm.addUp(whole);
  together(comm, [&] {
    before_ = here_.withCounts(before);
    whole_ = here_.withCounts(whole);
    requireWritable(whole_);
  });
}

std::size_t SharedDocument::largestArrayBytes() const noexcept {
  std::int64_t largest = whole_.of(Entity::nodes).size * whole_.dimension;
  for (const EntityOutline& entity : whole_.entities) {
    largest = std::max(largest, entity.numberOfIndices());
    for (const VectorOutline& attribute : entity.attributes) {
      largest = std::max(largest, attribute.size);
    }
  }
  return static_cast<std::size_t>(largest) * sizeof(double);
}

DocumentView SharedDocument::wholeView(const orvml::detail::StandIn& values) const {
  DocumentParts parts;
  parts.identification = view_.identification();
  parts.dimension = view_.dimension();
  const EntityOutline& nodes = whole_.of(Entity::nodes);
  if (nodes.size > 0) {
    const auto count = static_cast<std::size_t>(nodes.size * whole_.dimension);
    parts.nodes = NodesView(std::span(static_cast<const double*>(values.address()), count),
                            whole_.dimension, standInAttributes(nodes, values));
  }
  parts.edges = standInCells(whole_.of(Entity::edges), values);
  parts.faces = standInCells(whole_.of(Entity::faces), values);
  parts.elements = standInCells(whole_.of(Entity::elements), values);
  parts.parameters = view_.parameters();
  parts.vectorParameters = view_.vectorParameters();
  if (view_.kind() == Kind::input) {
    return InputView(std::move(parts));
  }
  return OutputView(std::move(parts));
}

void SharedDocument::addNodes(std::vector<ArrayPart<const void*>>& parts) const {
  const std::int64_t width = whole_.dimension;
  parts.push_back({whole_.of(Entity::nodes).object,
                   false,
                   {{before_.of(Entity::nodes).size * width, here_.of(Entity::nodes).size * width}},
                   view_.nodes().coordinates().data()});
}

std::vector<Range> SharedDocument::rangesOfCells(Entity entity, bool areIndices) const {
  std::vector<Range> here;
  for (std::size_t i = 0; i < whole_.of(entity).groups.size(); ++i) {
    here.push_back({before_.of(entity).groups[i].cells, here_.of(entity).groups[i].cells});
  }
  return rangesOfGroups(whole_.of(entity).groups, here, areIndices);
}

void SharedDocument::addCells(Entity entity, std::vector<ArrayPart<const void*>>& parts) {
  parts.push_back({whole_.of(entity).object, true, rangesOfCells(entity, true),
                   orvml::detail::joinedNodeIndices(view_.cells(entity),
                                                    joined_[static_cast<std::size_t>(entity)])});
}

void SharedDocument::addAttributes(Entity entity,
                                   std::vector<ArrayPart<const void*>>& parts) const {
  const EntityOutline& whole = whole_.of(entity);
  std::size_t index = 0;
  for (const Attribute& attribute : view_.attributes(entity)) {
    const VectorOutline& outline = whole.attributes[index];
    const bool isByGroup = entity != Entity::nodes && outline.size == whole.size;
    std::vector<Range> ranges = isByGroup
                                    ? rangesOfCells(entity, false)
                                    : std::vector<Range>{{before_.of(entity).attributes[index].size,
                                                          here_.of(entity).attributes[index].size}};
    if (outline.size > 0) {
      parts.push_back({outline.object, outline.holdsInts, std::move(ranges), dataOf(attribute)});
    }
    ++index;
  }
}

std::vector<ArrayPart<const void*>> SharedDocument::parts() {
  std::vector<ArrayPart<const void*>> parts;
  for (const Entity entity : kEntities) {
    if (whole_.of(entity).size == 0) {
      continue;  // files keep no empty containers
    }
    if (entity == Entity::nodes) {
      addNodes(parts);
    } else if (whole_.of(entity).numberOfIndices() > 0) {
      addCells(entity, parts);
    }
    addAttributes(entity, parts);
  }
  return parts;
}

}  // namespace orvml::parallel::detail
