#pragma once

#include "values/blocks.h"

#include <H5Ipublic.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>

namespace orvml_io {

class OpenGroup;   // src/hdf5/open_group.h
class SourceFile;  // src/hdf5/source_file.h

inline constexpr char kIntCode = 'i';
inline constexpr char kDoubleCode = 'd';

/// The code of a type of values.
template <class T>
[[nodiscard]] constexpr char codeOf() noexcept {
  static_assert(std::is_same_v<T, int> || std::is_same_v<T, double>,
                "vectors hold ints or doubles");
  return std::is_same_v<T, int> ? kIntCode : kDoubleCode;
}

/// Named vectors of ints or doubles in ascending byte-wise order of the names; files are written
/// and transmitted attributes are counted in that order.
///
/// Contract: the store does not release its data blocks when it is destroyed. Its owner decides:
/// the attribute blocks of a document whose arrays are the caller's stay valid after its deletion.
class OML_AttributesVector {
 public:
  struct Entry {
    void* data = nullptr;            // [length], from malloc; released by DeleteAll or Delete
    bool isBorrowed = false;         // whether the block is somebody else's and never released
    int length = 0;                  // number of values
    char code = 0;                   // kIntCode or kDoubleCode; 0 in an entry created empty
    bool mustBeTransmitted = false;  // whether the meshing module must send the vector back
  };
  using Entries = std::map<std::string, Entry, std::less<>>;

  /// Copies `n` values into a new block and makes it the entry of the name. Returns 0.
  ///
  /// Contract: the block of an entry that is replaced stays allocated, because a getter may have
  /// handed it out; a caller who wants it released deletes the name first.
  int Set(const char* name, const int* values, int n, bool mustBeTransmitted);
  int Set(const char* name, const double* values, int n, bool mustBeTransmitted);

  /// Does what Set does, with a block that the caller has filled with `n` values and hands over, or
  /// lends. The code is kIntCode or kDoubleCode.
  void SetBlock(const char* name, MallocBlock block, char code, int n, bool mustBeTransmitted);

  /// Does what Set does with `n` zeros and returns the new block. The code is kIntCode or
  /// kDoubleCode.
  void* SetZeros(const char* name, char code, int n, bool mustBeTransmitted);

  /// Removes the entry of a name and releases its block. Returns 0, also for an absent name.
  int Delete(const char* name);

  /// Replaces the content by copies of the other store's int and double entries, as a part of an
  /// operation that makes other large arrays (null: of none). Returns 0.
  ///
  /// Contract: the own entries are released first, so copying a store onto itself empties it.
  int CopyFromOther(const OML_AttributesVector& other, FreshMemory* operation = nullptr);

  /// Tells whether every entry of this store has an equal one in the other; see
  /// src/compare/equality.cpp.
  bool IsEqual(const OML_AttributesVector& other) const;

  /// Releases every block and removes all entries.
  void DeleteAll() noexcept;

  /// Writes the store as a group of datasets at a sub-path of another group, nothing when it is
  /// empty. Returns 0 or 1.
  [[nodiscard]] int HDF5Write(const OpenGroup& parent, const char* subPath) const;

  /// Adds the int and float datasets of a group to the store; a missing group adds nothing and is
  /// no error. Returns 1 when a member could not be read; the others are read all the same.
  [[nodiscard]] int HDF5Read(SourceFile& file, const OpenGroup& parent, const char* subPath);

  /// Returns the entry of a name, valid until the store changes; null when the name is absent.
  const Entry* find(std::string_view name) const;

  std::size_t count() const noexcept { return entries_.size(); }
  Entries::const_iterator begin() const noexcept { return entries_.begin(); }
  Entries::const_iterator end() const noexcept { return entries_.end(); }

 private:
  Entries entries_;
};

}  // namespace orvml_io
