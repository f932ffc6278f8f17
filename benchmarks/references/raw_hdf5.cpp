#include "harness/measurement.h"
#include "references/exchange_files.h"

#include <hdf5.h>

namespace orvml_io_bench::raw_hdf5 {

namespace {

void writeText(hid_t object, const char* name, const std::string& text) {
  const hid_t space = H5Screate(H5S_SCALAR);
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, text.size() + 1);
  const hid_t attribute = H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT);
  require(H5Awrite(attribute, type, text.c_str()) >= 0, "raw: a text");
  H5Aclose(attribute);
  H5Tclose(type);
  H5Sclose(space);
}

std::string readText(hid_t object, const char* name) {
  const hid_t attribute = H5Aopen(object, name, H5P_DEFAULT);
  const hid_t type = H5Aget_type(attribute);
  std::string text(H5Tget_size(type), '\0');
  require(H5Aread(attribute, type, text.data()) >= 0, "raw: a text");
  H5Tclose(type);
  H5Aclose(attribute);
  return text;
}

/// Creates a dataset with its values and returns it, which is open.
hid_t writeOpenArray(hid_t group, const char* name, hid_t type, std::vector<hsize_t> extents,
                     const void* values) {
  const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
  const hid_t dataset = H5Dcreate2(group, name, type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  require(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0, "raw: an array");
  H5Sclose(space);
  return dataset;
}

void writeArray(hid_t group, const char* name, hid_t type, std::vector<hsize_t> extents,
                const void* values) {
  H5Dclose(writeOpenArray(group, name, type, std::move(extents), values));
}

void writeInts(hid_t group, const char* name, const std::vector<int>& values) {
  writeArray(group, name, H5T_NATIVE_INT, {values.size()}, values.data());
}

/// Marks a dataset as one to be sent back.
void writeFlag(hid_t dataset) {
  const hsize_t extent = 1;
  const int flag = 1;
  const hid_t space = H5Screate_simple(1, &extent, nullptr);
  const hid_t attribute =
      H5Acreate2(dataset, "MustBeTransmitted", H5T_NATIVE_INT, space, H5P_DEFAULT, H5P_DEFAULT);
  require(H5Awrite(attribute, H5T_NATIVE_INT, &flag) >= 0, "raw: a flag");
  H5Aclose(attribute);
  H5Sclose(space);
}

void writeVector(hid_t group, const Vector& vector) {
  const bool isInts = !vector.ints.empty();
  const std::size_t length = isInts ? vector.ints.size() : vector.doubles.size();
  const void* values =
      isInts ? static_cast<const void*>(vector.ints.data()) : vector.doubles.data();
  const hid_t type = isInts ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
  const hid_t dataset = writeOpenArray(group, vector.name.c_str(), type, {length}, values);
  if (vector.mustBeTransmitted) {
    writeFlag(dataset);
  }
  H5Dclose(dataset);
}

void writeVectors(hid_t parent, const char* groupName, const std::vector<Vector>& vectors) {
  if (vectors.empty()) {
    return;
  }
  const hid_t group = H5Gcreate2(parent, groupName, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  for (const Vector& vector : vectors) {
    writeVector(group, vector);
  }
  H5Gclose(group);
}

void writeNodes(hid_t document, const Content& content) {
  const hid_t group = H5Gcreate2(document, "Nodes", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  writeArray(group, "coordinates", H5T_NATIVE_DOUBLE,
             {static_cast<hsize_t>(content.numberOfNodes()), Content::kDimension},
             content.coordinates.data());
  writeVectors(group, "Attributes", content.nodeAttributes);
  H5Gclose(group);
}

void writeCells(hid_t document, const Cells& cells) {
  if (cells.shapes.empty()) {
    return;
  }
  const hid_t group = H5Gcreate2(document, cells.group, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  writeInts(group, "number_of_elements_by_type", cells.cellsPerGroup);
  writeInts(group, "element_types", cells.shapes);
  writeInts(group, "number_of_nodes_by_element", cells.nodesPerCell);
  writeInts(group, "connectivities", cells.connectivities);
  writeVectors(group, "Attributes", cells.attributes);
  H5Gclose(group);
}

hid_t recordType() {
  const hid_t nameType = H5Tcopy(H5T_C_S1);
  H5Tset_size(nameType, sizeof ParameterRecord::name);
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(ParameterRecord));
  H5Tinsert(type, "name", offsetof(ParameterRecord, name), nameType);
  H5Tinsert(type, "value", offsetof(ParameterRecord, value), H5T_NATIVE_DOUBLE);
  H5Tclose(nameType);
  return type;
}

void writeScalars(hid_t document, const Content& content) {
  const std::vector<ParameterRecord> records = recordsOf(content);
  const hid_t type = recordType();
  const hsize_t extent = records.size();
  const hsize_t unlimited = H5S_UNLIMITED;
  const hsize_t chunk = 10;
  const hid_t space = H5Screate_simple(1, &extent, &unlimited);
  const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(creation, 1, &chunk);
  const hid_t dataset =
      H5Dcreate2(document, "parameters", type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
  require(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, records.data()) >= 0,
          "raw: the parameters");
  writeText(dataset, "CLASS", "TABLE");
  writeText(dataset, "VERSION", "3.0");
  writeText(dataset, "TITLE", "parameters");
  writeText(dataset, "FIELD_0_NAME", "name");
  writeText(dataset, "FIELD_1_NAME", "value");
  H5Dclose(dataset);
  H5Pclose(creation);
  H5Sclose(space);
  H5Tclose(type);
}

hsize_t valuesOf(hid_t dataset) {
  const hid_t space = H5Dget_space(dataset);
  hsize_t extents[2] = {1, 1};
  H5Sget_simple_extent_dims(space, extents, nullptr);
  H5Sclose(space);
  return extents[0] * extents[1];
}

/// Reads an array into a new one and returns the dataset, which is open.
hid_t readOpenArray(hid_t group, const char* name, bool isInts, Loaded& loaded) {
  const hid_t dataset = H5Dopen2(group, name, H5P_DEFAULT);
  const hsize_t values = valuesOf(dataset);
  const hid_t type = isInts ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
  void* array = nullptr;
  if (isInts) {
    array = loaded.addInts(values);
  } else {
    array = loaded.addDoubles(values);
  }
  require(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, array) >= 0, "raw: an array");
  return dataset;
}

void readArray(hid_t group, const char* name, bool isInts, Loaded& loaded) {
  H5Dclose(readOpenArray(group, name, isInts, loaded));
}

enum class Vectors { closed, leftOpen };

void readVectors(hid_t parent, const char* groupName, const std::vector<Vector>& expected,
                 Vectors afterwards, Loaded& loaded) {
  if (expected.empty()) {
    return;
  }
  const hid_t group = H5Gopen2(parent, groupName, H5P_DEFAULT);
  const std::vector<std::string> names = linkNames(group);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const hid_t dataset = readOpenArray(group, names[i].c_str(), !expected[i].ints.empty(), loaded);
    if (afterwards == Vectors::closed) {
      H5Dclose(dataset);
    }
  }
  loaded.names.insert(loaded.names.end(), names.begin(), names.end());
  H5Gclose(group);
}

void readCells(hid_t document, const Cells& cells, Vectors afterwards, Loaded& loaded) {
  if (cells.shapes.empty()) {
    return;
  }
  const hid_t group = H5Gopen2(document, cells.group, H5P_DEFAULT);
  for (const char* name : {"number_of_elements_by_type", "element_types",
                           "number_of_nodes_by_element", "connectivities"}) {
    readArray(group, name, true, loaded);
  }
  readVectors(group, "Attributes", cells.attributes, afterwards, loaded);
  H5Gclose(group);
}

void readScalars(hid_t document, Loaded& loaded) {
  const hid_t dataset = H5Dopen2(document, "parameters", H5P_DEFAULT);
  const hid_t type = recordType();
  char* records = loaded.addRecords(valuesOf(dataset), sizeof(ParameterRecord));
  require(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, records) >= 0,
          "raw: the parameters");
  H5Tclose(type);
  H5Dclose(dataset);
}

