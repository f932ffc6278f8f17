// The members that write and read the mesh: Nodes::Write and Read, Elems::Write and Read with their
// steps, and the document's WriteNodes, ReadNodes, WriteEdges, ... down to ReadElements.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"
#include "model/limits.h"

#include <algorithm>

namespace orvml_io {

namespace {

/// The open group of a container that is written. Its members are made relative to it, which spares
/// the way from the root; the limit of paths holds for their absolute ones.
struct WrittenGroup {
  const char* path;
  GroupId id;

  [[nodiscard]] bool fits(const char* subPath) const { return Path(path).append(subPath); }
};

/// The path of a member as seen from its group. Sub-paths begin with a slash.
Path memberPath(const char* subPath) { return Path(subPath + 1); }

int makeInts(const WrittenGroup& group, const char* subPath, int length, const int* values) {
  return group.fits(subPath) ? makeVector(group.id.get(), memberPath(subPath), length, values)
                             : kFailed;
}

int writeElementTypes(const Elems& elems, const WrittenGroup& group) {
  const int length = elems.numberOfElementTypes;
  if (makeInts(group, layout::kNumberOfElementsByType, length, elems.numberOfElementsByType) !=
      kOk) {
    return kFailed;
  }
  // ElemType has the size and the values of an int (asserted in names.cpp).
  if (makeInts(group, layout::kElementTypes, length,
               reinterpret_cast<const int*>(elems.elementTypes)) != kOk) {
    return kFailed;
  }
  return makeInts(group, layout::kNumberOfNodesByElement, length, elems.numberOfNodesByElement);
}

int writeConnectivities(const Elems& elems, const WrittenGroup& group) {
  const std::optional<int> size = connectivitySize32(
      elems.numberOfElementsByType, elems.numberOfNodesByElement, elems.numberOfElementTypes);
  return size ? makeInts(group, layout::kConnectivities, *size, elems.connectivities) : kFailed;
}

/// Reads a dataset that must hold exactly `length` ints; null when it does not or cannot be read.
NewArray<int> tryReadInts(const SourceFile& file, const char* containerPath, const char* subPath,
                          int length) {
  Path path(containerPath);
  if (!path.append(subPath)) {
    return nullptr;
  }
  const DatasetId dataset = file.tryOpenDataset(path);
  if (!dataset.valid() || !isVectorOfLength(dataset.get(), length, sizeof(int))) {
    return nullptr;
  }
  NewArray<int> values = makeNewArray<int>(length, file.freshMemory());
  return readFresh(dataset.get(), values.get(), length) == kOk ? std::move(values) : nullptr;
}

/// Shapes lie in files as ints; any value is taken.
NewArray<ElemType> toShapes(const int* values, int length) {
  NewArray<ElemType> shapes = makeNewArray<ElemType>(length);
  std::transform(values, values + length, shapes.get(),
                 [](int value) { return static_cast<ElemType>(value); });
  return shapes;
}

/// A table without columns stores nothing, whatever its rows. Padding makes up to three columns of
/// it, so only a small one is taken.
bool isPaddedInProportion(const TableExtents& extents) {
  constexpr std::size_t kPaddedRowBytes = 3 * sizeof(double);
  return extents.columns > 0 ||
         static_cast<std::size_t>(extents.rows) <= kUnstoredBytesTolerated / kPaddedRowBytes;
}

/// Coordinates of fewer columns than the dimension are accepted. The values behind them are zeros,
/// so that whoever takes the document at its word stays inside the array. Returns whether the array
/// could be made as long as the document says. A dimension that readers reject pads nothing.
bool padCoordinates(Nodes& nodes, int dimension) {
  if (nodes.coords == nullptr || !isAcceptedDimension(dimension)) {
    return true;
  }
  const std::optional<int> needed = product32(nodes.numberOfNodes, dimension);
  if (!needed) {
    return false;
  }
  if (*needed > nodes.coordsLength) {
    NewArray<double> padded(new double[static_cast<std::size_t>(*needed)]());
    std::copy_n(nodes.coords, nodes.coordsLength, padded.get());
    const NewArray<double> released(nodes.coords);
    nodes.coords = padded.release();
    nodes.coordsLength = *needed;
  }
  return true;
}

int writeElems(const Elems* elems, hid_t file, const char* group, const char* subPath) {
  if (elems == nullptr) {
    return kOk;
  }
  Path path(group);
  return path.append(subPath) ? elems->Write(file, path.c_str()) : kFailed;
}

/// Reads one element container. A container that ends without cells is removed, with what the
/// reader put into it: a document read from a file never holds an empty container.
int readElems(Elems*& slot, const SourceFile& file, const char* group, const char* subPath,
              const char* formatVersion, ORVML_TYPE_OF_ENTITY entity) {
  Path path(group);
  if (!path.append(subPath)) {
    return kFailed;
  }
  if (slot == nullptr) {
    slot = std::make_unique<Elems>().release();
  }
  const int status = slot->Read(file, path.c_str(), formatVersion, entity);
  if (slot->numberOfElements == 0) {
    slot->DeleteContent();
    slot->DeleteAuxiliarContent();
    const std::unique_ptr<Elems> removed(slot);
    slot = nullptr;
  }
  return status;
}

}  // namespace

int Nodes::Write(hid_t file, const char* path, int dimension) const {
  Path coordinatesPath(path);
  Path attributesPath(path);
  if (file < 0 || !coordinatesPath.append(layout::kCoordinates) ||
      !attributesPath.append(layout::kAttributes)) {
    return kFailed;
  }
  const GroupId group = createGroupIfAbsent(file, Path(path));
  if (!product32(numberOfNodes, dimension) || !holdsCoordinates(dimension) ||
      makeTable(group.get(), memberPath(layout::kCoordinates), numberOfNodes, dimension, coords) !=
          kOk) {
    return kFailed;
  }
  return attributes.HDF5Write(file, attributesPath.c_str());
}

int Nodes::Read(const SourceFile& file, const char* path, const char* formatVersion) {
  Path coordinatesPath(path);
  if (!file.valid() || !coordinatesPath.append(layout::kCoordinates)) {
    return kFailed;
  }
  if (!file.tryKeepGroup(Path(path), KeptOpen::containerGroup)) {
    return kFailed;  // Contract: the writer leaves the group out when there are no nodes.
  }
  DatasetId probe = file.tryOpenDataset(coordinatesPath);
  if (!probe.valid()) {
    coords = nullptr;
    numberOfNodes = 0;
    return kOk;
  }
  const hid_t dataset = keepOpen(std::move(probe), KeptOpen::containerProbe);
  const std::optional<TableExtents> extents = tableExtents(dataset, sizeof(double));
  if (!extents || !isPaddedInProportion(*extents)) {
    return kFailed;
  }
  if (extents->rows == 0) {
    return kOk;
  }
  NewArray<double> values = makeNewArray<double>(extents->numberOfValues(), file.freshMemory());
  numberOfNodes = extents->rows;
  if (readFresh(dataset, values.get(), extents->numberOfValues()) != kOk) {
    return kFailed;  // Contract: the count just read stays, without coordinates.
  }
  coords = values.release();
  coordsLength = extents->numberOfValues();
  return ReadAttributes(file, path, numberOfNodes, formatVersion);
}

int Elems::Write(hid_t file, const char* path) const {
  Path attributesPath(path);
  if (file < 0 || !attributesPath.append(layout::kAttributes)) {
    return kFailed;
  }
  if (numberOfElementTypes == 0) {
    return kOk;
  }
  const WrittenGroup group{path, createGroupIfAbsent(file, Path(path))};
  AnyFailure any;
  any.add(writeElementTypes(*this, group));
  any.add(writeConnectivities(*this, group));
  any.add(attributes.HDF5Write(file, attributesPath.c_str()));
  return any.status();
}

int Elems::WriteElementTypes(hid_t file, const char* path) const {
  return writeElementTypes(*this, {path, createGroupIfAbsent(file, Path(path))});
}

int Elems::WriteConnectivities(hid_t file, const char* path) const {
  return writeConnectivities(*this, {path, GroupId(H5Gopen2(file, path, H5P_DEFAULT))});
}

int Elems::Read(const SourceFile& file, const char* path, const char* formatVersion,
                ORVML_TYPE_OF_ENTITY entity) {
  if (!file.valid()) {
    return kFailed;
  }
  if (!file.tryKeepGroup(Path(path), KeptOpen::containerGroup)) {
    return kOk;  // Contract: unlike for nodes, a missing container is no error.
  }
  const int status = ReadElementTypes(file, path);
  if (status != kOk || numberOfElements == 0 || numberOfElementTypes == 0) {
    return status;
  }
  if (ReadConnectivities(file, path) != kOk) {
    return kFailed;
  }
  return ReadAttributes(file, path, numberOfElements, formatVersion, entity);
}

int Elems::ReadElementTypes(const SourceFile& file, const char* path) {
  Path typesPath(path);
  if (!typesPath.append(layout::kElementTypes)) {
    return kFailed;
  }
  DatasetId probe = file.tryOpenDataset(typesPath);
  if (!probe.valid()) {
    numberOfElements = 0;
    return kOk;
  }
  const hid_t dataset = keepOpen(std::move(probe), KeptOpen::containerProbe);
  const std::optional<int> numberOfTypes = vectorLength(dataset, sizeof(int));
  if (!numberOfTypes) {
    return kFailed;
  }
  numberOfElementTypes = *numberOfTypes;
  if (numberOfElementTypes == 0) {
    return kOk;
  }
  NewArray<int> counts =
      tryReadInts(file, path, layout::kNumberOfElementsByType, numberOfElementTypes);
  const std::optional<int> total =
      counts ? sum32(counts.get(), numberOfElementTypes) : std::nullopt;
  if (!total) {
    return kFailed;
  }
  numberOfElementsByType = counts.release();
  groupArraysMadeByLibrary = true;
  numberOfElements = *total;
  return numberOfElements == 0 ? kOk : readShapesAndNodeCounts(file, path, dataset);
}

int Elems::readShapesAndNodeCounts(const SourceFile& file, const char* path, hid_t typesDataset) {
  const NewArray<int> shapes = makeNewArray<int>(numberOfElementTypes);
  if (readFresh(typesDataset, shapes.get(), numberOfElementTypes) != kOk) {
    return kFailed;
  }
  elementTypes = toShapes(shapes.get(), numberOfElementTypes).release();
  NewArray<int> nodeCounts =
      tryReadInts(file, path, layout::kNumberOfNodesByElement, numberOfElementTypes);
  if (!nodeCounts || std::any_of(nodeCounts.get(), nodeCounts.get() + numberOfElementTypes,
                                 [](int count) { return count < 0; })) {
    return kFailed;
  }
  numberOfNodesByElement = nodeCounts.release();
  typeArraysOwnedByCaller = false;
  return kOk;
}

int Elems::ReadConnectivities(const SourceFile& file, const char* path) {
  const std::optional<int> size =
      connectivitySize32(numberOfElementsByType, numberOfNodesByElement, numberOfElementTypes);
  if (!size) {
    return kFailed;
  }
  NewArray<int> values = tryReadInts(file, path, layout::kConnectivities, *size);
  if (!values) {
    return kFailed;
  }
  connectivities = values.release();
  return kOk;
}

int OrvInputAndOrvOutput::WriteNodes(hid_t file, const char* group) const {
  if (nodes == nullptr || nodes->numberOfNodes == 0) {
    return kOk;
  }
  Path path(group);
  return path.append(layout::kNodes) ? nodes->Write(file, path.c_str(), meshDimension) : kFailed;
}

int OrvInputAndOrvOutput::WriteEdges(hid_t file, const char* group) const {
  return writeElems(edges, file, group, layout::kEdges);
}

int OrvInputAndOrvOutput::WriteFaces(hid_t file, const char* group) const {
  return writeElems(faces, file, group, layout::kFaces);
}

int OrvInputAndOrvOutput::WriteElements(hid_t file, const char* group) const {
  return writeElems(elements, file, group, layout::kElements);
}

int OrvInputAndOrvOutput::ReadNodes(const SourceFile& file, const char* group) {
  Path path(group);
  if (!path.append(layout::kNodes)) {
    return kFailed;
  }
  if (nodes == nullptr) {
    nodes = std::make_unique<Nodes>().release();
  }
  const int status = nodes->Read(file, path.c_str(), fileFormatVersion);
  const bool isWhole = padCoordinates(*nodes, meshDimension);
  if (nodes->numberOfNodes == 0 || !isWhole) {
    nodes->DeleteContent();
    const std::unique_ptr<Nodes> removed(nodes);
    nodes = nullptr;
  }
  return isWhole ? status : kFailed;
}

int OrvInputAndOrvOutput::ReadEdges(const SourceFile& file, const char* group) {
  return readElems(edges, file, group, layout::kEdges, fileFormatVersion, ORVML_EDGES);
}

int OrvInputAndOrvOutput::ReadFaces(const SourceFile& file, const char* group) {
  return readElems(faces, file, group, layout::kFaces, fileFormatVersion, ORVML_FACES);
}

int OrvInputAndOrvOutput::ReadElements(const SourceFile& file, const char* group) {
  return readElems(elements, file, group, layout::kElements, fileFormatVersion, ORVML_ELEMENTS);
}

}  // namespace orvml_io
