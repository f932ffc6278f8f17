#include "check/stored_integers.h"

#include "hdf5/id.h"

#include <algorithm>
#include <array>
#include <climits>
#include <type_traits>
#include <vector>

namespace orvml::detail {

namespace {

using orvml_io::DataspaceId;
using orvml_io::DatatypeId;

constexpr hsize_t kValuesPerPiece = 65536;

/// Whether a type holds integers that 32 bits may not.
bool isWider(hid_t type) {
  return H5Tget_class(type) == H5T_INTEGER &&
         H5Tget_size(type) + (H5Tget_sign(type) == H5T_SGN_NONE ? 1 : 0) > sizeof(int);
}

/// The part of a dataset that begins at a row and has as many rows as fit a piece.
struct Piece {
  hsize_t rows;
  hsize_t values;
};

/// Reads some rows of a dataset; false when it cannot be done.
template <class Integer>
bool readRows(hid_t dataset, hid_t space, int rank, hsize_t first, const Piece& piece,
              Integer* values) {
  std::array<hsize_t, H5S_MAX_RANK> start = {first};
  std::array<hsize_t, H5S_MAX_RANK> count = {};
  if (H5Sget_simple_extent_dims(space, count.data(), nullptr) != rank) {
    return false;
  }
  count[0] = piece.rows;
  const DataspaceId memory(H5Screate_simple(1, &piece.values, nullptr));
  const hid_t native = std::is_signed_v<Integer> ? H5T_NATIVE_LLONG : H5T_NATIVE_ULLONG;
  return H5Sselect_hyperslab(space, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr) >=
             0 &&
         H5Dread(dataset, native, memory.get(), space, H5P_DEFAULT, values) >= 0;
}

template <class Integer>
bool fits(Integer value) noexcept {
  if constexpr (std::is_signed_v<Integer>) {
    return value >= INT_MIN && value <= INT_MAX;
  } else {
    return value <= static_cast<Integer>(INT_MAX);
  }
}

template <class Integer>
void findIn(hid_t dataset, const orvml_io::Extent& extent, Places& places) {
  const DataspaceId space(H5Dget_space(dataset));
  const hsize_t width = extent.numberOfValues / extent.first;
  std::vector<Integer> values(std::min(kValuesPerPiece, extent.numberOfValues));
  const hsize_t rowsPerPiece = values.size() / width;
  for (hsize_t row = 0; row < extent.first; row += rowsPerPiece) {
    const hsize_t rows = std::min(rowsPerPiece, extent.first - row);
    const Piece piece{rows, rows * width};
    if (!readRows(dataset, space.get(), extent.rank, row, piece, values.data())) {
      return;  // readers tell of what cannot be read
    }
    for (hsize_t i = 0; i < piece.values; ++i) {
      if (!fits(values[i])) {
        places.add(static_cast<std::int64_t>(row * width + i));
      }
    }
  }
}

}  // namespace

void findClamped(orvml_io::SourceFile& file, const orvml_io::OpenGroup& group,
                 const std::string& name, hid_t dataset, Places& places) {
  const DatatypeId type(H5Dget_type(dataset));
  const auto extent = orvml_io::extentOf(dataset);
  // Rows that do not fit a piece are none of a vector: readers refuse them.
  if (!type.valid() || !isWider(type.get()) || !extent || extent->rank == 0 ||
      extent->numberOfValues == 0 || extent->numberOfValues > static_cast<hsize_t>(INT_MAX) ||
      extent->numberOfValues / extent->first > kValuesPerPiece) {
    return;
  }
  const auto length = static_cast<long long>(extent->numberOfValues);
  if (!file.affords(group, name, orvml_io::readCostOf(dataset, *extent, length, sizeof(int)))) {
    return;
  }
  if (H5Tget_sign(type.get()) == H5T_SGN_NONE) {
    findIn<unsigned long long>(dataset, *extent, places);
  } else {
    findIn<long long>(dataset, *extent, places);
  }
}

}  // namespace orvml::detail
