// Solves the conduction of heat through the meshed part of an exchange file by many ranks, and
// writes the file anew with the temperatures as an attribute of its nodes:
//
//   mpiexec -n 4 solve_heat flange_output.h5 solved.h5
//
// The lowest nodes of the part are held at 100 degrees, the highest at 20.
#include <orvml/parallel/distribute.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>

#include "conduction.h"
#include "petsc_objects.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <span>
#include <vector>

namespace {

using orvml::Entity;
using orvml::parallel::Part;

constexpr double kHot = 100;
constexpr double kCold = 20;
constexpr char kAttribute[] = "EXAMPLE_NODES_SOLVED_TEMPERATURE";

std::vector<conduction::HeldNode> heldNodes(MPI_Comm comm, const Part& part) {
  const orvml::DocumentView view = part.view();
  double ends[] = {HUGE_VAL, HUGE_VAL};  // the lowest, and the highest with its sign turned
  for (int i = 0; i < part.ownedNodes(); ++i) {
    ends[0] = std::min(ends[0], view.nodes()[i][2]);
    ends[1] = std::min(ends[1], -view.nodes()[i][2]);
  }
  MPI_Allreduce(MPI_IN_PLACE, ends, 2, MPI_DOUBLE, MPI_MIN, comm);
  const double tolerance = 1e-9 * (-ends[1] - ends[0]);
  std::vector<conduction::HeldNode> held;
  for (int i = 0; i < part.ownedNodes(); ++i) {
    const double height = view.nodes()[i][2];
    if (height - ends[0] <= tolerance) {
      held.push_back({i, kHot});
    } else if (-ends[1] - height <= tolerance) {
      held.push_back({i, kCold});
    }
  }
  return held;
}

/// Returns whether no heat got lost between the held ends.
bool run(MPI_Comm comm, const char* input, const char* output) {
  const orvml::parallel::Slice slice = orvml::parallel::loadOutput(comm, input);
  const Part part = orvml::parallel::distribute(comm, slice.view());
  const conduction::Solution solution = conduction::solve(comm, part, heldNodes(comm, part));
  const std::vector<double> ofSlice =
      part.toSlice(Entity::nodes, std::span<const double>(solution.temperatures));
  orvml::parallel::save(comm, output,
                        withAttribute(slice.view(), Entity::nodes, {kAttribute, ofSlice}));

  int rank = 0;
  MPI_Comm_rank(comm, &rank);
  if (rank == 0) {
    std::printf("%lld nodes, %lld elements: %d iterations, heat in %.9g, out %.9g\n",
                static_cast<long long>(slice.total(Entity::nodes)),
                static_cast<long long>(slice.total(Entity::elements)), solution.iterations,
                solution.heatIn, solution.heatOut);
  }
  constexpr double kTolerance = 1e-6;
  return std::abs(solution.heatIn - solution.heatOut) <= kTolerance * solution.heatIn;
}

int runReported(MPI_Comm comm, const char* input, const char* output) {
  try {
    if (run(comm, input, output)) {
      return 0;
    }
    (void)std::fputs("solve_heat: what flows in does not flow out\n", stderr);
  } catch (const petsc::Failure& error) {
    (void)std::fprintf(stderr, "solve_heat: %s\n", error.what());
    MPI_Abort(comm, 1);
  } catch (const std::exception& error) {
    // Every rank has caught the same: one of them tells it.
    int rank = 0;
    MPI_Comm_rank(comm, &rank);
    if (rank == 0) {
      (void)std::fprintf(stderr, "solve_heat: %s\n", error.what());
    }
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kUsage = 2;
  if (argc < 3) {
    (void)std::fputs("usage: solve_heat INPUT OUTPUT [options of PETSc]\n", stderr);
    return kUsage;
  }
  if (PetscInitialize(&argc, &argv, nullptr, nullptr) != 0) {
    return 1;
  }
  const int status = runReported(MPI_COMM_WORLD, argv[1], argv[2]);
  return PetscFinalize() == 0 ? status : 1;
}
