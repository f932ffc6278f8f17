#include "preprocessor/document_record.h"

#include "exchange/check.h"
#include "preprocessor/agreement.h"

namespace orvml_examples {

namespace {

struct NamedKind {
  ORVML_TYPE_OF_ENTITY entity;
  const char* name;  // of the group in a file
};

constexpr NamedKind kKinds[] = {{ORVML_NODES, "Nodes"},
                                {ORVML_EDGES, "Edges"},
                                {ORVML_FACES, "Faces"},
                                {ORVML_ELEMENTS, "Elements"}};

void addCells(const Cells& cells, const std::string& kind, Record& record) {
  const std::vector<int> shapes(cells.shapes.begin(), cells.shapes.end());
  record.add("cells/" + kind + "/number_of_elements_by_type", toJsonArray(cells.cellsPerGroup));
  record.add("cells/" + kind + "/element_types", toJsonArray(shapes));
  record.add("cells/" + kind + "/number_of_nodes_by_element", toJsonArray(cells.nodesPerCell));
  record.add("cells/" + kind + "/connectivities", toJsonArray(cells.connectivities));
}

void addMesh(const Document& document, Record& record) {
  const Mesh mesh = document.mesh();
  record.add("dimension", toJson(document.dimension()));
  record.add("numberOfNodes", toJson(document.numberOf(ORVML_NODES)));
  record.add("coordinates", toJsonArray(mesh.coordinates));
  addCells(mesh.edges, "Edges", record);
  addCells(mesh.faces, "Faces", record);
  addCells(mesh.elements, "Elements", record);
}

void addParameters(const Document& document, Record& record) {
  std::size_t scalars = 0;
  for (const char* name : kScalarParameters) {
    if (document.hasParameter(name)) {
      record.add(std::string("parameter/") + name, toJson(document.parameter(name)));
      ++scalars;
    }
  }
  std::size_t vectors = 0;
  for (const AgreedVectorParameter& agreed : kVectorParameters) {
    if (document.hasVectorParameter(agreed.name)) {
      record.add(std::string("vectorParameter/") + agreed.name,
                 agreed.valueType == ORVML_INT
                     ? toJsonArray(document.intParameter(agreed.name))
                     : toJsonArray(document.doubleParameter(agreed.name)));
      ++vectors;
    }
  }
  require(
      scalars == document.numberOfParameters() && vectors == document.numberOfVectorParameters(),
      "the document has parameters that nobody agreed upon");
}

void addAttributes(const Document& document, const NamedKind& kind, Record& record) {
  for (const AgreedAttribute& agreed : kAttributes) {
    const std::string key = std::string("attribute/") + kind.name + "/" + agreed.name;
    if (agreed.entity != kind.entity ||
        document.attributeType(agreed.name) == ORVML_UNKNOWN_VALUE) {
      continue;
    }
    record.add(key, agreed.valueType == ORVML_INT
                        ? toJsonArray(document.intAttribute(agreed.name))
                        : toJsonArray(document.doubleAttribute(agreed.name)));
  }
  record.add(std::string(kTransmittedKeys) + kind.name,
             toJsonArray(document.namesToTransmit(kind.entity)));
}

}  // namespace

Record recordOf(const Document& document, const std::string& group) {
  Record record;
  const Identification identification = document.identification();
  record.add("group", toJson(group));
  record.add("formatVersion", toJson(std::string(OrvML_IO_GetFormatVersion())));
  record.add("moduleName", toJson(identification.moduleName));
  record.add("moduleFormatVersion", toJson(identification.moduleFormatVersion));
  record.add("creator", toJson(identification.creator));
  addMesh(document, record);
  addParameters(document, record);
  for (const NamedKind& kind : kKinds) {
    addAttributes(document, kind, record);
  }
  return record;
}

}  // namespace orvml_examples
