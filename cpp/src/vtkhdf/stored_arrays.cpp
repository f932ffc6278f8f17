#include "vtkhdf/stored_arrays.h"

#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/probes.h"
#include "opened_file.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

namespace orvml::detail {

namespace {

namespace layout = orvml_io::layout;
using orvml_io::DatatypeId;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

const char* containerOf(Entity entity) noexcept {
  constexpr std::array kNames = {layout::kNodes, layout::kEdges, layout::kFaces, layout::kElements};
  return kNames[static_cast<std::size_t>(entity)];
}

using Way = std::initializer_list<const char*>;

/// Opens a dataset in the group at the end of a way of sub-paths.
///
/// @param subPath  that of the dataset
/// @param open     opens it in the group
template <class Open>
StoredArray openArray(SourceFile& source, Way way, const std::string& subPath, const Open& open) {
  StoredArray array;
  OpenGroup group = source.root();
  std::vector<orvml_io::GroupId> groups;  // open as long as something is looked for in them
  bool isThere = true;
  for (const char* part : way) {
    array.object += part;
    auto opened = source.openGroup(group, part);
    isThere = isThere && opened.isObject();
    group = group.below(opened.id.get(), part);
    groups.push_back(std::move(opened.id));
  }
  array.object += subPath;
  if (isThere) {
    auto opened = open(group);
    array.dataset = opened.isObject() ? std::move(opened.id) : orvml_io::DatasetId();
  }
  return array;
}

StoredArray openMesh(SourceFile& source, Way way, const char* subPath) {
  return openArray(source, way, subPath,
                   [&](const OpenGroup& group) { return source.openDataset(group, subPath); });
}

StoredArray openVector(SourceFile& source, Way way, std::string_view vector, bool hasNames) {
  const std::string name(vector);
  return openArray(source, way, "/" + name, [&](const OpenGroup& group) {
    return hasNames ? source.openMember(group, name) : orvml_io::Opened<orvml_io::DatasetId>();
  });
}

bool hasExtents(hid_t dataset, std::span<const hsize_t> wanted) {
  const orvml_io::DataspaceId space(H5Dget_space(dataset));
  if (H5Sget_simple_extent_ndims(space.get()) != static_cast<int>(wanted.size())) {
    return false;
  }
  std::array<hsize_t, 2> found = {};
  return wanted.size() <= found.size() &&
         H5Sget_simple_extent_dims(space.get(), found.data(), nullptr) >= 0 &&
         std::equal(wanted.begin(), wanted.end(), found.begin());
}

/// Those that every HDF5 has, or nearly every one.
bool hasKnownFilters(hid_t dataset) {
  const orvml_io::PropertyListId creation(H5Dget_create_plist(dataset));
  const int filters = H5Pget_nfilters(creation.get());
  for (int i = 0; i < filters; ++i) {
    unsigned flags = 0;
    std::size_t values = 0;
    const H5Z_filter_t filter = H5Pget_filter2(creation.get(), static_cast<unsigned>(i), &flags,
                                               &values, nullptr, 0, nullptr, nullptr);
    if (filter != H5Z_FILTER_DEFLATE && filter != H5Z_FILTER_SHUFFLE &&
        filter != H5Z_FILTER_FLETCHER32) {
      return false;
    }
  }
  return filters >= 0;
}

bool isOneOf(hid_t dataset, std::initializer_list<hid_t> types) {
  const DatatypeId stored(H5Dget_type(dataset));
  const DatatypeId native(H5Tget_native_type(stored.get(), H5T_DIR_ASCEND));
  return native.valid() && std::any_of(types.begin(), types.end(), [&](hid_t type) {
           return H5Tequal(native.get(), type) > 0;
         });
}

}  // namespace

StoredArrays::StoredArrays(hid_t file, Kind kind)
    : source_(file),
      kind_(kind),
      hasNames_(!orvml_io::isBelowNamedFormat(
          orvml_io::readRootText(file, layout::kFormatVersion).value_or("").c_str())) {}

StoredArray StoredArrays::coordinates() {
  return openMesh(source_, {groupOf(kind_), layout::kNodes}, layout::kCoordinates);
}

StoredArray StoredArrays::nodeIndices(Entity entity) {
  return openMesh(source_, {groupOf(kind_), containerOf(entity)}, layout::kConnectivities);
}

StoredArray StoredArrays::attribute(Entity entity, std::string_view name) {
  return openVector(source_, {groupOf(kind_), containerOf(entity), layout::kAttributes}, name,
                    hasNames_);
}

StoredArray StoredArrays::vectorParameter(std::string_view name) {
  return openVector(source_, {groupOf(kind_), layout::kParametersVector}, name, hasNames_);
}

bool isReadByVtk(hid_t dataset, std::int64_t length) {
  const std::array extents = {static_cast<hsize_t>(length)};
  return hasExtents(dataset, extents) && hasKnownFilters(dataset) &&
         isOneOf(dataset, {H5T_NATIVE_INT, H5T_NATIVE_DOUBLE, H5T_NATIVE_FLOAT, H5T_NATIVE_SCHAR,
                           H5T_NATIVE_UCHAR, H5T_NATIVE_SHORT, H5T_NATIVE_USHORT, H5T_NATIVE_UINT,
                           H5T_NATIVE_LONG, H5T_NATIVE_ULONG, H5T_NATIVE_LLONG, H5T_NATIVE_ULLONG});
}

bool isReadByVtkAsPoints(hid_t dataset, std::int64_t points) {
  const std::array extents = {static_cast<hsize_t>(points), hsize_t{3}};
  return hasExtents(dataset, extents) && hasKnownFilters(dataset) &&
         isOneOf(dataset, {H5T_NATIVE_DOUBLE, H5T_NATIVE_FLOAT});
}

bool hasIndexType(hid_t dataset, hid_t nativeType) { return isOneOf(dataset, {nativeType}); }

bool canBeJoined(hid_t dataset, std::int64_t length) {
  const std::array extents = {static_cast<hsize_t>(length)};
  const DatatypeId type(H5Dget_type(dataset));
  const H5T_class_t kind = H5Tget_class(type.get());
  return hasExtents(dataset, extents) && hasKnownFilters(dataset) &&
         (kind == H5T_INTEGER || kind == H5T_FLOAT);
}

}  // namespace orvml::detail
