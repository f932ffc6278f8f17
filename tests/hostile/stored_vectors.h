#pragma once

#include "support/raw_file.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

namespace orvml_io_tests {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

inline constexpr hsize_t kMillion = 1000000;
inline constexpr hsize_t kMebibyte = hsize_t{1} << 20U;
inline constexpr char kVectors[] = "/OrvInput/ParametersVector";

/// How a dataset is stored.
struct Storage {
  hsize_t chunk = 0;  // values of a chunk; 0 for one stretch
  bool shuffles = false;
  bool deflates = false;
  bool takesOffsets = false;

  [[nodiscard]] hid_t makeProperties() const {
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    if (chunk > 0) {
      H5Pset_chunk(properties, 1, &chunk);
    }
    if (shuffles) {
      H5Pset_shuffle(properties);
    }
    if (deflates) {
      H5Pset_deflate(properties, 9);
    }
    if (takesOffsets) {
      H5Pset_scaleoffset(properties, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT);
    }
    return properties;
  }
};

/// Makes a vector in a type of the file; the values come from memory in another.
template <class T>
void addVector(RawFile& file, const std::string& path, hid_t fileType, hid_t memoryType,
               const std::vector<T>& values, const Storage& storage) {
  const hsize_t length = values.size();
  const hid_t properties = storage.makeProperties();
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t dataset =
      H5Dcreate2(file.id(), path.c_str(), fileType, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0) << path;
  ASSERT_GE(H5Dwrite(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0) << path;
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
}

inline void addInts(RawFile& file, const std::string& path, const Ints& values,
                    const Storage& storage) {
  addVector(file, path, H5T_NATIVE_INT, H5T_NATIVE_INT, values, storage);
}

/// Adds hard links "1" to `count` to an object beside it.
inline void addLinks(RawFile& file, const std::string& group, const std::string& target,
                     int count) {
  for (int i = 1; i <= count; ++i) {
    ASSERT_GE(H5Lcreate_hard(file.id(), target.c_str(), file.id(),
                             (group + "/" + std::to_string(i)).c_str(), H5P_DEFAULT, H5P_DEFAULT),
              0);
  }
}

inline Ints countingUp(std::size_t length) {
  Ints values(length);
  std::iota(values.begin(), values.end(), 0);
  return values;
}

}  // namespace orvml_io_tests
