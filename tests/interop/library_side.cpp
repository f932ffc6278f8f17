// The library's side of the exchange with the readers and writers in Python. Documents are told as
// lines of text (record.py).
//
//   library_side write RECORD FILE   writes the documents of the record, prints "result N"
//   library_side read RECORD FILE    reads the documents that the record names, prints "result N"
//                                    and what they hold under the names of the record
#include <orvml_io.h>

#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::array<const char*, 4> kKindNames = {"Nodes", "Edges", "Faces", "Elements"};

struct Vector {
  ORVML_TYPE_OF_VALUE type = ORVML_INT;
  bool mustBeTransmitted = false;
  std::vector<int> ints;
  std::vector<double> doubles;
};

/// What the library refers to while a document is built: it adopts these arrays.
struct Container {
  std::vector<int> connectivities;
  std::vector<ElemType> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> cells;
  std::map<std::string, Vector> attributes;
};

struct Record {
  std::string creator;
  std::string module;
  std::string moduleVersion;
  int dimension = 0;
  int numberOfNodes = 0;
  std::vector<double> coordinates;
  std::array<Container, 4> containers;  // by kind of entity
  std::map<std::string, double> parameters;
  std::map<std::string, Vector> vectors;
};

using Records = std::map<std::string, Record>;

ORVML_TYPE_OF_ENTITY entityOf(std::size_t kind) { return static_cast<ORVML_TYPE_OF_ENTITY>(kind); }

template <class T>
T next(std::istream& line) {
  T value{};
  if (!(line >> value)) {
    throw std::runtime_error("the record ends too early");
  }
  return value;
}

std::string nextText(std::istream& line) {
  const auto encoded = next<std::string>(line);
  std::string text;
  for (std::size_t i = 1; i + 1 < encoded.size(); i += 2) {
    text.push_back(static_cast<char>(std::stoi(encoded.substr(i, 2), nullptr, 16)));
  }
  return text;
}

double doubleOf(const std::string& digits) {
  const std::uint64_t bits = std::stoull(digits, nullptr, 16);
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

std::vector<double> doublesOfRest(std::istream& line) {
  std::vector<double> values;
  for (std::string digits; line >> digits;) {
    values.push_back(doubleOf(digits));
  }
  return values;
}

std::vector<int> intsOfRest(std::istream& line) {
  std::vector<int> values;
  for (int value = 0; line >> value;) {
    values.push_back(value);
  }
  return values;
}

Container& nextContainer(std::istream& line, Record& record) {
  const auto name = next<std::string>(line);
  for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
    if (name == kKindNames[kind]) {
      return record.containers[kind];
    }
  }
  throw std::runtime_error("no kind of entity: " + name);
}

Vector vectorOfRest(std::istream& line, bool hasFlag) {
  Vector vector;
  vector.type = next<std::string>(line) == "int" ? ORVML_INT : ORVML_DOUBLE;
  vector.mustBeTransmitted = hasFlag && next<int>(line) != 0;
  if (vector.type == ORVML_INT) {
    vector.ints = intsOfRest(line);
  } else {
    vector.doubles = doublesOfRest(line);
  }
  return vector;
}

void parseGroup(std::istream& line, Container& container) {
  container.shapes.push_back(static_cast<ElemType>(next<int>(line)));
  container.nodesPerCell.push_back(next<int>(line));
  container.cells.push_back(next<int>(line));
}

void parseLine(const std::string& keyword, std::istream& line, Record& record) {
  if (keyword == "creator") {
    record.creator = nextText(line);
  } else if (keyword == "module") {
    record.module = nextText(line);
  } else if (keyword == "module_version") {
    record.moduleVersion = nextText(line);
  } else if (keyword == "dimension") {
    record.dimension = next<int>(line);
  } else if (keyword == "coordinates") {
    record.numberOfNodes = next<int>(line);
    record.coordinates = doublesOfRest(line);
  } else if (keyword == "group") {
    parseGroup(line, nextContainer(line, record));
  } else if (keyword == "connectivities") {
    Container& container = nextContainer(line, record);
    container.connectivities = intsOfRest(line);
  } else if (keyword == "attribute") {
    Container& container = nextContainer(line, record);
    const std::string name = nextText(line);
    container.attributes[name] = vectorOfRest(line, true);
  } else if (keyword == "parameter") {
    const std::string name = nextText(line);
    record.parameters[name] = doubleOf(next<std::string>(line));
  } else if (keyword == "vector") {
    const std::string name = nextText(line);
    record.vectors[name] = vectorOfRest(line, false);
  }
}

Records parse(const char* path) {
  std::ifstream file(path);
  Records records;
  Record* record = nullptr;
  for (std::string text; std::getline(file, text);) {
    std::istringstream line(text);
    const auto keyword = next<std::string>(line);
    if (keyword == "document") {
      record = &records[next<std::string>(line)];
    } else if (record != nullptr) {
      parseLine(keyword, line, *record);
    }
  }
  return records;
}

// Building and writing.

