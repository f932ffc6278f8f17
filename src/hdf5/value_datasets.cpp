// The members that write and read named values in the layout of format 1.4, and that hand older
// versions to the positional layouts: the document's WriteParametersScalar, ReadParametersScalar,
// WriteParametersVector and ReadParametersVector, Nodes::ReadAttributes, Elems::ReadAttributes,
// OML_AttributesVector::HDF5Write and HDF5Read.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/parameter_table.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "hdf5/vector_batch.h"
#include "model/document.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace orvml_io {

namespace {

DatasetId createMember(const OpenGroup& group, const std::string& name,
                       const OML_AttributesVector::Entry& entry) {
  switch (entry.code) {
    case kIntCode:
      return createMember(group, name, entry.length, static_cast<const int*>(entry.data));
    case kDoubleCode:
      return createMember(group, name, entry.length, static_cast<const double*>(entry.data));
    default:
      return DatasetId();
  }
}

int writeMember(const OpenGroup& group, const std::string& name,
                const OML_AttributesVector::Entry& entry) {
  if (!fitsRecord(name)) {
    return kFailed;
  }
  DatasetId dataset = createMember(group, name, entry);
  if (dataset.valid() && entry.mustBeTransmitted) {
    // Contract: a flag that cannot be written is no failure; readers never find it anyway.
    (void)setInteger(dataset.get(), layout::kMustBeTransmitted, 1);
  }
  return dataset.valid() && dataset.close() >= 0 ? kOk : kFailed;
}

H5T_class_t typeClassOf(hid_t dataset) {
  const DatatypeId type(H5Dget_type(dataset));
  return type.valid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
}

/// Contract: the flag is looked for on the group, and only when the root group has an attribute of
/// that name, while writers put it on the members. Files of this library read back without flags.
bool readMustBeTransmitted(const SourceFile& file, const OpenGroup& group) {
  std::string text;
  return Orv_H5_GetAttributeIfExists(file, group.id(), layout::kMustBeTransmitted, text) >= 0 &&
         std::strtol(text.c_str(), nullptr, 10) != 0;
}

/// The flag of one member, where writers put it. For readers that give more than the contract says.
bool readFlagOfMember(SourceFile& file, hid_t dataset) {
  if (!file.takesFlagsOfMembers() || H5Aexists(dataset, layout::kMustBeTransmitted) <= 0) {
    return false;
  }
  const AttributeId attribute(H5Aopen(dataset, layout::kMustBeTransmitted, H5P_DEFAULT));
  return readIntegerOf(attribute.get()).value_or(0) != 0;
}

int addVector(SourceFile& file, const OpenGroup& group, const std::string& name, hid_t dataset,
              char code, VectorBatch& batch) {
  const std::optional<Extent> extent = extentOf(dataset);
  const std::optional<int> length = extent ? vectorLength(*extent) : std::nullopt;
  if (!length) {
    file.report(Trouble::wrongShape, group, name, [] { return "is no vector"; });
    return kFailed;
  }
  batch.add({name, 0, dataset, code, *length, readFlagOfMember(file, dataset)}, *extent);
  return kOk;
}

/// Opens the member of a group behind one link. A link that is no dataset, and a dataset that holds
/// neither integers nor floats, is skipped.
int addLinkedMember(SourceFile& file, const OpenGroup& group, const std::string& name,
                    VectorBatch& batch) {
  Opened<DatasetId> opened = file.openMember(group, name);
  if (!opened.isObject()) {
    file.reportIfAbsent(opened.found, group, name);
    return opened.isRefused() ? kFailed : kOk;
  }
  // The identifier that tells the extents stays open; the values are read through it too.
  const hid_t dataset = file.keepOpen(std::move(opened.id), KeptOpen::extentProbe);
  switch (typeClassOf(dataset)) {
    case H5T_INTEGER:
      return addVector(file, group, name, dataset, kIntCode, batch);
    case H5T_FLOAT:
      return addVector(file, group, name, dataset, kDoubleCode, batch);
    case H5T_NO_CLASS:
      file.report(Trouble::unopenable, group, name,
                  [] { return "has no type that HDF5 can tell"; });
      return kFailed;
    default:
      file.report(Trouble::foreign, group, name, [] { return "holds no numbers"; });
      return kOk;
  }
}

int readAttributes(SourceFile& file, const OpenGroup& container, int count,
                   const char* formatVersion, ORVML_TYPE_OF_ENTITY entity,
                   OML_AttributesVector& attributes) {
  if (!file.valid()) {
    return kFailed;
  }
  if (isBelowNamedFormat(formatVersion)) {
    return ReadAttributesOld(file, container, count, attributes, entity);
  }
  return attributes.HDF5Read(file, container, layout::kAttributes);
}

}  // namespace

