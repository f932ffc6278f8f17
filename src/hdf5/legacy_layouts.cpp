// The positional layouts of formats older than 1.4: the document's ReadParametersScalarOld,
// WriteParametersScalarOld, ReadParametersVectorOld and WriteParametersVectorOld, and the reader of
// attribute vectors.
#include "hdf5/legacy_layouts.h"

#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"

#include <hdf5_hl.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace orvml_io {

namespace {

constexpr char kOctreeMesher[] = "ORVML_OCTREE_MESHER";
constexpr char kVolumesSizes[] = "ORVML_OCTREEMESHER_VOLUMES_SIZES";
constexpr char kDeleteOuterEmbedded[] = "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS";

// Positions in a legacy parameter dataset of 12 values or more.
constexpr int kNumberOfVolumesSizesPosition = 10;
constexpr int kFirstVolumeSizePosition = 11;
constexpr int kLongestListOfNamedScalars = 11;

/// A document without a module name is read as one of the octree mesher.
const char* namingModule(const OrvInputAndOrvOutput& document) {
  return document.moduleName[0] == '\0' ? kOctreeMesher : document.moduleName;
}

std::string nameOrPosition(const char* name, int position) {
  return name == nullptr ? std::to_string(position) : std::string(name);
}

/// Stores a vector while a document is being read. Unlike a plain Set it releases the block of an
/// entry that it replaces: no caller has seen it yet.
template <class T>
void storeUnseen(OML_AttributesVector& store, const std::string& name, const T* values, int length,
                 bool mustBeTransmitted) {
  store.Delete(name.c_str());
  store.Set(name.c_str(), values, length, mustBeTransmitted);
}

/// Reads a whole vector of the given length; null when it cannot be read.
template <class T>
NewArray<T> tryReadVector(hid_t dataset, int length) {
  NewArray<T> values = makeNewArray<T>(length);
  return readFresh(dataset, values.get(), length) == kOk ? std::move(values) : nullptr;
}

/// The positions of a group that its "MAX_ID" covers; no answer when that is missing or below 1.
/// Any object may carry it; one that is no group has no positions.
std::optional<std::vector<int>> positionsOf(const SourceFile& file, const Path& groupPath) {
  const std::optional<int> maxId = readIntegerAttribute(file, groupPath.c_str(), layout::kMaxId);
  if (!maxId || *maxId < 1) {
    return std::nullopt;
  }
  const GroupId group = file.tryOpenGroup(groupPath);
  return group.valid() ? positionsBelow(group.get(), *maxId) : std::vector<int>();
}

template <class T>
int readPositionedVectors(const SourceFile& file, const char* groupPath, int count,
                          PositionedVectors<T>& vectors) {
  const Path parent(groupPath);
  const std::optional<std::vector<int>> positions =
      !file.valid() ? std::nullopt : positionsOf(file, parent);
  if (!positions) {
    return kFailed;
  }
  AnyFailure any;
  for (const int position : *positions) {
    Path path = parent;
    if (!path.appendMember(std::to_string(position))) {
      any.add(kFailed);
      continue;
    }
    DatasetId probe = file.tryOpenDataset(path);
    if (!probe.valid()) {
      continue;
    }
    const hid_t dataset = keepOpen(std::move(probe), KeptOpen::legacyProbe);
    NewArray<T> values =
        isVectorOfLength(dataset, count, sizeof(T)) ? tryReadVector<T>(dataset, count) : nullptr;
    any.add(values ? kOk : kFailed);
    if (values) {
      vectors[position] = std::move(values);
    }
  }
  return any.status();
}

/// One of the four positional attribute groups of a container.
struct AttributeGroup {
  const char* subPath;
  ORVML_TYPE_OF_ATTRIBUTE attributeType;
  ORVML_TYPE_OF_VALUE valueType;
  const char* fallbackName;  // the position follows
};

/// Read in this order: later groups replace entries of the same name.
constexpr AttributeGroup kAttributeGroups[] = {
    {layout::kFunctionAttributes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE, "function-attribute-"},
    {layout::kUserAttributes, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE, "user-attribute-"},
    {layout::kFunctionMarkers, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT, "function-marker-"},
    {layout::kUserMarkers, ORVML_USER_ATTRIBUTE, ORVML_INT, "user-marker-"}};

template <class T>
void storeAttributes(const PositionedVectors<T>& vectors, int count, const AttributeGroup& group,
                     ORVML_TYPE_OF_ENTITY entity, OML_AttributesVector& attributes) {
  for (const auto& [position, values] : vectors) {
    // Contract: attribute vectors of every module get the names of the octree mesher.
    const char* name = GetAttributeNameFromDeprecatedAttributeIndex(
        kOctreeMesher, position, entity, group.attributeType, group.valueType);
    const std::string key =
        name == nullptr ? group.fallbackName + std::to_string(position) : std::string(name);
    storeUnseen(attributes, key, values.get(), count, group.attributeType == ORVML_USER_ATTRIBUTE);
  }
}

int readAttributeGroup(const SourceFile& file, const Path& path, int count,
                       const AttributeGroup& group, ORVML_TYPE_OF_ENTITY entity,
                       OML_AttributesVector& attributes) {
  if (group.valueType == ORVML_INT) {
    PositionedVectors<int> vectors;
    const int status = ReadAttributesOldInt(file, path.c_str(), count, vectors);
    storeAttributes(vectors, count, group, entity, attributes);
    return status;
  }
  PositionedVectors<double> vectors;
  const int status = ReadAttributesOldDouble(file, path.c_str(), count, vectors);
  storeAttributes(vectors, count, group, entity, attributes);
  return status;
}

/// Returns how many volume sizes follow in a legacy parameter dataset of 12 values or more; no
/// answer when the count is no number or the dataset does not hold that many.
std::optional<int> numberOfVolumesSizes(const double* values, int length) {
  const double stored = values[kNumberOfVolumesSizesPosition];
  const double count = std::trunc(stored);
  if (!std::isfinite(stored) || count < 0 || count > length - kFirstVolumeSizePosition) {
    return std::nullopt;
  }
  return static_cast<int>(count);
}

/// Stores what follows the tenth value of a legacy parameter dataset of 12 values or more.
///
/// Contract: these two names are used for every module.
void storeVolumesSizes(OrvInputAndOrvOutput& document, const double* values, int length,
                       int numberOfSizes) {
  storeUnseen(document.parametersVector, kVolumesSizes, values + kFirstVolumeSizePosition,
              numberOfSizes, false);
  const int lastPosition = kFirstVolumeSizePosition + numberOfSizes;
  if (length > lastPosition) {
    document.parametersScalar.Set(kDeleteOuterEmbedded, values[lastPosition]);
  }
}

/// Reads the vectors of "/GenericMarkers" or "/GenericAttributes"; a missing or empty position is
/// skipped, one that cannot be read counts as a failure.
template <class T, class NameOf>
int readGenericVectors(const SourceFile& file, const Path& groupPath,
                       const std::vector<int>& positions, OML_AttributesVector& store,
                       NameOf nameOf) {
  AnyFailure any;
  for (const int position : positions) {
    Path path = groupPath;
    if (!path.appendMember(std::to_string(position))) {
      any.add(kFailed);
      continue;
    }
    const int length = Orv_H5_GetVectorDimension(file, path.c_str(), sizeof(T));
    if (length == 0 || length == -1) {
      continue;
    }
    const DatasetId dataset = file.tryOpenDataset(path);
    const NewArray<T> values =
        length > 0 && dataset.valid() ? tryReadVector<T>(dataset.get(), length) : nullptr;
    any.add(values ? kOk : kFailed);
    if (values) {
      storeUnseen(store, nameOf(position), values.get(), length, false);
    }
  }
  return any.status();
}

/// Writes the vectors of one type by position; no group when there are none.
template <class T>
int writeGenericVectors(hid_t file, const Path& groupPath, const OML_AttributesVector& store,
                        char code) {
  int count = 0;
  for (const auto& named : store) {
    count += named.second.code == code ? 1 : 0;
  }
  if (count == 0) {
    return kOk;
  }
  createGroupIfAbsent(file, groupPath);
  if (H5LTset_attribute_int(file, groupPath.c_str(), layout::kMaxId, &count, 1) < 0) {
    return kFailed;
  }
  int position = 0;
  for (const auto& named : store) {
    const OML_AttributesVector::Entry& entry = named.second;
    if (entry.code != code) {
      continue;
    }
    Path path = groupPath;
    if (!path.appendMember(std::to_string(position)) ||
        makeVector(file, path, entry.length, static_cast<const T*>(entry.data)) != kOk) {
      return kFailed;
    }
    ++position;
  }
  return kOk;
}

}  // namespace

