// The positional layouts of formats older than 1.4: the document's ReadParametersScalarOld,
// WriteParametersScalarOld, ReadParametersVectorOld and WriteParametersVectorOld, and the reader of
// attribute vectors.
#include "hdf5/legacy_layouts.h"

#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/links.h"
#include "hdf5/octree_mesher.h"
#include "hdf5/probes.h"
#include "hdf5/read_array.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "hdf5/vector_batch.h"
#include "model/document.h"

#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvml_io {

namespace {

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
void storeUnseen(OML_AttributesVector& store, const std::string& name, MallocBlock block, char code,
                 int length, bool mustBeTransmitted) {
  store.Delete(name.c_str());
  store.SetBlock(name.c_str(), std::move(block), code, length, mustBeTransmitted);
}

/// A group of vectors by position, and the positions of it that its "MAX_ID" covers.
struct PositionalGroup {
  Found found = Found::failed;
  GroupId id;
  std::vector<int> positions;
};

/// Any object may carry "MAX_ID"; one that is no group has no positions. Without a usable one the
/// group counts as failed.
PositionalGroup openPositionalGroup(SourceFile& file, const OpenGroup& parent,
                                    const char* subPath) {
  Opened<GroupId> group = file.openGroup(parent, subPath);
  if (group.isRefused()) {
    return {Found::refused, GroupId(), {}};
  }
  const std::optional<int> maxId = readIntegerAttribute(file, parent, subPath, layout::kMaxId);
  if (!maxId || *maxId < 1) {
    file.report(Trouble::badCount, parent, subPath, [] { return "has no usable MAX_ID"; });
    return {};
  }
  if (!group.isObject()) {
    return {Found::object, GroupId(), {}};
  }
  std::optional<std::vector<int>> positions = positionsBelow(group.id.get(), *maxId);
  if (!positions) {
    file.report(Trouble::unreadable, parent, subPath, [] { return "cannot be listed"; });
    return {};
  }
  return {Found::object, std::move(group.id), std::move(*positions)};
}

/// What reading the vectors of a group came to.
struct VectorsRead {
  int status = kOk;
  bool hasRefused = false;  ///< whether a rule of ours kept anything out
};

/// Reads the vectors at the positions of a group. A position without a dataset is skipped, one that
/// cannot be read counts as a failure.
///
/// @param why       as what each dataset stays open
/// @param lengthOf  gives, for the extent of a dataset, how many values its vector has; none where
/// it
///                  cannot be one
/// @param store     called with each vector and its block
template <class LengthOf, class Store>
VectorsRead readPositions(SourceFile& file, const OpenGroup& group,
                          const std::vector<int>& positions, char code, KeptOpen why,
                          LengthOf lengthOf, Store store) {
  VectorBatch batch(file, group);
  AnyFailure any;
  bool hasRefused = false;
  for (const int position : positions) {
    const std::string link = std::to_string(position);
    Opened<DatasetId> opened = file.openMember(group, link);
    if (!opened.isObject()) {
      hasRefused = hasRefused || opened.isRefused();
      continue;
    }
    const hid_t dataset = file.keepOpen(std::move(opened.id), why);
    const std::optional<Extent> extent = extentOf(dataset);
    const std::optional<int> length = extent ? lengthOf(*extent) : std::nullopt;
    if (!length) {
      file.report(Trouble::wrongShape, group, link, [] { return "has not the values it should"; });
      any.add(kFailed);
      continue;
    }
    batch.add({link, position, dataset, code, *length, false}, *extent);
  }
  any.add(batch.read(store));
  hasRefused = hasRefused || batch.hasRefused();
  return {hasRefused ? kFailed : any.status(), hasRefused};
}

char codeOf(const PositionalAttributes& group) noexcept {
  return group.valueType == ORVML_INT ? kIntCode : kDoubleCode;
}

VectorsRead readAttributeVectors(SourceFile& file, const OpenGroup& container, const char* subPath,
                                 char code, int count, PositionedVectors& vectors) {
  const PositionalGroup group = openPositionalGroup(file, container, subPath);
  if (group.found != Found::object) {
    return {kFailed, group.found == Found::refused};
  }
  // Fewer values than entities leave zeros behind them, more would not fit.
  const auto lengthOf = [count](const Extent& extent) {
    const std::optional<int> values = numberOfValues32(extent);
    return values && *values <= count ? std::optional<int>(count) : std::nullopt;
  };
  return readPositions(file, container.below(group.id.get(), subPath), group.positions, code,
                       KeptOpen::legacyProbe, lengthOf,
                       [&vectors](const OpenVector& vector, MallocBlock block) {
                         vectors[vector.position] = std::move(block);
                       });
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
  document.parametersVector.Delete(kVolumesSizes);  // nobody has seen its block yet
  document.parametersVector.Set(kVolumesSizes, values + kFirstVolumeSizePosition, numberOfSizes,
                                false);
  const int lastPosition = kFirstVolumeSizePosition + numberOfSizes;
  if (length > lastPosition) {
    document.parametersScalar.Set(kDeleteOuterEmbedded, values[lastPosition]);
  }
}

/// Stores the values of a legacy parameter dataset. Returns 1 when it is malformed.
int storeScalars(OrvInputAndOrvOutput& document, const double* values, int length) {
  const bool hasVolumesSizes = length > kLongestListOfNamedScalars;
  const std::optional<int> volumesSizes =
      hasVolumesSizes ? numberOfVolumesSizes(values, length) : 0;
  if (!volumesSizes) {
    return kFailed;
  }
  const int numberOfScalars = hasVolumesSizes ? kNumberOfVolumesSizesPosition : length;
  for (int i = 0; i < numberOfScalars; ++i) {
    const char* name = GetParameterNameFromDeprecatedParameterIndex(namingModule(document), i);
    document.parametersScalar.Set(nameOrPosition(name, i).c_str(), values[i]);
  }
  if (hasVolumesSizes) {
    storeVolumesSizes(document, values, length, *volumesSizes);
  }
  return kOk;
}

/// Reads the vectors of "/GenericMarkers" or "/GenericAttributes"; an empty one is skipped.
template <class NameOf>
int readGenericVectors(SourceFile& file, const OpenGroup& group, const std::vector<int>& positions,
                       char code, OML_AttributesVector& store, NameOf nameOf) {
  return readPositions(file, group, positions, code, KeptOpen::extentProbe, vectorLength,
                       [&](const OpenVector& vector, MallocBlock block) {
                         if (vector.length > 0) {
                           storeUnseen(store, nameOf(vector.position), std::move(block), code,
                                       vector.length, false);
                         }
                       })
      .status;
}

/// Writes the vectors of one type by position; no group when there are none.
template <class T>
int writeGenericVectors(const OpenGroup& document, const char* subPath,
                        const OML_AttributesVector& store, char code) {
  int count = 0;
  for (const auto& named : store) {
    count += named.second.code == code ? 1 : 0;
  }
  if (count == 0) {
    return kOk;
  }
  const GroupId created = createGroupIfAbsent(document, subPath);
  if (setInteger(created.get(), layout::kMaxId, count) != kOk) {
    return kFailed;
  }
  const OpenGroup group = document.below(created.get(), subPath);
  int position = 0;
  for (const auto& named : store) {
    const OML_AttributesVector::Entry& entry = named.second;
    if (entry.code != code) {
      continue;
    }
    DatasetId dataset = createMember(group, std::to_string(position++), entry.length,
                                     static_cast<const T*>(entry.data));
    if (!dataset.valid() || dataset.close() < 0) {
      return kFailed;
    }
  }
  return kOk;
}

}  // namespace

