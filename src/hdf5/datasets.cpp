#include "hdf5/datasets.h"

#include "hdf5/status.h"

#include <hdf5_hl.h>

#include <cstring>
#include <utility>

namespace orvml_io {

namespace {

int readAs(hid_t dataset, hid_t nativeType, void* values) noexcept {
  return H5Dread(dataset, nativeType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) < 0 ? kFailed : kOk;
}

template <std::size_t Rank>
int makeDataset(hid_t location, const Path& path, hid_t nativeType, const hsize_t (&extents)[Rank],
                const void* values) noexcept {
  return H5LTmake_dataset(location, path.c_str(), static_cast<int>(Rank), extents, nativeType,
                          values) < 0
             ? kFailed
             : kOk;
}

int makeVectorOf(hid_t location, const Path& path, hid_t nativeType, int length,
                 const void* values) noexcept {
  if (length < 0) {
    return kFailed;
  }
  const hsize_t extents[] = {static_cast<hsize_t>(length)};
  return makeDataset(location, path, nativeType, extents, values);
}

}  // namespace

GroupId createGroupIfAbsent(hid_t location, const Path& path) noexcept {
  GroupId created(H5Gcreate2(location, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  return created.valid() ? std::move(created)
                         : GroupId(H5Gopen2(location, path.c_str(), H5P_DEFAULT));
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
  if (H5Aexists(object, name) > 0 && H5Adelete(object, name) < 0) {
    return kFailed;
  }
  const AttributeId attribute(
      H5Acreate2(object, name, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
  return attribute.valid() && H5Awrite(attribute.get(), type.get(), text) >= 0 ? kOk : kFailed;
}

int makeTable(hid_t location, const Path& path, int rows, int columns,
              const double* values) noexcept {
  if (rows < 0 || columns < 0) {
    return kFailed;
  }
  const hsize_t extents[] = {static_cast<hsize_t>(rows), static_cast<hsize_t>(columns)};
  return makeDataset(location, path, H5T_NATIVE_DOUBLE, extents, values);
}

int makeVector(hid_t location, const Path& path, int length, const int* values) noexcept {
  return makeVectorOf(location, path, H5T_NATIVE_INT, length, values);
}

int makeVector(hid_t location, const Path& path, int length, const double* values) noexcept {
  return makeVectorOf(location, path, H5T_NATIVE_DOUBLE, length, values);
}

}  // namespace orvml_io
