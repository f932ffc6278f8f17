#include "harness/measurement.h"
#include "references/exchange_files.h"

#include <hdf5.h>
#include <hdf5_hl.h>

namespace orvml_io_bench::lite_library {

namespace {

constexpr char kDocument[] = "/OrvInput";
const std::size_t kOffsets[] = {offsetof(ParameterRecord, name), offsetof(ParameterRecord, value)};
const std::size_t kSizes[] = {sizeof ParameterRecord::name, sizeof ParameterRecord::value};

void makeGroup(hid_t file, const std::string& path) {
  const hid_t group = H5Gcreate2(file, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  require(group >= 0, "lite: a group");
  H5Gclose(group);
}

void writeInts(hid_t file, const std::string& path, const std::vector<int>& values) {
  const hsize_t extent = values.size();
  require(H5LTmake_dataset_int(file, path.c_str(), 1, &extent, values.data()) >= 0, "lite: ints");
}

void writeVectors(hid_t file, const std::string& path, const std::vector<Vector>& vectors) {
  if (vectors.empty()) {
    return;
  }
  makeGroup(file, path);
  for (const Vector& vector : vectors) {
    const std::string member = path + "/" + vector.name;
    const hsize_t extent = vector.doubles.size();
    if (!vector.ints.empty()) {
      writeInts(file, member, vector.ints);
    } else {
      require(H5LTmake_dataset_double(file, member.c_str(), 1, &extent, vector.doubles.data()) >= 0,
              "lite: doubles");
    }
    const int flag = 1;
    require(!vector.mustBeTransmitted ||
                H5LTset_attribute_int(file, member.c_str(), "MustBeTransmitted", &flag, 1) >= 0,
            "lite: a flag");
  }
}

void writeNodes(hid_t file, const Content& content) {
  const std::string nodes = std::string(kDocument) + "/Nodes";
  makeGroup(file, nodes);
  const hsize_t extents[] = {static_cast<hsize_t>(content.numberOfNodes()), Content::kDimension};
  require(H5LTmake_dataset_double(file, (nodes + "/coordinates").c_str(), 2, extents,
                                  content.coordinates.data()) >= 0,
          "lite: coordinates");
  writeVectors(file, nodes + "/Attributes", content.nodeAttributes);
}

void writeCells(hid_t file, const Cells& cells) {
  if (cells.shapes.empty()) {
    return;
  }
  const std::string group = std::string(kDocument) + "/" + cells.group;
  makeGroup(file, group);
  writeInts(file, group + "/number_of_elements_by_type", cells.cellsPerGroup);
  writeInts(file, group + "/element_types", cells.shapes);
  writeInts(file, group + "/number_of_nodes_by_element", cells.nodesPerCell);
  writeInts(file, group + "/connectivities", cells.connectivities);
  writeVectors(file, group + "/Attributes", cells.attributes);
}

void writeScalars(hid_t file, const Content& content) {
  const std::vector<ParameterRecord> records = recordsOf(content);
  const hid_t nameType = H5Tcopy(H5T_C_S1);
  H5Tset_size(nameType, sizeof ParameterRecord::name);
  const char* fieldNames[] = {"name", "value"};
  const hid_t fieldTypes[] = {nameType, H5T_NATIVE_DOUBLE};
  constexpr hsize_t kChunk = 10;
  require(H5TBmake_table("parameters", file, (std::string(kDocument) + "/parameters").c_str(), 2,
                         records.size(), sizeof(ParameterRecord), fieldNames, kOffsets, fieldTypes,
                         kChunk, nullptr, 0, records.data()) >= 0,
          "lite: the parameters");
  H5Tclose(nameType);
}

std::size_t valuesOf(hid_t file, const std::string& path) {
  hsize_t extents[2] = {1, 1};
  require(H5LTget_dataset_info(file, path.c_str(), extents, nullptr, nullptr) >= 0,
          "lite: extents");
  return extents[0] * extents[1];
}

void readDoubles(hid_t file, const std::string& path, Loaded& loaded) {
  double* values = loaded.addDoubles(valuesOf(file, path));
  require(H5LTread_dataset_double(file, path.c_str(), values) >= 0, "lite: doubles");
}

void readInts(hid_t file, const std::string& path, Loaded& loaded) {
  int* values = loaded.addInts(valuesOf(file, path));
  require(H5LTread_dataset_int(file, path.c_str(), values) >= 0, "lite: ints");
}

void readVectors(hid_t file, const std::string& path, const std::vector<Vector>& expected,
                 Loaded& loaded) {
  if (expected.empty()) {
    return;
  }
  const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
  const std::vector<std::string> names = linkNames(group);
  H5Gclose(group);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (expected[i].ints.empty()) {
      readDoubles(file, path + "/" + names[i], loaded);
    } else {
      readInts(file, path + "/" + names[i], loaded);
    }
  }
}

void readCells(hid_t file, const Cells& cells, Loaded& loaded) {
  if (cells.shapes.empty()) {
    return;
  }
  const std::string group = std::string(kDocument) + "/" + cells.group;
  for (const char* name : {"/number_of_elements_by_type", "/element_types",
                           "/number_of_nodes_by_element", "/connectivities"}) {
    readInts(file, group + name, loaded);
  }
  readVectors(file, group + "/Attributes", cells.attributes, loaded);
}

void readScalars(hid_t file, Loaded& loaded) {
  const std::string path = std::string(kDocument) + "/parameters";
  hsize_t fields = 0;
  hsize_t records = 0;
  require(H5TBget_table_info(file, path.c_str(), &fields, &records) >= 0, "lite: the table");
  char* values = loaded.addRecords(records, sizeof(ParameterRecord));
  require(
      H5TBread_table(file, path.c_str(), sizeof(ParameterRecord), kOffsets, kSizes, values) >= 0,
      "lite: the parameters");
}

std::string readText(hid_t file, const char* name) {
  char text[1024] = {};
  require(H5LTget_attribute_string(file, "/", name, text) >= 0, "lite: a text");
  return text;
}

}  // namespace

void write(const std::string& path, const Content& content) {
  const hid_t file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
  H5LTset_attribute_string(file, "/", "FORMAT", "ORVMESHLIBRARY");
  H5LTset_attribute_string(file, "/", "ORVMESHLIBRARY_FORMAT_VERSION", "1.4");
  makeGroup(file, kDocument);
  H5LTset_attribute_string(file, "/", "ORVML_IO_CREATOR", "benchmark");
  H5LTset_attribute_string(file, "/", "ORVML_MODULE_NAME", "ORVML_OCTREE_MESHER");
  H5LTset_attribute_string(file, "/", "ORVML_MODULE_FORMAT_VERSION", "1.0");
  writeInts(file, std::string(kDocument) + "/dimension", {Content::kDimension});
  writeNodes(file, content);
  writeCells(file, content.cells);
  writeScalars(file, content);
  writeVectors(file, std::string(kDocument) + "/ParametersVector", content.vectors);
  require(H5Fclose(file) >= 0, "lite: closing");
}

Loaded read(const std::string& path, const Content& content) {
  Loaded loaded;
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  require(file >= 0, "lite: opening");
  for (const char* name : {"FORMAT", "ORVMESHLIBRARY_FORMAT_VERSION", "ORVML_IO_CREATOR",
                           "ORVML_MODULE_NAME", "ORVML_MODULE_FORMAT_VERSION"}) {
    loaded.names.push_back(readText(file, name));
  }
  readInts(file, std::string(kDocument) + "/dimension", loaded);
  readDoubles(file, std::string(kDocument) + "/Nodes/coordinates", loaded);
  readVectors(file, std::string(kDocument) + "/Nodes/Attributes", content.nodeAttributes, loaded);
  readCells(file, content.cells, loaded);
  readScalars(file, loaded);
  readVectors(file, std::string(kDocument) + "/ParametersVector", content.vectors, loaded);
  require(H5Fclose(file) >= 0, "lite: closing");
  return loaded;
}

}  // namespace orvml_io_bench::lite_library
