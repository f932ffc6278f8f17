#include "outline.h"

#include "hdf5/layout.h"
#include "opened_file.h"

#include <numeric>

namespace orvml::parallel::detail {

namespace {

namespace layout = orvml_io::layout;

void add(ByteWriter& writer, const VectorOutline& vector) {
  writer.add(std::string_view(vector.name));
  writer.add(vector.holdsInts);
  writer.add(vector.mustBeTransmitted);
  writer.add(vector.size);
  writer.add(std::string_view(vector.object));
}

VectorOutline vectorOf(ByteReader& reader) {
  VectorOutline vector;
  vector.name = reader.text();
  vector.holdsInts = reader.number<bool>();
  vector.mustBeTransmitted = reader.number<bool>();
  vector.size = reader.number<std::int64_t>();
  vector.object = reader.text();
  return vector;
}

void add(ByteWriter& writer, const EntityOutline& entity) {
  writer.add(entity.size);
  writer.add(std::string_view(entity.object));
  writer.add(entity.groups.size());
  for (const GroupOutline& group : entity.groups) {
    writer.add(group.shape);
    writer.add(group.nodesPerCell);
    writer.add(group.cells);
  }
  writer.add(entity.attributes.size());
  for (const VectorOutline& attribute : entity.attributes) {
    add(writer, attribute);
  }
}

EntityOutline entityOf(ByteReader& reader) {
  EntityOutline entity;
  entity.size = reader.number<std::int64_t>();
  entity.object = reader.text();
  const auto groups = reader.number<std::size_t>();
  for (std::size_t i = 0; i < groups; ++i) {
    GroupOutline group;
    group.shape = reader.number<int>();
    group.nodesPerCell = reader.number<int>();
    group.cells = reader.number<std::int64_t>();
    entity.groups.push_back(group);
  }
  const auto attributes = reader.number<std::size_t>();
  for (std::size_t i = 0; i < attributes; ++i) {
    entity.attributes.push_back(vectorOf(reader));
  }
  return entity;
}

void add(ByteWriter& writer, const NamedValues& vector) {
  writer.add(std::string_view(vector.name));
  writer.add(vector.values.index() == 0);
  std::visit([&writer](const auto& values) { writer.add(values); }, vector.values);
}

NamedValues namedValuesOf(ByteReader& reader) {
  NamedValues vector;
  vector.name = reader.text();
  if (reader.number<bool>()) {
    vector.values = reader.numbers<int>();
  } else {
    vector.values = reader.numbers<double>();
  }
  return vector;
}

std::vector<VectorOutline> outlinesOf(const Attributes& attributes, const std::string& group,
                                      int numberOfEntities) {
  std::vector<VectorOutline> outlines;
  for (const Attribute& attribute : attributes) {
    const std::string name(attribute.name);
    const auto size = static_cast<std::int64_t>(attribute.size());
    outlines.push_back({name, attribute.holdsInts(), attribute.mustBeTransmitted, size,
                        std::string(group).append(layout::kAttributes).append("/").append(name),
                        size == numberOfEntities ? 0 : 1});
  }
  return outlines;
}

EntityOutline outlineOf(const CellsView& cells, const std::string& group) {
  EntityOutline outline;
  outline.size = cells.size();
  outline.object = group + layout::kConnectivities;
  for (const CellGroup& cellGroup : cells.groups()) {
    outline.groups.push_back(
        {static_cast<int>(cellGroup.shape()), cellGroup.nodesPerCell(), cellGroup.size()});
  }
  outline.attributes = outlinesOf(cells.attributes(), group, cells.size());
  return outline;
}

/// Shows every count of an outline to a function.
template <class Outline, class Function>
void forEachCount(Outline& outline, Function function) {
  for (auto& entity : outline.entities) {
    function(entity.size);
    for (auto& group : entity.groups) {
      function(group.cells);
    }
    for (auto& attribute : entity.attributes) {
      function(attribute.size);
      function(attribute.ranksWithAnotherSize);
    }
  }
}

Values copyOf(const Attribute& vector) {
  return std::visit([](auto values) -> Values { return std::vector(values.begin(), values.end()); },
                    vector.values);
}

}  // namespace

std::int64_t EntityOutline::numberOfIndices() const noexcept {
  return std::accumulate(groups.begin(), groups.end(), std::int64_t{0},
                         [](std::int64_t sum, const GroupOutline& group) {
                           return sum + group.cells * group.nodesPerCell;
                         });
}

std::vector<std::int64_t> DocumentOutline::counts() const {
  std::vector<std::int64_t> counts;
  forEachCount(*this, [&counts](std::int64_t count) { counts.push_back(count); });
  return counts;
}

DocumentOutline DocumentOutline::withCounts(const std::vector<std::int64_t>& counts) const {
  DocumentOutline outline = *this;
  auto next = counts.begin();
  forEachCount(outline, [&next](std::int64_t& count) { count = *next++; });
  return outline;
}

void DocumentOutline::pack(ByteWriter& writer) const {
  writer.add(static_cast<int>(kind));
  writer.add(std::string_view(moduleName));
  writer.add(std::string_view(moduleFormatVersion));
  writer.add(std::string_view(creator));
  writer.add(dimension);
  for (const EntityOutline& entity : entities) {
    add(writer, entity);
  }
  writer.add(parameters.size());
  for (const auto& [name, value] : parameters) {
    writer.add(std::string_view(name));
    writer.add(value);
  }
  writer.add(vectorParameters.size());
  for (const NamedValues& vector : vectorParameters) {
    add(writer, vector);
  }
}

DocumentOutline DocumentOutline::unpacked(ByteReader& reader) {
  DocumentOutline outline;
  outline.kind = static_cast<Kind>(reader.number<int>());
  outline.moduleName = reader.text();
  outline.moduleFormatVersion = reader.text();
  outline.creator = reader.text();
  outline.dimension = reader.number<int>();
  for (EntityOutline& entity : outline.entities) {
    entity = entityOf(reader);
  }
  const auto parameters = reader.number<std::size_t>();
  for (std::size_t i = 0; i < parameters; ++i) {
    std::string name = reader.text();
    outline.parameters.emplace_back(std::move(name), reader.number<double>());
  }
  const auto vectors = reader.number<std::size_t>();
  for (std::size_t i = 0; i < vectors; ++i) {
    outline.vectorParameters.push_back(namedValuesOf(reader));
  }
  return outline;
}

std::string groupPathOf(Kind kind, Entity entity) {
  constexpr std::array<const char*, 4> kGroups = {layout::kNodes, layout::kEdges, layout::kFaces,
                                                  layout::kElements};
  return std::string(orvml::detail::groupOf(kind)) + kGroups[static_cast<std::size_t>(entity)];
}

DocumentOutline outlineOf(const DocumentView& view) {
  DocumentOutline outline;
  outline.kind = view.kind();
  outline.moduleName = view.identification().moduleName;
  outline.moduleFormatVersion = view.identification().moduleFormatVersion;
  outline.creator = view.identification().creator;
  outline.dimension = view.dimension();
  const std::string nodes = groupPathOf(view.kind(), Entity::nodes);
  outline.of(Entity::nodes) = {view.nodes().size(),
                               {},
                               outlinesOf(view.nodes().attributes(), nodes, view.nodes().size()),
                               nodes + layout::kCoordinates};
  for (const Entity entity : kCellEntities) {
    outline.of(entity) = outlineOf(view.cells(entity), groupPathOf(view.kind(), entity));
  }
  return outline;
}

void takeParameters(const DocumentView& view, DocumentOutline& outline) {
  for (const Parameter& parameter : view.parameters()) {
    outline.parameters.emplace_back(parameter.name, parameter.value);
  }
  for (const Attribute& vector : view.vectorParameters()) {
    outline.vectorParameters.push_back({std::string(vector.name), copyOf(vector)});
  }
}

}  // namespace orvml::parallel::detail