int OrvInputAndOrvOutput::WriteParametersScalar(const OpenGroup& document,
                                                const char* version) const {
  if (isNotAtLeastNamedFormat(version)) {
    return WriteParametersScalarOld(document);
  }
  return parametersScalar.count() == 0 ? kOk : writeParameterTable(document, parametersScalar);
}

int OrvInputAndOrvOutput::ReadParametersScalar(SourceFile& file, const OpenGroup& document) {
  if (!file.valid()) {
    return kFailed;
  }
  if (isNotAtLeastNamedFormat(fileFormatVersion)) {
    return ReadParametersScalarOld(file, document);
  }
  const Opened<DatasetId> dataset = file.openDataset(document, layout::kParameters);
  if (!dataset.isObject()) {
    file.reportIfAbsent(dataset.found, document, layout::kParameters);
    return kFailed;  // Contract: a document without scalar parameters has no table and reports 1.
  }
  return readParameterTable(file, document, dataset.id.get(), parametersScalar);
}

int OrvInputAndOrvOutput::WriteParametersVector(const OpenGroup& document,
                                                const char* version) const {
  if (document.id() < 0) {
    return kFailed;
  }
  return isBelowNamedFormat(version)
             ? WriteParametersVectorOld(document)
             : parametersVector.HDF5Write(document, layout::kParametersVector);
}

int OrvInputAndOrvOutput::ReadParametersVector(SourceFile& file, const OpenGroup& document) {
  if (!file.valid()) {
    return kFailed;
  }
  return isBelowNamedFormat(fileFormatVersion)
             ? ReadParametersVectorOld(file, document)
             : parametersVector.HDF5Read(file, document, layout::kParametersVector);
}

int Nodes::ReadAttributes(SourceFile& file, const OpenGroup& container, int count,
                          const char* formatVersion) {
  return readAttributes(file, container, count, formatVersion, ORVML_NODES, attributes);
}

int Elems::ReadAttributes(SourceFile& file, const OpenGroup& container, int count,
                          const char* formatVersion, ORVML_TYPE_OF_ENTITY entity) {
  return readAttributes(file, container, count, formatVersion, entity, attributes);
}

int OML_AttributesVector::HDF5Write(const OpenGroup& parent, const char* subPath) const {
  if (count() == 0) {
    return kOk;
  }
  const GroupId created = createGroupIfAbsent(parent, subPath);
  const OpenGroup group = parent.below(created.get(), subPath);
  for (const auto& [name, entry] : *this) {
    if (writeMember(group, name, entry) != kOk) {
      return kFailed;
    }
  }
  return kOk;
}

int OML_AttributesVector::HDF5Read(SourceFile& file, const OpenGroup& parent, const char* subPath) {
  const Opened<GroupId> opened = file.openGroup(parent, subPath);
  if (!opened.isObject()) {
    return opened.isRefused() ? kFailed : kOk;
  }
  const OpenGroup group = parent.below(opened.id.get(), subPath);
  const std::optional<std::vector<std::string>> names = linkNames(group.id());
  if (!names) {
    file.report(Trouble::unreadable, group, "", [] { return "cannot be listed"; });
    return kFailed;
  }
  const bool mustBeTransmitted = !names->empty() && readMustBeTransmitted(file, group);
  VectorBatch batch(file, group);
  AnyFailure any;
  for (const std::string& name : *names) {
    any.add(addLinkedMember(file, group, name, batch));
  }
  any.add(batch.read([&](const OpenVector& vector, MallocBlock block) {
    SetBlock(vector.link.c_str(), std::move(block), vector.code, vector.length,
             mustBeTransmitted || vector.mustBeTransmitted);
  }));
  return any.status();
}

}  // namespace orvml_io