int ReadAttributesOldInt(const SourceFile& file, const char* groupPath, int count,
                         PositionedVectors<int>& vectors) {
  return readPositionedVectors(file, groupPath, count, vectors);
}

int ReadAttributesOldDouble(const SourceFile& file, const char* groupPath, int count,
                            PositionedVectors<double>& vectors) {
  return readPositionedVectors(file, groupPath, count, vectors);
}

int ReadAttributesOld(const SourceFile& file, const char* containerPath, int count,
                      OML_AttributesVector& attributes, ORVML_TYPE_OF_ENTITY entity) {
  if (!file.valid()) {
    return kFailed;
  }
  int status = kOk;
  for (const AttributeGroup& group : kAttributeGroups) {
    Path path(containerPath);
    if (!path.append(group.subPath)) {
      return kFailed;
    }
    if (Orv_H5_GroupExists(file, path.c_str())) {
      status = readAttributeGroup(file, path, count, group, entity, attributes);
    }
  }
  return status;
}

int OrvInputAndOrvOutput::ReadParametersScalarOld(const SourceFile& file, const char* group) {
  Path path(group);
  if (!file.valid() || !path.append(layout::kParameters)) {
    return kFailed;
  }
  DatasetId probe = file.tryOpenDataset(path);
  if (!probe.valid()) {
    return kOk;
  }
  const hid_t dataset = keepOpen(std::move(probe), KeptOpen::legacyProbe);
  const std::optional<int> length = vectorLength(dataset, sizeof(double));
  const NewArray<double> values = length ? tryReadVector<double>(dataset, *length) : nullptr;
  if (!values) {
    return kFailed;
  }
  const bool hasVolumesSizes = *length > kLongestListOfNamedScalars;
  const std::optional<int> volumesSizes =
      hasVolumesSizes ? numberOfVolumesSizes(values.get(), *length) : 0;
  if (!volumesSizes) {
    return kFailed;
  }
  const int numberOfScalars = hasVolumesSizes ? kNumberOfVolumesSizesPosition : *length;
  for (int i = 0; i < numberOfScalars; ++i) {
    const char* name = GetParameterNameFromDeprecatedParameterIndex(namingModule(*this), i);
    parametersScalar.Set(nameOrPosition(name, i).c_str(), values[static_cast<std::size_t>(i)]);
  }
  if (hasVolumesSizes) {
    storeVolumesSizes(*this, values.get(), *length, *volumesSizes);
  }
  return kOk;
}

