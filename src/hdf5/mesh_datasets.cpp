// The members that write and read the mesh: Nodes::Write and Read, Elems::Write and Read with their
// steps, and the document's WriteNodes, ReadNodes, WriteEdges, ... down to ReadElements.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/read_array.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"
#include "model/limits.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace orvml_io {

namespace {

/// Stands for a number of values that 32 bits do not count.
constexpr int kUncounted = -1;

/// Reads the ints of a container that go with its type groups. Whatever their rank, they are taken
/// one after the other: fewer than needed leave zeros behind them, more would not fit.
///
/// @param read  one of the two ways to read an array
NewArray<int> tryReadInts(SourceFile& file, const OpenGroup& container, const char* subPath,
                          int length, ReadArray<int>* read) {
  const Opened<DatasetId> dataset = file.openDataset(container, subPath);
  if (!dataset.isObject()) {
    file.reportIfAbsent(dataset.found, container, subPath);
    return nullptr;
  }
  const std::optional<Extent> extent = extentOf(dataset.id.get());
  const hsize_t found = extent ? extent->numberOfValues : 0;
  const auto needed = static_cast<hsize_t>(length);
  if (!extent || found != needed) {
    file.report(found > needed ? Trouble::tooLong : Trouble::tooShort, container, subPath,
                [&] { return entriesSentence(found, "the groups need", length); });
  }
  if (!extent || found > needed) {
    return nullptr;
  }
  return read(file, container, subPath, dataset.id.get(), *extent, length);
}

/// Shapes lie in files as ints; any value is taken.
NewArray<ElemType> toShapes(const int* values, int length) {
  NewArray<ElemType> shapes = makeNewArray<ElemType>(length);
  std::transform(values, values + length, shapes.get(),
                 [](int value) { return static_cast<ElemType>(value); });
  return shapes;
}

/// Coordinates of fewer columns than the dimension are accepted. The values behind them are zeros,
/// so that whoever takes the document at its word stays inside the array. Where it cannot be made
/// as long as the document says the coordinates have failed to read. A dimension that readers
/// reject pads nothing.
int padCoordinates(SourceFile& file, const OpenGroup& document, Nodes& nodes, int dimension) {
  if (nodes.coords == nullptr || !isAcceptedDimension(dimension)) {
    return kOk;
  }
  const std::optional<int> needed = product32(nodes.numberOfNodes, dimension);
  if (needed && *needed != nodes.coordsLength) {
    file.report(Trouble::wrongShape, document, layout::kNodesCoordinates, [&] {
      return "has " + std::to_string(nodes.coordsLength) + " values, " +
             std::to_string(nodes.numberOfNodes) + " nodes of dimension " +
             std::to_string(dimension) + " need " + std::to_string(*needed);
    });
  }
  if (needed && *needed <= nodes.coordsLength) {
    return kOk;
  }
  // A table without columns stores nothing, whatever its rows.
  const bool isEmpty = nodes.coordsLength == 0;
  const ReadCost cost{0, isEmpty && needed ? static_cast<hsize_t>(*needed) * sizeof(double) : 0};
  if (!needed) {
    file.report(Trouble::badCount, document, layout::kNodes,
                [] { return "has more nodes than 32 bits count the coordinates of"; });
  }
  if (!needed || !file.affords(document, layout::kNodes, cost)) {
    nodes.setCoordinates(nullptr, 0);
    return kFailed;
  }
  NewArray<double> padded(new double[static_cast<std::size_t>(*needed)]());
  std::copy_n(nodes.coords, nodes.coordsLength, padded.get());
  nodes.setCoordinates(std::move(padded), *needed);
  return kOk;
}

/// Reads the coordinates in an open dataset and their number. Those that lie in another file are
/// not read.
int readCoordinatesFrom(SourceFile& file, const OpenGroup& container, hid_t dataset, bool isRefused,
                        Nodes& nodes) {
  const Extent extent = extentOf(dataset).value_or(Extent());
  // Contract: the number of nodes stays, without coordinates, whatever keeps these from being read.
  nodes.numberOfNodes = numberOfRows32(extent).value_or(0);
  const int length = numberOfValues32(extent).value_or(kUncounted);
  if (!numberOfRows32(extent) || length == kUncounted) {
    file.report(Trouble::wrongShape, container, layout::kCoordinates,
                [] { return "has no rows, or more values than 32 bits count"; });
    return kFailed;
  }
  if (isRefused || nodes.numberOfNodes == 0) {
    return isRefused ? kFailed : kOk;
  }
  nodes.setCoordinates(
      tryBorrowOrReadArray<double>(file, container, layout::kCoordinates, dataset, extent, length),
      length);
  return nodes.coords == nullptr ? kFailed : kOk;
}

int readCoordinates(SourceFile& file, const OpenGroup& container, Nodes& nodes) {
  Opened<DatasetId> opened = file.openDataset(container, layout::kCoordinates);
  const bool isRefused = opened.isRefused();
  if (!opened.id.valid()) {
    file.reportIfAbsent(opened.found, container, layout::kCoordinates);
    nodes.setCoordinates(nullptr, 0);
    nodes.numberOfNodes = 0;
    return isRefused ? kFailed : kOk;
  }
  const hid_t dataset = file.keepOpen(std::move(opened.id), KeptOpen::containerProbe);
  return readCoordinatesFrom(file, container, dataset, isRefused, nodes);
}

int writeElems(const Elems* elems, const OpenGroup& document, const char* subPath) {
  return elems == nullptr ? kOk : elems->Write(document, subPath);
}

/// Reads one element container. A container that ends without cells is removed, with what the
/// reader put into it: a document read from a file never holds an empty container.
int readElems(Elems*& slot, SourceFile& file, const OpenGroup& document, const char* subPath,
              const char* formatVersion, ORVML_TYPE_OF_ENTITY entity) {
  if (slot == nullptr) {
    slot = std::make_unique<Elems>().release();
  }
  const int status = slot->Read(file, document, subPath, formatVersion, entity);
  if (slot->numberOfElements == 0) {
    slot->DeleteContent();
    slot->DeleteAuxiliarContent();
    const std::unique_ptr<Elems> removed(slot);
    slot = nullptr;
  }
  return status;
}

}  // namespace

