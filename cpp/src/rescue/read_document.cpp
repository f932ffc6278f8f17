#include "rescue/read_document.h"

#include "check/finding_list.h"
#include "core_views.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/octree_mesher.h"
#include "hdf5/probes.h"
#include "hdf5/read_array.h"
#include "hdf5/silence.h"
#include "model/limits.h"
#include "model/names.h"
#include "opened_file.h"
#include "rescue/positional_names.h"
#include "rescue/read_arrays.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OML_AttributesVector;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

namespace {

/// A document of the core that owns what readers put into it.
struct ReadValuesOfCore : orvml_io::OrvInputAndOrvOutput {
  ReadValuesOfCore() { arraysOwnedByCaller = false; }
};

/// Releases the vectors that readers put into a store.
class ReleasedAtTheEnd {
 public:
  explicit ReleasedAtTheEnd(OML_AttributesVector& store) noexcept : store_(store) {}
  ReleasedAtTheEnd(const ReleasedAtTheEnd&) = delete;
  ReleasedAtTheEnd& operator=(const ReleasedAtTheEnd&) = delete;
  ReleasedAtTheEnd(ReleasedAtTheEnd&&) = delete;
  ReleasedAtTheEnd& operator=(ReleasedAtTheEnd&&) = delete;
  ~ReleasedAtTheEnd() { store_.DeleteAll(); }

 private:
  OML_AttributesVector& store_;
};

RescuedVector copyOf(const std::string& name, const OML_AttributesVector::Entry& entry) {
  RescuedVector vector{name, {}, entry.mustBeTransmitted};
  if (entry.code == orvml_io::kIntCode) {
    const auto* values = static_cast<const int*>(entry.data);
    vector.values = std::vector<int>(values, values + entry.length);
  } else {
    const auto* values = static_cast<const double*>(entry.data);
    vector.values = std::vector<double>(values, values + entry.length);
  }
  return vector;
}

/// Cells without nodes take nothing in a file, so that any number of them may be claimed.
constexpr std::int64_t kMostCellsWithoutNodes = std::int64_t{1} << 20;

/// Whoever wants fewer places leaves them out.
constexpr std::int64_t kMostPlaces = 10;

/// The place kind in the plural: "nodes", "faces".
std::string plural(Entity entity) { return std::string(name(placeKindOf(entity))) + "s"; }

/// The three arrays that describe the groups of cells.
struct GroupArrays {
  std::vector<int> counts;
  std::vector<int> shapes;
  std::vector<int> nodesPerCell;

  [[nodiscard]] std::size_t described() const noexcept {
    return std::min({counts.size(), shapes.size(), nodesPerCell.size()});
  }
  [[nodiscard]] std::size_t largest() const noexcept {
    return std::max({counts.size(), shapes.size(), nodesPerCell.size()});
  }

  /// How many groups come before the first whose size is none.
  [[nodiscard]] std::size_t usable() const noexcept {
    std::int64_t cells = 0;
    std::int64_t indices = 0;
    std::int64_t withoutNodes = 0;
    for (std::size_t i = 0; i < described(); ++i) {
      if (counts[i] < 0 || nodesPerCell[i] < 0) {
        return i;
      }
      withoutNodes += nodesPerCell[i] == 0 ? counts[i] : 0;
      if (withoutNodes > kMostCellsWithoutNodes) {
        return i;
      }
      cells += counts[i];
      indices += std::int64_t{counts[i]} * nodesPerCell[i];
      if (std::max(cells, indices) > std::numeric_limits<int>::max()) {
        return i;
      }
    }
    return described();
  }

  [[nodiscard]] std::int64_t indicesOf(std::size_t groups) const noexcept {
    std::int64_t indices = 0;
    for (std::size_t i = 0; i < groups; ++i) {
      indices += std::int64_t{counts[i]} * nodesPerCell[i];
    }
    return indices;
  }

