#include "support/objects.h"

#include <hdf5.h>

#include <array>
#include <iomanip>
#include <sstream>
#include <vector>

namespace orvml_parallel_tests {

namespace {

using Objects = std::map<std::string, std::string>;

void tellType(hid_t type, std::ostream& out) {
  std::size_t bytes = 0;
  H5Tencode(type, nullptr, &bytes);
  std::vector<unsigned char> code(bytes);
  H5Tencode(type, code.data(), &bytes);
  for (const unsigned char byte : code) {
    out << std::hex << std::setw(2) << std::setfill('0') << int{byte} << std::dec;
  }
}

void tellSpace(hid_t space, std::ostream& out) {
  std::array<hsize_t, H5S_MAX_RANK> extents = {};
  std::array<hsize_t, H5S_MAX_RANK> most = {};
  const int rank = H5Sget_simple_extent_dims(space, extents.data(), most.data());
  for (int i = 0; i < rank; ++i) {
    const auto at = static_cast<std::size_t>(i);
    out << " " << extents[at] << "/" << most[at];
  }
}

void tellBytes(const std::vector<char>& bytes, std::ostream& out) {
  std::size_t sum = bytes.size();
  for (const char byte : bytes) {
    sum = sum * 1099511628211U + static_cast<unsigned char>(byte);
  }
  out << " content " << sum;
}

herr_t tellAttribute(hid_t object, const char* name, const H5A_info_t* info, void* data) {
  auto& objects = *static_cast<std::pair<std::string, Objects>*>(data);
  std::ostringstream out;
  const hid_t attribute = H5Aopen(object, name, H5P_DEFAULT);
  const hid_t type = H5Aget_type(attribute);
  const hid_t space = H5Aget_space(attribute);
  tellType(type, out);
  tellSpace(space, out);
  std::vector<char> bytes(H5Tget_size(type));
  H5Aread(attribute, type, bytes.data());
  tellBytes(bytes, out);
  out << " order " << info->corder;
  objects.second[objects.first + "@" + name] = out.str();
  H5Sclose(space);
  H5Tclose(type);
  H5Aclose(attribute);
  return 0;
}

std::string datasetText(hid_t dataset) {
  std::ostringstream out;
  const hid_t type = H5Dget_type(dataset);
  const hid_t space = H5Dget_space(dataset);
  const hid_t creation = H5Dget_create_plist(dataset);
  H5D_fill_time_t fillTime = H5D_FILL_TIME_ERROR;
  H5D_alloc_time_t allocationTime = H5D_ALLOC_TIME_ERROR;
  H5Pget_fill_time(creation, &fillTime);
  H5Pget_alloc_time(creation, &allocationTime);
  tellType(type, out);
  tellSpace(space, out);
  out << " layout " << H5Pget_layout(creation) << " filters " << H5Pget_nfilters(creation)
      << " fill " << fillTime << " allocation " << allocationTime << " at "
      << H5Dget_offset(dataset) << " stored " << H5Dget_storage_size(dataset);
  const auto values = static_cast<std::size_t>(H5Sget_simple_extent_npoints(space));
  std::vector<char> bytes(values * H5Tget_size(type));
  H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data());
  tellBytes(bytes, out);
  H5Pclose(creation);
  H5Sclose(space);
  H5Tclose(type);
  return out.str();
}

herr_t tellObject(hid_t root, const char* name, const H5O_info_t* info, void* data) {
  auto& objects = *static_cast<Objects*>(data);
  const std::string path = name;
  const hid_t object = H5Oopen(root, name, H5P_DEFAULT);
  std::string text = "kind " + std::to_string(info->type) + " at " + std::to_string(info->addr) +
                     " header " + std::to_string(info->hdr.space.total) + " ";
  if (info->type == H5O_TYPE_DATASET) {
    text += datasetText(object);
  }
  objects[path] = text;
  std::pair<std::string, Objects> attributes(path, {});
  H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_INC, nullptr, tellAttribute, &attributes);
  objects.merge(attributes.second);
  H5Oclose(object);
  return 0;
}

}  // namespace

std::map<std::string, std::string> objectsOf(const std::filesystem::path& path) {
  Objects objects;
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  H5Ovisit(file, H5_INDEX_NAME, H5_ITER_INC, tellObject, &objects);
  H5Fclose(file);
  objects["file"] = std::to_string(std::filesystem::file_size(path)) + " bytes";
  return objects;
}

}  // namespace orvml_parallel_tests