int Nodes::Write(const OpenGroup& document, int dimension) const {
  if (document.id() < 0) {
    return kFailed;
  }
  const GroupId created = createGroupIfAbsent(document, layout::kNodes);
  const OpenGroup container = document.below(created.get(), layout::kNodes);
  if (!product32(numberOfNodes, dimension) || !holdsCoordinates(dimension) ||
      makeTable(container, layout::kCoordinates, numberOfNodes, dimension, coords) != kOk) {
    return kFailed;
  }
  return attributes.HDF5Write(container, layout::kAttributes);
}

int Nodes::Read(SourceFile& file, const OpenGroup& document, const char* formatVersion) {
  if (!file.valid()) {
    return kFailed;
  }
  Opened<GroupId> opened = file.openGroup(document, layout::kNodes);
  if (!opened.isObject()) {
    file.reportIfAbsent(opened.found, document, layout::kNodes);
    return kFailed;  // Contract: the writer leaves the group out when there are no nodes.
  }
  const OpenGroup container =
      document.below(file.keepOpen(std::move(opened.id), KeptOpen::containerGroup), layout::kNodes);
  const int status = readCoordinates(file, container, *this);
  return coords == nullptr ? status : ReadAttributes(file, container, numberOfNodes, formatVersion);
}

int Elems::Write(const OpenGroup& document, const char* subPath) const {
  if (document.id() < 0) {
    return kFailed;
  }
  if (numberOfElementTypes == 0) {
    return kOk;
  }
  const GroupId created = createGroupIfAbsent(document, subPath);
  const OpenGroup container = document.below(created.get(), subPath);
  AnyFailure any;
  any.add(WriteElementTypes(container));
  any.add(WriteConnectivities(container));
  any.add(attributes.HDF5Write(container, layout::kAttributes));
  return any.status();
}