  /// The number of all cells; none where a count is damaged.
  [[nodiscard]] std::optional<std::int64_t> cells() const noexcept {
    std::int64_t cells = 0;
    for (const int count : counts) {
      if (count < 0) {
        return std::nullopt;
      }
      cells += count;
    }
    return counts.size() == largest() ? std::optional(cells) : std::nullopt;
  }
};

using ObjectOfName = std::function<std::string(const std::string&)>;

/// Gives the object that a vector of an old layout comes from, by the name that it gets.
class ObjectOfPosition {
 public:
  /// @param others  the path that other names are members of
  ObjectOfPosition(const std::vector<PositionedVector>& positions, std::string others)
      : others_(std::move(others)) {
    for (const PositionedVector& vector : positions) {
      objects_.emplace(vector.name, vector.object);
    }
  }
  [[nodiscard]] std::string operator()(const std::string& name) const {
    const auto found = objects_.find(name);
    return found == objects_.end() ? others_ + name : found->second;
  }

 private:
  std::map<std::string, std::string> objects_;
  std::string others_;
};

/// A vector and where it comes from, by name.
struct ObjectAndVector {
  std::string object;
  RescuedVector vector;
};
using NamedVectors = std::map<std::string, ObjectAndVector>;

class DocumentReader {
 public:
  DocumentReader(hid_t file, Kind kind, const FileFacts& facts, Losses& losses)
      : group_(groupOf(kind)),
        facts_(facts),
        losses_(losses),
        file_(file, {&diagnosis_, nullptr, &closed_, true, true, true}),
        isLegacy_(orvml_io::isBelowNamedFormat(facts.version.c_str())) {
    read_.kind = kind;
  }

  std::optional<RescuedDocument> read() {
    const auto opened = file_.openGroup(file_.root(), group_.c_str());
    bool isRead = false;
    if (opened.isObject()) {
      isRead = readFrom(file_.root().below(opened.id.get(), group_));
    }
    tellFindings();
    return isRead ? std::optional(std::move(read_)) : std::nullopt;
  }

 private:
  bool readFrom(const OpenGroup& document) {
    requireNames(document, group_);
    if (!readDimension(document)) {
      losses_.add(Code::dependsOnLost, group_, "has no dimension, without which it is no document");
      return false;
    }
    readIdentification();
    readNodes(document);
    readCells(document, Entity::edges, layout::kEdges);
    readCells(document, Entity::faces, layout::kFaces);
    readCells(document, Entity::elements, layout::kElements);
    readParameters(document);
    return true;
  }

  // The dimension and the texts.

  bool readDimension(const OpenGroup& document);
  void readIdentification();
  void readText(const char* attribute, std::string& text);

  // The mesh.

  void readNodes(const OpenGroup& document);
  std::optional<std::int64_t> readCoordinates(const OpenGroup& container);
  void readCells(const OpenGroup& document, Entity entity, const char* subPath);
  std::optional<std::vector<int>> readGroupArray(const OpenGroup& container,
                                                 const std::string& containerPath,
                                                 const char* subPath);
  std::optional<std::int64_t> readGroups(const OpenGroup& container, Entity entity);
  void readConnectivities(const OpenGroup& container, Entity entity, const GroupArrays& arrays);
  void takeCells(const GroupArrays& arrays, std::size_t groups, const std::vector<int>& indices,
                 std::vector<RescuedGroup>& taken);

  // Values.

  void readAttributes(const OpenGroup& container, Entity entity, std::optional<std::int64_t> count);
  void readPositionedAttributes(const OpenGroup& container, Entity entity,
                                std::optional<std::int64_t> count);
  void takeAttributes(const OML_AttributesVector& store, Entity entity,
                      std::optional<std::int64_t> count, const ObjectOfName& objectOfName);
  void cutAttributes(Entity entity, std::optional<std::int64_t> count);
  void readParameters(const OpenGroup& document);
  void readScalars(const OpenGroup& document, ReadValuesOfCore& core);
  void readGenericVectors(const OpenGroup& document, NamedVectors& vectors);
  void takePositioned(const OpenGroup& document, const char* subPath,
                      const OML_AttributesVector& store, NamedVectors& vectors,
                      const std::function<std::string(int)>& nameOf);
  void take(const OML_AttributesVector& store, const ObjectOfName& objectOfName,
            NamedVectors& vectors);

