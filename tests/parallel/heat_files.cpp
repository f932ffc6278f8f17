// The files of the test of the example: makes a bar of tetrahedra, in which heat flows from one end
// to the other, and checks the temperatures that were found in it.
//
//   heat_files make FILE | heat_files check FILE SOLVED
#include <orvml/load.hpp>
#include <orvml/save.hpp>

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

namespace {

using orvml::Entity;

constexpr int kAcross = 3;
constexpr int kAlong = 12;

int nodeAt(int x, int y, int z) { return (z * (kAcross + 1) + y) * (kAcross + 1) + x; }

std::vector<double> coordinates() {
  std::vector<double> values;
  for (int z = 0; z <= kAlong; ++z) {
    for (int y = 0; y <= kAcross; ++y) {
      for (int x = 0; x <= kAcross; ++x) {
        values.insert(values.end(), {1.0 * x, 1.0 * y, 0.5 * z});
      }
    }
  }
  return values;
}

/// Six tetrahedra for each cube, all with its diagonal.
std::vector<int> tetrahedra() {
  constexpr std::array<std::array<int, 2>, 6> kMiddles = {
      {{1, 3}, {3, 2}, {2, 6}, {6, 4}, {4, 5}, {5, 1}}};
  std::vector<int> indices;
  for (int cube = 0; cube < kAcross * kAcross * kAlong; ++cube) {
    const auto corner = [cube](int bits) {
      return nodeAt(cube % kAcross + bits % 2, cube / kAcross % kAcross + bits / 2 % 2,
                    cube / kAcross / kAcross + bits / 4);
    };
    for (const auto& [a, b] : kMiddles) {
      indices.insert(indices.end(), {corner(0), corner(a), corner(b), corner(7)});
    }
  }
  return indices;
}

int make(const char* path) {
  orvml::Output bar({"EXAMPLE", "1", "heat_files"}, 3);
  bar.setNodes(coordinates());
  bar.setCells(Entity::elements, orvml::Shape::tetrahedron, 4, tetrahedra());
  orvml::save(path, bar);
  return 0;
}

/// Along a bar the temperature falls evenly, and linear elements give it without an error.
int check(const char* path, const char* solvedPath) {
  const orvml::Output bar = orvml::loadOutput(path);
  const orvml::Output solved = orvml::loadOutput(solvedPath);
  const orvml::NodesView nodes = solved.nodes();
  const auto found = nodes.attributes().at("EXAMPLE_NODES_SOLVED_TEMPERATURE").doubles();
  if (nodes.size() != bar.nodes().size() ||
      found.size() != static_cast<std::size_t>(nodes.size())) {
    std::puts("the solved file has other nodes");
    return 1;
  }
  for (int i = 0; i < nodes.size(); ++i) {
    const double expected = 100 - 80 * nodes[i][2] / (0.5 * kAlong);
    if (!(std::abs(found[static_cast<std::size_t>(i)] - expected) < 1e-7)) {
      std::printf("node %d has %.12g, not %.12g\n", i, found[static_cast<std::size_t>(i)],
                  expected);
      return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 3 && std::string_view(argv[1]) == "make") {
      return make(argv[2]);
    }
    if (argc == 4 && std::string_view(argv[1]) == "check") {
      return check(argv[2], argv[3]);
    }
  } catch (const std::exception& error) {
    std::puts(error.what());
  }
  return 1;
}
