#include "hdf5/source_file.h"

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
      datasetAccess_(makeAccess(H5P_DATASET_ACCESS, hasRefused_)),
      groupAccess_(makeAccess(H5P_GROUP_ACCESS, hasRefused_)),
      linkAccess_(makeAccess(H5P_LINK_ACCESS, hasRefused_)) {
  if (!datasetAccess_.valid() || !groupAccess_.valid() || !linkAccess_.valid()) {
    file_ = -1;
  }
}

DatasetId SourceFile::tryOpenDataset(const char* path) const noexcept {
  DatasetId dataset(H5Dopen2(file_, path, datasetAccess_.get()));
  if (dataset.valid() && !isSelfContained(dataset.get())) {
    hasRefused_ = true;
    return DatasetId();
  }
  return dataset;
}

GroupId SourceFile::tryOpenGroup(const Path& path) const noexcept {
  return GroupId(H5Gopen2(file_, path.c_str(), groupAccess_.get()));
}

AttributeId SourceFile::tryOpenAttribute(const char* objectPath, const char* name) const noexcept {
  return AttributeId(H5Aopen_by_name(file_, objectPath, name, H5P_DEFAULT, linkAccess_.get()));
}

}  // namespace orvml_io