int Elems::WriteElementTypes(const OpenGroup& container) const {
  const int length = numberOfElementTypes;
  if (makeVector(container, layout::kNumberOfElementsByType, length, numberOfElementsByType) !=
      kOk) {
    return kFailed;
  }
  // ElemType has the size and the values of an int (asserted in names.cpp).
  if (makeVector(container, layout::kElementTypes, length,
                 reinterpret_cast<const int*>(elementTypes)) != kOk) {
    return kFailed;
  }
  return makeVector(container, layout::kNumberOfNodesByElement, length, numberOfNodesByElement);
}

int Elems::WriteConnectivities(const OpenGroup& container) const {
  const std::optional<int> size =
      connectivitySize32(numberOfElementsByType, numberOfNodesByElement, numberOfElementTypes);
  return size ? makeVector(container, layout::kConnectivities, *size, connectivities) : kFailed;
}

int Elems::Read(SourceFile& file, const OpenGroup& document, const char* subPath,
                const char* formatVersion, ORVML_TYPE_OF_ENTITY entity) {
  if (!file.valid()) {
    return kFailed;
  }
  Opened<GroupId> opened = file.openGroup(document, subPath);
  if (!opened.isObject()) {
    // Contract: unlike for nodes, a missing container is no error.
    return opened.isRefused() ? kFailed : kOk;
  }
  const OpenGroup container =
      document.below(file.keepOpen(std::move(opened.id), KeptOpen::containerGroup), subPath);
  const int status = ReadElementTypes(file, container);
  if (status != kOk || numberOfElements == 0 || numberOfElementTypes == 0) {
    return status;
  }
  if (ReadConnectivities(file, container) != kOk) {
    return kFailed;
  }
  return ReadAttributes(file, container, numberOfElements, formatVersion, entity);
}

int Elems::ReadElementTypes(SourceFile& file, const OpenGroup& container) {
  Opened<DatasetId> opened = file.openDataset(container, layout::kElementTypes);
  if (!opened.isObject()) {
    file.reportIfAbsent(opened.found, container, layout::kElementTypes);
    numberOfElements = 0;
    return opened.isRefused() ? kFailed : kOk;
  }
  const hid_t dataset = file.keepOpen(std::move(opened.id), KeptOpen::containerProbe);
  const std::optional<Extent> extent = extentOf(dataset);
  const std::optional<int> groups = extent ? numberOfRows32(*extent) : std::nullopt;
  if (!groups) {
    file.report(Trouble::wrongShape, container, layout::kElementTypes,
                [] { return "is no list of shapes"; });
    return kFailed;
  }
  numberOfElementTypes = *groups;
  if (numberOfElementTypes == 0) {
    return kOk;
  }
  if (readCellCounts(file, container) != kOk) {
    return kFailed;
  }
  return numberOfElements == 0 ? kOk : readShapesAndNodeCounts(file, container, dataset, *extent);
}

int Elems::readCellCounts(SourceFile& file, const OpenGroup& container) {
  NewArray<int> counts = tryReadInts(file, container, layout::kNumberOfElementsByType,
                                     numberOfElementTypes, tryReadArray<int>);
  if (!counts) {
    return kFailed;
  }
  const std::optional<int> total = sum32(counts.get(), numberOfElementTypes);
  if (!total) {
    file.report(Trouble::badCount, container, layout::kNumberOfElementsByType,
                [] { return "has a negative count, or counts that 32 bits cannot add"; });
    return kFailed;
  }
  numberOfElementsByType = counts.release();
  groupArraysMadeByLibrary = true;
  numberOfElements = *total;
  return kOk;
}