  [[nodiscard]] bool isAllowed(const std::string& name, const std::string& object);
  void requireNames(const OpenGroup& group, const std::string& path);
  void tellBehindMaxId(const std::vector<PositionedVector>& vectors);
  void tellFindings();

  std::string group_;
  const FileFacts& facts_;
  Losses& losses_;
  orvml_io::Diagnosis diagnosis_;
  orvml_io::ClosedAtTheEnd closed_;
  SourceFile file_;
  bool isLegacy_;
  RescuedDocument read_;
};

/// What the core's reader found; what it finds no fault with is none.
void DocumentReader::tellFindings() {
  for (Finding& finding : findingsOf(diagnosis_)) {
    losses_.addAsTold(
        {text(finding.code), std::move(finding.object), {}, 1, std::move(finding.sentence)});
  }
}

/// Coordinates lie in rows, whatever the dimension is said to be.
bool DocumentReader::readDimension(const OpenGroup& document) {
  orvml_io::Diagnosis diagnosis;
  SourceFile file(file_.id(), &diagnosis);
  ReadValuesOfCore core;
  (void)core.ReadSpatialDimension(file, document);
  const auto coordinates = file.openDataset(document, layout::kNodesCoordinates);
  const orvml_io::Extent extent =
      coordinates.isObject() ? orvml_io::extentOf(coordinates.id.get()).value_or(orvml_io::Extent())
                             : orvml_io::Extent();
  const hsize_t columns =
      extent.rank == 2 && extent.first > 0 ? extent.numberOfValues / extent.first : 0;
  const std::string object = group_ + layout::kDimension;
  read_.dimension = core.meshDimension;
  if ((columns == 2 || columns == 3) && static_cast<int>(columns) != core.meshDimension) {
    read_.dimension = static_cast<int>(columns);
    losses_.addChange(object,
                      "is the number of columns of the coordinates, " + std::to_string(columns));
  } else if (!orvml_io::isAcceptedDimension(core.meshDimension)) {
    for (Finding& finding : findingsOf(diagnosis)) {
      if (finding.object == object) {
        losses_.addAsTold({text(finding.code), object, {}, 1, std::move(finding.sentence)});
      }
    }
  }
  return orvml_io::isAcceptedDimension(read_.dimension);
}

void DocumentReader::readText(const char* attribute, std::string& text) {
  const std::string object = std::string("/") + attribute;
  const auto found = orvml_io::readRootText(file_.id(), attribute);
  if (!found) {
    if (H5Aexists(file_.id(), attribute) != 0) {
      losses_.add(Code::objectUnreadable, object, "cannot be read");
    }
  } else if (found->size() >= orvml_io::kIdentificationBytes) {
    losses_.add(Code::textTooLong, object,
                "has " + std::to_string(found->size()) + " bytes, at most 79 are allowed");
  } else {
    text = *found;
  }
}

void DocumentReader::readIdentification() {
  readText(layout::kIOCreator, read_.creator);
  readText(layout::kModuleName, read_.moduleName);
  readText(layout::kModuleFormatVersion, read_.moduleFormatVersion);
  ReadValuesOfCore core;
  (void)core.ReadModuleNameAndVersion(file_);
  if (!read_.moduleName.empty() && read_.moduleName != core.moduleName) {
    read_.moduleName = core.moduleName;
    losses_.addChange(std::string("/") + layout::kModuleName,
                      "has an old spelling, and is now " + read_.moduleName);
  }
}

void DocumentReader::readNodes(const OpenGroup& document) {
  const auto opened = file_.openGroup(document, layout::kNodes);
  if (!opened.isObject()) {
    file_.reportIfAbsent(opened.found, document, layout::kNodes);
    return;
  }
  const OpenGroup container = document.below(opened.id.get(), layout::kNodes);
  requireNames(container, group_ + layout::kNodes);
  const std::optional<std::int64_t> count = readCoordinates(container);
  readAttributes(container, Entity::nodes, count);
}

/// Returns how many nodes the file says it has.
std::optional<std::int64_t> DocumentReader::readCoordinates(const OpenGroup& container) {
  auto coordinates = readDoubles(file_, container, layout::kCoordinates, Rows::firstOnes);
  if (!coordinates) {
    return std::nullopt;
  }
  const hsize_t rows = coordinates->extent.rank == 0 ? 1 : coordinates->extent.first;
  const auto dimension = static_cast<hsize_t>(read_.dimension);
  if (rows * dimension != coordinates->extent.numberOfValues) {
    losses_.add(Code::objectWrongShape, group_ + layout::kNodesCoordinates,
                "has " + std::to_string(coordinates->extent.numberOfValues) + " values in " +
                    std::to_string(rows) + " rows, which are no " + std::to_string(dimension) +
                    " coordinates each");
    return std::nullopt;
  }
  read_.coordinates = std::move(coordinates->values);
  return static_cast<std::int64_t>(rows);
}

std::optional<std::vector<int>> DocumentReader::readGroupArray(const OpenGroup& container,
                                                               const std::string& containerPath,
                                                               const char* subPath) {
  if (facts_.clamped.contains(containerPath + subPath)) {
    return std::nullopt;
  }
  auto found = readInts(file_, container, subPath);
  return found ? std::optional(std::move(found->values)) : std::nullopt;
}

void DocumentReader::readCells(const OpenGroup& document, Entity entity, const char* subPath) {
  const auto opened = file_.openGroup(document, subPath);
  if (!opened.isObject()) {
    return;  // nothing, or told
  }
  const OpenGroup container = document.below(opened.id.get(), subPath);
  requireNames(container, group_ + subPath);
  readAttributes(container, entity, readGroups(container, entity));
}

/// Returns how many cells the file says it has.
std::optional<std::int64_t> DocumentReader::readGroups(const OpenGroup& container, Entity entity) {
  const std::string object = objectOf(read_.kind, entity);
  auto counts = readGroupArray(container, object, layout::kNumberOfElementsByType);
  auto shapes = readGroupArray(container, object, layout::kElementTypes);
  auto nodesPerCell = readGroupArray(container, object, layout::kNumberOfNodesByElement);
  GroupArrays arrays{std::move(counts).value_or(std::vector<int>()), {}, {}};
  const std::optional<std::int64_t> cells = counts ? arrays.cells() : std::nullopt;
  if (!counts || !shapes || !nodesPerCell) {
    losses_.add(Code::dependsOnLost, object, "has groups of cells that cannot be told apart");
    return cells;
  }
  arrays.shapes = std::move(*shapes);
  arrays.nodesPerCell = std::move(*nodesPerCell);
  if (arrays.described() != arrays.largest()) {
    losses_.add(Code::valuesTooFew, object,
                "describes " + std::to_string(arrays.largest()) + " groups of cells, and " +
                    std::to_string(arrays.described()) + " of them in full");
  }
  readConnectivities(container, entity, arrays);
  return arrays.cells();
}

void DocumentReader::readConnectivities(const OpenGroup& container, Entity entity,
                                        const GroupArrays& arrays) {
  const std::string object = objectOf(read_.kind, entity);
  const std::size_t groups = arrays.usable();
  const std::int64_t needed = arrays.indicesOf(groups);
  if (groups < arrays.described()) {
    losses_.add(Code::valuesNegativeOrTooLarge, object,
                "has no usable size in its group " + std::to_string(groups) +
                    ", and with it nobody knows where the others lie");
  }
  const auto found = readInts(file_, container, layout::kConnectivities, Rows::firstOnes);
  if (!found) {
    if (needed > 0) {
      losses_.add(Code::dependsOnLost, object, "has no node indices that can be read");
    }
    return;
  }
  const auto entries = static_cast<std::int64_t>(found->extent.numberOfValues);
  const bool isExact = groups == arrays.largest();
  if (isExact ? entries != needed : entries < needed) {
    losses_.add(entries > needed ? Code::valuesTooMany : Code::valuesTooFew,
                object + layout::kConnectivities,
                orvml_io::entriesSentence(found->extent.numberOfValues, "the groups need",
                                          static_cast<int>(needed)));
    return;
  }
  takeCells(arrays, groups, found->values, read_.part(entity).groups);
}

/// Takes the cells whose nodes are all there.
void DocumentReader::takeCells(const GroupArrays& arrays, std::size_t groups,
                               const std::vector<int>& indices, std::vector<RescuedGroup>& taken) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < groups; ++i) {
    const auto width = static_cast<std::size_t>(arrays.nodesPerCell[i]);
    const auto wanted = static_cast<std::size_t>(arrays.counts[i]);
    const std::size_t cells =
        width == 0 ? wanted : std::min(wanted, (indices.size() - begin) / width);
    const auto first = indices.begin() + static_cast<std::ptrdiff_t>(begin);
    taken.push_back({static_cast<Shape>(arrays.shapes[i]), arrays.nodesPerCell[i],
                     static_cast<std::int64_t>(cells),
                     std::vector<int>(first, first + static_cast<std::ptrdiff_t>(cells * width))});
    begin += cells * width;
    if (cells < wanted) {
      return;
    }
  }
}

