#include "exchange/record.h"

#include "exchange/check.h"
#include "exchange/names.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>

namespace orvml_examples {

namespace {

std::string toJson(int value) { return std::to_string(value); }

std::string toJson(double value) {
  require(std::isfinite(value), "a value that is not finite has no JSON form");
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  std::string text(buffer.data(), end);
  // A reader of JSON takes a number without point and exponent for an integer and loses -0.0.
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string toJson(const std::string& text) {
  for (const char c : text) {
    require(c >= ' ' && c <= '~' && c != '"' && c != '\\', "a text needs escapes: " + text);
  }
  return '"' + text + '"';
}

template <class T>
std::string toJson(const std::vector<T>& values) {
  std::string text = "[";
  for (const T& value : values) {
    text += (text.size() == 1 ? "" : ", ") + toJson(value);
  }
  return text + "]";
}

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
  record.add("cells/" + kind + "/number_of_elements_by_type", toJson(cells.cellsPerGroup));
  record.add("cells/" + kind + "/element_types", toJson(shapes));
  record.add("cells/" + kind + "/number_of_nodes_by_element", toJson(cells.nodesPerCell));
  record.add("cells/" + kind + "/connectivities", toJson(cells.connectivities));
}

void addMesh(const Document& document, Record& record) {
  const Mesh mesh = document.mesh();
  record.add("dimension", toJson(document.dimension()));
  record.add("numberOfNodes", toJson(document.numberOf(ORVML_NODES)));
  record.add("coordinates", toJson(mesh.coordinates));
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
                 agreed.valueType == ORVML_INT ? toJson(document.intParameter(agreed.name))
                                               : toJson(document.doubleParameter(agreed.name)));
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
    record.add(key, agreed.valueType == ORVML_INT ? toJson(document.intAttribute(agreed.name))
                                                  : toJson(document.doubleAttribute(agreed.name)));
  }
  record.add(std::string(kTransmittedKeys) + kind.name,
             toJson(document.namesToTransmit(kind.entity)));
}

}  // namespace

void Record::add(std::string key, std::string json) {
  entries_.emplace_back(std::move(key), std::move(json));
}

const std::string* Record::find(const std::string& key) const {
  for (const auto& [name, json] : entries_) {
    if (name == key) {
      return &json;
    }
  }
  return nullptr;
}

void Record::save(const std::string& path) const {
  std::ofstream file(path);
  const char* separator = "{\n";
  for (const auto& [key, json] : entries_) {
    file << separator << '"' << key << "\": " << json;
    separator = ",\n";
  }
  file << "\n}\n";
  require(file.flush().good(), "cannot write " + path);
}

Record Record::load(const std::string& path) {
  std::ifstream file(path);
  require(file.is_open(), "cannot open " + path);
  Record record;
  std::string line;
  while (std::getline(file, line)) {
    const std::size_t keyEnd = line.find("\": ");
    if (line.empty() || line[0] != '"' || keyEnd == std::string::npos) {
      continue;
    }
    if (line.back() == ',') {
      line.pop_back();
    }
    record.add(line.substr(1, keyEnd - 1), line.substr(keyEnd + 3));
  }
  require(!record.entries_.empty(), path + " records nothing");
  return record;
}

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
