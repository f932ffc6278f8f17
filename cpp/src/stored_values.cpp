#include "stored_values.h"

#include "hdf5/id.h"
#include "values/attributes_vector.h"

namespace orvml::detail {

namespace {

using orvml_io::DatatypeId;
using orvml_io::PropertyListId;

/// Why the type of a dataset is not the machine's own; null when it is.
const char* typeObstacle(hid_t dataset, char code) {
  const DatatypeId type(H5Dget_type(dataset));
  const hid_t native = code == orvml_io::kIntCode ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
  if (H5Tequal(type.get(), native) > 0) {
    return nullptr;
  }
  const bool isOfNativeSize = H5Tget_size(type.get()) == H5Tget_size(native) &&
                              H5Tget_class(type.get()) == H5Tget_class(native);
  return isOfNativeSize && H5Tget_order(type.get()) != H5Tget_order(native)
             ? "has another byte order"
             : "has another type of numbers";
}

/// Why the values do not lie in one stretch of this file.
const char* layoutObstacle(hid_t dataset) {
  const PropertyListId creation(H5Dget_create_plist(dataset));
  if (H5Pget_nfilters(creation.get()) > 0) {
    return "is compressed or filtered";
  }
  switch (H5Pget_layout(creation.get())) {
    case H5D_CHUNKED:
      return "is chunked";
    case H5D_COMPACT:
      return "lies within the description of the dataset";
    default:
      return "has values that are not stored";
  }
}

}  // namespace

StoredValues storedValuesOf(const orvml_io::WantedArray& wanted, std::uint64_t fileBytes) {
  const haddr_t offset = H5Dget_offset(wanted.dataset);
  if (offset == HADDR_UNDEF) {
    return {0, 0, layoutObstacle(wanted.dataset)};
  }
  if (const char* obstacle = typeObstacle(wanted.dataset, wanted.code)) {
    return {0, 0, obstacle};
  }
  if (wanted.extent.numberOfValues != static_cast<hsize_t>(wanted.length)) {
    return {0, 0, "is shorter than it has to be"};
  }
  const std::uint64_t valueBytes = wanted.code == orvml_io::kIntCode ? sizeof(int) : sizeof(double);
  const std::uint64_t bytes = wanted.extent.numberOfValues * valueBytes;  // below 2^31 values
  if (bytes > fileBytes || offset > fileBytes - bytes ||
      H5Dget_storage_size(wanted.dataset) < bytes) {
    return {0, 0, "does not lie within the file"};
  }
  return {offset, bytes, nullptr};
}

}  // namespace orvml::detail
