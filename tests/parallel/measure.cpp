// Measures what each phase asks of MPI and of the system, for a box of hexahedra that grows with
// the number of ranks: the figures of docs/parallel.md.
//
//   mpiexec -n RANKS orvml_parallel_measure CELLS_PER_SIDE_AND_RANK FILE [ATTRIBUTES]
//
// ATTRIBUTES is the number of attributes that the nodes have, 1 when it is left out.
#include <orvml/parallel/distribute.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>

#include "support/calls.h"

#include <mpi.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using orvml::Entity;
using orvml_parallel_tests::Calls;
using orvml_parallel_tests::callsSoFar;

struct Box {
  std::array<long long, 3> cells;
  [[nodiscard]] long long nodes(std::size_t side) const { return cells[side] + 1; }
};

/// A box of as many cubes as there are ranks, as near to a cube as their number lets it be.
Box boxFor(int ranks, int side) {
  Box box = {{side, side, side}};
  int left = ranks;
  for (int factor = 2; left > 1; ++factor) {
    for (; left % factor == 0; left /= factor) {
      *std::min_element(box.cells.begin(), box.cells.end()) *= factor;
    }
  }
  return box;
}

/// What one rank has of the box, made without the rest of it.
struct Slice {
  std::vector<double> coordinates;
  std::vector<double> heat;
  std::vector<int> indices;
  std::vector<int> colours;

  Slice(const Box& box, int rank, int ranks) {
    const long long nodes = box.nodes(0) * box.nodes(1) * box.nodes(2);
    for (long long i = nodes * rank / ranks; i < nodes * (rank + 1) / ranks; ++i) {
      const auto x = static_cast<double>(i % box.nodes(0));
      const auto y = static_cast<double>(i / box.nodes(0) % box.nodes(1));
      const auto z = static_cast<double>(i / box.nodes(0) / box.nodes(1));
      coordinates.insert(coordinates.end(), {x, y, z});
      heat.push_back(x * y - z);
    }
    const long long cells = box.cells[0] * box.cells[1] * box.cells[2];
    for (long long i = cells * rank / ranks; i < cells * (rank + 1) / ranks; ++i) {
      addCell(box, i);
      colours.push_back(static_cast<int>(i % 7));
    }
  }

  [[nodiscard]] orvml::OutputView view(const std::vector<std::string>& names) const {
    orvml::DocumentParts parts;
    parts.identification = {"M", "1", "measure"};
    parts.dimension = 3;
    std::vector<orvml::Attribute> attributes;
    for (const std::string& name : names) {
      attributes.emplace_back(std::string_view(name), std::span<const double>(heat));
    }
    parts.nodes = orvml::NodesView(coordinates, 3, orvml::Attributes(std::move(attributes)));
    parts.elements = orvml::CellsView({orvml::CellGroup(orvml::Shape::hexahedron, 8, indices)},
                                      orvml::Attributes({{"colour", colours}}));
    return orvml::OutputView(parts);
  }

 private:
  void addCell(const Box& box, long long cell) {
    const long long x = cell % box.cells[0];
    const long long y = cell / box.cells[0] % box.cells[1];
    const long long z = cell / box.cells[0] / box.cells[1];
    for (const long long up : {0, 1}) {
      for (const auto& [right, back] : {std::array{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        const long long node = ((z + up) * box.nodes(1) + y + back) * box.nodes(0) + x + right;
        indices.push_back(static_cast<int>(node));
      }
    }
  }
};

/// The largest number of any rank.
double most(double value) {
  MPI_Allreduce(MPI_IN_PLACE, &value, 1, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);
  return value;
}

template <class Phase>
void measure(const char* name, const Phase& phase) {
  MPI_Barrier(MPI_COMM_WORLD);
  const Calls before = callsSoFar();
  const double start = MPI_Wtime();
  phase();
  const double seconds = MPI_Wtime() - start;
  const Calls calls = callsSoFar() - before;
  int rank = 0;
  int ranks = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  MPI_Comm_size(MPI_COMM_WORLD, &ranks);
  const double figures[] = {most(static_cast<double>(calls.collectives)),
                            most(static_cast<double>(calls.collectiveBytes)),
                            most(static_cast<double>(calls.bytesRead)),
                            most(static_cast<double>(calls.bytesWritten)),
                            most(static_cast<double>(calls.messages)),
                            most(static_cast<double>(calls.messageBytes)),
                            most(seconds)};
  if (rank == 0) {
    std::printf("%-24s %3d %6.0f %10.0f %10.0f %10.0f %6.0f %10.0f %8.3f\n", name, ranks,
                figures[0], figures[1], figures[2], figures[3], figures[4], figures[5], figures[6]);
  }
}

void run(int side, const char* path, int attributes) {
  int rank = 0;
  int ranks = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  MPI_Comm_size(MPI_COMM_WORLD, &ranks);
  const Slice made(boxFor(ranks, side), rank, ranks);
  std::vector<std::string> names;
  for (int i = 0; i < attributes; ++i) {
    names.push_back("heat " + std::to_string(i));
  }
  std::optional<orvml::parallel::Slice> slice;
  measure("save",
          [&] { orvml::parallel::save(MPI_COMM_WORLD, path, made.view(names), {.flush = false}); });
  measure("load", [&] { slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, path); });
  using orvml::parallel::Method;
  for (const auto& [name, method] : {std::pair("block", Method::block),
                                     {"coordinates", Method::coordinates},
                                     {"graph", Method::graph}}) {
    std::optional<orvml::parallel::Part> part;
    measure((std::string("distribute, ") + name).c_str(), [&] {
      part = orvml::parallel::distribute(MPI_COMM_WORLD, slice->view(), {method, true});
    });
    std::vector<double> values(part->globalNumbers(Entity::nodes).size());
    measure((std::string("exchange, ") + name).c_str(), [&] { part->exchangeNodes(values); });
  }
  const double nodes = static_cast<double>(slice->total(Entity::nodes)) / ranks;
  const double cells = static_cast<double>(slice->total(Entity::elements)) / ranks;
  if (rank == 0) {
    std::printf("share of a rank: %.0f nodes, %.0f cells, %.0f bytes\n", nodes, cells,
                nodes * (24 + 8 * attributes) + cells * 36);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int provided = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_MULTIPLE, &provided);
  try {
    if (argc >= 3) {
      run(std::atoi(argv[1]), argv[2], argc > 3 ? std::atoi(argv[3]) : 1);
    }
  } catch (const orvml::Error& error) {
    std::printf("%s: %s\n", error.what(), error.hdf5Reason().c_str());
    MPI_Abort(MPI_COMM_WORLD, 1);
  }
  return MPI_Finalize();
}
