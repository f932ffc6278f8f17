#include "rescue/read_arrays.h"

#include "hdf5/read_array.h"

#include <hdf5.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace orvml::detail {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::DatatypeId;
using orvml_io::Extent;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;
using orvml_io::Trouble;

/// An open dataset of numbers.
struct NumbersInFile {
  DatasetId id;
  Extent extent;
  H5T_class_t typeClass = H5T_NO_CLASS;
};

std::optional<NumbersInFile> openNumbers(SourceFile& file, const OpenGroup& group,
                                         const char* subPath) {
  orvml_io::Opened<DatasetId> opened = file.openDataset(group, subPath);
  if (!opened.isObject()) {
    file.reportIfAbsent(opened.found, group, subPath);
    return std::nullopt;
  }
  const std::optional<Extent> extent = orvml_io::extentOf(opened.id.get());
  if (!extent || !orvml_io::numberOfValues32(*extent)) {
    file.report(Trouble::wrongShape, group, subPath,
                [] { return "has no extents, or more values than 32 bits count"; });
    return std::nullopt;
  }
  const DatatypeId type(H5Dget_type(opened.id.get()));
  const H5T_class_t typeClass = type.valid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
  if (typeClass != H5T_INTEGER && typeClass != H5T_FLOAT) {
    file.report(Trouble::wrongType, group, subPath, [] { return "holds no numbers"; });
    return std::nullopt;
  }
  return NumbersInFile{std::move(opened.id), *extent, typeClass};
}

hid_t nativeType(const int* /*values*/) noexcept { return H5T_NATIVE_INT; }
hid_t nativeType(const double* /*values*/) noexcept { return H5T_NATIVE_DOUBLE; }

/// Reads some of the rows of a dataset. Returns whether that was possible.
template <class T>
bool readSomeRows(const NumbersInFile& numbers, hsize_t first, hsize_t rows, T* values) {
  const DataspaceId inFile(H5Dget_space(numbers.id.get()));
  std::array<hsize_t, H5S_MAX_RANK> starts = {};
  std::array<hsize_t, H5S_MAX_RANK> counts = {};
  if (H5Sget_simple_extent_dims(inFile.get(), counts.data(), nullptr) < 0) {
    return false;
  }
  const hsize_t size = rows * (numbers.extent.numberOfValues / numbers.extent.first);
  starts[0] = first;
  counts[0] = rows;
  const DataspaceId inMemory(H5Screate_simple(1, &size, nullptr));
  return H5Sselect_hyperslab(inFile.get(), H5S_SELECT_SET, starts.data(), nullptr, counts.data(),
                             nullptr) >= 0 &&
         H5Dread(numbers.id.get(), nativeType(values), inMemory.get(), inFile.get(), H5P_DEFAULT,
                 values) >= 0;
}

/// Reads the rows before the first that cannot be read, in ever smaller pieces.
template <class T>
std::vector<T> readFirstRows(const NumbersInFile& numbers) {
  constexpr hsize_t kLargestPiece = hsize_t{1} << 16U;
  const hsize_t width =
      numbers.extent.first == 0 ? 0 : numbers.extent.numberOfValues / numbers.extent.first;
  std::vector<T> values;
  if (numbers.extent.rank == 0 || width == 0) {
    return values;
  }
  hsize_t row = 0;
  for (hsize_t piece = kLargestPiece; piece > 0 && row < numbers.extent.first;) {
    const hsize_t rows = std::min(piece, numbers.extent.first - row);
    values.resize((row + rows) * width);
    if (readSomeRows(numbers, row, rows, values.data() + row * width)) {
      row += rows;
    } else {
      piece = rows / 2;
    }
  }
  values.resize(row * width);
  return values;
}

template <class T>
std::optional<ReadValues<T>> read(SourceFile& file, const OpenGroup& group, const char* subPath,
                                  const NumbersInFile& numbers, Rows rows) {
  const auto length = static_cast<int>(numbers.extent.numberOfValues);
  const hid_t dataset = numbers.id.get();
  if (!file.couldAfford(group, subPath,
                        orvml_io::readCostOf(dataset, numbers.extent, length, sizeof(T)))) {
    return std::nullopt;
  }
  if (const auto values =
          orvml_io::tryReadArray<T>(file, group, subPath, dataset, numbers.extent, length)) {
    return ReadValues<T>{numbers.extent, std::vector<T>(values.get(), values.get() + length)};
  }
  if (rows == Rows::all) {
    return std::nullopt;
  }
  return ReadValues<T>{numbers.extent, readFirstRows<T>(numbers)};
}

bool isInt(double value) noexcept {
  return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max() &&
         std::trunc(value) == value;
}

}  // namespace

std::optional<ReadValues<int>> readInts(SourceFile& file, const OpenGroup& group,
                                        const char* subPath, Rows rows) {
  const std::optional<NumbersInFile> numbers = openNumbers(file, group, subPath);
  if (!numbers) {
    return std::nullopt;
  }
  if (numbers->typeClass == H5T_INTEGER) {
    return read<int>(file, group, subPath, *numbers, rows);
  }
  const auto doubles = read<double>(file, group, subPath, *numbers, rows);
  if (!doubles) {
    return std::nullopt;
  }
  if (!std::all_of(doubles->values.begin(), doubles->values.end(), isInt)) {
    file.report(Trouble::wrongType, group, subPath, [] { return "holds no integers"; });
    return std::nullopt;
  }
  ReadValues<int> ints{doubles->extent, {}};
  std::transform(doubles->values.begin(), doubles->values.end(), std::back_inserter(ints.values),
                 [](double value) { return static_cast<int>(value); });
  return ints;
}

std::optional<ReadValues<double>> readDoubles(SourceFile& file, const OpenGroup& group,
                                              const char* subPath, Rows rows) {
  const std::optional<NumbersInFile> numbers = openNumbers(file, group, subPath);
  return numbers ? read<double>(file, group, subPath, *numbers, rows) : std::nullopt;
}

}  // namespace orvml::detail
