#include "support/raw_file.h"

#include <gtest/gtest.h>

#include <cstring>

namespace orvml_io_tests {

namespace {

hid_t spaceOf(const std::vector<hsize_t>& extents) {
  return extents.empty()
             ? H5Screate(H5S_SCALAR)
             : H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
}

RawShape shapeOf(hid_t type, hid_t space) {
  RawShape shape;
  shape.typeClass = H5Tget_class(type);
  shape.typeBytes = H5Tget_size(type);
  shape.isSigned = shape.typeClass == H5T_INTEGER && H5Tget_sign(type) == H5T_SGN_2;
  const int rank = H5Sget_simple_extent_ndims(space);
  shape.extents.resize(rank > 0 ? static_cast<std::size_t>(rank) : 0);
  H5Sget_simple_extent_dims(space, shape.extents.data(), nullptr);
  H5Tclose(type);
  H5Sclose(space);
  return shape;
}

/// Opened, because what else tells the kind of an object differs between versions of HDF5.
H5I_type_t objectType(hid_t file, const std::string& path) {
  const hid_t object = H5Oopen(file, path.c_str(), H5P_DEFAULT);
  const H5I_type_t type = H5Iget_type(object);
  H5Oclose(object);
  return type;
}

herr_t addName(hid_t /*location*/, const char* name, const H5A_info_t* /*info*/, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

}  // namespace

RawFile RawFile::open(const char* path) {
  const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
  EXPECT_GE(file, 0) << "cannot open " << path;
  return RawFile(file);
}

RawFile RawFile::openForWriting(const char* path) {
  const hid_t file = H5Fopen(path, H5F_ACC_RDWR, H5P_DEFAULT);
  EXPECT_GE(file, 0) << "cannot open " << path;
  return RawFile(file);
}

RawFile RawFile::create(const char* path) {
  const hid_t file = H5Fcreate(path, H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
  EXPECT_GE(file, 0) << "cannot create " << path;
  return RawFile(file);
}

RawFile RawFile::createMarked(const char* path, const std::string& version) {
  RawFile file = create(path);
  file.textAttribute("/", "FORMAT", "ORVMESHLIBRARY");
  if (!version.empty()) {
    file.textAttribute("/", "ORVMESHLIBRARY_FORMAT_VERSION", version);
  }
  return file;
}

RawFile::RawFile(RawFile&& other) noexcept : file_(other.file_) { other.file_ = -1; }

RawFile::~RawFile() { close(); }

void RawFile::close() {
  if (file_ >= 0) {
    H5Fclose(file_);
  }
  file_ = -1;
}

bool RawFile::has(const std::string& path) const {
  // H5Lexists needs every parent to exist, so the path is walked.
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const std::string prefix = path.substr(0, slash);
    if (H5Lexists(file_, prefix.c_str(), H5P_DEFAULT) <= 0) {
      return false;
    }
    if (slash == std::string::npos) {
      return true;
    }
  }
}

bool RawFile::isGroup(const std::string& path) const {
  return has(path) && objectType(file_, path) == H5I_GROUP;
}

bool RawFile::isDataset(const std::string& path) const {
  return has(path) && objectType(file_, path) == H5I_DATASET;
}

std::vector<std::string> RawFile::members(const std::string& group) const {
  std::vector<std::string> names;
  H5G_info_t info = {};
  EXPECT_GE(H5Gget_info_by_name(file_, group.c_str(), &info, H5P_DEFAULT), 0) << group;
  for (hsize_t i = 0; i < info.nlinks; ++i) {
    char name[1024] = {};
    H5Lget_name_by_idx(file_, group.c_str(), H5_INDEX_NAME, H5_ITER_INC, i, name, sizeof(name),
                       H5P_DEFAULT);
    names.emplace_back(name);
  }
  return names;
}

RawShape RawFile::shape(const std::string& dataset) const {
  const hid_t id = H5Dopen2(file_, dataset.c_str(), H5P_DEFAULT);
  EXPECT_GE(id, 0) << dataset;
  const RawShape shape = shapeOf(H5Dget_type(id), H5Dget_space(id));
  H5Dclose(id);
  return shape;
}

std::vector<int> RawFile::ints(const std::string& dataset) const {
  const hid_t id = H5Dopen2(file_, dataset.c_str(), H5P_DEFAULT);
  const hid_t space = H5Dget_space(id);
  std::vector<int> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
  EXPECT_GE(H5Dread(id, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0)
      << dataset;
  H5Sclose(space);
  H5Dclose(id);
  return values;
}

std::vector<double> RawFile::doubles(const std::string& dataset) const {
  const hid_t id = H5Dopen2(file_, dataset.c_str(), H5P_DEFAULT);
  const hid_t space = H5Dget_space(id);
  std::vector<double> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
  EXPECT_GE(H5Dread(id, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0)
      << dataset;
  H5Sclose(space);
  H5Dclose(id);
  return values;
}

bool RawFile::hasAttribute(const std::string& object, const std::string& name) const {
  return H5Aexists_by_name(file_, object.c_str(), name.c_str(), H5P_DEFAULT) > 0;
}

std::vector<std::string> RawFile::attributes(const std::string& object) const {
  std::vector<std::string> names;
  H5Aiterate_by_name(file_, object.c_str(), H5_INDEX_NAME, H5_ITER_INC, nullptr, addName, &names,
                     H5P_DEFAULT);
  return names;
}

RawShape RawFile::attributeShape(const std::string& object, const std::string& name) const {
  const hid_t id = H5Aopen_by_name(file_, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
  EXPECT_GE(id, 0) << object << " " << name;
  const RawShape shape = shapeOf(H5Aget_type(id), H5Aget_space(id));
  H5Aclose(id);
  return shape;
}

std::string RawFile::attributeBytes(const std::string& object, const std::string& name) const {
  const hid_t id = H5Aopen_by_name(file_, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
  EXPECT_GE(id, 0) << object << " " << name;
  const hid_t type = H5Aget_type(id);
  std::string bytes(H5Tget_size(type), '\0');
  EXPECT_GE(H5Aread(id, type, bytes.data()), 0) << object << " " << name;
  H5Tclose(type);
  H5Aclose(id);
  return bytes;
}

int RawFile::intAttribute(const std::string& object, const std::string& name) const {
  int value = 0;
  const hid_t id = H5Aopen_by_name(file_, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
  EXPECT_GE(H5Aread(id, H5T_NATIVE_INT, &value), 0) << object << " " << name;
  H5Aclose(id);
  return value;
}

void RawFile::group(const std::string& path) {
  const hid_t id = H5Gcreate2(file_, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  ASSERT_GE(id, 0) << path;
  H5Gclose(id);
}

void RawFile::intVector(const std::string& path, const std::vector<int>& values) {
  dataset(path, H5T_NATIVE_INT, {values.size()}, values.data());
}

void RawFile::doubleVector(const std::string& path, const std::vector<double>& values) {
  dataset(path, H5T_NATIVE_DOUBLE, {values.size()}, values.data());
}

void RawFile::doubleTable(const std::string& path, hsize_t rows, hsize_t columns,
                          const std::vector<double>& values) {
  ASSERT_EQ(values.size(), rows * columns) << path;
  dataset(path, H5T_NATIVE_DOUBLE, {rows, columns}, values.data());
}

void RawFile::dataset(const std::string& path, hid_t type, const std::vector<hsize_t>& extents,
                      const void* data) {
  const hid_t space = spaceOf(extents);
  const hid_t id =
      H5Dcreate2(file_, path.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  ASSERT_GE(id, 0) << path;
  if (data != nullptr) {
    ASSERT_GE(H5Dwrite(id, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, data), 0) << path;
  }
  H5Dclose(id);
  H5Sclose(space);
}

void RawFile::textAttribute(const std::string& object, const std::string& name,
                            const std::string& text) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, text.size() + 1);
  attribute(object, name, type, {}, text.c_str());
  H5Tclose(type);
}

void RawFile::intAttributeValue(const std::string& object, const std::string& name, int value) {
  attribute(object, name, H5T_NATIVE_INT, {1}, &value);
}

void RawFile::attribute(const std::string& object, const std::string& name, hid_t type,
                        const std::vector<hsize_t>& extents, const void* data) {
  const hid_t space = spaceOf(extents);
  const hid_t id = H5Acreate_by_name(file_, object.c_str(), name.c_str(), type, space, H5P_DEFAULT,
                                     H5P_DEFAULT, H5P_DEFAULT);
  ASSERT_GE(id, 0) << object << " " << name;
  if (data != nullptr) {
    ASSERT_GE(H5Awrite(id, type, data), 0) << object << " " << name;
  }
  H5Aclose(id);
  H5Sclose(space);
}

void RawFile::remove(const std::string& path) {
  ASSERT_GE(H5Ldelete(file_, path.c_str(), H5P_DEFAULT), 0) << path;
}

void RawFile::removeAttribute(const std::string& object, const std::string& name) {
  ASSERT_GE(H5Adelete_by_name(file_, object.c_str(), name.c_str(), H5P_DEFAULT), 0) << name;
}

void RawFile::parameterTable(const std::string& path,
                             const std::vector<std::pair<std::string, double>>& parameters) {
  struct Record {
    char name[80];
    double value;
  };
  std::vector<Record> records(parameters.size());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    ASSERT_LE(parameters[i].first.size(), sizeof(Record::name)) << parameters[i].first;
    std::memcpy(records[i].name, parameters[i].first.data(), parameters[i].first.size());
    records[i].value = parameters[i].second;
  }
  const hid_t text = H5Tcopy(H5T_C_S1);
  H5Tset_size(text, sizeof(Record::name));
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(Record));
  H5Tinsert(type, "name", 0, text);
  H5Tinsert(type, "value", sizeof(Record::name), H5T_NATIVE_DOUBLE);
  dataset(path, type, {records.size()}, records.data());
  H5Tclose(type);
  H5Tclose(text);
}

void RawFile::documentGroup(const std::string& path, int dimension) {
  group(path);
  intVector(path + "/dimension", {dimension});
}

void RawFile::elements(const std::string& path, const std::vector<int>& counts,
                       const std::vector<int>& shapes, const std::vector<int>& nodesPerElement,
                       const std::vector<int>& connectivities) {
  group(path);
  intVector(path + "/number_of_elements_by_type", counts);
  intVector(path + "/element_types", shapes);
  intVector(path + "/number_of_nodes_by_element", nodesPerElement);
  intVector(path + "/connectivities", connectivities);
}

}  // namespace orvml_io_tests
