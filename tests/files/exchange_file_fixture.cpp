#include "files/exchange_file_fixture.h"

#include <fstream>
#include <iterator>

namespace orvml_io_tests {

namespace {

/// One of the numbers that HDF5 leaves to tests.
constexpr H5Z_filter_t kLostFilter = 300;

std::size_t keepBytes(unsigned /*flags*/, std::size_t /*valueCount*/, const unsigned* /*values*/,
                      std::size_t bytes, std::size_t* /*bufferBytes*/, void** /*buffer*/) {
  return bytes;
}

void collectPaths(const RawFile& file, const std::string& group, std::vector<std::string>& paths) {
  for (const std::string& name : file.members(group.empty() ? "/" : group)) {
    const std::string path = group + "/" + name;
    if (file.isGroup(path)) {
      paths.push_back(path + "/");
      collectPaths(file, path, paths);
    } else {
      paths.push_back(path);
    }
  }
}

int numberOfConnectivities(void* document, ORVML_TYPE_OF_ENTITY entity, const int* cellsPerGroup) {
  int total = 0;
  for (int i = 0; i < OrvML_IO_GetNumberOfGenericElementTypes(document, entity); ++i) {
    total += cellsPerGroup[i] * OrvML_IO_GetNNodeGenericElement(document, entity, i);
  }
  return total;
}

}  // namespace

ReadDocument readInput(const char* path) {
  ReadDocument read;
  read.result = OrvML_IO_ReadOrvInput(path, read.document.out());
  return read;
}

ReadDocument readOutput(const char* path) {
  ReadDocument read;
  read.result = OrvML_IO_ReadOrvOutput(path, read.document.out());
  return read;
}

RawFile ExchangeFileTest::written(const BuiltDocument& input) {
  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), input.handle()), 0);
  return RawFile::open(path());
}

RawFile ExchangeFileTest::writtenOutput(const BuiltDocument& output) {
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), output.handle()), 0);
  return RawFile::open(path());
}

RawFile ExchangeFileTest::writtenBoth(const BuiltDocument& input, const BuiltDocument& output) {
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), input.handle(), output.handle()), 0);
  return RawFile::open(path());
}

RawFile ExchangeFileTest::writtenWithFailure(const BuiltDocument& input) {
  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), input.handle()), 1);
  return RawFile::open(path());
}

RawFile ExchangeFileTest::smallInput(const std::string& version) {
  RawFile file = RawFile::createMarked(path(), version);
  addSmallDocument(file, "/OrvInput");
  return file;
}

RawFile ExchangeFileTest::smallOutput() {
  RawFile file = RawFile::createMarked(path());
  addSmallDocument(file, "/OrvOutput");
  return file;
}

ReadDocument ExchangeFileTest::read(RawFile& file) {
  file.close();
  return readInput(path());
}

ReadDocument ExchangeFileTest::readAsOutput(RawFile& file) {
  file.close();
  return readOutput(path());
}

void addSmallDocument(RawFile& file, const std::string& group) {
  file.documentGroup(group, 3);
  file.group(group + "/Nodes");
  file.doubleTable(group + "/Nodes/coordinates", 3, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0});
  file.elements(group + "/Faces", {1}, {TRIANGLE}, {3}, {0, 1, 2});
  file.parameterTable(group + "/parameters", {{"size", 0.5}});
}

void replaceInts(RawFile& file, const std::string& path, const std::vector<int>& values) {
  file.remove(path);
  file.intVector(path, values);
}

void replaceDataset(RawFile& file, const std::string& path, hid_t type, const Extents& extents,
                    const void* data) {
  file.remove(path);
  file.dataset(path, type, extents, data);
}

void unreadableDataset(RawFile& file, const std::string& path, hid_t type, const Extents& extents) {
  const H5Z_class2_t filter = {H5Z_CLASS_T_VERS, kLostFilter, 1,       1,
                               "lost",           nullptr,     nullptr, keepBytes};
  ASSERT_GE(H5Zregister(&filter), 0);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(properties, static_cast<int>(extents.size()), extents.data());
  H5Pset_filter(properties, kLostFilter, H5Z_FLAG_MANDATORY, 0, nullptr);
  const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
  const hid_t dataset =
      H5Dcreate2(file.id(), path.c_str(), type, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0) << path;
  const std::vector<char> zeros(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)) *
                                H5Tget_size(type));
  ASSERT_GE(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, zeros.data()), 0) << path;
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
  ASSERT_GE(H5Zunregister(kLostFilter), 0);
}

void replaceByUnreadable(RawFile& file, const std::string& path, hid_t type,
                         const Extents& extents) {
  file.remove(path);
  unreadableDataset(file, path, type, extents);
}

bool isStoredAs(const RawFile& file, const std::string& dataset, hid_t type) {
  const hid_t id = H5Dopen2(file.id(), dataset.c_str(), H5P_DEFAULT);
  EXPECT_GE(id, 0) << dataset;
  const hid_t stored = H5Dget_type(id);
  const bool equal = H5Tequal(stored, type) > 0;
  H5Tclose(stored);
  H5Dclose(id);
  return equal;
}

std::vector<std::string> allPaths(const RawFile& file) {
  std::vector<std::string> paths;
  collectPaths(file, "", paths);
  return paths;
}

std::vector<double> coordinatesOf(void* document) {
  double* coords = nullptr;
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document, coords), 0);
  if (coords == nullptr) {
    return {};
  }
  return {coords,
          coords + OrvML_IO_GetNumberOfNodes(document) * OrvML_IO_GetMeshDimension(document)};
}

std::vector<int> connectivitiesOf(void* document, ORVML_TYPE_OF_ENTITY entity) {
  int* connectivities = nullptr;
  ElemType* shapes = nullptr;
  int* nodesPerCell = nullptr;
  int* cellsPerGroup = nullptr;
  EXPECT_EQ(OrvML_IO_GetGenericElements(document, entity, connectivities, shapes, nodesPerCell,
                                        cellsPerGroup),
            0);
  if (connectivities == nullptr) {
    return {};
  }
  return {connectivities, connectivities + numberOfConnectivities(document, entity, cellsPerGroup)};
}

std::string bytesOf(const char* path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream.good()) << path;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace orvml_io_tests
