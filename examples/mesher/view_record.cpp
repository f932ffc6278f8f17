#include "mesher/view_record.h"

#include <orvml/version.hpp>

namespace orvml_examples {

namespace {

struct NamedKind {
  orvml::Entity entity;
  const char* name;  // of the group in a file
};

constexpr NamedKind kKinds[] = {{orvml::Entity::nodes, "Nodes"},
                                {orvml::Entity::edges, "Edges"},
                                {orvml::Entity::faces, "Faces"},
                                {orvml::Entity::elements, "Elements"}};

std::string jsonOf(std::string_view text) { return toJson(std::string(text)); }

std::string jsonOf(const orvml::Attribute& vector) {
  return vector.holdsInts() ? toJsonArray(vector.ints()) : toJsonArray(vector.doubles());
}

void addCells(const orvml::CellsView& cells, const std::string& kind, Record& record) {
  std::vector<int> cellsPerGroup;
  std::vector<int> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> connectivities;
  for (const orvml::CellGroup& group : cells.groups()) {
    cellsPerGroup.push_back(group.size());
    shapes.push_back(static_cast<int>(group.shape()));
    nodesPerCell.push_back(group.nodesPerCell());
    connectivities.insert(connectivities.end(), group.nodeIndices().begin(),
                          group.nodeIndices().end());
  }
  record.add("cells/" + kind + "/number_of_elements_by_type", toJsonArray(cellsPerGroup));
  record.add("cells/" + kind + "/element_types", toJsonArray(shapes));
  record.add("cells/" + kind + "/number_of_nodes_by_element", toJsonArray(nodesPerCell));
  record.add("cells/" + kind + "/connectivities", toJsonArray(connectivities));
}

void addMesh(const orvml::DocumentView& document, Record& record) {
  record.add("dimension", toJson(document.dimension()));
  record.add("numberOfNodes", toJson(document.nodes().size()));
  record.add("coordinates", toJsonArray(document.nodes().coordinates()));
  addCells(document.edges(), "Edges", record);
  addCells(document.faces(), "Faces", record);
  addCells(document.elements(), "Elements", record);
}

void addParameters(const orvml::DocumentView& document, Record& record) {
  for (const orvml::Parameter& parameter : document.parameters()) {
    record.add("parameter/" + std::string(parameter.name), toJson(parameter.value));
  }
  for (const orvml::Attribute& vector : document.vectorParameters()) {
    record.add("vectorParameter/" + std::string(vector.name), jsonOf(vector));
  }
}

void addAttributes(const orvml::Attributes& attributes, const std::string& kind, Record& record) {
  std::vector<std::string> transmitted;
  for (const orvml::Attribute& attribute : attributes) {
    record.add("attribute/" + kind + "/" + std::string(attribute.name), jsonOf(attribute));
    if (attribute.mustBeTransmitted) {
      transmitted.emplace_back(attribute.name);
    }
  }
  record.add(kTransmittedKeys + kind, toJsonArray(transmitted));
}

}  // namespace

Record recordOf(const orvml::DocumentView& document) {
  Record record;
  const orvml::Identification& identification = document.identification();
  const bool isInput = document.kind() == orvml::Kind::input;
  record.add("group", jsonOf(isInput ? "OrvInput" : "OrvOutput"));
  record.add("formatVersion", jsonOf(orvml::formatVersion()));
  record.add("moduleName", jsonOf(identification.moduleName));
  record.add("moduleFormatVersion", jsonOf(identification.moduleFormatVersion));
  record.add("creator", jsonOf(identification.creator));
  addMesh(document, record);
  addParameters(document, record);
  for (const NamedKind& kind : kKinds) {
    addAttributes(document.attributes(kind.entity), kind.name, record);
  }
  return record;
}

}  // namespace orvml_examples
