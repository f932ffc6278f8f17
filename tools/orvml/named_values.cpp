#include "named_values.h"

#include "console.h"
#include "facts.h"
#include "messages.h"

#include <algorithm>
#include <utility>

namespace orvml_tool {

using orvml::DocumentView;
using orvml::Entity;

namespace {

bool isNamed(const NamedValue& value, std::string_view name) {
  return value.path == name ||
         (value.path.ends_with(name) && value.path[value.path.size() - name.size() - 1] == '/');
}

/// The node indices of all groups, where they lie one behind the other, as they do in files.
std::optional<std::span<const int>> oneBehindTheOther(std::span<const orvml::CellGroup> groups) {
  const int* begin = groups.empty() ? nullptr : groups.front().nodeIndices().data();
  std::size_t size = 0;
  for (const orvml::CellGroup& group : groups) {
    if (group.nodeIndices().data() != begin + size) {
      return std::nullopt;
    }
    size += group.nodeIndices().size();
  }
  return std::span(begin, size);
}

std::vector<int> collected(std::span<const orvml::CellGroup> groups) {
  std::vector<int> all;
  for (const orvml::CellGroup& group : groups) {
    all.insert(all.end(), group.nodeIndices().begin(), group.nodeIndices().end());
  }
  return all;
}

template <class Of>
std::vector<int> ofEach(std::span<const orvml::CellGroup> groups, Of&& of) {
  std::vector<int> numbers;
  std::transform(groups.begin(), groups.end(), std::back_inserter(numbers), std::forward<Of>(of));
  return numbers;
}

/// How many nodes a cell has, where all have as many; else 1, for values one by one.
std::size_t widthOf(std::span<const orvml::CellGroup> groups) {
  const auto isOther = [&](const orvml::CellGroup& group) {
    return group.nodesPerCell() != groups.front().nodesPerCell();
  };
  if (groups.empty() || std::any_of(groups.begin(), groups.end(), isOther)) {
    return 1;
  }
  return static_cast<std::size_t>(std::max(1, groups.front().nodesPerCell()));
}

}  // namespace

NamedValues::NamedValues(const orvml::Exchange& documents) {
  if (documents.input) {
    addDocument(*documents.input);
  }
  if (documents.output) {
    addDocument(*documents.output);
  }
}

const NamedValue& NamedValues::named(std::string_view name, const std::string& shown) const {
  const auto is = [&](const NamedValue& value) { return isNamed(value, name); };
  const auto found = std::find_if(values_.begin(), values_.end(), is);
  if (name.empty() || found == values_.end()) {
    throw Refusal(shown + ": there is no '" + printable(name) + "'",
                  "see which names there are, with orvml info --fast FILE");
  }
  if (std::find_if(found + 1, values_.end(), is) == values_.end()) {
    return *found;
  }
  std::string paths;
  for (const NamedValue& value : values_) {
    paths += is(value) ? (paths.empty() ? "" : ", ") + printable(value.path) : "";
  }
  throw Refusal(shown + ": '" + printable(name) + "' may be " + paths, "give more of the path");
}

void NamedValues::addDocument(const DocumentView& document) {
  const orvml::NodesView& nodes = document.nodes();
  addArray(document, "/Nodes/coordinates", nodes.coordinates(),
           static_cast<std::size_t>(std::max(1, nodes.dimension())));
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    addCells(document, entity);
  }
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    addVectors(document, "/" + groupName(entity) + "/Attributes", Role::attribute, entity,
               document.attributes(entity));
  }
  for (const orvml::Parameter& parameter : document.parameters()) {
    parameters_.push_back(parameter.value);
    addArray(document, "/parameters/" + std::string(parameter.name),
             std::span<const double>(&parameters_.back(), 1));
    values_.back().role = Role::parameter;
  }
  addVectors(document, "/ParametersVector", Role::vectorParameter, Entity::nodes,
             document.vectorParameters());
}

void NamedValues::addVectors(const DocumentView& document, const std::string& group, Role role,
                             Entity entity, const orvml::Attributes& vectors) {
  for (const orvml::Attribute& vector : vectors) {
    addArray(document, group + "/" + std::string(vector.name), vector.values);
    values_.back().role = role;
    values_.back().entity = entity;
  }
}

void NamedValues::addCells(const DocumentView& document, Entity entity) {
  const auto groups = document.cells(entity).groups();
  if (groups.empty()) {
    return;
  }
  const std::string path = "/" + groupName(entity);
  const auto indices = oneBehindTheOther(groups);
  addArray(document, path + "/connectivities", indices ? *indices : kept(collected(groups)),
           widthOf(groups));
  addArray(document, path + "/number_of_elements_by_type",
           kept(ofEach(groups, [](const auto& group) { return group.size(); })));
  addArray(document, path + "/element_types",
           kept(ofEach(groups, [](const auto& group) { return static_cast<int>(group.shape()); })));
  addArray(document, path + "/number_of_nodes_by_element",
           kept(ofEach(groups, [](const auto& group) { return group.nodesPerCell(); })));
}

void NamedValues::addArray(const DocumentView& document, const std::string& path,
                           orvml::Attribute::Values values, std::size_t rowLength) {
  NamedValue value;
  value.path = documentPath(document.kind()) + path;
  value.name = path.substr(path.rfind('/') + 1);
  value.kind = document.kind();
  value.values = values;
  value.rowLength = rowLength;
  values_.push_back(std::move(value));
}

std::span<const int> NamedValues::kept(std::vector<int> values) {
  return ints_.emplace_back(std::move(values));
}

}  // namespace orvml_tool
