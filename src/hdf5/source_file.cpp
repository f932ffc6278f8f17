#include "hdf5/source_file.h"

#include "hdf5/linked_file.h"
#include "hdf5/probes.h"

#include <utility>

namespace orvml_io {

namespace {

/// HDF5 calls it before it opens the file behind an external link; a negative answer stops that.
template <class Watch>
herr_t stopAtExternalLink(const char* fileWithLink, const char* /*group*/, const char* target,
                          const char* /*object*/, unsigned* /*accessFlags*/, hid_t /*fileAccess*/,
                          void* watch) {
  auto* told = static_cast<Watch*>(watch);
  told->wasMet = true;
  told->leadsToAFile = linkLeadsToAFile(fileWithLink, target);
  return -1;
}

template <class Watch>
PropertyListId makeAccess(hid_t listClass, Watch& watch) noexcept {
  PropertyListId access(H5Pcreate(listClass));
  if (!access.valid() || H5Pset_elink_cb(access.get(), stopAtExternalLink<Watch>, &watch) < 0) {
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

bool isFailureOfHdf5(Trouble trouble) noexcept {
  return trouble == Trouble::missing || trouble == Trouble::unopenable ||
         trouble == Trouble::otherFile || trouble == Trouble::unreadable;
}

std::string pathOf(const OpenGroup& group, std::string_view subPath) {
  std::string path = pathOfObject(group.id());
  if (path == "/") {
    path.clear();
  }
  if (!subPath.empty() && subPath.front() != '/') {
    path += '/';
  }
  return path.append(subPath);
}

}  // namespace

SourceFile::SourceFile(hid_t file, Diagnosis* diagnosis) noexcept
    : SourceFile(file, ReadOptions{diagnosis}) {}

SourceFile::SourceFile(hid_t file, const ReadOptions& options) noexcept
    : file_(file),
      options_(options),
      budget_(file),
      freshMemory_(fileBytesOf(file)),  // about what its arrays need
      datasetAccess_(makeAccess(H5P_DATASET_ACCESS, watch_)),
      groupAccess_(makeAccess(H5P_GROUP_ACCESS, watch_)) {
  if (!datasetAccess_.valid() || !groupAccess_.valid()) {
    file_ = -1;
  }
}

bool SourceFile::isStored(const OpenGroup& group, std::string_view subPath, const ReadCost& cost) {
  const bool isTaken = !options_.takesStoredValuesOnly || cost.unstoredBytes == 0;
  if (!isTaken) {
    report(Trouble::tooShort, group, subPath,
           [] { return "has fewer values than it should, or values that were never stored"; });
  }
  return isTaken;
}

bool SourceFile::isRefusedAsTooMuch(const OpenGroup& group, std::string_view subPath) {
  report(Trouble::overBudget, group, subPath,
         [] { return "would take memory out of proportion to the file"; });
  return false;
}

void SourceFile::reportLongPath(const OpenGroup& group, std::string_view subPath) {
  report(Trouble::longPath, group, subPath, [] { return "has a path that is too long"; });
}

void SourceFile::reportUnopenable(const OpenGroup& group, std::string_view subPath) {
  report(Trouble::unopenable, group, subPath, [] { return "cannot be opened"; });
}

void SourceFile::reportNoVector(const char* relativeName, const OpenGroup& group,
                                std::string_view name) {
  if (options_.diagnosis == nullptr) {
    return;
  }
  const ObjectId object(H5Oopen(group.id(), relativeName, groupAccess_.get()));
  watch_ = LinkWatch();
  const H5I_type_t type = object.valid() ? H5Iget_type(object.get()) : H5I_BADID;
  if (type == H5I_GROUP || type == H5I_DATATYPE) {
    report(Trouble::foreign, group, name, [] { return "is no dataset"; });
  } else {
    reportUnopenable(group, name);
  }
}

template <class Id, class ReportUnopenable>
Opened<Id> SourceFile::opened(Id id, const OpenGroup& group, std::string_view subPath,
                              ReportUnopenable reportUnopenable) {
  const LinkWatch watch = std::exchange(watch_, LinkWatch());
  if (id.valid()) {
    return {Found::object, std::move(id)};
  }
  if (watch.leadsToAFile) {
    report(Trouble::otherFile, group, subPath, [] { return "is a link to another file"; });
    return {Found::refused, Id()};
  }
  if (watch.wasMet || lastFailureWasAbsence()) {
    return {Found::absent, Id()};
  }
  reportUnopenable();
  return {Found::failed, Id()};
}

template <class ReportUnopenable>
Opened<DatasetId> SourceFile::openDatasetAs(const char* relativeName, const OpenGroup& group,
                                            std::string_view subPath,
                                            ReportUnopenable reportUnopenable) {
  Opened<DatasetId> dataset =
      opened(DatasetId(H5Dopen2(group.id(), relativeName, datasetAccess_.get())), group, subPath,
             reportUnopenable);
  if (dataset.isObject() && !isSelfContained(dataset.id.get())) {
    report(Trouble::otherFile, group, subPath, [] { return "has its values in another file"; });
    dataset.found = Found::refused;
  }
  return dataset;
}

Opened<DatasetId> SourceFile::openDataset(const OpenGroup& group, const char* subPath) {
  if (!group.fits(subPath)) {
    reportLongPath(group, subPath);
    return {Found::refused, DatasetId()};
  }
  return openDatasetAs(relativeName(subPath), group, subPath,
                       [&] { reportUnopenable(group, subPath); });
}

Opened<DatasetId> SourceFile::openMember(const OpenGroup& group, const std::string& name) {
  if (!group.fitsMember(name)) {
    reportLongPath(group, name);
    return {Found::refused, DatasetId()};
  }
  // A name that begins with a slash, or is empty, still means a member of the group.
  const std::string member = "./" + name;
  return openDatasetAs(member.c_str(), group, name,
                       [&] { reportNoVector(member.c_str(), group, name); });
}

Opened<GroupId> SourceFile::openGroup(const OpenGroup& group, const char* subPath) {
  if (!group.fits(subPath)) {
    reportLongPath(group, subPath);
    return {Found::refused, GroupId()};
  }
  return opened(GroupId(H5Gopen2(group.id(), relativeName(subPath), groupAccess_.get())), group,
                subPath, [&] { reportUnopenable(group, subPath); });
}

Opened<AttributeId> SourceFile::openAttribute(const OpenGroup& group, const char* subPath,
                                              const char* name) {
  return opened(AttributeId(H5Aopen_by_name(group.id(), relativeName(subPath), name, H5P_DEFAULT,
                                            groupAccess_.get())),
                group, subPath, [&] { reportUnopenable(group, subPath); });
}

void SourceFile::add(Trouble trouble, const OpenGroup& group, std::string_view subPath,
                     const std::string& sentence) {
  // Before the next call of HDF5 takes it away. Where HDF5 was not the one to fail, what it says is
  // about something else that this read has met.
  std::string reason = isFailureOfHdf5(trouble) ? lastHdf5Reason() : std::string();
  std::string path = pathOf(group, subPath);
  std::string whole = path + " " + sentence;
  options_.diagnosis->add({trouble, std::move(path), std::move(whole), std::move(reason)});
}

}  // namespace orvml_io
