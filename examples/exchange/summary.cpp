#include "exchange/summary.h"

#include "exchange/geometry.h"

#include <iomanip>
#include <iostream>
#include <string>

namespace orvml_examples {

namespace {

std::ostream& line(const char* label) {
  constexpr int kLabel = 8;
  return std::cout << "  " << std::left << std::setw(kLabel) << label;
}

void printCells(const char* kind, const Cells& cells) {
  if (cells.shapes.empty()) {
    return;
  }
  line(kind) << ' ' << cells.count() << ':';
  for (std::size_t group = 0; group < cells.shapes.size(); ++group) {
    std::cout << ' ' << cells.cellsPerGroup[group] << ' ' << ElemTypeNames[cells.shapes[group]];
  }
  std::cout << '\n';
}

}  // namespace

void printCounts(const char* title, const Identification& identification, const Mesh& mesh) {
  std::cout << title << " for " << identification.moduleName << ' '
            << identification.moduleFormatVersion << " by \"" << identification.creator << "\"\n";
  line("nodes") << ' ' << mesh.numberOfNodes() << '\n';
  printCells("edges", mesh.edges);
  printCells("faces", mesh.faces);
  printCells("elements", mesh.elements);
  line("box");
  for (const double limit : boundingBox(mesh.coordinates)) {
    std::cout << ' ' << limit;
  }
  std::cout << '\n';
}

}  // namespace orvml_examples
