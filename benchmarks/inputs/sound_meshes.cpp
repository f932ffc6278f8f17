#include "inputs/sound_meshes.h"

#include <orvml/orvml.hpp>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

namespace orvml_io_bench {

namespace {

using orvml::Entity;
using orvml::Shape;

// Corners of a cube in VTK's order, by the number that the bits of x, y and z make.
constexpr std::array<int, 8> kHexahedron = {0, 1, 3, 2, 4, 5, 7, 6};

/// The six tetrahedra around the diagonal of a cube.
constexpr std::array<std::array<int, 4>, 6> kTetrahedra = {
    {{0, 1, 3, 7}, {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 3, 2, 7}, {0, 6, 4, 7}, {0, 5, 1, 7}}};

/// The two prisms that a cut from y = 0, z = 0 to y = 1, z = 1 makes.
constexpr std::array<std::array<int, 6>, 2> kPrisms = {{{1, 7, 3, 0, 6, 2}, {1, 5, 7, 0, 4, 6}}};

/// The largest number of cubes along an edge of a block with at most so many nodes.
int cubesAlong(int mostNodes) {
  int cubes = 1;
  while ((cubes + 2LL) * (cubes + 2LL) * (cubes + 2LL) <= mostNodes) {
    ++cubes;
  }
  return cubes;
}

/// The arrays of a block, while they are made.
class Block {
 public:
  explicit Block(int cubes) : cubes_(cubes), line_(cubes + 1) {}

  [[nodiscard]] int nodes() const { return line_ * line_ * line_; }
  [[nodiscard]] int node(int x, int y, int z) const { return (z * line_ + y) * line_ + x; }

  /// Calls a function with the nodes of each cube, by the bits of x, y and z, of some layers.
  template <class Function>
  void forEachCube(int first, int step, Function function) const {
    for (int z = first; z < cubes_; z += step) {
      for (int y = 0; y < cubes_; ++y) {
        for (int x = 0; x < cubes_; ++x) {
          std::array<int, 8> corners = {};
          for (int bits = 0; bits < 8; ++bits) {
            corners[static_cast<std::size_t>(bits)] =
                node(x + (bits & 1), y + (bits >> 1 & 1), z + (bits >> 2));
          }
          function(corners);
        }
      }
    }
  }

  /// Each node is a little off its place, so that no two coordinates are alike.
  [[nodiscard]] std::vector<double> coordinates() const {
    std::mt19937 engine(1);
    const auto off = [&] { return 0.2 * static_cast<double>(engine()) / 4294967296.0 - 0.1; };
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(nodes()) * 3);
    for (int i = 0; i < nodes(); ++i) {
      const std::array<int, 3> place = {i % line_, i / line_ % line_, i / line_ / line_};
      for (const int axis : place) {
        const bool isOnBoundary = axis == 0 || axis == cubes_;
        values.push_back(axis + (isOnBoundary ? 0.0 : off()));
      }
    }
    return values;
  }

  /// Calls a function with the corners, by their places in a square that is seen from outside, of
  /// each square of the boundary: 00, 10, 01, 11 along the first and the second axis.
  template <class Function>
  void forEachBoundarySquare(Function function) const {
    for (int axis = 0; axis < 3; ++axis) {
      for (const bool isHigh : {false, true}) {
        for (int v = 0; v < cubes_; ++v) {
          for (int u = 0; u < cubes_; ++u) {
            function(axis, isHigh, squareAt(axis, isHigh ? cubes_ : 0, u, v), v);
          }
        }
      }
    }
  }

 private:
  /// u runs along the axis after the given one, v along the one after that.
  [[nodiscard]] std::array<int, 4> squareAt(int axis, int at, int u, int v) const {
    std::array<int, 4> corners = {};
    for (int bits = 0; bits < 4; ++bits) {
      std::array<int, 3> place = {};
      place[static_cast<std::size_t>(axis)] = at;
      place[static_cast<std::size_t>((axis + 1) % 3)] = u + (bits & 1);
      place[static_cast<std::size_t>((axis + 2) % 3)] = v + (bits >> 1);
      corners[static_cast<std::size_t>(bits)] = node(place[0], place[1], place[2]);
    }
    return corners;
  }