void DocumentReader::readAttributes(const OpenGroup& container, Entity entity,
                                    std::optional<std::int64_t> count) {
  if (isLegacy_) {
    readPositionedAttributes(container, entity, count);
  } else {
    OML_AttributesVector store;
    const ReleasedAtTheEnd released(store);
    (void)store.HDF5Read(file_, container, layout::kAttributes);
    const std::string path = objectOf(read_.kind, entity) + layout::kAttributes + "/";
    takeAttributes(store, entity, count, [&](const std::string& name) { return path + name; });
  }
  cutAttributes(entity, count);
}

void DocumentReader::readPositionedAttributes(const OpenGroup& container, Entity entity,
                                              std::optional<std::int64_t> count) {
  const std::string containerPath = objectOf(read_.kind, entity);
  const ORVML_TYPE_OF_ENTITY kind = coreEntity(entity);
  const auto positions = positionedAttributes(file_, container, containerPath, kind);
  tellBehindMaxId(positions);
  if (!count) {
    for (const PositionedVector& vector : positions) {
      losses_.add(Code::dependsOnLost, vector.object,
                  "belongs to " + plural(entity) + " whose number is lost");
    }
    return;
  }
  OML_AttributesVector store;
  const ReleasedAtTheEnd released(store);
  const auto values = std::min<std::int64_t>(*count, std::numeric_limits<int>::max());
  (void)orvml_io::ReadAttributesOld(file_, container, static_cast<int>(values), store, kind);
  const std::string target = containerPath + layout::kAttributes + "/";
  takeAttributes(store, entity, count, ObjectOfPosition{positions, target});
  for (const PositionedVector& vector : positions) {
    if (store.find(vector.name) != nullptr && !facts_.clamped.contains(vector.object)) {
      losses_.addChange(vector.object, "is now " + target + vector.name);
    }
  }
}

