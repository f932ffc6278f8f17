#pragma once

#include "values/fresh_memory.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

namespace orvml_io {

/// Releases a mesh array with array delete, unless it is borrowed: then its memory belongs to
/// somebody who keeps it longer, such as the mapped pages of a file.
template <class T>
struct DeleteArray {
  bool isBorrowed = false;
  void operator()(T* array) const noexcept {
    if (!isBorrowed) {
      delete[] array;
    }
  }
};

/// A mesh array, released with array delete: callers who clear a document of their own rely on it.
template <class T>
using NewArray = std::unique_ptr<T[], DeleteArray<T>>;

/// Makes an array of memory that belongs to somebody else, who keeps it as long as the array is
/// used. Nobody writes to it: it is not const because documents hold the arrays of callers alike.
template <class T>
NewArray<T> borrowedArray(const T* values) noexcept {
  return NewArray<T>(const_cast<T*>(values),  // NOLINT(*-pro-type-const-cast)
                     DeleteArray<T>{true});
}

/// Announces a block to the operation that it is made for; null when there is no other of it.
inline void willBeWrittenWhole(void* block, std::size_t bytes, FreshMemory* operation) noexcept {
  FreshMemory alone;
  (operation != nullptr ? *operation : alone).willBeWrittenWhole(block, bytes);
}

/// Allocates an array without touching it, all of whose values the caller sets and announces; a
/// count that is not positive gives an empty array.
template <class T>
NewArray<T> makeUntouchedArray(long long length) {
  return NewArray<T>(new T[length > 0 ? static_cast<std::size_t>(length) : 0]);
}

/// Allocates an array as above and announces it. An operation that makes several large arrays
/// passes what it has learned about fresh memory.
template <class T>
NewArray<T> makeNewArray(long long length, FreshMemory* operation = nullptr) {
  NewArray<T> array = makeUntouchedArray<T>(length);
  willBeWrittenWhole(array.get(), length > 0 ? static_cast<std::size_t>(length) * sizeof(T) : 0,
                     operation);
  return array;
}

/// Releases a data block with `free`, unless it is borrowed as above.
struct FreeBlock {
  bool isBorrowed = false;
  void operator()(void* block) const noexcept {
    if (!isBorrowed) {
      std::free(block);
    }
  }
};

/// A data block of a vector, released with `free`.
using MallocBlock = std::unique_ptr<void, FreeBlock>;

/// Makes a block of memory that belongs to somebody else, as above.
inline MallocBlock borrowedBlock(const void* values) noexcept {
  return MallocBlock(const_cast<void*>(values),  // NOLINT(*-pro-type-const-cast)
                     FreeBlock{true});
}

/// The bytes of a block of `length` values, of which an empty one has some too.
inline std::size_t bytesOfBlock(int length, std::size_t valueBytes) noexcept {
  return (length > 0 ? static_cast<std::size_t>(length) : 1) * valueBytes;
}

/// Allocates a block of `length` values without touching them, all of which the caller sets and
/// announces. It is never null, so that a caller can tell an empty vector from a missing one; a
/// negative length is taken as 0.
inline MallocBlock makeUntouchedBlock(int length, std::size_t valueBytes) {
  MallocBlock block(std::malloc(bytesOfBlock(length, valueBytes)));
  if (!block) {
    throw std::bad_alloc();
  }
  return block;
}

/// Allocates a block as above and announces it; the operation is passed as for arrays.
inline MallocBlock makeBlock(int length, std::size_t valueBytes, FreshMemory* operation = nullptr) {
  MallocBlock block = makeUntouchedBlock(length, valueBytes);
  willBeWrittenWhole(block.get(), bytesOfBlock(length, valueBytes), operation);
  return block;
}

/// Allocates a block as above, filled with zero bytes.
inline MallocBlock makeZeroedBlock(int length, std::size_t valueBytes) {
  MallocBlock block(std::calloc(length > 0 ? static_cast<std::size_t>(length) : 1, valueBytes));
  if (!block) {
    throw std::bad_alloc();
  }
  return block;
}

}  // namespace orvml_io
