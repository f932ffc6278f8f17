#pragma once

#include "hdf5/array_reader.h"
#include "hdf5/diagnosis.h"
#include "hdf5/extents.h"
#include "hdf5/id.h"
#include "hdf5/kept_open.h"
#include "hdf5/open_group.h"
#include "hdf5/read_budget.h"
#include "values/fresh_memory.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orvml_io {

/// What opening something in a file came to. Each step of a reader maps it by a rule of its own.
enum class Found {
  object,   ///< it is open
  absent,   ///< there is nothing; a link that leads nowhere counts as nothing, in any file
  refused,  ///< a rule of ours keeps it out: it lies in another file, or its path is too long
  failed    ///< there is something, and HDF5 cannot open it as what it should be
};

/// What was found, and its identifier when it is open.
template <class Id>
struct Opened {
  Found found = Found::absent;
  Id id;

  [[nodiscard]] bool isObject() const noexcept { return found == Found::object; }
  [[nodiscard]] bool isRefused() const noexcept { return found == Found::refused; }
};

/// What a read does beyond what the contract of the flat functions says. All is borrowed.
struct ReadOptions {
  Diagnosis* diagnosis = nullptr;  ///< who is told of trouble
  ArrayReader* arrays = nullptr;   ///< who is asked for large arrays first
  /// Takes the identifiers that stay open by contract otherwise.
  ClosedAtTheEnd* closedAtTheEnd = nullptr;
  /// Whether the must-be-transmitted flags are looked for where writers put them; see
  /// readMustBeTransmitted() in value_datasets.cpp.
  bool takesFlagsOfMembers = false;
  /// Whether arrays are refused of which the file does not store every value: no zeros stand for
  /// what is lost.
  bool takesStoredValuesOnly = false;
  /// Whether positional attributes whose name would be empty, which no present file can hold, get
  /// the one of a position without a name.
  bool namesEveryAttribute = false;
};

/// One read of a file: what it may still take, who is told of trouble, and the rule that everything
/// comes from that file. What a link or a storage description draws from another one is refused, so
/// that a file from outside cannot make a process read the files of its user. That is an external
/// link to a file that exists, also behind soft links, external raw storage and virtual datasets.
class SourceFile {
 public:
  /// Borrows the file, and the diagnosis when there is one. Implicit, because readers are handed
  /// HDF5's own identifier.
  SourceFile(hid_t file, Diagnosis* diagnosis = nullptr) noexcept;
  SourceFile(hid_t file, const ReadOptions& options) noexcept;
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;
  SourceFile(SourceFile&&) = delete;
  SourceFile& operator=(SourceFile&&) = delete;
  ~SourceFile() = default;

  [[nodiscard]] bool valid() const noexcept { return file_ >= 0; }
  [[nodiscard]] hid_t id() const noexcept { return file_; }
  [[nodiscard]] OpenGroup root() const noexcept { return {file_, 0}; }

  /// A dataset that is refused because of its storage alone is open all the same: its extent may be
  /// asked for, its values may not.
  [[nodiscard]] Opened<DatasetId> openDataset(const OpenGroup& group, const char* subPath);
  /// Opens a dataset by the name of its link.
  [[nodiscard]] Opened<DatasetId> openMember(const OpenGroup& group, const std::string& name);
  [[nodiscard]] Opened<GroupId> openGroup(const OpenGroup& group, const char* subPath);
  /// Opens an attribute of the object at a sub-path, whatever its kind.
  [[nodiscard]] Opened<AttributeId> openAttribute(const OpenGroup& group, const char* subPath,
                                                  const char* name);

  /// Lets go of an identifier that stays open by contract, as keepOpen() does, unless the options
  /// say who closes it.
  template <herr_t (*Close)(hid_t)>
  hid_t keepOpen(OwnedId<Close> id, KeptOpen why) {
    return options_.closedAtTheEnd != nullptr ? options_.closedAtTheEnd->add(std::move(id))
                                              : orvml_io::keepOpen(std::move(id), why);
  }

