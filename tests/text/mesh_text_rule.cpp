#include "text/mesh_text_rule.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {

namespace {

const char* nameOf(int shape) {
  switch (shape) {
    case 1:
      return "Linear";
    case 2:
      return "Triangle";
    case 3:
      return "Quadrilateral";
    case 4:
      return "Tetrahedra";
    case 5:
      return "Hexahedra";
    case 6:
      return "Prism";
    case 7:
      return "Point";
    case 8:
      return "Pyramid";
    case 9:
      return "Sphere";
    case 10:
      return "Circle";
    default:
      return "None";
  }
}

/// The value at a position; zero outside the array.
template <class T>
T valueAt(const std::vector<T>& values, long long position) {
  const auto size = static_cast<long long>(values.size());
  return position < 0 || position >= size ? T() : values[static_cast<std::size_t>(position)];
}

void printNodeLines(std::FILE* out, const Mesh& mesh) {
  const int d = mesh.dimension;
  const int total = mesh.numberOfNodes * d;
  for (int n = 1; d > 0 && (n - 1) * d < total; ++n) {
    const int first = (n - 1) * d;
    std::fprintf(out, "%d %f %f %f\n", n, valueAt(mesh.coordinates, first),
                 valueAt(mesh.coordinates, first + 1), valueAt(mesh.coordinates, first + 2));
  }
}

/// A node number is the index plus one, in 32 bits; zero where there is no index.
void printNodeNumber(std::FILE* out, const CellSet& cells, int position) {
  if (position < 0 || position >= static_cast<int>(cells.connectivities.size())) {
    std::fputs("0 ", out);
  } else if (valueAt(cells.connectivities, position) == INT_MAX) {
    std::fprintf(out, "%d ", INT_MIN);
  } else {
    std::fprintf(out, "%d ", valueAt(cells.connectivities, position) + 1);
  }
}

void printElementLines(std::FILE* out, const CellSet& cells, std::size_t group, int& position,
                       int& count) {
  const int k = cells.nodesPerCell[group];
  count = count + cells.cellsPerGroup[group];
  const int limit = count * k;
  int number = 1;
  for (int s = position; k > 0 && s < limit; s = s + k) {
    std::fprintf(out, "%d ", number++);
    for (int j = 0; j < k; ++j) {
      printNodeNumber(out, cells, s + j);
    }
    std::fprintf(out, "\n");
  }
  position = position + count;
}

void printBlocks(std::FILE* out, const Mesh& mesh) {
  bool nodesArePrinted = false;
  for (const auto& cells : mesh.cells) {
    int position = 0;
    int count = 0;
    for (std::size_t group = 0; cells && group < cells->shapes.size(); ++group) {
      std::fprintf(out, "mesh dimension = %d elemtype %s nNode = %d\n", mesh.dimension,
                   nameOf(cells->shapes[group]), cells->nodesPerCell[group]);
      std::fprintf(out, "coordinates\n");
      if (!nodesArePrinted) {
        printNodeLines(out, mesh);
        nodesArePrinted = true;
      }
      std::fprintf(out, "end coordinates\nelements\n");
      printElementLines(out, *cells, group, position, count);
      std::fprintf(out, "end elements\n");
    }
  }
}

}  // namespace

std::string textByTheRule(const Mesh& mesh) {
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* out = ::open_memstream(&buffer, &size);
  printBlocks(out, mesh);
  std::fclose(out);
  std::string text(buffer, size);
  std::free(buffer);
  return text;
}

}  // namespace orvml_io_tests
