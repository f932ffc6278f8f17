#include "draft.h"

#include <orvml/error.hpp>

#include "console.h"
#include "facts.h"

#include <algorithm>
#include <utility>

namespace orvml_tool {

using orvml::Attribute;
using orvml::Attributes;
using orvml::Entity;

namespace {

template <class List>
auto without(const List& list, std::string_view name) {
  std::vector<typename List::const_iterator::value_type> others;
  std::copy_if(list.begin(), list.end(), std::back_inserter(others),
               [&](const auto& entry) { return entry.name != name; });
  return others;
}

std::size_t sizeOfNumbers(const Numbers& numbers) {
  return std::visit([](const auto& values) { return values.size(); }, numbers);
}

orvml::DocumentParts partsOf(const orvml::DocumentView& document) {
  return {document.identification(), document.dimension(),       document.nodes(),
          document.edges(),          document.faces(),           document.elements(),
          document.parameters(),     document.vectorParameters()};
}

}  // namespace

Draft::Draft(orvml::Kind kind, int dimension) : kind_(kind) { parts_.dimension = dimension; }

Draft::Draft(const orvml::DocumentView& document)
    : kind_(document.kind()), parts_(partsOf(document)) {}

void Draft::setModule(std::string name) {
  parts_.identification.moduleName = kept(std::move(name));
}

void Draft::setModuleFormatVersion(std::string version) {
  parts_.identification.moduleFormatVersion = kept(std::move(version));
}

void Draft::setCreator(std::string creator) {
  parts_.identification.creator = kept(std::move(creator));
}

void Draft::setNodes(std::vector<double> coordinates) {
  const Attribute stored = kept("", std::move(coordinates), false);
  parts_.nodes = orvml::NodesView(stored.doubles(), parts_.dimension);
}

void Draft::setCells(Entity entity, std::vector<Group> groups) {
  std::vector<orvml::CellGroup> views;
  for (Group& group : groups) {
    const Attribute stored = kept("", std::move(group.nodeIndices), false);
    views.emplace_back(group.shape, group.nodesPerCell, stored.ints());
  }
  cells(entity) = orvml::CellsView(std::move(views));
}

void Draft::setParameter(const std::string& name, double value) {
  auto others = without(parts_.parameters, name);
  others.emplace_back(kept(std::string(name)), value);
  parts_.parameters = orvml::Parameters(std::move(others));
}

void Draft::setVectorParameter(const std::string& name, Numbers values) {
  auto others = without(parts_.vectorParameters, name);
  others.push_back(kept(name, std::move(values), false));
  parts_.vectorParameters = Attributes(std::move(others));
}

void Draft::setAttribute(Entity entity, const std::string& name, Numbers values,
                         bool mustBeTransmitted) {
  if (sizeOfNumbers(values) != sizeOf(entity)) {
    throw orvml::Error(orvml::Code::sizesDisagree,
                       "the attribute '" + name + "' has " +
                           counted(static_cast<std::int64_t>(sizeOfNumbers(values)), "value") +
                           ", " + groupName(entity) + " has " +
                           shown(static_cast<std::int64_t>(sizeOf(entity))));
  }
  auto others = without(attributes(entity), name);
  others.push_back(kept(name, std::move(values), mustBeTransmitted));
  setAttributes(entity, Attributes(std::move(others)));
}

void Draft::removeParameter(std::string_view name) {
  parts_.parameters = orvml::Parameters(without(parts_.parameters, name));
}

void Draft::removeVectorParameter(std::string_view name) {
  parts_.vectorParameters = Attributes(without(parts_.vectorParameters, name));
}

void Draft::removeAttribute(Entity entity, std::string_view name) {
  setAttributes(entity, Attributes(without(attributes(entity), name)));
}

std::size_t Draft::sizeOf(Entity entity) const {
  return static_cast<std::size_t>(entity == Entity::nodes ? parts_.nodes.size()
                                                          : cells(entity).size());
}

const Attributes& Draft::attributes(Entity entity) const {
  return entity == Entity::nodes ? parts_.nodes.attributes() : cells(entity).attributes();
}

orvml::Exchange Draft::documents() const {
  orvml::Exchange documents;
  if (kind_ == orvml::Kind::input) {
    documents.input.emplace(parts_);
  } else {
    documents.output.emplace(parts_);
  }
  return documents;
}

orvml::CellsView& Draft::cells(Entity entity) {
  return entity == Entity::edges   ? parts_.edges
         : entity == Entity::faces ? parts_.faces
                                   : parts_.elements;
}

const orvml::CellsView& Draft::cells(Entity entity) const {
  return entity == Entity::edges   ? parts_.edges
         : entity == Entity::faces ? parts_.faces
                                   : parts_.elements;
}

void Draft::setAttributes(Entity entity, Attributes attributes) {
  if (entity == Entity::nodes) {
    const orvml::NodesView& nodes = parts_.nodes;
    parts_.nodes = orvml::NodesView(nodes.coordinates(), nodes.dimension(), std::move(attributes));
    return;
  }
  const auto groups = cells(entity).groups();
  cells(entity) = orvml::CellsView({groups.begin(), groups.end()}, std::move(attributes));
}

Attribute Draft::kept(const std::string& name, Numbers values, bool mustBeTransmitted) {
  const std::string_view keptName = kept(std::string(name));
  return std::visit(
      [&](const auto& stored) { return Attribute(keptName, std::span(stored), mustBeTransmitted); },
      numbers_.emplace_back(std::move(values)));
}

}  // namespace orvml_tool