void DocumentReader::takeAttributes(const OML_AttributesVector& store, Entity entity,
                                    std::optional<std::int64_t> count,
                                    const ObjectOfName& objectOfName) {
  for (const auto& [name, entry] : store) {
    const std::string object = objectOfName(name);
    if (facts_.clamped.contains(object) || !isAllowed(name, object)) {
      continue;
    }
    if (!count) {
      losses_.add(Code::dependsOnLost, object,
                  "belongs to " + plural(entity) + " whose number is lost");
    } else if (entry.length != *count) {
      losses_.add(text(CheckCode::attributeLength), object,
                  "has " + countText(entry.length, "value", "values") + " for " +
                      countText(*count, placeKindOf(entity)));
    } else {
      read_.part(entity).attributes.push_back(copyOf(name, entry));
    }
  }
}

/// Attributes follow the nodes and cells that could be read.
void DocumentReader::cutAttributes(Entity entity, std::optional<std::int64_t> count) {
  const std::int64_t kept = read_.size(entity);
  if (!count || kept == *count) {
    return;
  }
  RescuedPart& part = read_.part(entity);
  if (kept == 0) {
    for (const RescuedVector& attribute : part.attributes) {
      losses_.add(Code::dependsOnLost,
                  objectOf(read_.kind, entity) + layout::kAttributes + "/" + attribute.name,
                  "belongs to " + plural(entity) + " of which none can be read");
    }
    read_.dropAll(entity);
    return;
  }
  const std::string object = objectOf(read_.kind, entity);
  std::vector<CheckPlace> places;
  for (std::int64_t i = kept; i < *count && i < kept + kMostPlaces; ++i) {
    places.push_back({placeKindOf(entity), i});
  }
  losses_.addAsTold({text(Code::objectUnreadable), object, std::move(places), *count - kept,
                     object + " has " + countText(*count, placeKindOf(entity)) +
                         ", of which the first " + std::to_string(kept) + " can be read"});
  for (RescuedVector& attribute : part.attributes) {
    std::visit([&](auto& values) { values.resize(static_cast<std::size_t>(kept)); },
               attribute.values);
  }
}

