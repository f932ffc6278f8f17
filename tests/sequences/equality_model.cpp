#include "sequences/equality_model.h"

#include <cstring>

namespace orvml_io_tests {

namespace {

constexpr double kTolerance = 1e-15;

/// Only a larger distance makes two numbers differ, so nothing differs from NaN.
bool differ(double a, double b) {
  const double distance = a > b ? a - b : b - a;
  return distance > kTolerance;
}
bool differ(int a, int b) { return a != b; }
bool differ(ElemType a, ElemType b) { return a != b; }

template <class T>
bool firstValuesDiffer(const T* a, const T* b, int count) {
  for (int i = 0; i < count; ++i) {
    if (differ(a[i], b[i])) {
      return true;
    }
  }
  return false;
}

/// A missing array is like another missing one alone.
template <class T>
bool arraysDiffer(const Shared<T>& a, const Shared<T>& b, int count) {
  if (count < 1) {
    return false;
  }
  if (a == nullptr || b == nullptr) {
    return a != b;
  }
  return firstValuesDiffer(a->values.data(), b->values.data(), count);
}

/// The values of a vector as their bytes, which another type may be read from.
std::vector<char> bytesOf(const NamedVector& vector) {
  return std::visit(
      [](const auto& values) {
        std::vector<char> bytes(values.size() * sizeof(values[0]));
        if (!bytes.empty()) {
          std::memcpy(bytes.data(), values.data(), bytes.size());
        }
        return bytes;
      },
      vector.values);
}

/// Compares a vector with another one, whose bytes are taken for values of the first one's type.
/// Values that would lie behind the end of the other one cannot be the same.
template <class T>
bool vectorsDiffer(const std::vector<T>& values, const NamedVector& other) {
  const std::vector<char> otherBytes = bytesOf(other);
  if (static_cast<int>(values.size()) != other.length() ||
      otherBytes.size() < values.size() * sizeof(T)) {
    return true;
  }
  std::vector<T> otherValues(values.size());
  if (!values.empty()) {
    std::memcpy(otherValues.data(), otherBytes.data(), values.size() * sizeof(T));
  }
  return firstValuesDiffer(values.data(), otherValues.data(), static_cast<int>(values.size()));
}

/// What only the second side holds is not looked at, nor are the flags.
bool attributesDiffer(const NamedVectors& first, const NamedVectors& second) {
  for (const auto& [name, vector] : first) {
    const auto found = second.find(name);
    if (found == second.end()) {
      return true;
    }
    const NamedVector& other = found->second;
    if (std::visit([&other](const auto& values) { return vectorsDiffer(values, other); },
                   vector.values)) {
      return true;
    }
  }
  return false;
}

bool contentDiffers(const NodesModel& a, const NodesModel& b, int dimension) {
  return arraysDiffer(a.coords, b.coords, dimension * a.count) ||
         attributesDiffer(a.attributes, b.attributes);
}

bool contentDiffers(const CellsModel& a, const CellsModel& b, int /*dimension*/) {
  return a.groups != b.groups || arraysDiffer(a.shapes, b.shapes, a.groups) ||
         arraysDiffer(a.cellsPerGroup, b.cellsPerGroup, a.groups) ||
         arraysDiffer(a.nodesPerCell, b.nodesPerCell, a.groups) ||
         arraysDiffer(a.connectivities, b.connectivities, a.connectivityLength()) ||
         attributesDiffer(a.attributes, b.attributes);
}

/// A missing container is like an empty one.
template <class Container>
bool containersDiffer(const Container* a, const Container* b, int dimension) {
  const int countOfA = a == nullptr ? 0 : a->count;
  const int countOfB = b == nullptr ? 0 : b->count;
  if (countOfA != countOfB) {
    return true;
  }
  return a != nullptr && b != nullptr && contentDiffers(*a, *b, dimension);
}

const NodesModel* nodesOf(const DocumentModel& document) {
  return document.nodes ? &*document.nodes : nullptr;
}

/// A name that the second side lacks reads as 0 there; vector parameters are not looked at.
bool scalarsDiffer(const DocumentModel& first, const DocumentModel& second) {
  if (first.scalars.size() != second.scalars.size()) {
    return true;
  }
  for (const auto& [name, value] : first.scalars) {
    const auto found = second.scalars.find(name);
    if (differ(value, found == second.scalars.end() ? 0.0 : found->second)) {
      return true;
    }
  }
  return false;
}

bool documentsDiffer(const DocumentModel& first, const DocumentModel& second) {
  if (first.dimension != second.dimension ||
      containersDiffer(nodesOf(first), nodesOf(second), first.dimension)) {
    return true;
  }
  for (const ORVML_TYPE_OF_ENTITY entity : kCellKinds) {
    if (containersDiffer(first.cellsOf(entity), second.cellsOf(entity), first.dimension)) {
      return true;
    }
  }
  return scalarsDiffer(first, second);
}

}  // namespace

bool areEqual(const DocumentModel* first, const DocumentModel* second) {
  if (first != nullptr && second != nullptr) {
    return !documentsDiffer(*first, *second);
  }
  const DocumentModel* present = first != nullptr ? first : second;
  return present == nullptr || present->dimension == 0;
}

}  // namespace orvml_io_tests