void setAttribute(void* handle, std::size_t kind, const std::string& name, const Vector& vector) {
  if (vector.type == ORVML_INT) {
    OrvML_IO_SetAttributesEntitiesVector(handle, entityOf(kind), name.c_str(), vector.ints.data(),
                                         static_cast<int>(vector.ints.size()),
                                         vector.mustBeTransmitted);
  } else {
    OrvML_IO_SetAttributesEntitiesVector(
        handle, entityOf(kind), name.c_str(), vector.doubles.data(),
        static_cast<int>(vector.doubles.size()), vector.mustBeTransmitted);
  }
}

void setMesh(void* handle, Record& record) {
  if (record.numberOfNodes > 0) {
    OrvML_IO_SetNodesCoords(handle, record.numberOfNodes, record.coordinates.data());
  }
  for (std::size_t kind = ORVML_EDGES; kind <= ORVML_ELEMENTS; ++kind) {
    Container& container = record.containers[kind];
    if (container.shapes.empty()) {
      continue;
    }
    container.connectivities.reserve(1);  // never null, which would set no cells
    int cells = 0;
    for (const int count : container.cells) {
      cells += count;
    }
    OrvML_IO_SetGenericElements(handle, entityOf(kind), cells, container.connectivities.data(),
                                static_cast<int>(container.shapes.size()), container.shapes.data(),
                                container.nodesPerCell.data(), container.cells.data());
  }
}

void setValues(void* handle, const Record& record) {
  for (std::size_t kind = ORVML_NODES; kind <= ORVML_ELEMENTS; ++kind) {
    for (const auto& [name, vector] : record.containers[kind].attributes) {
      setAttribute(handle, kind, name, vector);
    }
  }
  for (const auto& [name, value] : record.parameters) {
    OrvML_IO_SetParameter(handle, name.c_str(), value);
  }
  for (const auto& [name, vector] : record.vectors) {
    if (vector.type == ORVML_INT) {
      OrvML_IO_SetParameterVector(handle, name.c_str(), vector.ints.data(),
                                  static_cast<int>(vector.ints.size()));
    } else {
      OrvML_IO_SetParameterVector(handle, name.c_str(), vector.doubles.data(),
                                  static_cast<int>(vector.doubles.size()));
    }
  }
}

void fill(void* handle, Record& record) {
  OrvML_IO_SetOrvMeshLibraryIOCreator(record.creator.c_str(), handle);
  OrvML_IO_SetOrvMeshLibraryModuleName(record.module.c_str(), handle);
  OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(record.moduleVersion.c_str(), handle);
  OrvML_IO_SetMeshDimension(handle, record.dimension);
  setMesh(handle, record);
  setValues(handle, record);
}

void release(void*& handle) {
  if (handle != nullptr) {
    for (std::size_t kind = ORVML_NODES; kind <= ORVML_ELEMENTS; ++kind) {
      OrvML_IO_DeleteAttributesEntitiesVector(handle, entityOf(kind));
    }
  }
  OrvML_IO_DeleteOrvInputHandle(handle);
}

int write(Records& records, const char* path) {
  void* input = nullptr;
  void* output = nullptr;
  if (records.count("OrvInput") > 0) {
    fill(input = OrvML_IO_NewOrvInputHandle(), records["OrvInput"]);
  }
  if (records.count("OrvOutput") > 0) {
    fill(output = OrvML_IO_NewOrvOutputHandle(), records["OrvOutput"]);
  }
  int result = 0;
  if (input != nullptr && output != nullptr) {
    result = OrvML_IO_WriteOrvInputAndOrvOutput(path, input, output);
  } else {
    result = input != nullptr ? OrvML_IO_WriteOrvInput(path, input)
                              : OrvML_IO_WriteOrvOutput(path, output);
  }
  release(input);
  release(output);
  return result;
}

// Reading and telling.

void printText(const char* keyword, const std::string& text) {
  std::printf("%s x", keyword);
  for (const char byte : text) {
    std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
  }
}

void print(int value) { std::printf(" %d", value); }

void print(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  std::printf(" %016" PRIx64, bits);
}

template <class T>
void printAll(const T* values, int count) {
  for (int i = 0; i < count; ++i) {
    print(values[i]);
  }
  std::puts("");
}

void printIdentification(void* handle) {
  std::array<char, 80> creator = {};
  printText("creator", OrvML_IO_GetOrvMeshLibraryIOCreator(handle, creator.data()));
  printText("\nmodule", OrvML_IO_GetOrvMeshLibraryModuleName(handle));
  printText("\nmodule_version", OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle));
  std::printf("\ndimension %d\n", OrvML_IO_GetMeshDimension(handle));
}

bool mustBeTransmitted(void* handle, std::size_t kind, const std::string& name) {
  const ORVML_TYPE_OF_ENTITY entity = entityOf(kind);
  const int count = OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle, entity);
  for (int i = 0; i < count; ++i) {
    if (name == OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle, entity, i)) {
      return true;
    }
  }
  return false;
}

