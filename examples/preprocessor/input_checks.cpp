#include "preprocessor/input_checks.h"

#include "exchange/check.h"

#include <fstream>

namespace orvml_examples {

namespace {

/// What stands in a text file of a mesh.
struct TextCounts {
  int blocks = 0;
  int nodeLines = 0;
  int elementLines = 0;
};

TextCounts countsIn(const std::string& textFile) {
  std::ifstream text(textFile);
  require(text.is_open(), textFile + " cannot be read");
  TextCounts counts;
  int* counted = nullptr;
  for (std::string line; std::getline(text, line);) {
    if (line.rfind("mesh dimension", 0) == 0) {
      ++counts.blocks;
    } else if (line == "coordinates") {
      counted = &counts.nodeLines;
    } else if (line == "elements") {
      counted = &counts.elementLines;
    } else if (line.rfind("end ", 0) == 0) {
      counted = nullptr;
    } else if (counted != nullptr) {
      ++*counted;
    }
  }
  return counts;
}

int numberOfGroups(const Mesh& mesh) {
  return static_cast<int>(mesh.edges.shapes.size() + mesh.faces.shapes.size());
}

}  // namespace

void requireEqualWhenReadBack(const Document& sent, const std::string& inputFile) {
  require(Document::readInput(inputFile).equalsInput(sent),
          inputFile + " reads back as another document than was written");
}

void printMeshAndRequireItWhole(const Document& document, const std::string& textFile) {
  document.printMesh(textFile);
  const TextCounts counts = countsIn(textFile);
  const Mesh mesh = document.mesh();
  require(counts.blocks == numberOfGroups(mesh), textFile + " lacks the block of a type group");
  require(counts.nodeLines == mesh.numberOfNodes(), textFile + " has not one line per node");
  // With more groups than one the text has other lines than the mesh has cells, by its own rule.
  const bool hasOneGroupEach = mesh.edges.shapes.size() == 1 && mesh.faces.shapes.size() == 1;
  require(!hasOneGroupEach || counts.elementLines == mesh.edges.count() + mesh.faces.count(),
          textFile + " has not one line per cell");
}

}  // namespace orvml_examples
