#include "hdf5/source_file.h"

#include <cstring>

namespace orvml_io {

namespace {

/// HDF5 calls it before it opens the file behind an external link; a negative answer stops that.
herr_t refuseExternalLink(const char* /*parentFile*/, const char* /*parentGroup*/,
                          const char* /*targetFile*/, const char* /*targetObject*/,
                          unsigned* /*accessFlags*/, hid_t /*fileAccess*/, void* hasRefused) {
  *static_cast<bool*>(hasRefused) = true;
  return -1;
}

PropertyListId makeAccess(hid_t listClass, bool& hasRefused) noexcept {
  PropertyListId access(H5Pcreate(listClass));
  if (!access.valid() || H5Pset_elink_cb(access.get(), refuseExternalLink, &hasRefused) < 0) {
    return PropertyListId();
  }
  return access;
}

bool isVirtual(hid_t creation) noexcept {
#if H5_VERSION_GE(1, 10, 0)
  return H5Pget_layout(creation) == H5D_VIRTUAL;
#else
  (void)creation;
  return false;
#endif
}

/// What follows the path of a group in the path of an object in it; null when the object is
/// elsewhere, or the group itself.
const char* pathBelow(const std::string& group, const char* path) noexcept {
  if (std::strncmp(path, group.c_str(), group.size()) != 0 || path[group.size()] != '/') {
    return nullptr;
  }
  const char* rest = path + group.size();
  rest += std::strspn(rest, "/");
  return *rest == '\0' ? nullptr : rest;
}

/// The size of a file, which is about what its arrays need; 0 where it is not known.
std::size_t bytesOf(hid_t file) noexcept {
  hsize_t bytes = 0;
  return file >= 0 && H5Fget_filesize(file, &bytes) >= 0 ? static_cast<std::size_t>(bytes) : 0;
}

/// Tells whether the values of a dataset lie in its own file.
bool isSelfContained(hid_t dataset) noexcept {
  if (H5Dget_offset(dataset) != HADDR_UNDEF) {
    return true;  // contiguous and in this file, as the writer makes them
  }
  const PropertyListId creation(H5Dget_create_plist(dataset));
  return creation.valid() && !isVirtual(creation.get()) &&
         H5Pget_external_count(creation.get()) == 0;
}

}  // namespace

SourceFile::SourceFile(hid_t file) noexcept
    : file_(file),
      freshMemory_(bytesOf(file)),
      datasetAccess_(makeAccess(H5P_DATASET_ACCESS, hasRefused_)),
      groupAccess_(makeAccess(H5P_GROUP_ACCESS, hasRefused_)) {
  if (!datasetAccess_.valid() || !groupAccess_.valid()) {
    file_ = -1;
  }
}

DatasetId SourceFile::tryOpenDataset(const char* path) const noexcept {
  return tryOpenDataset(placeOf(path));
}

DatasetId SourceFile::tryOpenMember(hid_t group, const std::string& name) const {
  // A name that begins with a slash, or is empty, still means a member of the group.
  return tryOpenDataset(Place{group, ("./" + name).c_str()});
}

DatasetId SourceFile::tryOpenDataset(const Place& place) const noexcept {
  DatasetId dataset(H5Dopen2(place.location, place.path, datasetAccess_.get()));
  if (dataset.valid() && !isSelfContained(dataset.get())) {
    hasRefused_ = true;
    return DatasetId();
  }
  return dataset;
}

GroupId SourceFile::tryOpenGroup(const Path& path) const noexcept {
  const Place place = placeOf(path.c_str());
  return GroupId(H5Gopen2(place.location, place.path, groupAccess_.get()));
}

bool SourceFile::tryKeepGroup(const Path& path, KeptOpen why) const {
  keptGroups_.reserve(keptGroups_.size() + 1);
  std::string prefix(path.c_str());
  GroupId group = tryOpenGroup(path);
  if (!group.valid()) {
    return false;
  }
  keptGroups_.push_back({std::move(prefix), keepOpen(std::move(group), why)});
  return true;
}

SourceFile::Place SourceFile::placeOf(const char* path) const noexcept {
  for (auto group = keptGroups_.rbegin(); group != keptGroups_.rend(); ++group) {
    const char* rest = pathBelow(group->path, path);
    if (rest != nullptr) {
      return {group->id, rest};
    }
  }
  return {file_, path};
}

AttributeId SourceFile::tryOpenAttribute(const char* objectPath, const char* name) const noexcept {
  return AttributeId(H5Aopen_by_name(file_, objectPath, name, H5P_DEFAULT, groupAccess_.get()));
}

}  // namespace orvml_io