int OrvInputAndOrvOutput::ReadParametersVectorOld(const SourceFile& file, const char* group) {
  Path markers(group);
  Path attributes(group);
  if (!markers.append(layout::kGenericMarkers) || !attributes.append(layout::kGenericAttributes)) {
    return kFailed;
  }
  AnyFailure any;
  // Contract: a group without a usable "MAX_ID" ends the reading; without one for the markers the
  // attributes are not read.
  if (Orv_H5_GroupExists(file, markers.c_str())) {
    const std::optional<std::vector<int>> positions = positionsOf(file, markers);
    if (!positions) {
      return kFailed;
    }
    any.add(readGenericVectors<int>(file, markers, *positions, parametersVector,
                                    [](int position) { return std::to_string(position); }));
  }
  if (Orv_H5_GroupExists(file, attributes.c_str())) {
    const std::optional<std::vector<int>> positions = positionsOf(file, attributes);
    if (!positions) {
      return kFailed;
    }
    const char* module = namingModule(*this);
    const auto nameOf = [module](int position) {
      return nameOrPosition(GetParameterNameFromDeprecatedGenericAttributeIndex(module, position),
                            position);
    };
    any.add(readGenericVectors<double>(file, attributes, *positions, parametersVector, nameOf));
  }
  return any.status();
}

int OrvInputAndOrvOutput::WriteParametersScalarOld(hid_t file, const char* group) const {
  Path path(group);
  if (!path.append(layout::kParameters)) {
    return kFailed;
  }
  if (parametersScalar.count() == 0) {
    return kOk;
  }
  std::vector<double> values;
  values.reserve(parametersScalar.count());
  for (const auto& named : parametersScalar) {
    values.push_back(named.second);
  }
  return makeVector(file, path, static_cast<int>(values.size()), values.data());
}

int OrvInputAndOrvOutput::WriteParametersVectorOld(hid_t file, const char* group) const {
  Path markers(group);
  Path attributes(group);
  if (file < 0 || !markers.append(layout::kGenericMarkers) ||
      !attributes.append(layout::kGenericAttributes)) {
    return kFailed;
  }
  if (writeGenericVectors<int>(file, markers, parametersVector, kIntCode) != kOk) {
    return kFailed;
  }
  return writeGenericVectors<double>(file, attributes, parametersVector, kDoubleCode);
}

}  // namespace orvml_io
