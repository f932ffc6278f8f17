#include "fuzz/documents/document_from_bytes.h"

#include "fuzz/harness/choice.h"

#include <climits>
#include <cmath>
#include <limits>

namespace orvml_io_tests {

namespace {

using Limits = std::numeric_limits<double>;

/// The bytes below this number stand for themselves.
constexpr unsigned kFirstSpecial = 240;

int intFrom(ByteSource& bytes) {
  constexpr int kSpecial[] = {INT_MIN, INT_MAX, -1, INT_MAX - 1};
  const unsigned byte = bytes.next();
  return byte < kFirstSpecial ? static_cast<int>(byte) : chosen(byte, kSpecial);
}

double doubleFrom(ByteSource& bytes) {
  static const double kSpecial[] = {-0.0,
                                    Limits::max(),
                                    Limits::lowest(),
                                    Limits::min(),
                                    Limits::denorm_min(),
                                    Limits::infinity(),
                                    -Limits::infinity(),
                                    Limits::quiet_NaN(),
                                    std::nan("0xabc"),
                                    -std::nan("0xbeef"),
                                    1.0 / 3.0,
                                    1e-15,
                                    2e-15};
  const unsigned byte = bytes.next();
  return byte < kFirstSpecial ? byte / 4.0 : chosen(byte, kSpecial);
}

std::vector<int> intsFrom(ByteSource& bytes, int count) {
  return filled(count, [&bytes] { return intFrom(bytes); });
}

std::vector<double> doublesFrom(ByteSource& bytes, int count) {
  return filled(count, [&bytes] { return doubleFrom(bytes); });
}

std::string identificationFrom(ByteSource& bytes) {
  static const std::string kTexts[] = {"ORVML_OCTREE_MESHER", "",  std::string(79, 't'),
                                       std::string(80, 't'),  "2", "OrvML_OCTREE_MESHER",
                                       "\xc3\xa9\xff",        " ", "ORVML_OCTREE_MESHER2"};
  return cutIdentification(chosen(bytes.next(), kTexts));
}

std::string nameFrom(ByteSource& bytes, const std::string& usual) {
  static const std::string kNames[] = {"a",
                                       "A",
                                       "B",
                                       "AB",
                                       std::string(79, 'n'),
                                       "..",
                                       "\xc3\xa9",
                                       " ",
                                       "0",
                                       "-1",
                                       "name with blanks",
                                       "",
                                       std::string(80, 'n'),
                                       std::string(1100, 'n')};
  return normalOr(kNames, bytes.next(), usual);
}

NamedVectors vectorsFrom(ByteSource& bytes) {
  constexpr int kCounts[] = {2, 0, 1, 3, 9};
  constexpr int kLengths[] = {3, 0, 1, 2, 40};
  NamedVectors vectors;
  const int count = chosen(bytes.next(), kCounts);
  for (int i = 0; i < count; ++i) {
    const std::string name = nameFrom(bytes, "vector" + std::to_string(i));
    const unsigned kind = bytes.next();
    const int length = chosen(bytes.next(), kLengths);
    NamedVector vector;
    vector.mustBeTransmitted = kind / 2 % 2 == 1;
    if (kind % 2 == 0) {
      vector.values = doublesFrom(bytes, length);
    } else {
      vector.values = intsFrom(bytes, length);
    }
    vectors[name] = vector;
  }
  return vectors;
}

/// Parameters know no flag.
NamedVectors parameterVectorsFrom(ByteSource& bytes) {
  NamedVectors vectors = vectorsFrom(bytes);
  for (auto& named : vectors) {
    named.second.mustBeTransmitted = false;
  }
  return vectors;
}

std::map<std::string, double> scalarsFrom(ByteSource& bytes) {
  constexpr int kCounts[] = {2, 0, 1, 11, 12, 15};
  std::map<std::string, double> scalars;
  const int count = chosen(bytes.next(), kCounts);
  for (int i = 0; i < count; ++i) {
    const std::string name = nameFrom(bytes, "scalar" + std::to_string(i));
    scalars[name] = doubleFrom(bytes);
  }
  return scalars;
}

std::optional<NodesModel> nodesFrom(ByteSource& bytes, int dimension) {
  constexpr int kCounts[] = {4, 0, 1, 2, 50};
  constexpr unsigned kNoContainer = 255;
  const unsigned choice = bytes.next();
  if (choice == kNoContainer) {
    return std::nullopt;
  }
  NodesModel nodes;
  nodes.count = chosen(choice, kCounts);
  nodes.coords = makeShared(doublesFrom(bytes, nodes.count * dimension));
  nodes.attributes = vectorsFrom(bytes);
  return nodes;
}

std::optional<CellsModel> cellsFrom(ByteSource& bytes) {
  constexpr int kGroupCounts[] = {1, 0, 2, 3};
  constexpr int kCellCounts[] = {2, 0, 1, 5};
  constexpr int kNodeCounts[] = {3, 0, 1, 2, 4, 8};
  constexpr unsigned kNoContainer = 255;
  const unsigned choice = bytes.next();
  if (choice == kNoContainer) {
    return std::nullopt;
  }
  std::vector<int> cellCounts;
  std::vector<int> nodeCounts;
  std::vector<ElemType> shapes;
  CellsModel cells;
  cells.groups = chosen(choice, kGroupCounts);
  for (int i = 0; i < cells.groups; ++i) {
    cellCounts.push_back(chosen(bytes.next(), kCellCounts));
    nodeCounts.push_back(chosen(bytes.next(), kNodeCounts));
    shapes.push_back(static_cast<ElemType>(intFrom(bytes)));
  }
  cells.cellsPerGroup = makeShared(cellCounts);
  cells.nodesPerCell = makeShared(nodeCounts);
  cells.shapes = makeShared(shapes);
  cells.connectivities = makeShared(intsFrom(bytes, cells.connectivityLength()));
  cells.count = bytes.choice(8) == 7 ? 4 : cells.cellsInGroups();
  cells.attributes = vectorsFrom(bytes);
  return cells;
}

}  // namespace

DocumentModel documentFrom(ByteSource& bytes) {
  constexpr int kDimensions[] = {3, 2, 1, 4, 0};
  DocumentModel document;
  document.moduleName = identificationFrom(bytes);
  document.moduleFormatVersion = identificationFrom(bytes);
  document.ioCreator = identificationFrom(bytes);
  document.dimension = chosen(bytes.next(), kDimensions);
  document.nodes = nodesFrom(bytes, document.dimension);
  for (const ORVML_TYPE_OF_ENTITY kind : kCellKinds) {
    if (std::optional<CellsModel> cells = cellsFrom(bytes)) {
      document.cells.emplace(kind, *cells);
    }
  }
  document.scalars = scalarsFrom(bytes);
  document.vectors = parameterVectorsFrom(bytes);
  return document;
}

}  // namespace orvml_io_tests
