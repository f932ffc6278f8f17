// The comparison of two documents: IsEqual of the document, the nodes, the elements and the vector
// store.
//
// Stores are compared from the first side: what only the second side holds is not looked at.
#include "model/document.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace orvml_io {

namespace {

/// Two doubles are different when they are further apart than this, in the caller's unit. Only a
/// larger difference counts, so NaN equals everything.
constexpr double kTolerance = 1e-15;

bool areClose(double a, double b) noexcept { return !(std::fabs(a - b) > kTolerance); }

/// Whole blocks are compared without a branch, which compilers turn into vector instructions where
/// the length is fixed; the first difference ends the comparison at the end of its block.
constexpr long long kBlockLength = 256;

bool blocksEqual(const double* a, const double* b) noexcept {
  long long different = 0;
  for (long long i = 0; i < kBlockLength; ++i) {
    different |= areClose(a[i], b[i]) ? 0LL : 1LL;
  }
  return different == 0;
}

bool valuesEqual(const double* a, const double* b, long long length) noexcept {
  if (length < kBlockLength) {
    return std::equal(a, a + length, b, areClose);
  }
  const long long lastBlock = length - kBlockLength;  // overlaps the one before it
  for (long long start = 0; start < lastBlock; start += kBlockLength) {
    if (!blocksEqual(a + start, b + start)) {
      return false;
    }
  }
  return blocksEqual(a + lastBlock, b + lastBlock);
}

template <class T>
bool valuesEqual(const T* a, const T* b, long long length) noexcept {
  return std::equal(a, a + length, b);
}

/// Arrays that may be missing: two missing ones are equal, a missing one equals nothing else.
template <class T>
bool arraysEqual(const T* a, const T* b, long long length) noexcept {
  if (a == nullptr || b == nullptr) {
    return a == b;
  }
  return valuesEqual(a, b, length);
}

bool groupsEqual(const Elems& a, const Elems& b) noexcept {
  const int groups = a.numberOfElementTypes;
  return arraysEqual(a.elementTypes, b.elementTypes, groups) &&
         arraysEqual(a.numberOfElementsByType, b.numberOfElementsByType, groups) &&
         arraysEqual(a.numberOfNodesByElement, b.numberOfNodesByElement, groups);
}

bool connectivitiesEqual(const Elems& a, const Elems& b) noexcept {
  const long long length = a.connectivityLength();
  return length == 0 || arraysEqual(a.connectivities, b.connectivities, length);
}

/// Walks through the other side of a comparison, in the same order of names as the first side.
/// Stores that are alike are compared in one pass, without a search for every name.
template <class Store>
class Counterparts {
 public:
  explicit Counterparts(const Store& store) noexcept : next_(store.begin()), end_(store.end()) {}

  /// The value of a name, which must be larger than the ones before; null when it is absent.
  auto of(const std::string& name) -> decltype(&std::declval<const Store&>().begin()->second) {
    int order = -1;
    while (next_ != end_ && (order = next_->first.compare(name)) < 0) {
      ++next_;
    }
    return next_ != end_ && order == 0 ? &next_->second : nullptr;
  }

 private:
  decltype(std::declval<const Store&>().begin()) next_;
  decltype(std::declval<const Store&>().begin()) end_;
};

using Entry = OML_AttributesVector::Entry;

long long bytesOf(const Entry& entry) noexcept {
  const std::size_t valueBytes = entry.code == kIntCode ? sizeof(int) : sizeof(double);
  return entry.length * static_cast<long long>(valueBytes);
}

/// Contract: the other entry's values are read in this entry's type, whatever its own. Values that
/// would lie behind the end of its block differ.
template <class T>
bool entryValuesEqual(const Entry& entry, const Entry& other) noexcept {
  if (entry.length * static_cast<long long>(sizeof(T)) > bytesOf(other)) {
    return false;
  }
  return valuesEqual(static_cast<const T*>(entry.data), static_cast<const T*>(other.data),
                     entry.length);
}

bool entriesEqual(const Entry& entry, const Entry* other) noexcept {
  if (other == nullptr || other->data == nullptr || other->length != entry.length) {
    return false;
  }
  return entry.code == kIntCode ? entryValuesEqual<int>(entry, *other)
                                : entryValuesEqual<double>(entry, *other);
}

/// A missing container and an empty one count as the same.
bool nodesEqual(const Nodes* a, const Nodes* b, int dimension) {
  if (a != nullptr && b != nullptr) {
    return a->IsEqual(b, dimension);
  }
  const Nodes* present = a != nullptr ? a : b;
  return present == nullptr || present->numberOfNodes == 0;
}

bool elemsEqual(const Elems* a, const Elems* b) {
  if (a != nullptr && b != nullptr) {
    return a->IsEqual(b);
  }
  const Elems* present = a != nullptr ? a : b;
  return present == nullptr || present->numberOfElements == 0;
}

}  // namespace

bool OML_AttributesVector::IsEqual(const OML_AttributesVector& other) const {
  Counterparts counterparts(other);
  return std::all_of(begin(), end(), [&counterparts](const auto& named) {
    const auto& [name, entry] = named;
    const bool isCompared = entry.code == kIntCode || entry.code == kDoubleCode;
    return !isCompared || entriesEqual(entry, counterparts.of(name));
  });
}

bool Nodes::IsEqual(const Nodes* other, int dimension) const {
  if (numberOfNodes != other->numberOfNodes) {
    return false;
  }
  // A side may hold fewer values than its count says: the count of a document that owns its arrays
  // can be raised, and coordinates that failed to read are missing.
  const long long length = heldCoordinates(dimension);
  return length == other->heldCoordinates(dimension) &&
         (length == 0 || valuesEqual(coords, other->coords, length)) &&
         attributes.IsEqual(other->attributes);
}

bool Elems::IsEqual(const Elems* other) const {
  if (numberOfElements != other->numberOfElements ||
      numberOfElementTypes != other->numberOfElementTypes) {
    return false;
  }
  return (numberOfElementTypes < 1 ||
          (groupsEqual(*this, *other) && connectivitiesEqual(*this, *other))) &&
         attributes.IsEqual(other->attributes);
}

int OrvInputAndOrvOutput::ParametersAreEqual(const OrvInputAndOrvOutput* other) const {
  if (parametersScalar.count() != other->parametersScalar.count()) {
    return 0;
  }
  // Contract: a name that the other side lacks reads as 0.0 there, and vector parameters are not
  // compared, so that a module may add vectors of its own.
  Counterparts counterparts(other->parametersScalar);
  const bool areEqual = std::all_of(
      parametersScalar.begin(), parametersScalar.end(), [&counterparts](const auto& parameter) {
        const double* otherValue = counterparts.of(parameter.first);
        return areClose(parameter.second, otherValue == nullptr ? 0.0 : *otherValue);
      });
  return areEqual ? 1 : 0;
}

bool OrvInputAndOrvOutput::IsEqual(const OrvInputAndOrvOutput* other) const {
  return meshDimension == other->meshDimension && nodesEqual(nodes, other->nodes, meshDimension) &&
         elemsEqual(edges, other->edges) && elemsEqual(faces, other->faces) &&
         elemsEqual(elements, other->elements) && ParametersAreEqual(other) == 1;
}

bool OrvInputAndOrvOutput::AreEqual(const OrvInputAndOrvOutput* a, const OrvInputAndOrvOutput* b) {
  if (a != nullptr && b != nullptr) {
    return a->IsEqual(b);
  }
  const OrvInputAndOrvOutput* present = a != nullptr ? a : b;
  return present == nullptr || present->meshDimension == 0;
}

}  // namespace orvml_io
