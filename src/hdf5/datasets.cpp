#include "hdf5/datasets.h"
#include "hdf5/status.h"

#include <hdf5_hl.h>

namespace orvml_io {

namespace {

int readAs(hid_t dataset, hid_t nativeType, void* values) noexcept {
  return H5Dread(dataset, nativeType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) < 0 ? kFailed : kOk;
}

template <std::size_t Rank>
int makeDataset(hid_t file, const Path& path, hid_t nativeType, const hsize_t (&extents)[Rank],
                const void* values) noexcept {
  return H5LTmake_dataset(file, path.c_str(), static_cast<int>(Rank), extents, nativeType, values) <
                 0
             ? kFailed
             : kOk;
}

int makeVectorOf(hid_t file, const Path& path, hid_t nativeType, int length,
                 const void* values) noexcept {
  if (length < 0) {
    return kFailed;
  }
  const hsize_t extents[] = {static_cast<hsize_t>(length)};
  return makeDataset(file, path, nativeType, extents, values);
}

}  // namespace

void createGroupIfAbsent(hid_t file, const Path& path) noexcept {
  const GroupId created(H5Gcreate2(file, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
}

int readValues(hid_t dataset, int* values) noexcept {
  return readAs(dataset, H5T_NATIVE_INT, values);
}

int readValues(hid_t dataset, double* values) noexcept {
  return readAs(dataset, H5T_NATIVE_DOUBLE, values);
}

int makeTable(hid_t file, const Path& path, int rows, int columns, const double* values) noexcept {
  if (rows < 0 || columns < 0) {
    return kFailed;
  }
  const hsize_t extents[] = {static_cast<hsize_t>(rows), static_cast<hsize_t>(columns)};
  return makeDataset(file, path, H5T_NATIVE_DOUBLE, extents, values);
}

int makeVector(hid_t file, const Path& path, int length, const int* values) noexcept {
  return makeVectorOf(file, path, H5T_NATIVE_INT, length, values);
}

int makeVector(hid_t file, const Path& path, int length, const double* values) noexcept {
  return makeVectorOf(file, path, H5T_NATIVE_DOUBLE, length, values);
}

}  // namespace orvml_io
