#include "hdf5/datasets.h"

#include <cstring>
#include <string>
#include <utility>

namespace orvml_io {

namespace {

int readAs(hid_t dataset, hid_t nativeType, void* values) noexcept {
  return H5Dread(dataset, nativeType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) < 0 ? kFailed : kOk;
}

/// Creates a dataset and stores its values when there are any; invalid when either fails.
template <std::size_t Rank>
DatasetId createDataset(hid_t location, const char* name, hid_t nativeType,
                        const hsize_t (&extents)[Rank], const void* values) noexcept {
  const DataspaceId space(H5Screate_simple(static_cast<int>(Rank), extents, nullptr));
  DatasetId dataset(
      H5Dcreate2(location, name, nativeType, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  if (values != nullptr && dataset.valid() &&
      H5Dwrite(dataset.get(), nativeType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) < 0) {
    return DatasetId();
  }
  return dataset;
}

DatasetId createVector(hid_t location, const char* name, hid_t nativeType, int length,
                       const void* values) noexcept {
  if (length < 0) {
    return DatasetId();
  }
  const hsize_t extents[] = {static_cast<hsize_t>(length)};
  return createDataset(location, name, nativeType, extents, values);
}

int closed(DatasetId dataset) noexcept {
  return dataset.valid() && dataset.close() >= 0 ? kOk : kFailed;
}

int makeVectorOf(const OpenGroup& group, const char* subPath, hid_t nativeType, int length,
                 const void* values) noexcept {
  return group.fits(subPath)
             ? closed(createVector(group.id(), relativeName(subPath), nativeType, length, values))
             : kFailed;
}

DatasetId createMemberOf(const OpenGroup& group, const std::string& name, hid_t nativeType,
                         int length, const void* values) {
  // A name that begins with a slash still means a member of the group.
  return group.fitsMember(name)
             ? createVector(group.id(), ("./" + name).c_str(), nativeType, length, values)
             : DatasetId();
}

int setAttribute(hid_t object, const char* name, hid_t type, hid_t space,
                 const void* value) noexcept {
  if (H5Aexists(object, name) > 0 && H5Adelete(object, name) < 0) {
    return kFailed;
  }
  const AttributeId attribute(H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT));
  return attribute.valid() && H5Awrite(attribute.get(), type, value) >= 0 ? kOk : kFailed;
}

}  // namespace

GroupId createGroupIfAbsent(const OpenGroup& group, const char* subPath) noexcept {
  if (!group.fits(subPath)) {
    return GroupId();
  }
  const char* name = relativeName(subPath);
  GroupId created(H5Gcreate2(group.id(), name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  return created.valid() ? std::move(created) : GroupId(H5Gopen2(group.id(), name, H5P_DEFAULT));
}

int readValues(hid_t dataset, int* values) noexcept {
  return readAs(dataset, H5T_NATIVE_INT, values);
}

int readValues(hid_t dataset, double* values) noexcept {
  return readAs(dataset, H5T_NATIVE_DOUBLE, values);
}

int setText(hid_t object, const char* name, const char* text) noexcept {
  const DataspaceId space(H5Screate(H5S_SCALAR));
  const DatatypeId type(H5Tcopy(H5T_C_S1));
  if (!space.valid() || !type.valid() || H5Tset_size(type.get(), std::strlen(text) + 1) < 0) {
    return kFailed;
  }
  return setAttribute(object, name, type.get(), space.get(), text);
}

int setInteger(hid_t object, const char* name, int value) noexcept {
  const hsize_t extents[] = {1};
  const DataspaceId space(H5Screate_simple(1, extents, nullptr));
  return setAttribute(object, name, H5T_NATIVE_INT, space.get(), &value);
}

int makeTable(const OpenGroup& group, const char* subPath, int rows, int columns,
              const double* values) noexcept {
  if (rows < 0 || columns < 0 || !group.fits(subPath)) {
    return kFailed;
  }
  const hsize_t extents[] = {static_cast<hsize_t>(rows), static_cast<hsize_t>(columns)};
  return closed(
      createDataset(group.id(), relativeName(subPath), H5T_NATIVE_DOUBLE, extents, values));
}

int makeVector(const OpenGroup& group, const char* subPath, int length,
               const int* values) noexcept {
  return makeVectorOf(group, subPath, H5T_NATIVE_INT, length, values);
}

int makeVector(const OpenGroup& group, const char* subPath, int length,
               const double* values) noexcept {
  return makeVectorOf(group, subPath, H5T_NATIVE_DOUBLE, length, values);
}

DatasetId createMember(const OpenGroup& group, const std::string& name, int length,
                       const int* values) {
  return createMemberOf(group, name, H5T_NATIVE_INT, length, values);
}

DatasetId createMember(const OpenGroup& group, const std::string& name, int length,
                       const double* values) {
  return createMemberOf(group, name, H5T_NATIVE_DOUBLE, length, values);
}

}  // namespace orvml_io
