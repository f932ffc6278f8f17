#include "vtkhdf/vtk_arrays.h"

#include <array>

namespace orvml::detail {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::PropertyListId;

/// Chunks and their index take more than they spare below that.
constexpr hsize_t kBytesWorthChunks = 16384;
constexpr unsigned kCompression = 4;  // more takes longer and spares little in regular arrays

/// How an array is stored: large ones in chunks that are compressed, where HDF5 has the filter.
PropertyListId storageOf(hid_t type, std::span<const hsize_t> extents) {
  PropertyListId creation(H5Pcreate(H5P_DATASET_CREATE));
  hsize_t bytes = H5Tget_size(type);
  for (const hsize_t extent : extents) {
    bytes *= extent;
  }
  if (bytes > kBytesWorthChunks && H5Zfilter_avail(H5Z_FILTER_DEFLATE) > 0) {
    std::array<hsize_t, 2> chunk = {};
    std::copy(extents.begin(), extents.end(), chunk.begin());
    chunk[0] = std::min<hsize_t>(chunk[0], NewArray::kRowsPerBlock);
    (void)H5Pset_chunk(creation.get(), static_cast<int>(extents.size()), chunk.data());
    (void)H5Pset_shuffle(creation.get());
    (void)H5Pset_deflate(creation.get(), kCompression);
  }
  return creation;
}

}  // namespace

template <>
hid_t nativeTypeOf<std::uint8_t>() noexcept {
  return H5T_NATIVE_UINT8;
}

template <>
hid_t nativeTypeOf<std::int32_t>() noexcept {
  return H5T_NATIVE_INT32;
}

template <>
hid_t nativeTypeOf<std::int64_t>() noexcept {
  return H5T_NATIVE_INT64;
}

template <>
hid_t nativeTypeOf<double>() noexcept {
  return H5T_NATIVE_DOUBLE;
}

NewArray::NewArray(hid_t group, const std::string& name, hid_t type, std::int64_t rows, int columns)
    : type_(type), columns_(columns) {
  const std::array extents = {static_cast<hsize_t>(rows), static_cast<hsize_t>(columns)};
  const std::span<const hsize_t> used = std::span(extents).first(columns > 1 ? 2 : 1);
  const DataspaceId space(H5Screate_simple(static_cast<int>(used.size()), used.data(), nullptr));
  dataset_ = DatasetId(H5Dcreate2(group, name.c_str(), type, space.get(), H5P_DEFAULT,
                                  storageOf(type, used).get(), H5P_DEFAULT));
}

bool NewArray::write(std::int64_t rows, const void* values) {
  const std::array first = {static_cast<hsize_t>(written_), hsize_t{0}};
  const std::array count = {static_cast<hsize_t>(rows), static_cast<hsize_t>(columns_)};
  const int rank = columns_ > 1 ? 2 : 1;
  const DataspaceId inMemory(H5Screate_simple(rank, count.data(), nullptr));
  const DataspaceId inFile(H5Dget_space(dataset_.get()));
  written_ += rows;
  return H5Sselect_hyperslab(inFile.get(), H5S_SELECT_SET, first.data(), nullptr, count.data(),
                             nullptr) >= 0 &&
         H5Dwrite(dataset_.get(), type_, inMemory.get(), inFile.get(), H5P_DEFAULT, values) >= 0;
}

bool linkArray(hid_t dataset, hid_t group, const std::string& name) {
  return H5Olink(dataset, group, name.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

#if H5_VERSION_GE(1, 10, 0)

namespace {

/// A percent sign stands for a number of a block in the name of a source.
std::string asSource(const std::string& object) {
  std::string name;
  for (const char character : object) {
    name.append(character == '%' ? 2 : 1, character);
  }
  return name;
}

bool isSelected(const DataspaceId& space, std::int64_t first, std::int64_t count) {
  const auto begin = static_cast<hsize_t>(first);
  const auto length = static_cast<hsize_t>(count);
  return H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, &begin, nullptr, &length, nullptr) >= 0;
}

bool addPart(const PropertyListId& creation, hsize_t length, const JoinedPart& part) {
  constexpr char kThisFile[] = ".";
  const DataspaceId joined(H5Screate_simple(1, &length, nullptr));
  const DataspaceId source(H5Dget_space(part.dataset));
  return isSelected(source, part.first, part.count) && isSelected(joined, part.at, part.count) &&
         H5Pset_virtual(creation.get(), joined.get(), kThisFile, asSource(part.object).c_str(),
                        source.get()) >= 0;
}

}  // namespace

bool canJoin(std::size_t parts) noexcept {
  constexpr std::size_t kMost = 256;  // each is looked at for each block that is read
  return parts <= kMost;
}

bool makeJoined(hid_t group, const std::string& name, hid_t type, std::int64_t length,
                std::span<const JoinedPart> parts, const void* padding) {
  const auto extent = static_cast<hsize_t>(length);
  const DataspaceId space(H5Screate_simple(1, &extent, nullptr));
  const PropertyListId creation(H5Pcreate(H5P_DATASET_CREATE));
  if (padding != nullptr && H5Pset_fill_value(creation.get(), type, padding) < 0) {
    return false;
  }
  for (const JoinedPart& part : parts) {
    if (!addPart(creation, extent, part)) {
      return false;
    }
  }
  return DatasetId(H5Dcreate2(group, name.c_str(), type, space.get(), H5P_DEFAULT, creation.get(),
                              H5P_DEFAULT))
      .valid();
}

#else

bool canJoin(std::size_t /*parts*/) noexcept { return false; }

bool makeJoined(hid_t /*group*/, const std::string& /*name*/, hid_t /*type*/,
                std::int64_t /*length*/, std::span<const JoinedPart> /*parts*/,
                const void* /*padding*/) {
  return false;
}

#endif

}  // namespace orvml::detail
