#include "support/documents.h"

#include <cmath>
#include <numeric>
#include <span>
#include <utility>
#include <variant>

namespace orvml_parallel_tests {

namespace {

using orvml::Entity;
using orvml::Output;
using orvml::Shape;

constexpr orvml::Identification kIdentification = {"ORVML_OCTREE_MESHER", "1.0", "parallel tests"};

std::vector<double> coordinatesOf(int x, int y, int z) {
  std::vector<double> coordinates;
  for (int k = 0; k <= z; ++k) {
    for (int j = 0; j <= y; ++j) {
      for (int i = 0; i <= x; ++i) {
        coordinates.insert(coordinates.end(), {i * 0.5, j + 0.25 * i, k - 0.125 * j});
      }
    }
  }
  return coordinates;
}

std::vector<int> hexahedraOf(int x, int y, int z) {
  std::vector<int> indices;
  const auto node = [x, y](int i, int j, int k) { return (k * (y + 1) + j) * (x + 1) + i; };
  for (int k = 0; k < z; ++k) {
    for (int j = 0; j < y; ++j) {
      for (int i = 0; i < x; ++i) {
        for (const int up : {0, 1}) {
          indices.insert(indices.end(), {node(i, j, k + up), node(i + 1, j, k + up),
                                         node(i + 1, j + 1, k + up), node(i, j + 1, k + up)});
        }
      }
    }
  }
  return indices;
}

std::vector<int> bottomOf(int x, int y) {
  std::vector<int> indices;
  for (int j = 0; j < y; ++j) {
    for (int i = 0; i < x; ++i) {
      const int first = j * (x + 1) + i;
      indices.insert(indices.end(), {first, first + x + 1, first + x + 2, first + 1});
    }
  }
  return indices;
}

std::vector<int> lineOf(int x) {
  std::vector<int> indices;
  for (int i = 0; i < x; ++i) {
    indices.insert(indices.end(), {i, i + 1});
  }
  return indices;
}

void addAttributes(Output& document, Entity entity, int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 1000 * static_cast<int>(entity));
  std::vector<double> waves;
  for (int i = 0; i < count; ++i) {
    waves.push_back(std::sin(i + static_cast<double>(entity)));
  }
  document.setAttribute(entity, "number", std::move(numbers), orvml::Transmission::mandatory);
  document.setAttribute(entity, "wave", std::move(waves));
}

void addParameters(Output& document) {
  document.setParameter("size", 0.25);
  document.setParameter("depth", -0.0);
  document.setVectorParameter("layers", std::vector<int>{3, 5, 7});
  document.setVectorParameter("nothing", std::vector<double>{});
}

/// What one rank sees of all: its values put behind those of the ranks before it.
template <class Value>
std::vector<Value> gatheredAs(std::span<const Value> values, MPI_Datatype type) {
  int size = 0;
  MPI_Comm_size(MPI_COMM_WORLD, &size);
  const int mine = static_cast<int>(values.size());
  std::vector<int> counts(static_cast<std::size_t>(size));
  MPI_Allgather(&mine, 1, MPI_INT, counts.data(), 1, MPI_INT, MPI_COMM_WORLD);
  std::vector<int> places(counts.size());
  std::exclusive_scan(counts.begin(), counts.end(), places.begin(), 0);
  std::vector<Value> all(static_cast<std::size_t>(places.back() + counts.back()));
  MPI_Allgatherv(values.data(), mine, type, all.data(), counts.data(), places.data(), type,
                 MPI_COMM_WORLD);
  return all;
}

std::vector<int> gatheredSpan(std::span<const int> values) {
  return gatheredAs<int>(values, MPI_INT);
}
std::vector<double> gatheredSpan(std::span<const double> values) {
  return gatheredAs<double>(values, MPI_DOUBLE);
}

/// Puts the attributes of cells together group by group, as the whole document has them.
template <class Value>
std::vector<Value> gatheredByGroup(std::span<const Value> values, const orvml::CellsView& cells) {
  std::vector<Value> all;
  std::size_t next = 0;
  for (const orvml::CellGroup& group : cells.groups()) {
    const auto count = static_cast<std::size_t>(group.size());
    const std::vector<Value> ofGroup = gatheredSpan(values.subspan(next, count));
    all.insert(all.end(), ofGroup.begin(), ofGroup.end());
    next += count;
  }
  return all;
}

void assembleCells(const orvml::parallel::Slice& slice, const orvml::CellsView& cells,
                   Entity entity, Output& whole) {
  std::vector<orvml::GroupSize> sizes;
  std::vector<int> indices;
  const auto groups = slice.groups(entity);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    sizes.push_back({groups[i].shape, groups[i].nodesPerCell, static_cast<int>(groups[i].cells)});
    const std::vector<int> ofGroup = gatheredSpan(cells.groups()[i].nodeIndices());
    indices.insert(indices.end(), ofGroup.begin(), ofGroup.end());
  }
  if (slice.total(entity) == 0) {
    return;
  }
  whole.setCells(entity, sizes, std::move(indices));
  for (const orvml::Attribute& attribute : cells.attributes()) {
    const auto transmission = attribute.mustBeTransmitted ? orvml::Transmission::mandatory
                                                          : orvml::Transmission::optional;
    std::visit(
        [&](auto values) {
          whole.setAttribute(entity, attribute.name, gatheredByGroup(values, cells), transmission);
        },
        attribute.values);
  }
}