void DocumentReader::readParameters(const OpenGroup& document) {
  ReadValuesOfCore core;
  orvml_io::copyIdentification(core.fileFormatVersion, facts_.version.c_str());
  orvml_io::copyIdentification(core.moduleName, read_.moduleName.c_str());
  readScalars(document, core);
  NamedVectors vectors;
  take(
      core.parametersVector, [&](const std::string&) { return group_ + layout::kParameters; },
      vectors);
  if (isLegacy_) {
    readGenericVectors(document, vectors);
  } else {
    const std::string path = group_ + layout::kParametersVector + "/";
    OML_AttributesVector store;
    const ReleasedAtTheEnd released(store);
    (void)store.HDF5Read(file_, document, layout::kParametersVector);
    take(
        store, [&](const std::string& name) { return path + name; }, vectors);
  }
  for (auto& named : vectors) {
    read_.vectorParameters.push_back(std::move(named.second.vector));
  }
}

void DocumentReader::readGenericVectors(const OpenGroup& document, NamedVectors& vectors) {
  const std::string module = read_.moduleName.empty() ? orvml_io::kOctreeMesher : read_.moduleName;
  OML_AttributesVector markers;
  const ReleasedAtTheEnd releasedMarkers(markers);
  (void)orvml_io::ReadGenericMarkersOld(file_, document, markers);
  takePositioned(document, layout::kGenericMarkers, markers, vectors,
                 [](int position) { return std::to_string(position); });
  OML_AttributesVector attributes;
  const ReleasedAtTheEnd releasedAttributes(attributes);
  (void)orvml_io::ReadGenericAttributesOld(file_, document, module.c_str(), attributes);
  takePositioned(document, layout::kGenericAttributes, attributes, vectors, [&](int position) {
    return orvml_io::genericAttributeNameAt(module.c_str(), position);
  });
}

void DocumentReader::takePositioned(const OpenGroup& document, const char* subPath,
                                    const OML_AttributesVector& store, NamedVectors& vectors,
                                    const std::function<std::string(int)>& nameOf) {
  const auto positions = positionedVectors(file_, document, group_, subPath, nameOf);
  tellBehindMaxId(positions);
  take(store, ObjectOfPosition{positions, group_ + subPath + "/"}, vectors);
  for (const auto& [name, entry] : store) {
    if (const auto found = vectors.find(name); found != vectors.end()) {
      losses_.addChange(found->second.object,
                        "is now " + group_ + layout::kParametersVector + "/" + name);
    }
  }
}

