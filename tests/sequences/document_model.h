#pragma once

#include "orvml_io.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvml_io_tests {

/// A mesh array: the values it must hold and where it lies. Two documents that adopted the same
/// array of the caller share it here as they do there.
template <class T>
struct Array {
  std::vector<T> values;
  T* address = nullptr;  // null until it is known
};
/// Null where a document has no array.
template <class T>
using Shared = std::shared_ptr<Array<T>>;

/// Makes an array that nothing else shares.
template <class T>
Shared<T> makeShared(std::vector<T> values) {
  return std::make_shared<Array<T>>(Array<T>{std::move(values), nullptr});
}

struct NamedVector {
  std::variant<std::vector<int>, std::vector<double>> values;
  bool mustBeTransmitted = false;
  void* block = nullptr;  // of the document; null until it is known

  [[nodiscard]] bool isInt() const { return values.index() == 0; }
  [[nodiscard]] int length() const;
};
/// A map compares names byte by byte, as documents do.
using NamedVectors = std::map<std::string, NamedVector>;

struct NodesModel {
  Shared<double> coords;
  int count = 0;
  NamedVectors attributes;
};

struct CellsModel {
  int count = 0;
  Shared<int> connectivities;
  int groups = 0;
  Shared<ElemType> shapes;
  Shared<int> nodesPerCell;
  Shared<int> cellsPerGroup;
  /// Whether clearing leaves the three group arrays alone. Decided when the container is made, and
  /// revoked for good by a setter of a single shape.
  bool keepsGroupArrays = true;
  NamedVectors attributes;

  /// The number of node indices that the groups claim.
  [[nodiscard]] int connectivityLength() const;
  /// The number of cells that the groups claim.
  [[nodiscard]] int cellsInGroups() const;
};

/// A pair of pointers that the library only keeps.
struct CallbackModel {
  void* first = nullptr;
  void* second = nullptr;
};

/// What a document must hold, in plain values. It follows the documented behaviour of the exported
/// functions and uses nothing of the library.
struct DocumentModel {
  bool isInput = true;
  bool ownsArrays = false;
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string ioCreator;
  int dimension = 0;
  std::optional<NodesModel> nodes;
  std::map<ORVML_TYPE_OF_ENTITY, CellsModel> cells;  // only the kinds that have a container
  std::map<std::string, double> scalars;
  NamedVectors vectors;
  CallbackModel statusCallback;
  CallbackModel errorCallback;

  [[nodiscard]] const CellsModel* cellsOf(ORVML_TYPE_OF_ENTITY entity) const;
  CellsModel* cellsOf(ORVML_TYPE_OF_ENTITY entity);
  /// The attributes of a kind; null without a container and for an unknown kind.
  [[nodiscard]] const NamedVectors* attributesOf(ORVML_TYPE_OF_ENTITY entity) const;
  NamedVectors* attributesOf(ORVML_TYPE_OF_ENTITY entity);
  /// The number of entities that attributes are made for; 0 without a container.
  [[nodiscard]] int countOf(ORVML_TYPE_OF_ENTITY entity) const;
};

inline constexpr ORVML_TYPE_OF_ENTITY kCellKinds[] = {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS};
inline constexpr ORVML_TYPE_OF_ENTITY kEveryKind[] = {ORVML_NODES, ORVML_EDGES, ORVML_FACES,
                                                      ORVML_ELEMENTS};

/// What an identification string keeps of a text.
std::string cutIdentification(const std::string& text);

/// What a deep copy of a document holds, in arrays and blocks of its own.
DocumentModel cloneOf(const DocumentModel& source, bool asInput);

}  // namespace orvml_io_tests
