// The members that write and read named values in the layout of format 1.4, and that hand older
// versions to the positional layouts: the document's WriteParametersScalar, ReadParametersScalar,
// WriteParametersVector and ReadParametersVector, Nodes::ReadAttributes, Elems::ReadAttributes,
// OML_AttributesVector::HDF5Write and HDF5Read.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"
#include "model/limits.h"

#include <hdf5_hl.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace orvml_io {

namespace {

/// One record of the parameter table. Size and offsets are part of the file format.
struct ParameterRecord {
  char name[kNameBytes];
  double value;
};
static_assert(sizeof(ParameterRecord) == 88 && offsetof(ParameterRecord, value) == 80,
              "the parameter table has records of 88 bytes");

constexpr int kNumberOfFields = 2;
constexpr std::size_t kFieldOffsets[kNumberOfFields] = {offsetof(ParameterRecord, name),
                                                        offsetof(ParameterRecord, value)};

DatatypeId makeNameType(H5T_cset_t characterSet) {
  DatatypeId type(H5Tcopy(H5T_C_S1));
  if (!type.valid() || H5Tset_size(type.get(), kNameBytes) < 0 ||
      H5Tset_cset(type.get(), characterSet) < 0) {
    return DatatypeId();
  }
  return type;
}

/// The character set of the names in a table. HDF5 converts no text from one set to another, so the
/// type in memory has to have the file's.
H5T_cset_t nameCharacterSet(hid_t fileRecordType) {
  const DatatypeId type(H5Tget_member_type(fileRecordType, 0));
  return type.valid() ? H5Tget_cset(type.get()) : H5T_CSET_ERROR;
}

/// The compound type of a record in memory.
DatatypeId makeRecordType(H5T_cset_t characterSet) {
  const DatatypeId nameType = makeNameType(characterSet);
  DatatypeId type(H5Tcreate(H5T_COMPOUND, sizeof(ParameterRecord)));
  if (!nameType.valid() || !type.valid() ||
      H5Tinsert(type.get(), layout::kParameterNameField, kFieldOffsets[0], nameType.get()) < 0 ||
      H5Tinsert(type.get(), layout::kParameterValueField, kFieldOffsets[1], H5T_NATIVE_DOUBLE) <
          0) {
    return DatatypeId();
  }
  return type;
}

bool isField(hid_t recordType, unsigned index, const char* name, H5T_class_t typeClass,
             std::size_t bytes) {
  char* fieldName = H5Tget_member_name(recordType, index);
  const bool nameMatches = fieldName != nullptr && std::strcmp(fieldName, name) == 0;
  if (fieldName != nullptr) {
    (void)H5free_memory(fieldName);
  }
  const DatatypeId type(H5Tget_member_type(recordType, index));
  return nameMatches && type.valid() && H5Tget_class(type.get()) == typeClass &&
         H5Tget_size(type.get()) == bytes && H5Tis_variable_str(type.get()) <= 0;
}

/// Tells whether the records of a table have exactly the two fields of a parameter.
bool isParameterRecord(hid_t type) {
  return H5Tget_class(type) == H5T_COMPOUND && H5Tget_nmembers(type) == kNumberOfFields &&
         isField(type, 0, layout::kParameterNameField, H5T_STRING, kNameBytes) &&
         isField(type, 1, layout::kParameterValueField, H5T_FLOAT, sizeof(double));
}

/// Reads a table of parameters; no answer when it is none or cannot be read.
std::optional<std::vector<ParameterRecord>> tryReadRecords(hid_t dataset) {
  const std::optional<int> length = vectorLength(dataset, sizeof(ParameterRecord));
  const DatatypeId fileType(H5Dget_type(dataset));
  if (!length || !fileType.valid() || !isParameterRecord(fileType.get())) {
    return std::nullopt;
  }
  const DatatypeId recordType = makeRecordType(nameCharacterSet(fileType.get()));
  std::vector<ParameterRecord> records(static_cast<std::size_t>(*length));
  if (!recordType.valid() ||
      H5Dread(dataset, recordType.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, records.data()) < 0) {
    return std::nullopt;
  }
  return records;
}

bool fitsName(const std::string& name) { return name.size() < kNameBytes; }

/// Lays the parameters out as records, in ascending order of their names. The bytes behind a name
/// are zeros, so that no stray memory reaches a file. No answer when a name does not fit.
std::optional<std::vector<ParameterRecord>> toRecords(
    const OML_AttributesScalar<double>& parameters) {
  std::vector<ParameterRecord> records(parameters.count());
  std::size_t i = 0;
  for (const auto& [name, value] : parameters) {
    if (!fitsName(name)) {
      return std::nullopt;
    }
    std::memcpy(records[i].name, name.data(), name.size());
    records[i].value = value;
    ++i;
  }
  return records;
}

int writeMember(hid_t file, const Path& path, const OML_AttributesVector::Entry& entry) {
  switch (entry.code) {
    case kIntCode:
      return makeVector(file, path, entry.length, static_cast<const int*>(entry.data));
    case kDoubleCode:
      return makeVector(file, path, entry.length, static_cast<const double*>(entry.data));
    default:
      return kFailed;
  }
}

H5T_class_t typeClassOf(hid_t dataset) {
  const DatatypeId type(H5Dget_type(dataset));
  return type.valid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
}

template <class T>
int readMember(hid_t dataset, const std::string& name, int length, bool mustBeTransmitted,
               OML_AttributesVector& store) {
  if (length < 0) {
    return kFailed;
  }
  const NewArray<T> values = makeNewArray<T>(length);
  if (readValues(dataset, values.get()) != kOk) {
    return kFailed;
  }
  return store.Set(name.c_str(), values.get(), length, mustBeTransmitted);
}

/// Contract: the flag is looked for on the group, and only when the root group has an attribute of
/// that name, while writers put it on the members. Files of this library read back without flags.
bool readMustBeTransmitted(const SourceFile& file, const char* groupPath) {
  std::string text;
  return Orv_H5_GetAttributeIfExists(file, groupPath, layout::kMustBeTransmitted, text) >= 0 &&
         std::strtol(text.c_str(), nullptr, 10) != 0;
}

/// Reads the member of a group behind one link. A link that is no dataset, and a dataset that holds
/// neither integers nor floats, is skipped.
int readLinkedMember(const SourceFile& file, const char* groupPath, const std::string& name,
                     OML_AttributesVector& store) {
  Path path(groupPath);
  if (!path.appendMember(name)) {
    return kFailed;
  }
  const DatasetId dataset = file.tryOpenDataset(path);
  if (!dataset.valid()) {
    return kOk;
  }
  const H5T_class_t typeClass = typeClassOf(dataset.get());
  const bool isInteger = typeClass == H5T_INTEGER;
  const int length =
      Orv_H5_GetVectorDimension(file, path.c_str(), isInteger ? sizeof(int) : sizeof(double));
  if (!isInteger && typeClass != H5T_FLOAT) {
    return typeClass == H5T_NO_CLASS ? kFailed : kOk;
  }
  const bool mustBeTransmitted = readMustBeTransmitted(file, groupPath);
  return isInteger ? readMember<int>(dataset.get(), name, length, mustBeTransmitted, store)
                   : readMember<double>(dataset.get(), name, length, mustBeTransmitted, store);
}

int readAttributes(const SourceFile& file, const char* containerPath, int count,
                   const char* formatVersion, ORVML_TYPE_OF_ENTITY entity,
                   OML_AttributesVector& attributes) {
  Path path(containerPath);
  if (!file.valid() || !path.append(layout::kAttributes)) {
    return kFailed;
  }
  if (isBelowNamedFormat(formatVersion)) {
    return ReadAttributesOld(file, containerPath, count, attributes, entity);
  }
  return attributes.HDF5Read(file, path.c_str());
}

}  // namespace