std::string attributeNameAt(const PositionalAttributes& group, int position,
                            ORVML_TYPE_OF_ENTITY entity, bool mayBeEmpty) {
  // Contract: attribute vectors of every module get the names of the octree mesher.
  const char* name = GetAttributeNameFromDeprecatedAttributeIndex(
      kOctreeMesher, position, entity, group.attributeType, group.valueType);
  return name == nullptr || (!mayBeEmpty && *name == '\0')
             ? group.fallbackName + std::to_string(position)
             : std::string(name);
}

std::string genericAttributeNameAt(const char* module, int position) {
  return nameOrPosition(GetParameterNameFromDeprecatedGenericAttributeIndex(module, position),
                        position);
}

int ReadAttributesOldInt(SourceFile& file, const OpenGroup& container, const char* subPath,
                         int count, PositionedVectors& vectors) {
  return file.valid()
             ? readAttributeVectors(file, container, subPath, kIntCode, count, vectors).status
             : kFailed;
}

int ReadAttributesOldDouble(SourceFile& file, const OpenGroup& container, const char* subPath,
                            int count, PositionedVectors& vectors) {
  return file.valid()
             ? readAttributeVectors(file, container, subPath, kDoubleCode, count, vectors).status
             : kFailed;
}

int ReadAttributesOld(SourceFile& file, const OpenGroup& container, int count,
                      OML_AttributesVector& attributes, ORVML_TYPE_OF_ENTITY entity) {
  if (!file.valid()) {
    return kFailed;
  }
  VectorsRead last;
  bool hasRefused = false;
  for (const PositionalAttributes& group : kPositionalAttributes) {
    if (!container.fits(group.subPath)) {
      return kFailed;
    }
    if (!Orv_H5_GroupExists(container, group.subPath)) {
      continue;
    }
    PositionedVectors vectors;
    last = readAttributeVectors(file, container, group.subPath, codeOf(group), count, vectors);
    hasRefused = hasRefused || last.hasRefused;
    for (auto& [position, block] : vectors) {
      storeUnseen(attributes, attributeNameAt(group, position, entity, !file.namesEveryAttribute()),
                  std::move(block), codeOf(group), count,
                  group.attributeType == ORVML_USER_ATTRIBUTE);
    }
  }
  return hasRefused ? kFailed : last.status;
}