int Elems::readShapesAndNodeCounts(SourceFile& file, const OpenGroup& container, hid_t typesDataset,
                                   const Extent& typesExtent) {
  if (!vectorLength(typesExtent)) {
    file.report(Trouble::wrongShape, container, layout::kElementTypes,
                [] { return "has more than one value in a row"; });
    return kFailed;
  }
  const NewArray<int> shapes = tryReadArray<int>(file, container, layout::kElementTypes,
                                                 typesDataset, typesExtent, numberOfElementTypes);
  if (!shapes) {
    return kFailed;
  }
  elementTypes = toShapes(shapes.get(), numberOfElementTypes).release();
  NewArray<int> nodeCounts = tryReadInts(file, container, layout::kNumberOfNodesByElement,
                                         numberOfElementTypes, tryReadArray<int>);
  if (!nodeCounts) {
    return kFailed;
  }
  if (std::any_of(nodeCounts.get(), nodeCounts.get() + numberOfElementTypes,
                  [](int count) { return count < 0; })) {
    file.report(Trouble::badCount, container, layout::kNumberOfNodesByElement,
                [] { return "has a negative count"; });
    return kFailed;
  }
  numberOfNodesByElement = nodeCounts.release();
  typeArraysOwnedByCaller = false;
  return kOk;
}

int Elems::ReadConnectivities(SourceFile& file, const OpenGroup& container) {
  const std::optional<int> size =
      connectivitySize32(numberOfElementsByType, numberOfNodesByElement, numberOfElementTypes);
  if (!size) {
    file.report(Trouble::badCount, container, layout::kConnectivities,
                [] { return "would need more entries than 32 bits count"; });
    return kFailed;
  }
  NewArray<int> values =
      tryReadInts(file, container, layout::kConnectivities, *size, tryBorrowOrReadArray<int>);
  if (!values) {
    return kFailed;
  }
  setConnectivities(std::move(values));
  return kOk;
}

int OrvInputAndOrvOutput::WriteNodes(const OpenGroup& document) const {
  return nodes == nullptr || nodes->numberOfNodes == 0 ? kOk
                                                       : nodes->Write(document, meshDimension);
}

int OrvInputAndOrvOutput::WriteEdges(const OpenGroup& document) const {
  return writeElems(edges, document, layout::kEdges);
}

int OrvInputAndOrvOutput::WriteFaces(const OpenGroup& document) const {
  return writeElems(faces, document, layout::kFaces);
}

int OrvInputAndOrvOutput::WriteElements(const OpenGroup& document) const {
  return writeElems(elements, document, layout::kElements);
}

int OrvInputAndOrvOutput::ReadNodes(SourceFile& file, const OpenGroup& document) {
  if (nodes == nullptr) {
    nodes = std::make_unique<Nodes>().release();
  }
  AnyFailure any;
  any.add(nodes->Read(file, document, fileFormatVersion));
  any.add(padCoordinates(file, document, *nodes, meshDimension));
  if (nodes->numberOfNodes == 0) {
    nodes->DeleteContent();
    const std::unique_ptr<Nodes> removed(nodes);
    nodes = nullptr;
  }
  return any.status();
}

int OrvInputAndOrvOutput::ReadEdges(SourceFile& file, const OpenGroup& document) {
  return readElems(edges, file, document, layout::kEdges, fileFormatVersion, ORVML_EDGES);
}

int OrvInputAndOrvOutput::ReadFaces(SourceFile& file, const OpenGroup& document) {
  return readElems(faces, file, document, layout::kFaces, fileFormatVersion, ORVML_FACES);
}

int OrvInputAndOrvOutput::ReadElements(SourceFile& file, const OpenGroup& document) {
  return readElems(elements, file, document, layout::kElements, fileFormatVersion, ORVML_ELEMENTS);
}

}  // namespace orvml_io
