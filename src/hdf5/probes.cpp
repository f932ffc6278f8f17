#include "hdf5/probes.h"

#include "hdf5/extents.h"

#include <utility>
#include <vector>

namespace orvml_io {

namespace {

bool holdsOneValue(hid_t attribute) {
  const DataspaceId space(H5Aget_space(attribute));
  // A space that could not be had has no number of values.
  return H5Sget_simple_extent_npoints(space.get()) == 1;
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

/// Reads a text that is not of variable length, or of which that could not be found out: then HDF5
/// converts it, and refuses when it is. A type of the file without padding needs no conversion.
std::optional<std::string> readFixedLengthText(hid_t attribute, hid_t fileType,
                                               bool isKnownAsFixed) {
  const std::size_t bytes = H5Tget_size(fileType);
  if (bytes == 0) {
    return std::nullopt;  // the size could not be had: no type is empty
  }
  // One byte more than the file's, so that a text that fills its type gets a terminator.
  std::vector<char> text(bytes + 1);
  DatatypeId converted;
  if (!isKnownAsFixed || H5Tget_strpad(fileType) != H5T_STR_NULLTERM) {
    converted = memoryStringType(fileType, text.size());
    if (!converted.valid()) {
      return std::nullopt;
    }
  }
  const hid_t memoryType = converted.valid() ? converted.get() : fileType;
  if (H5Aread(attribute, memoryType, text.data()) < 0) {
    return std::nullopt;
  }
  text.back() = '\0';
  return std::string(text.data());
}

/// The text of an open attribute that is one string, of fixed or variable length.
std::optional<std::string> textOf(const AttributeId& attribute) {
  if (!attribute.valid() || !holdsOneValue(attribute.get())) {
    return std::nullopt;
  }
  const DatatypeId type(H5Aget_type(attribute.get()));
  if (H5Tget_class(type.get()) != H5T_STRING) {
    return std::nullopt;
  }
  const htri_t isVariable = H5Tis_variable_str(type.get());
  return isVariable > 0 ? readVariableLengthText(attribute.get(), type.get())
                        : readFixedLengthText(attribute.get(), type.get(), isVariable == 0);
}

}  // namespace

bool Orv_H5_GroupExists(const OpenGroup& group, const char* subPath) {
  return H5Gget_objinfo(group.id(), relativeName(subPath), false, nullptr) == 0;
}

std::string pathOfObject(hid_t object) {
  const ssize_t length = H5Iget_name(object, nullptr, 0);
  std::string path(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  if (length > 0) {
    (void)H5Iget_name(object, path.data(), path.size() + 1);
  }
  return path;
}

bool Orv_H5_AttributeExists(hid_t location, const char* name) {
  return H5Aexists(location, name) != 0;
}

int Orv_H5_GetAttributeIfExists(const SourceFile& file, hid_t object, const char* name,
                                std::string& text) {
  if (!Orv_H5_AttributeExists(file.id(), name)) {
    return -1;
  }
  std::optional<std::string> found = textOf(AttributeId(H5Aopen(object, name, H5P_DEFAULT)));
  if (!found) {
    return -1;
  }
  text = std::move(*found);
  return 0;
}

std::optional<std::string> readRootText(hid_t file, const char* name) {
  return textOf(AttributeId(H5Aopen(file, name, H5P_DEFAULT)));
}

int Orv_H5_GetVectorDimension(hid_t dataset) {
  const std::optional<Extent> extent = extentOf(dataset);
  return extent ? vectorLength(*extent).value_or(-1) : -1;
}

std::optional<int> readIntegerOf(hid_t attribute) {
  int value = 0;
  // HDF5 itself refuses what is no number.
  if (!holdsOneValue(attribute) || H5Aread(attribute, H5T_NATIVE_INT, &value) < 0) {
    return std::nullopt;
  }
  return value;
}

std::optional<int> readIntegerAttribute(SourceFile& file, const OpenGroup& group,
                                        const char* subPath, const char* name) {
  const Opened<AttributeId> attribute = file.openAttribute(group, subPath, name);
  return attribute.isObject() ? readIntegerOf(attribute.id.get()) : std::nullopt;
}

}  // namespace orvml_io
