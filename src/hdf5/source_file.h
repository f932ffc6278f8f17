#pragma once

#include "hdf5/id.h"
#include "hdf5/kept_open.h"
#include "hdf5/path.h"
#include "values/fresh_memory.h"

#include <string>
#include <vector>

namespace orvml_io {

/// A file that is read, and the rule that everything read comes from that file: what a link or a
/// storage description draws from another one is refused, so that a file from outside cannot make
/// a process read the files of its user.
///
/// Refused are external links, also behind soft links, external raw storage and virtual datasets.
/// They cannot be told from a missing object by the identifier alone; `hasRefused` tells.
class SourceFile {
 public:
  /// Borrows the file. Implicit, because readers are handed HDF5's own identifier.
  SourceFile(hid_t file) noexcept;
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;
  SourceFile(SourceFile&&) = delete;
  SourceFile& operator=(SourceFile&&) = delete;
  ~SourceFile() = default;

  [[nodiscard]] bool valid() const noexcept { return file_ >= 0; }
  [[nodiscard]] hid_t id() const noexcept { return file_; }

  /// Tells whether anything that was asked for came from another file.
  [[nodiscard]] bool hasRefused() const noexcept { return hasRefused_; }

  [[nodiscard]] DatasetId tryOpenDataset(const char* path) const noexcept;
  [[nodiscard]] DatasetId tryOpenDataset(const Path& path) const noexcept {
    return tryOpenDataset(path.c_str());
  }
  /// Opens a dataset by the name of its link in an open group.
  [[nodiscard]] DatasetId tryOpenMember(hid_t group, const std::string& name) const;
  [[nodiscard]] GroupId tryOpenGroup(const Path& path) const noexcept;
  /// Opens a group that stays open by contract. Returns whether it could be opened. Everything
  /// below it is looked up from there from then on, which spares the way from the root.
  [[nodiscard]] bool tryKeepGroup(const Path& path, KeptOpen why) const;
  [[nodiscard]] AttributeId tryOpenAttribute(const char* objectPath,
                                             const char* name) const noexcept;

  /// The large arrays that are made for what is read from the file.
  [[nodiscard]] FreshMemory* freshMemory() const noexcept { return &freshMemory_; }

  /// The same object as an absolute path names, as seen from the nearest group that is kept open.
  struct Place {
    hid_t location;
    const char* path;
  };
  [[nodiscard]] Place placeOf(const char* path) const noexcept;

 private:
  struct KeptGroup {
    std::string path;
    hid_t id;
  };

  [[nodiscard]] DatasetId tryOpenDataset(const Place& place) const noexcept;

  hid_t file_;
  mutable std::vector<KeptGroup> keptGroups_;  // a group comes after the ones around it
  mutable bool hasRefused_ = false;  // HDF5's callback sets it while an object is being opened
  mutable FreshMemory freshMemory_;
  PropertyListId datasetAccess_;
  PropertyListId groupAccess_;  // also that of links, of whose lists it is one
};

}  // namespace orvml_io