void assembleNodes(const orvml::NodesView& nodes, Output& whole) {
  std::vector<double> coordinates = gatheredSpan(nodes.coordinates());
  if (coordinates.empty()) {
    return;
  }
  whole.setNodes(std::move(coordinates));
  for (const orvml::Attribute& attribute : nodes.attributes()) {
    const auto transmission = attribute.mustBeTransmitted ? orvml::Transmission::mandatory
                                                          : orvml::Transmission::optional;
    std::visit(
        [&](auto values) {
          whole.setAttribute(Entity::nodes, attribute.name, gatheredSpan(values), transmission);
        },
        attribute.values);
  }
}

}  // namespace

Output boxOf(int x, int y, int z) {
  Output document(kIdentification, 3);
  document.setNodes(coordinatesOf(x, y, z));
  document.setCells(Entity::elements, Shape::hexahedron, 8, hexahedraOf(x, y, z));
  document.setCells(Entity::faces, Shape::quadrilateral, 4, bottomOf(x, y));
  document.setCells(Entity::edges, Shape::line, 2, lineOf(x));
  addAttributes(document, Entity::nodes, (x + 1) * (y + 1) * (z + 1));
  addAttributes(document, Entity::elements, x * y * z);
  addAttributes(document, Entity::faces, x * y);
  addAttributes(document, Entity::edges, x);
  addParameters(document);
  return document;
}

Output mixedShapes() {
  Output document(kIdentification, 3);
  document.setNodes(coordinatesOf(3, 2, 1));  // 24 nodes in two layers of 12
  document.setCells(Entity::elements,
                    {{Shape::tetrahedron, 4, 3},
                     {Shape::hexahedron, 8, 1},
                     {Shape::prism, 6, 2},
                     {Shape::tetrahedron, 4, 2},
                     {Shape::pyramid, 5, 1}},
                    std::vector<int>{2,  3,  6,  14, 3,  7,  6, 18, 3,  15, 14, 18, 0, 1, 5,
                                     4,  12, 13, 17, 16, 1,  2, 5,  13, 14, 17, 2,  6, 5, 14,
                                     18, 17, 6,  7,  11, 18, 6, 11, 10, 18, 4,  5,  9, 8, 16});
  document.setCells(Entity::faces, {{Shape::triangle, 3, 3}, {Shape::quadrilateral, 4, 2}},
                    std::vector<int>{2, 3, 6, 3, 7, 6, 6, 7, 11, 0, 1, 5, 4, 4, 5, 9, 8});
  addAttributes(document, Entity::nodes, 24);
  addAttributes(document, Entity::elements, 9);
  addAttributes(document, Entity::faces, 5);
  addParameters(document);
  return document;
}

Output withoutMesh() {
  Output document(kIdentification, 2);
  addParameters(document);
  return document;
}

Output withoutCells() {
  Output document(kIdentification, 2);
  document.setNodes(std::vector<double>{0, 0, 1, 0, 1, 1});
  addAttributes(document, Entity::nodes, 3);
  return document;
}

Output oneCell() {
  Output document(kIdentification, 2);
  document.setNodes(std::vector<double>{0, 0, 1, 0, 1, 1});
  document.setCells(Entity::faces, Shape::triangle, 3, std::vector<int>{0, 1, 2});
  addAttributes(document, Entity::faces, 1);
  return document;
}

Output cellsWithoutNodes() {
  Output document(kIdentification, 2);
  document.setNodes(std::vector<double>{0, 0, 1, 0, 1, 1});
  document.setCells(Entity::elements, {{Shape::point, 0, 15}, {Shape::tetrahedron, 4, 0}},
                    std::vector<int>{});
  document.setCells(Entity::edges, Shape::line, 2, std::vector<int>{0, 1, 1, 2});
  addAttributes(document, Entity::elements, 15);
  return document;
}

std::vector<NamedDocument> documents() {
  return {{"without mesh", withoutMesh},
          {"without cells", withoutCells},
          {"one cell", oneCell},
          {"cells without nodes", cellsWithoutNodes},
          {"mixed shapes", mixedShapes},
          {"small box", [] { return boxOf(2, 1, 1); }},
          {"box", [] { return boxOf(9, 8, 7); }}};
}

Output assembled(const orvml::parallel::Slice& slice) {
  const orvml::DocumentView view = slice.view();
  Output whole(view.identification(), view.dimension());
  assembleNodes(view.nodes(), whole);
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    assembleCells(slice, view.cells(entity), entity, whole);
  }
  for (const orvml::Parameter& parameter : view.parameters()) {
    whole.setParameter(parameter.name, parameter.value);
  }
  for (const orvml::Attribute& vector : view.vectorParameters()) {
    std::visit(
        [&](auto values) {
          whole.setVectorParameter(vector.name, std::vector(values.begin(), values.end()));
        },
        vector.values);
  }
  return whole;
}

std::vector<int> gathered(const std::vector<int>& values) { return gatheredSpan(values); }

std::vector<double> gathered(const std::vector<double>& values) { return gatheredSpan(values); }

}  // namespace orvml_parallel_tests