int OrvInputAndOrvOutput::ReadParametersScalarOld(SourceFile& file, const OpenGroup& document) {
  if (!file.valid()) {
    return kFailed;
  }
  Opened<DatasetId> opened = file.openDataset(document, layout::kParameters);
  if (!opened.isObject()) {
    return opened.isRefused() ? kFailed : kOk;
  }
  const hid_t dataset = file.keepOpen(std::move(opened.id), KeptOpen::legacyProbe);
  const std::optional<Extent> extent = extentOf(dataset);
  const std::optional<int> length = extent ? vectorLength(*extent) : std::nullopt;
  const NewArray<double> values =
      length ? tryReadArray<double>(file, document, layout::kParameters, dataset, *extent, *length)
             : nullptr;
  if (!values || storeScalars(*this, values.get(), *length) != kOk) {
    file.report(Trouble::wrongShape, document, layout::kParameters,
                [] { return "is no list of parameters by position"; });
    return kFailed;
  }
  return kOk;
}

GenericVectorsRead ReadGenericMarkersOld(SourceFile& file, const OpenGroup& document,
                                         OML_AttributesVector& store) {
  if (!Orv_H5_GroupExists(document, layout::kGenericMarkers)) {
    return {};
  }
  const PositionalGroup group = openPositionalGroup(file, document, layout::kGenericMarkers);
  if (group.found != Found::object) {
    return {kFailed, false};
  }
  return {readGenericVectors(file, document.below(group.id.get(), layout::kGenericMarkers),
                             group.positions, kIntCode, store,
                             [](int position) { return std::to_string(position); }),
          true};
}

GenericVectorsRead ReadGenericAttributesOld(SourceFile& file, const OpenGroup& document,
                                            const char* module, OML_AttributesVector& store) {
  if (!Orv_H5_GroupExists(document, layout::kGenericAttributes)) {
    return {};
  }
  const PositionalGroup group = openPositionalGroup(file, document, layout::kGenericAttributes);
  if (group.found != Found::object) {
    return {kFailed, false};
  }
  return {readGenericVectors(
              file, document.below(group.id.get(), layout::kGenericAttributes), group.positions,
              kDoubleCode, store,
              [module](int position) { return genericAttributeNameAt(module, position); }),
          true};
}

int OrvInputAndOrvOutput::ReadParametersVectorOld(SourceFile& file, const OpenGroup& document) {
  if (!document.fits(layout::kGenericMarkers) || !document.fits(layout::kGenericAttributes)) {
    return kFailed;
  }
  // Contract: a group without a usable "MAX_ID" ends the reading; without one for the markers the
  // attributes are not read.
  const GenericVectorsRead markers = ReadGenericMarkersOld(file, document, parametersVector);
  if (!markers.isGroupUsable) {
    return kFailed;
  }
  AnyFailure any;
  any.add(markers.status);
  any.add(ReadGenericAttributesOld(file, document, namingModule(*this), parametersVector).status);
  return any.status();
}

int OrvInputAndOrvOutput::WriteParametersScalarOld(const OpenGroup& document) const {
  if (parametersScalar.count() == 0) {
    return kOk;
  }
  std::vector<double> values;
  values.reserve(parametersScalar.count());
  for (const auto& named : parametersScalar) {
    values.push_back(named.second);
  }
  return makeVector(document, layout::kParameters, static_cast<int>(values.size()), values.data());
}

int OrvInputAndOrvOutput::WriteParametersVectorOld(const OpenGroup& document) const {
  if (document.id() < 0 || !document.fits(layout::kGenericMarkers) ||
      !document.fits(layout::kGenericAttributes)) {
    return kFailed;
  }
  if (writeGenericVectors<int>(document, layout::kGenericMarkers, parametersVector, kIntCode) !=
      kOk) {
    return kFailed;
  }
  return writeGenericVectors<double>(document, layout::kGenericAttributes, parametersVector,
                                     kDoubleCode);
}

}  // namespace orvml_io