  /// Who is asked for large arrays first; null for nobody.
  [[nodiscard]] ArrayReader* arrays() const noexcept { return options_.arrays; }

  [[nodiscard]] bool takesFlagsOfMembers() const noexcept { return options_.takesFlagsOfMembers; }
  [[nodiscard]] bool namesEveryAttribute() const noexcept { return options_.namesEveryAttribute; }

  /// Takes what reading an object costs from what the read may still take. Returns whether it
  /// could; else nothing was taken.
  [[nodiscard]] bool affords(const OpenGroup& group, std::string_view subPath,
                             const ReadCost& cost) {
    return isStored(group, subPath, cost) &&
           (budget_.take(cost) || isRefusedAsTooMuch(group, subPath));
  }

  /// Tells whether a cost could be taken, without taking it.
  [[nodiscard]] bool couldAfford(const OpenGroup& group, std::string_view subPath,
                                 const ReadCost& cost) {
    return isStored(group, subPath, cost) &&
           (budget_.covers(cost) || isRefusedAsTooMuch(group, subPath));
  }

  /// What was learned about the memory of large arrays while others of this read were made.
  [[nodiscard]] FreshMemory* freshMemory() noexcept { return &freshMemory_; }

  /// Tells the diagnosis, when there is one, of an object below a group.
  ///
  /// @param subPath   a sub-path, or the name of a member, which brings no slash
  /// @param sentence  a function that gives what is said of the object: what follows its path
  template <class Sentence>
  void report(Trouble trouble, const OpenGroup& group, std::string_view subPath,
              Sentence sentence) {
    if (options_.diagnosis != nullptr) {
      add(trouble, group, subPath, sentence());
    }
  }

  /// Reports an object that a document should have and lacks. What could not be opened has been
  /// reported by then.
  void reportIfAbsent(Found found, const OpenGroup& group, std::string_view subPath) {
    if (found == Found::absent) {
      report(Trouble::missing, group, subPath, [] { return "is missing"; });
    }
  }

 private:
  /// Told by HDF5 before it follows an external link; see source_file.cpp.
  struct LinkWatch {
    bool wasMet = false;
    bool leadsToAFile = false;
  };

  /// @param reportUnopenable  called when something is there and could not be opened
  template <class Id, class ReportUnopenable>
  [[nodiscard]] Opened<Id> opened(Id id, const OpenGroup& group, std::string_view subPath,
                                  ReportUnopenable reportUnopenable);
  template <class ReportUnopenable>
  [[nodiscard]] Opened<DatasetId> openDatasetAs(const char* relativeName, const OpenGroup& group,
                                                std::string_view subPath,
                                                ReportUnopenable reportUnopenable);
  void reportUnopenable(const OpenGroup& group, std::string_view subPath);
  /// Reports a member of a group of vectors that cannot be opened as one: another kind of object
  /// may stand there.
  void reportNoVector(const char* relativeName, const OpenGroup& group, std::string_view name);
  /// Tells whether an array may lack what the file does not store of it; reports it otherwise.
  [[nodiscard]] bool isStored(const OpenGroup& group, std::string_view subPath,
                              const ReadCost& cost);
  /// Reports the object. Returns false.
  [[nodiscard]] bool isRefusedAsTooMuch(const OpenGroup& group, std::string_view subPath);
  void reportLongPath(const OpenGroup& group, std::string_view subPath);
  void add(Trouble trouble, const OpenGroup& group, std::string_view subPath,
           const std::string& sentence);

  hid_t file_;
  ReadOptions options_;
  ReadBudget budget_;
  FreshMemory freshMemory_;
  LinkWatch watch_;  // before the lists that point to it
  PropertyListId datasetAccess_;
  PropertyListId groupAccess_;  // also that of links, of whose lists it is one
};

}  // namespace orvml_io