template <class T>
void printAttribute(void* handle, std::size_t kind, const std::string& name, const char* type) {
  T* values = nullptr;
  int count = 0;
  OrvML_IO_GetAttributesEntitiesVector(handle, entityOf(kind), name.c_str(), values, count);
  printText(("attribute " + std::string(kKindNames[kind])).c_str(), name);
  std::printf(" %s %d", type, mustBeTransmitted(handle, kind, name) ? 1 : 0);
  printAll(values, count);
}

void printAttributes(void* handle, std::size_t kind, const Record& asked) {
  for (const auto& named : asked.containers[kind].attributes) {
    switch (OrvML_IO_GetAttributeType(handle, named.first.c_str(), entityOf(kind))) {
      case ORVML_INT:
        printAttribute<int>(handle, kind, named.first, "int");
        break;
      case ORVML_DOUBLE:
        printAttribute<double>(handle, kind, named.first, "double");
        break;
      case ORVML_UNKNOWN_VALUE:
        break;
    }
  }
}

void printNodes(void* handle, const Record& asked) {
  const int numberOfNodes = OrvML_IO_GetNumberOfNodes(handle);
  if (numberOfNodes > 0) {
    double* coordinates = nullptr;
    OrvML_IO_GetNodesCoords(handle, coordinates);
    std::printf("coordinates %d", numberOfNodes);
    printAll(coordinates, numberOfNodes * OrvML_IO_GetMeshDimension(handle));
  }
  printAttributes(handle, ORVML_NODES, asked);
}

void printCells(void* handle, std::size_t kind, const Record& asked) {
  const ORVML_TYPE_OF_ENTITY entity = entityOf(kind);
  if (OrvML_IO_GetNumberOfGenericElements(handle, entity) == 0) {
    return;
  }
  int* connectivities = nullptr;
  int* nodesPerCell = nullptr;
  int* cells = nullptr;
  ElemType* shapes = nullptr;
  OrvML_IO_GetGenericElements(handle, entity, connectivities, shapes, nodesPerCell, cells);
  int length = 0;
  for (int i = 0; i < OrvML_IO_GetNumberOfGenericElementTypes(handle, entity); ++i) {
    std::printf("group %s %d %d %d\n", kKindNames[kind], shapes[i], nodesPerCell[i], cells[i]);
    length += nodesPerCell[i] * cells[i];
  }
  std::printf("connectivities %s", kKindNames[kind]);
  printAll(connectivities, length);
  printAttributes(handle, kind, asked);
}

template <class T>
void printVector(void* handle, const std::string& name, const char* type) {
  T* values = nullptr;
  int count = 0;
  if (OrvML_IO_GetParameterVector(handle, name.c_str(), values, count) == 0) {
    printText("vector", name);
    std::printf(" %s", type);
    printAll(values, count);
  }
}

void printParameters(void* handle, const Record& asked) {
  for (const auto& named : asked.parameters) {
    double value = 0;
    if (OrvML_IO_GetParameter(handle, named.first.c_str(), value) == 0) {
      printText("parameter", named.first);
      printAll(&value, 1);
    }
  }
  for (const auto& [name, vector] : asked.vectors) {
    if (vector.type == ORVML_INT) {
      printVector<int>(handle, name, "int");
    } else {
      printVector<double>(handle, name, "double");
    }
  }
  std::printf("counts %zu %zu\n", OrvML_IO_GetNumberOfParameters(handle),
              OrvML_IO_GetNumberOfParametersVector(handle));
}

void printDocument(const char* groupName, void* handle, const Record& asked) {
  std::printf("document %s\n", groupName);
  printIdentification(handle);
  printNodes(handle, asked);
  for (std::size_t kind = ORVML_EDGES; kind <= ORVML_ELEMENTS; ++kind) {
    printCells(handle, kind, asked);
  }
  printParameters(handle, asked);
}

int read(Records& records, const char* path) {
  void* input = nullptr;
  void* output = nullptr;
  int result = 0;
  if (records.size() == 2) {
    result = OrvML_IO_ReadOrvInputAndOrvOutput(path, input, output);
  } else {
    result = records.count("OrvInput") > 0 ? OrvML_IO_ReadOrvInput(path, input)
                                           : OrvML_IO_ReadOrvOutput(path, output);
  }
  if (input != nullptr) {
    printDocument("OrvInput", input, records["OrvInput"]);
  }
  if (output != nullptr) {
    printDocument("OrvOutput", output, records["OrvOutput"]);
  }
  OrvML_IO_DeleteOrvInputHandle(input);
  OrvML_IO_DeleteOrvOutputHandle(output);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc == 4 ? argv[1] : "";
  if (command != "write" && command != "read") {
    std::fputs("usage: library_side write|read RECORD FILE\n", stderr);
    return 2;
  }
  try {
    Records records = parse(argv[2]);
    std::printf("result %d\n",
                command == "write" ? write(records, argv[3]) : read(records, argv[3]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "library_side: %s\n", error.what());
    return 2;
  }
  return 0;
}
