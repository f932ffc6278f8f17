#include "conduction.h"

#include <orvml/parallel/together.hpp>

#include "petsc_objects.h"

#include <array>
#include <cmath>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>

namespace conduction {

namespace {

using orvml::Entity;
using orvml::parallel::Part;
using petsc::require;

constexpr std::size_t kCorners = 4;
using Point = std::array<double, 3>;
using ElementMatrix = std::array<double, kCorners * kCorners>;

Point minus(std::span<const double> a, std::span<const double> b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// The volume times the products of the gradients of the four shape functions. The gradient of one
/// is the normal of the face opposite its corner, by its area over three times the volume.
ElementMatrix conductanceOf(std::span<const int> cell, const orvml::NodesView& nodes) {
  const Point a = minus(nodes[cell[1]], nodes[cell[0]]);
  const Point b = minus(nodes[cell[2]], nodes[cell[0]]);
  const Point c = minus(nodes[cell[3]], nodes[cell[0]]);
  const double sixVolumes = dot(a, cross(b, c));
  std::array<Point, kCorners> gradients = {Point(), cross(b, c), cross(c, a), cross(a, b)};
  for (std::size_t i = 0; i < 3; ++i) {
    gradients[0][i] = -gradients[1][i] - gradients[2][i] - gradients[3][i];
  }
  ElementMatrix matrix;
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    matrix[i] = dot(gradients[i / kCorners], gradients[i % kCorners]) / (6 * std::abs(sixVolumes));
  }
  return matrix;
}

void requireTetrahedra(const orvml::CellsView& cells) {
  for (const orvml::CellGroup& group : cells.groups()) {
    if (group.shape() != orvml::Shape::tetrahedron || group.nodesPerCell() != int{kCorners}) {
      throw std::runtime_error("the mesh has elements that are no linear tetrahedra");
    }
  }
}

/// The row of each node of the part: the rows of a rank are those of the nodes that it owns, and it
/// hears of the others from their owners.
std::vector<int> rowsOf(MPI_Comm comm, const Part& part) {
  const int owned = part.ownedNodes();
  int first = 0;
  MPI_Exscan(&owned, &first, 1, MPI_INT, MPI_SUM, comm);
  int rank = 0;
  MPI_Comm_rank(comm, &rank);
  std::vector<int> rows(part.globalNumbers(Entity::nodes).size());
  std::iota(rows.begin(), rows.begin() + owned, rank == 0 ? 0 : first);
  part.exchangeNodes(rows);
  return rows;
}

/// Adds up the elements. Rows of nodes that another rank owns are PETSc's to send there.
petsc::Matrix conductance(MPI_Comm comm, const Part& part, std::span<const int> rows) {
  constexpr int kMostNeighbours = 64;  // room for them; rows with more take longer
  petsc::Matrix matrix;
  require(MatCreateAIJ(comm, part.ownedNodes(), part.ownedNodes(), PETSC_DETERMINE, PETSC_DETERMINE,
                       kMostNeighbours, nullptr, kMostNeighbours, nullptr, matrix.put()));
  require(MatSetOption(matrix.get(), MAT_NEW_NONZERO_ALLOCATION_ERR, PETSC_FALSE));
  const orvml::DocumentView view = part.view();
  for (const orvml::CellGroup& group : view.elements().groups()) {
    for (const std::span<const int> cell : group.cells()) {
      const ElementMatrix values = conductanceOf(cell, view.nodes());
      std::array<int, kCorners> cellRows = {};
      for (std::size_t i = 0; i < kCorners; ++i) {
        cellRows[i] = rows[static_cast<std::size_t>(cell[i])];
      }
      require(MatSetValues(matrix.get(), kCorners, cellRows.data(), kCorners, cellRows.data(),
                           values.data(), ADD_VALUES));
    }
  }
  require(MatAssemblyBegin(matrix.get(), MAT_FINAL_ASSEMBLY));
  require(MatAssemblyEnd(matrix.get(), MAT_FINAL_ASSEMBLY));
  return matrix;
}

std::vector<double> ownedValues(const petsc::Vector& vector) {
  int size = 0;
  const double* values = nullptr;
  require(VecGetLocalSize(vector.get(), &size));
  require(VecGetArrayRead(vector.get(), &values));
  std::vector<double> copy(values, values + size);
  require(VecRestoreArrayRead(vector.get(), &values));
  return copy;
}

/// Solves the system in which the held nodes have their temperatures. Returns the iterations.
int solveHeld(MPI_Comm comm, const petsc::Matrix& conductances, std::span<const int> rows,
              const std::vector<HeldNode>& held, petsc::Vector& temperatures) {
  petsc::Matrix matrix;
  petsc::Vector right;
  require(MatDuplicate(conductances.get(), MAT_COPY_VALUES, matrix.put()));
  require(VecDuplicate(temperatures.get(), right.put()));
  std::vector<int> heldRows;
  for (const HeldNode& node : held) {
    heldRows.push_back(rows[static_cast<std::size_t>(node.node)]);
    require(VecSetValue(temperatures.get(), heldRows.back(), node.temperature, INSERT_VALUES));
  }
  require(VecAssemblyBegin(temperatures.get()));
  require(VecAssemblyEnd(temperatures.get()));
  require(MatZeroRowsColumns(matrix.get(), static_cast<int>(heldRows.size()), heldRows.data(), 1.0,
                             temperatures.get(), right.get()));
  petsc::Solver solver;
  constexpr double kRelative = 1e-12;
  require(KSPCreate(comm, solver.put()));
  require(KSPSetOperators(solver.get(), matrix.get(), matrix.get()));
  require(KSPSetType(solver.get(), KSPCG));
  PC preconditioner = nullptr;  // the solver's
  require(KSPGetPC(solver.get(), &preconditioner));
  require(PCSetType(preconditioner, PCJACOBI));
  require(KSPSetTolerances(solver.get(), kRelative, PETSC_DEFAULT, PETSC_DEFAULT, PETSC_DEFAULT));
  require(KSPSetInitialGuessNonzero(solver.get(), PETSC_TRUE));
  require(KSPSetFromOptions(solver.get()));
  require(KSPSolve(solver.get(), right.get(), temperatures.get()));
  KSPConvergedReason reason = KSP_CONVERGED_ITERATING;
  int iterations = 0;
  require(KSPGetConvergedReason(solver.get(), &reason));
  require(KSPGetIterationNumber(solver.get(), &iterations));
  if (reason < 0) {
    throw std::runtime_error("the temperatures do not converge");
  }
  return iterations;
}

/// What the held nodes give and take: there alone heat comes in or goes out.
void balance(MPI_Comm comm, const petsc::Matrix& conductances, const petsc::Vector& temperatures,
             const std::vector<HeldNode>& held, Solution& solution) {
  petsc::Vector heat;
  require(VecDuplicate(temperatures.get(), heat.put()));
  require(MatMult(conductances.get(), temperatures.get(), heat.get()));
  const std::vector<double> ofNodes = ownedValues(heat);
  std::array<double, 2> sums = {};
  for (const HeldNode& node : held) {
    const double given = ofNodes[static_cast<std::size_t>(node.node)];
    sums[given > 0 ? 0 : 1] += std::abs(given);
  }
  MPI_Allreduce(MPI_IN_PLACE, sums.data(), 2, MPI_DOUBLE, MPI_SUM, comm);
  solution.heatIn = sums[0];
  solution.heatOut = sums[1];
}

}  // namespace

Solution solve(MPI_Comm comm, const Part& part, const std::vector<HeldNode>& held) {
  orvml::parallel::together(comm, [&] { requireTetrahedra(part.view().elements()); });
  const std::vector<int> rows = rowsOf(comm, part);
  const petsc::Matrix conductances = conductance(comm, part, rows);
  petsc::Vector temperatures;
  require(MatCreateVecs(conductances.get(), temperatures.put(), nullptr));
  Solution solution;
  solution.iterations = solveHeld(comm, conductances, rows, held, temperatures);
  balance(comm, conductances, temperatures, held, solution);
  solution.temperatures = ownedValues(temperatures);
  solution.temperatures.resize(rows.size());
  part.exchangeNodes(solution.temperatures);
  return solution;
}

}  // namespace conduction
