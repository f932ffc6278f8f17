#pragma once

#include "sequences/document_model.h"
#include "sequences/random.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

namespace orvml_io_tests {

/// The memory that is the caller's: the arrays that documents adopt, and what the library leaves
/// allocated. It lives longer than the documents, expects that nothing was written to it, and
/// releases it in the end; a sanitizer sees what was released twice or not at all.
class CallerMemory {
 public:
  CallerMemory() = default;
  CallerMemory(const CallerMemory&) = delete;
  CallerMemory& operator=(const CallerMemory&) = delete;
  CallerMemory(CallerMemory&&) = delete;
  CallerMemory& operator=(CallerMemory&&) = delete;
  ~CallerMemory();

  /// Puts values into an array made with new[], as clearing functions need it.
  template <class T>
  Shared<T> makeArray(std::vector<T> values) {
    Shared<T> array = makeShared(std::move(values));
    array->address = new T[array->values.size()];
    std::copy(array->values.begin(), array->values.end(), array->address);
    arrays<T>().push_back(array);
    return array;
  }

  /// Takes over an array that the library made and left allocated.
  template <class T>
  void take(const Shared<T>& array) {
    if (array != nullptr) {
      arrays<T>().push_back(array);
    }
  }

  /// Takes over a block that the library made and left allocated.
  void take(const NamedVector& vector) { blocks_.push_back(vector); }
  void take(const NamedVectors& vectors);

  template <class T>
  [[nodiscard]] bool owns(const Shared<T>& array) const {
    const auto& all = std::get<std::vector<Shared<T>>>(arrays_);
    return std::find(all.begin(), all.end(), array) != all.end();
  }

  /// Tells whether a document may release an array: the library's own, or one of the caller that
  /// nothing else uses.
  template <class T>
  [[nodiscard]] bool mayBeReleased(const Shared<T>& array) const {
    constexpr long kHereAndInOneDocument = 2;
    return array == nullptr || !owns(array) || array.use_count() == kHereAndInOneDocument;
  }

  /// Forgets an array that the library has released.
  template <class T>
  void forget(const Shared<T>& array) {
    auto& all = arrays<T>();
    all.erase(std::remove(all.begin(), all.end(), array), all.end());
  }

  /// An array that was made here before, perhaps for another document; null when there is none.
  template <class T>
  Shared<T> anyArray(Random& random) {
    return arrays<T>().empty() ? nullptr : random.oneOf(arrays<T>());
  }

  /// Expects that the library wrote to nothing of this.
  void expectUntouched() const;

 private:
  template <class T>
  std::vector<Shared<T>>& arrays() {
    return std::get<std::vector<Shared<T>>>(arrays_);
  }

  std::tuple<std::vector<Shared<int>>, std::vector<Shared<ElemType>>, std::vector<Shared<double>>>
      arrays_;
  std::vector<NamedVector> blocks_;
};

/// Tells whether values lie at an address, bit by bit: a NaN with its payload is the same as itself
/// here, and -0.0 is not 0.0.
template <class T>
bool holds(const T* address, const std::vector<T>& values) {
  const void* expected = values.data();
  const void* found = address;
  return values.empty() || std::memcmp(found, expected, values.size() * sizeof(T)) == 0;
}

/// The same with the block of a vector.
bool holds(const void* block, const NamedVector& vector);

/// Writes a value into the block of a vector that is not empty, and into what is expected of it.
void writeIntoBlock(NamedVector& vector, Random& random);

}  // namespace orvml_io_tests
