// The members of the reader of a document that read attributes and parameters.
#include "check/finding_list.h"
#include "core_views.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/octree_mesher.h"
#include "model/limits.h"
#include "opened_file.h"
#include "rescue/document_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OML_AttributesVector;
using orvml_io::OpenGroup;

namespace {

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

/// Whoever wants fewer places leaves them out.
constexpr std::int64_t kMostPlaces = 10;

/// The place kind in the plural: "nodes", "faces".
std::string plural(Entity entity) { return std::string(name(placeKindOf(entity))) + "s"; }

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

}  // namespace

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
      losses_.add(
          Code::nameTwice, replaced->second.object,
          std::string("has values of the name ").append(name).append(", as ").append(object) +
              " has");
    }
    vectors.insert_or_assign(name, ObjectAndVector{object, copyOf(name, entry)});
  }
}

void DocumentReader::readScalars(const OpenGroup& document, ReadValuesOfCore& core) {
  (void)core.ReadParametersScalar(file_, document);
  const std::string object = group_ + layout::kParameters;
  const std::string below = object + "/";
  for (const auto& [name, value] : core.parametersScalar) {
    if (isAllowed(name, below + name)) {
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

}  // namespace orvml::detail
