#include "hdf5/probes.h"

#include "hdf5/extents.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"

#include <hdf5_hl.h>

#include <vector>

namespace orvml_io {

namespace {

/// Opens an attribute that holds exactly one value of the type class; invalid otherwise.
AttributeId tryOpenSingleValue(const SourceFile& file, const char* objectPath, const char* name,
                               H5T_class_t typeClass) {
  AttributeId attribute = file.tryOpenAttribute(objectPath, name);
  if (!attribute.valid()) {
    return AttributeId();
  }
  const DatatypeId type(H5Aget_type(attribute.get()));
  const DataspaceId space(H5Aget_space(attribute.get()));
  if (!type.valid() || !space.valid() || H5Tget_class(type.get()) != typeClass ||
      H5Sget_simple_extent_npoints(space.get()) != 1) {
    return AttributeId();
  }
  return attribute;
}

/// The type in memory of one string: null-terminated, of the character set of the file. HDF5 takes
/// padding away when it converts to it.
DatatypeId memoryStringType(hid_t fileType, std::size_t bytes) {
  DatatypeId type(H5Tcopy(H5T_C_S1));
  if (!type.valid() || H5Tset_size(type.get(), bytes) < 0 ||
      H5Tset_cset(type.get(), H5Tget_cset(fileType)) < 0) {
    return DatatypeId();
  }
  return type;
}

std::optional<std::string> readVariableLengthText(hid_t attribute, hid_t fileType) {
  const DatatypeId memoryType = memoryStringType(fileType, H5T_VARIABLE);
  const DataspaceId space(H5Aget_space(attribute));
  char* text = nullptr;
  if (!memoryType.valid() || H5Aread(attribute, memoryType.get(), &text) < 0) {
    return std::nullopt;
  }
  std::string copy;
  try {
    copy = text == nullptr ? "" : text;
  } catch (...) {
    (void)H5Dvlen_reclaim(memoryType.get(), space.get(), H5P_DEFAULT, &text);
    throw;
  }
  (void)H5Dvlen_reclaim(memoryType.get(), space.get(), H5P_DEFAULT, &text);
  return copy;
}

std::optional<std::string> readFixedLengthText(hid_t attribute, hid_t fileType) {
  // One byte more than the file's, so that a text that fills its type gets a terminator.
  std::vector<char> text(H5Tget_size(fileType) + 1);
  const DatatypeId memoryType = memoryStringType(fileType, text.size());
  if (!memoryType.valid() || H5Aread(attribute, memoryType.get(), text.data()) < 0) {
    return std::nullopt;
  }
  text.back() = '\0';
  return std::string(text.data());
}

}  // namespace

bool Orv_H5_GroupExists(const SourceFile& file, const char* path) {
  return H5Gget_objinfo(file.id(), path, false, nullptr) == 0;
}

bool Orv_H5_AttributeExists(hid_t location, const char* name) {
  return H5LTfind_attribute(location, name) != 0;
}

int Orv_H5_GetAttributeIfExists(const SourceFile& file, const char* objectPath, const char* name,
                                std::string& text) {
  if (!Orv_H5_AttributeExists(file.id(), name)) {
    return -1;
  }
  const AttributeId attribute = tryOpenSingleValue(file, objectPath, name, H5T_STRING);
  if (!attribute.valid()) {
    return -1;
  }
  const DatatypeId type(H5Aget_type(attribute.get()));
  std::optional<std::string> found = H5Tis_variable_str(type.get()) > 0
                                         ? readVariableLengthText(attribute.get(), type.get())
                                         : readFixedLengthText(attribute.get(), type.get());
  if (!found) {
    return -1;
  }
  text = std::move(*found);
  return 0;
}

int Orv_H5_GetVectorDimension(const SourceFile& file, const char* path, std::size_t valueBytes) {
  DatasetId dataset = file.tryOpenDataset(path);
  if (!dataset.valid()) {
    return -1;
  }
  const hid_t probe = keepOpen(std::move(dataset), KeptOpen::extentProbe);
  return vectorLength(probe, valueBytes).value_or(kNotAVector);
}

std::optional<int> readIntegerAttribute(const SourceFile& file, const char* objectPath,
                                        const char* name) {
  const AttributeId attribute = tryOpenSingleValue(file, objectPath, name, H5T_INTEGER);
  int value = 0;
  if (!attribute.valid() || H5Aread(attribute.get(), H5T_NATIVE_INT, &value) < 0) {
    return std::nullopt;
  }
  return value;
}

bool IsOrvMeshLibraryIOFormat(const SourceFile& file) {
  std::string marker;
  return Orv_H5_GetAttributeIfExists(file, layout::kRoot, layout::kFormat, marker) == 0 &&
         marker == layout::kFormatMarker;
}

FileId OpenFileForReading(const char* fileName) {
  FileId file(H5Fopen(fileName, H5F_ACC_RDONLY, H5P_DEFAULT));
  if (file.valid() && !IsOrvMeshLibraryIOFormat(file.get())) {
    return FileId();
  }
  return file;
}

}  // namespace orvml_io