int OrvInputAndOrvOutput::WriteParametersScalar(hid_t file, const char* group,
                                                const char* version) const {
  if (isNotAtLeastNamedFormat(version)) {
    return WriteParametersScalarOld(file, group);
  }
  Path path(group);
  if (!path.append(layout::kParameters)) {
    return kFailed;
  }
  if (parametersScalar.count() == 0) {
    return kOk;
  }
  const std::optional<std::vector<ParameterRecord>> records = toRecords(parametersScalar);
  const DatatypeId nameType = makeNameType(H5T_CSET_ASCII);
  if (!records || !nameType.valid()) {
    return kFailed;
  }
  const char* fieldNames[kNumberOfFields] = {layout::kParameterNameField,
                                             layout::kParameterValueField};
  const hid_t fieldTypes[kNumberOfFields] = {nameType.get(), H5T_NATIVE_DOUBLE};
  const herr_t made =
      H5TBmake_table(layout::kParametersTableTitle, file, path.c_str(), kNumberOfFields,
                     records->size(), sizeof(ParameterRecord), fieldNames, kFieldOffsets,
                     fieldTypes, layout::kParametersChunk, nullptr, 0, records->data());
  return made < 0 ? kFailed : kOk;
}

int OrvInputAndOrvOutput::ReadParametersScalar(const SourceFile& file, const char* group) {
  if (!file.valid()) {
    return kFailed;
  }
  if (isNotAtLeastNamedFormat(fileFormatVersion)) {
    return ReadParametersScalarOld(file, group);
  }
  Path path(group);
  if (!path.append(layout::kParameters)) {
    return kFailed;
  }
  const DatasetId dataset = file.tryOpenDataset(path);
  if (!dataset.valid()) {
    return kFailed;  // Contract: a document without scalar parameters has no table and reports 1.
  }
  std::optional<std::vector<ParameterRecord>> records = tryReadRecords(dataset.get());
  if (!records) {
    return kFailed;
  }
  for (ParameterRecord& record : *records) {
    record.name[kNameBytes - 1] = '\0';  // other tools may fill the field to its last byte
    parametersScalar.Set(record.name, record.value);
  }
  return kOk;
}

