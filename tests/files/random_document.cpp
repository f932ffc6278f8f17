#include "files/random_document.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace orvml_io_tests {

namespace {

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  /// A number from 0 to `end` - 1. The standard's distributions differ between libraries.
  int below(int end) { return static_cast<int>(engine_() % static_cast<unsigned>(end)); }

  int anyInt() { return static_cast<int>(engine_()); }

  double anyDouble() {
    const std::uint64_t bits = (std::uint64_t{engine_()} << 32U) | engine_();
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
  }

  std::vector<int> ints(int count) {
    std::vector<int> values;
    for (int i = 0; i < count; ++i) {
      values.push_back(anyInt());
    }
    return values;
  }

  std::vector<double> doubles(int count) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
      values.push_back(anyDouble());
    }
    return values;
  }

  /// A name of 1 to 79 bytes of any value that a link can have. It begins with the index, so that
  /// no two names of a store are the same.
  std::string name(int index) {
    std::string text = std::to_string(index);
    for (int length = below(79); length > 0 && text.size() < 79; --length) {
      const char byte = static_cast<char>(1 + below(255));
      text.push_back(byte == '/' ? '_' : byte);
    }
    return text;
  }

 private:
  std::mt19937 engine_;
};

void addAttributes(Dice& dice, BuiltDocument& document, ORVML_TYPE_OF_ENTITY entity) {
  const int count = dice.below(4);
  for (int i = 0; i < count; ++i) {
    const bool flagged = dice.below(2) == 0;
    if (dice.below(2) == 0) {
      document.attribute(entity, dice.name(i).c_str(), dice.ints(dice.below(7)), flagged);
    } else {
      document.attribute(entity, dice.name(i).c_str(), dice.doubles(dice.below(7)), flagged);
    }
  }
}

void addCells(Dice& dice, BuiltDocument& document, ORVML_TYPE_OF_ENTITY entity) {
  std::vector<ElemType> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> cellsPerGroup;
  int indices = 0;
  for (int group = dice.below(4); group > 0; --group) {
    shapes.push_back(static_cast<ElemType>(dice.below(13) - 1));
    nodesPerCell.push_back(dice.below(9));
    cellsPerGroup.push_back(dice.below(5));
    indices += nodesPerCell.back() * cellsPerGroup.back();
  }
  // One index more than is used, so that the array is never null.
  document.cells(entity, shapes, nodesPerCell, cellsPerGroup, dice.ints(indices + 1));
  addAttributes(dice, document, entity);
}

void addParameters(Dice& dice, BuiltDocument& document) {
  const int scalars = dice.below(15);
  for (int i = 0; i < scalars; ++i) {
    document.scalar(dice.name(i).c_str(), dice.anyDouble());
  }
  const int vectors = dice.below(4);
  for (int i = 0; i < vectors; ++i) {
    if (dice.below(2) == 0) {
      document.vector(dice.name(i).c_str(), dice.ints(dice.below(7)));
    } else {
      document.vector(dice.name(i).c_str(), dice.doubles(dice.below(7)));
    }
  }
}

}  // namespace

BuiltDocument randomDocument(unsigned seed) {
  Dice dice(seed);
  const int dimension = 2 + dice.below(2);
  BuiltDocument document =
      dice.below(2) == 0 ? BuiltDocument::input(dimension) : BuiltDocument::output(dimension);
  document.identification(dice.name(0).c_str(), dice.name(1).c_str(), dice.name(2).c_str());
  document.nodes(dice.doubles(dimension * dice.below(10)));
  addAttributes(dice, document, ORVML_NODES);
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    addCells(dice, document, entity);
  }
  addParameters(dice, document);
  return document;
}

}  // namespace orvml_io_tests
