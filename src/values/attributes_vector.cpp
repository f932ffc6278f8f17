#include "values/attributes_vector.h"

#include <cstring>
#include <iterator>
#include <utility>

namespace orvml_io {

namespace {

template <class T>
MallocBlock copyToBlock(const T* values, int n, FreshMemory* operation = nullptr) {
  MallocBlock block = makeBlock(n, sizeof(T), operation);
  if (n > 0) {
    std::memcpy(block.get(), values, static_cast<std::size_t>(n) * sizeof(T));
  }
  return block;
}

/// Copies the values of an entry; null when their type is unknown.
MallocBlock copyOf(const OML_AttributesVector::Entry& entry, FreshMemory* operation) {
  switch (entry.code) {
    case kIntCode:
      return copyToBlock(static_cast<const int*>(entry.data), entry.length, operation);
    case kDoubleCode:
      return copyToBlock(static_cast<const double*>(entry.data), entry.length, operation);
    default:
      return nullptr;
  }
}

/// The entry of a name, created empty when there is none. Names often come in their order: the end
/// is looked at before the tree is searched.
OML_AttributesVector::Entry& entryOf(OML_AttributesVector::Entries& entries,
                                     std::string_view name) {
  const bool isLast = entries.empty() || std::prev(entries.end())->first < name;
  const auto position = isLast ? entries.end() : entries.lower_bound(name);
  const bool isFound = position != entries.end() && position->first == name;
  return isFound ? position->second
                 : entries.emplace_hint(position, name, OML_AttributesVector::Entry())->second;
}

/// Hands a block over to the entry of a name. The entry is made first, so that nothing can fail
/// once the block has left its owner.
void* store(OML_AttributesVector::Entries& entries, const char* name, MallocBlock block, char code,
            int n, bool mustBeTransmitted) {
  OML_AttributesVector::Entry& entry = entryOf(entries, name);
  entry.isBorrowed = block.get_deleter().isBorrowed;
  entry.data = block.release();
  entry.length = n > 0 ? n : 0;
  entry.code = code;
  entry.mustBeTransmitted = mustBeTransmitted;
  return entry.data;
}

/// Takes the block of an entry that goes away.
MallocBlock blockOf(const OML_AttributesVector::Entry& entry) noexcept {
  return MallocBlock(entry.data, FreeBlock{entry.isBorrowed});
}

}  // namespace

int OML_AttributesVector::Set(const char* name, const int* values, int n, bool mustBeTransmitted) {
  store(entries_, name, copyToBlock(values, n), kIntCode, n, mustBeTransmitted);
  return 0;
}

int OML_AttributesVector::Set(const char* name, const double* values, int n,
                              bool mustBeTransmitted) {
  store(entries_, name, copyToBlock(values, n), kDoubleCode, n, mustBeTransmitted);
  return 0;
}

void OML_AttributesVector::SetBlock(const char* name, MallocBlock block, char code, int n,
                                    bool mustBeTransmitted) {
  store(entries_, name, std::move(block), code, n, mustBeTransmitted);
}

void* OML_AttributesVector::SetZeros(const char* name, char code, int n, bool mustBeTransmitted) {
  const std::size_t valueBytes = code == kIntCode ? sizeof(int) : sizeof(double);
  return store(entries_, name, makeZeroedBlock(n, valueBytes), code, n, mustBeTransmitted);
}

int OML_AttributesVector::Delete(const char* name) {
  const auto found = entries_.find(std::string_view(name));
  if (found != entries_.end()) {
    const MallocBlock released = blockOf(found->second);
    entries_.erase(found);
  }
  return 0;
}

int OML_AttributesVector::CopyFromOther(const OML_AttributesVector& other, FreshMemory* operation) {
  DeleteAll();
  for (const auto& [name, entry] : other) {
    if (MallocBlock block = copyOf(entry, operation)) {
      SetBlock(name.c_str(), std::move(block), entry.code, entry.length, entry.mustBeTransmitted);
    }
  }
  return 0;
}

void OML_AttributesVector::DeleteAll() noexcept {
  for (auto& named : entries_) {
    const MallocBlock released = blockOf(named.second);
  }
  entries_.clear();
}

const OML_AttributesVector::Entry* OML_AttributesVector::find(std::string_view name) const {
  const auto found = entries_.find(name);
  return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace orvml_io