int OrvInputAndOrvOutput::WriteParametersVector(hid_t file, const char* group,
                                                const char* version) const {
  Path path(group);
  if (file < 0 || !path.append(layout::kParametersVector)) {
    return kFailed;
  }
  return isBelowNamedFormat(version) ? WriteParametersVectorOld(file, group)
                                     : parametersVector.HDF5Write(file, path.c_str());
}

int OrvInputAndOrvOutput::ReadParametersVector(const SourceFile& file, const char* group) {
  Path path(group);
  if (!file.valid() || !path.append(layout::kParametersVector)) {
    return kFailed;
  }
  return isBelowNamedFormat(fileFormatVersion) ? ReadParametersVectorOld(file, group)
                                               : parametersVector.HDF5Read(file, path.c_str());
}

int Nodes::ReadAttributes(const SourceFile& file, const char* path, int count,
                          const char* formatVersion) {
  return readAttributes(file, path, count, formatVersion, ORVML_NODES, attributes);
}

int Elems::ReadAttributes(const SourceFile& file, const char* path, int count,
                          const char* formatVersion, ORVML_TYPE_OF_ENTITY entity) {
  return readAttributes(file, path, count, formatVersion, entity, attributes);
}

int OML_AttributesVector::HDF5Write(hid_t file, const char* groupPath) const {
  if (count() == 0) {
    return kOk;
  }
  createGroupIfAbsent(file, Path(groupPath));
  for (const auto& [name, entry] : *this) {
    Path path(groupPath);
    if (!fitsName(name) || !path.appendMember(name) || writeMember(file, path, entry) != kOk) {
      return kFailed;
    }
    if (entry.mustBeTransmitted) {
      const int flag = 1;
      // Contract: a flag that cannot be written is no failure; readers never find it anyway.
      (void)H5LTset_attribute_int(file, path.c_str(), layout::kMustBeTransmitted, &flag, 1);
    }
  }
  return kOk;
}

int OML_AttributesVector::HDF5Read(const SourceFile& file, const char* groupPath) {
  const GroupId group =
      Orv_H5_GroupExists(file, groupPath) ? file.tryOpenGroup(Path(groupPath)) : GroupId();
  if (!group.valid()) {
    return kOk;
  }
  const std::optional<std::vector<std::string>> names = linkNames(group.get());
  if (!names) {
    return kFailed;
  }
  AnyFailure any;
  for (const std::string& name : *names) {
    any.add(readLinkedMember(file, groupPath, name, *this));
  }
  return any.status();
}

}  // namespace orvml_io