  int cubes_;
  int line_;
};

void append(std::vector<int>& indices, std::initializer_list<int> nodes) {
  indices.insert(indices.end(), nodes);
}

template <class Corners>
void append(std::vector<int>& indices, const std::array<int, 8>& cube, const Corners& corners) {
  for (const int corner : corners) {
    indices.push_back(cube[static_cast<std::size_t>(corner)]);
  }
}

struct Arrays {
  std::vector<double> coordinates;
  std::vector<orvml::GroupSize> elementGroups;
  std::vector<int> elements;
  std::vector<orvml::GroupSize> faceGroups;
  std::vector<int> faces;
};

orvml::GroupSize groupOf(Shape shape, int width, std::size_t indices) {
  return {shape, width, static_cast<int>(indices) / width};
}

Arrays tetrahedra(const Block& block) {
  Arrays mesh{block.coordinates(), {}, {}, {}, {}};
  block.forEachCube(0, 1, [&](const std::array<int, 8>& cube) {
    for (const auto& corners : kTetrahedra) {
      append(mesh.elements, cube, corners);
    }
  });
  block.forEachBoundarySquare([&](int, bool isHigh, const std::array<int, 4>& c, int) {
    if (isHigh) {
      append(mesh.faces, {c[0], c[1], c[3], c[0], c[3], c[2]});
    } else {
      append(mesh.faces, {c[0], c[3], c[1], c[0], c[2], c[3]});
    }
  });
  mesh.elementGroups = {groupOf(Shape::tetrahedron, 4, mesh.elements.size())};
  mesh.faceGroups = {groupOf(Shape::triangle, 3, mesh.faces.size())};
  return mesh;
}

/// The boundary of prisms across x is cut, as they are; z is the second axis after x.
void addBoundaryOfMixed(const Block& block, Arrays& mesh) {
  std::vector<int> quadrilaterals;
  block.forEachBoundarySquare([&](int axis, bool isHigh, const std::array<int, 4>& c, int v) {
    const bool isOfPrisms = axis == 0 && v % 2 == 1;
    if (isOfPrisms && isHigh) {
      append(mesh.faces, {c[0], c[1], c[3], c[0], c[3], c[2]});
    } else if (isOfPrisms) {
      append(mesh.faces, {c[0], c[3], c[1], c[0], c[2], c[3]});
    } else if (isHigh) {
      append(quadrilaterals, {c[0], c[1], c[3], c[2]});
    } else {
      append(quadrilaterals, {c[0], c[2], c[3], c[1]});
    }
  });
  mesh.faceGroups = {groupOf(Shape::triangle, 3, mesh.faces.size()),
                     groupOf(Shape::quadrilateral, 4, quadrilaterals.size())};
  mesh.faces.insert(mesh.faces.end(), quadrilaterals.begin(), quadrilaterals.end());
}

Arrays mixed(const Block& block) {
  Arrays mesh{block.coordinates(), {}, {}, {}, {}};
  block.forEachCube(
      0, 2, [&](const std::array<int, 8>& cube) { append(mesh.elements, cube, kHexahedron); });
  mesh.elementGroups = {groupOf(Shape::hexahedron, 8, mesh.elements.size())};
  const std::size_t ofHexahedra = mesh.elements.size();
  block.forEachCube(1, 2, [&](const std::array<int, 8>& cube) {
    for (const auto& corners : kPrisms) {
      append(mesh.elements, cube, corners);
    }
  });
  mesh.elementGroups.push_back(groupOf(Shape::prism, 6, mesh.elements.size() - ofHexahedra));
  addBoundaryOfMixed(block, mesh);
  return mesh;
}

/// Gives the nodes and the elements of a mesh of tetrahedra other numbers.
void shuffle(Arrays& mesh) {
  std::mt19937 engine(2);
  std::vector<int> numbers(mesh.coordinates.size() / 3);
  std::iota(numbers.begin(), numbers.end(), 0);
  std::shuffle(numbers.begin(), numbers.end(), engine);
  const std::vector<double> places = mesh.coordinates;
  for (std::size_t node = 0; node < numbers.size(); ++node) {
    std::copy_n(&places[3 * node], 3,
                &mesh.coordinates[3 * static_cast<std::size_t>(numbers[node])]);
  }
  for (auto* indices : {&mesh.elements, &mesh.faces}) {
    for (int& node : *indices) {
      node = numbers[static_cast<std::size_t>(node)];
    }
  }
  for (std::size_t cell = mesh.elements.size() / 4; cell-- > 1;) {
    const std::size_t other = engine() % (cell + 1);
    std::swap_ranges(&mesh.elements[4 * cell], &mesh.elements[4 * cell] + 4,
                     &mesh.elements[4 * other]);
  }
}

Arrays arraysOf(SoundMesh kind, const Block& block) {
  if (kind == SoundMesh::mixed) {
    return mixed(block);
  }
  Arrays mesh = tetrahedra(block);
  if (kind == SoundMesh::shuffledTetrahedra) {
    shuffle(mesh);
  }
  return mesh;
}

}  // namespace

std::int64_t writeSoundMesh(const std::string& path, SoundMesh kind, int mostNodes) {
  const Block block(cubesAlong(mostNodes));
  Arrays mesh = arraysOf(kind, block);
  orvml::Input document({"ORVML_OCTREE_MESHER", "1.0", "benchmark"}, 3);
  document.setNodes(std::move(mesh.coordinates));
  document.setCells(Entity::faces, mesh.faceGroups, std::move(mesh.faces));
  document.setCells(Entity::elements, mesh.elementGroups, std::move(mesh.elements));
  const auto cells = static_cast<std::size_t>(document.elements().size());
  document.setAttribute(Entity::nodes, "size",
                        std::vector<double>(static_cast<std::size_t>(block.nodes()), 1.0));
  document.setAttribute(Entity::elements, "color", std::vector<int>(cells, 1));
  orvml::SaveOptions options;
  options.flush = false;
  orvml::save(path, document, options);
  return document.elements().size();
}

}  // namespace orvml_io_bench