/// Takes vectors, of which the last of a name counts.
void DocumentReader::take(const OML_AttributesVector& store, const ObjectOfName& objectOfName,
                          NamedVectors& vectors) {
  for (const auto& [name, entry] : store) {
    const std::string object = objectOfName(name);
    if (facts_.clamped.contains(object) || !isAllowed(name, object)) {
      continue;
    }
    const auto replaced = vectors.find(name);
    if (replaced != vectors.end()) {
      losses_.add(Code::nameTwice, replaced->second.object,
                  "has values of the name " + name + ", as " + object + " has");
    }
    vectors.insert_or_assign(name, ObjectAndVector{object, copyOf(name, entry)});
  }
}

void DocumentReader::readScalars(const OpenGroup& document, ReadValuesOfCore& core) {
  (void)core.ReadParametersScalar(file_, document);
  const std::string object = group_ + layout::kParameters;
  for (const auto& [name, value] : core.parametersScalar) {
    if (isAllowed(name, object + "/" + name)) {
      read_.parameters.emplace_back(name, value);
    }
  }
  const auto opened = file_.openDataset(document, layout::kParameters);
  const auto extent = opened.isObject() ? orvml_io::extentOf(opened.id.get()) : std::nullopt;
  auto taken = static_cast<hsize_t>(core.parametersScalar.count());
  if (!extent || taken == 0) {
    return;
  }
  if (const auto* sizes = core.parametersVector.find(orvml_io::kVolumesSizes)) {
    taken += 1 + static_cast<hsize_t>(sizes->length);
  }
  if (taken < extent->numberOfValues) {
    const auto others = static_cast<std::int64_t>(extent->numberOfValues - taken);
    losses_.add(
        isLegacy_ ? Code::valuesTooMany : Code::nameTwice, object,
        "has " + (isLegacy_
                      ? countText(others, "value that has", "values that have") + " no meaning"
                      : countText(others, "record whose name comes", "records whose names come") +
                            " again"));
  }
  if (orvml_io::isNotAtLeastNamedFormat(facts_.version.c_str())) {
    losses_.addChange(object, "is now a table of names and values");
  }
}

bool DocumentReader::isAllowed(const std::string& name, const std::string& object) {
  if (name.size() >= orvml_io::kNameBytes) {
    losses_.add(Code::nameTooLong, object,
                "has a name of " + std::to_string(name.size()) + " bytes, at most 79 are allowed");
    return false;
  }
  if (name.empty() || name == "." || name.find('/') != std::string::npos) {
    losses_.add(Code::nameNotAllowed, object, "has a name that is empty, or stands for a path");
    return false;
  }
  return true;
}

void DocumentReader::tellBehindMaxId(const std::vector<PositionedVector>& vectors) {
  for (const PositionedVector& vector : vectors) {
    if (vector.end < 1) {
      losses_.add(Code::dependsOnLost, vector.object,
                  "is not read without the MAX_ID of its group");
    } else if (!vector.isCovered()) {
      losses_.add(Code::objectForeign, vector.object, "lies behind the MAX_ID of its group");
    }
  }
}

/// Objects of a group whose names are lost look as if they had never been.
void DocumentReader::requireNames(const OpenGroup& group, const std::string& path) {
  if (!orvml_io::linkNames(group.id())) {
    losses_.add(Code::objectUnreadable, path, "cannot be listed, and may have held more");
  }
}

}  // namespace

std::optional<RescuedDocument> readDocument(hid_t file, Kind kind, const FileFacts& facts,
                                            Losses& losses) {
  const orvml_io::Silence silence;
  return DocumentReader(file, kind, facts, losses).read();
}

}  // namespace orvml::detail
