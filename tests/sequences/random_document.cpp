#include "sequences/random_document.h"

namespace orvml_io_tests {

namespace {

/// Bytes that a name in a file may have: all but the terminator and the separator of paths.
char anyNameByte(Random& random) {
  const int byte = random.chance(60) ? random.between('a', 'z') : random.between(1, 255);
  return static_cast<char>(byte == '/' ? '_' : byte);
}

std::string anyBytes(Random& random, int length) {
  std::string text;
  for (int i = 0; i < length; ++i) {
    text += anyNameByte(random);
  }
  return text;
}

std::string anyMemberName(Random& random) {
  static const std::vector<int> lengths = {1, 2, 3, 10, 78, 79};
  std::string name = anyBytes(random, random.oneOf(lengths));
  return name == "." ? "dot" : name;  // a path that ends in a dot leads to the group itself
}

std::string anyIdentification(Random& random) {
  static const std::vector<int> lengths = {0, 1, 5, 78, 79};
  return anyBytes(random, random.oneOf(lengths));
}

NamedVectors anyVectors(Random& random, bool withFlags) {
  NamedVectors vectors;
  for (int count = random.below(4); count > 0; --count) {
    NamedVector vector;
    const int length = random.below(5);
    if (random.chance(50)) {
      vector.values = random.ints(length);
    } else {
      vector.values = random.doubles(length);
    }
    vector.mustBeTransmitted = withFlags && random.chance(50);
    vectors[anyMemberName(random)] = vector;
  }
  return vectors;
}

NodesModel anyNodes(Random& random, int dimension) {
  NodesModel nodes;
  nodes.count = random.between(1, 8);
  nodes.coords = makeShared(random.doubles(nodes.count * dimension));
  nodes.attributes = anyVectors(random, true);
  return nodes;
}

CellsModel anyCells(Random& random) {
  CellsModel cells = randomGroups(random);
  cells.connectivities = makeShared(random.ints(cells.connectivityLength()));
  cells.attributes = anyVectors(random, true);
  return cells;
}

}  // namespace

CellsModel randomGroups(Random& random) {
  std::vector<ElemType> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> cellsPerGroup;
  for (int group = random.below(5); group > 0; --group) {
    shapes.push_back(random.anyShape());
    nodesPerCell.push_back(random.below(5));
    cellsPerGroup.push_back(random.below(4));
  }
  CellsModel cells;
  cells.groups = static_cast<int>(shapes.size());
  cells.shapes = makeShared(std::move(shapes));
  cells.nodesPerCell = makeShared(std::move(nodesPerCell));
  cells.cellsPerGroup = makeShared(std::move(cellsPerGroup));
  cells.count = cells.cellsInGroups();
  return cells;
}

DocumentModel randomDocument(Random& random) {
  static int somewhere[4] = {};
  DocumentModel document;
  document.isInput = random.chance(50);
  document.moduleName = anyIdentification(random);
  document.moduleFormatVersion = anyIdentification(random);
  document.ioCreator = anyIdentification(random);
  document.dimension = random.between(2, 3);
  document.nodes = anyNodes(random, document.dimension);
  for (const ORVML_TYPE_OF_ENTITY entity : kCellKinds) {
    if (random.chance(80)) {
      document.cells.emplace(entity, anyCells(random));
    }
  }
  for (int count = random.between(1, 5); count > 0; --count) {
    document.scalars[anyMemberName(random)] = random.anyDouble();
  }
  document.vectors = anyVectors(random, false);
  if (document.isInput) {
    document.statusCallback = {&somewhere[0], &somewhere[1]};
    document.errorCallback = {&somewhere[2], &somewhere[3]};
  }
  return document;
}

}  // namespace orvml_io_tests
