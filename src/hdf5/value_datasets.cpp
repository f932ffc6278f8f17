// The members that write and read named values in the layout of format 1.4, and that hand older
// versions to the positional layouts: the document's WriteParametersScalar, ReadParametersScalar,
// WriteParametersVector and ReadParametersVector, Nodes::ReadAttributes, Elems::ReadAttributes,
// OML_AttributesVector::HDF5Write and HDF5Read.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/parameter_table.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"

#include <hdf5_hl.h>

#include <cstdlib>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvml_io {

namespace {

int writeMember(hid_t group, const Path& path, const OML_AttributesVector::Entry& entry) {
  switch (entry.code) {
    case kIntCode:
      return makeVector(group, path, entry.length, static_cast<const int*>(entry.data));
    case kDoubleCode:
      return makeVector(group, path, entry.length, static_cast<const double*>(entry.data));
    default:
      return kFailed;
  }
}

H5T_class_t typeClassOf(hid_t dataset) {
  const DatatypeId type(H5Dget_type(dataset));
  return type.valid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
}

/// Reads a vector straight into the block of its entry.
template <class T>
int readMember(const SourceFile& file, hid_t dataset, const std::string& name,
               bool mustBeTransmitted, OML_AttributesVector& store) {
  constexpr char kCode = std::is_same_v<T, int> ? kIntCode : kDoubleCode;
  const std::optional<int> length = vectorLength(dataset, sizeof(T));
  if (!length) {
    return kFailed;
  }
  MallocBlock block = makeBlock(*length, sizeof(T), file.freshMemory());
  if (readFresh(dataset, static_cast<T*>(block.get()), *length) != kOk) {
    return kFailed;
  }
  store.SetBlock(name.c_str(), std::move(block), kCode, *length, mustBeTransmitted);
  return kOk;
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
int readLinkedMember(const SourceFile& file, hid_t group, const std::string& name,
                     bool mustBeTransmitted, OML_AttributesVector& store) {
  DatasetId opened = file.tryOpenMember(group, name);
  if (!opened.valid()) {
    return kOk;
  }
  // The identifier that tells the extents stays open; the values are read through it too.
  const hid_t dataset = keepOpen(std::move(opened), KeptOpen::extentProbe);
  switch (typeClassOf(dataset)) {
    case H5T_INTEGER:
      return readMember<int>(file, dataset, name, mustBeTransmitted, store);
    case H5T_FLOAT:
      return readMember<double>(file, dataset, name, mustBeTransmitted, store);
    case H5T_NO_CLASS:
      return kFailed;
    default:
      return kOk;
  }
}

bool fitsPath(const char* groupPath, const std::string& name) {
  return Path(groupPath).appendMember(name);
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
  return writeParameterTable(file, path, parametersScalar);
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
  return readParameterTable(dataset.get(), parametersScalar);
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
  const GroupId group = createGroupIfAbsent(file, Path(groupPath));
  for (const auto& [name, entry] : *this) {
    Path path(".");  // a name that begins with a slash still means a member of the group
    if (!fitsRecord(name) || !fitsPath(groupPath, name) || !path.appendMember(name) ||
        writeMember(group.get(), path, entry) != kOk) {
      return kFailed;
    }
    if (entry.mustBeTransmitted) {
      const int flag = 1;
      // Contract: a flag that cannot be written is no failure; readers never find it anyway.
      (void)H5LTset_attribute_int(group.get(), path.c_str(), layout::kMustBeTransmitted, &flag, 1);
    }
  }
  return kOk;
}

int OML_AttributesVector::HDF5Read(const SourceFile& file, const char* groupPath) {
  const GroupId group = file.tryOpenGroup(Path(groupPath));
  if (!group.valid()) {
    return kOk;
  }
  const std::optional<std::vector<std::string>> names = linkNames(group.get());
  if (!names) {
    return kFailed;
  }
  const bool mustBeTransmitted = !names->empty() && readMustBeTransmitted(file, groupPath);
  AnyFailure any;
  for (const std::string& name : *names) {
    any.add(fitsPath(groupPath, name)
                ? readLinkedMember(file, group.get(), name, mustBeTransmitted, *this)
                : kFailed);
  }
  return any.status();
}

}  // namespace orvml_io
