#pragma once

#include <orvml/parallel/distribute.hpp>

#include <mpi.h>

#include <vector>

/// Steady conduction of heat through a part of linear tetrahedra.
namespace conduction {

/// A node whose temperature is held.
struct HeldNode {
  int node = 0;  ///< of the part, owned by this rank
  double temperature = 0;
};

struct Solution {
  std::vector<double> temperatures;  ///< of every node of the part
  double heatIn = 0;                 ///< what all held nodes together give to the body
  double heatOut = 0;                ///< what they take from it
  int iterations = 0;
};

/// Solves -div(grad T) = 0 with insulated surfaces wherever no node is held. Collective; PETSc must
/// have been started. Throws std::runtime_error, the same on all ranks, for other cells than linear
/// tetrahedra, and when PETSc does not converge.
Solution solve(MPI_Comm comm, const orvml::parallel::Part& part, const std::vector<HeldNode>& held);

}  // namespace conduction