Loaded readAll(const std::string& path, const Content& content, Vectors afterwards) {
  Loaded loaded;
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  require(file >= 0, "raw: opening");
  for (const char* name : {"FORMAT", "ORVMESHLIBRARY_FORMAT_VERSION", "ORVML_IO_CREATOR",
                           "ORVML_MODULE_NAME", "ORVML_MODULE_FORMAT_VERSION"}) {
    loaded.names.push_back(readText(file, name));
  }
  const hid_t document = H5Gopen2(file, "OrvInput", H5P_DEFAULT);
  readArray(document, "dimension", true, loaded);
  const hid_t nodes = H5Gopen2(document, "Nodes", H5P_DEFAULT);
  readArray(nodes, "coordinates", false, loaded);
  readVectors(nodes, "Attributes", content.nodeAttributes, afterwards, loaded);
  H5Gclose(nodes);
  readCells(document, content.cells, afterwards, loaded);
  readScalars(document, loaded);
  readVectors(document, "ParametersVector", content.vectors, afterwards, loaded);
  H5Gclose(document);
  H5Fclose(file);
  return loaded;
}

}  // namespace

void write(const std::string& path, const Content& content) {
  const hid_t file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
  writeText(file, "FORMAT", "ORVMESHLIBRARY");
  writeText(file, "ORVMESHLIBRARY_FORMAT_VERSION", "1.4");
  writeText(file, "ORVML_IO_CREATOR", "benchmark");
  writeText(file, "ORVML_MODULE_NAME", "ORVML_OCTREE_MESHER");
  writeText(file, "ORVML_MODULE_FORMAT_VERSION", "1.0");
  const hid_t document = H5Gcreate2(file, "OrvInput", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  writeInts(document, "dimension", {Content::kDimension});
  writeNodes(document, content);
  writeCells(document, content.cells);
  writeScalars(document, content);
  writeVectors(document, "ParametersVector", content.vectors);
  H5Gclose(document);
  require(H5Fclose(file) >= 0, "raw: closing");
}

Loaded read(const std::string& path, const Content& content) {
  return readAll(path, content, Vectors::closed);
}

Loaded readLeavingOpen(const std::string& path, const Content& content) {
  return readAll(path, content, Vectors::leftOpen);
}

}  // namespace orvml_io_bench::raw_hdf5
