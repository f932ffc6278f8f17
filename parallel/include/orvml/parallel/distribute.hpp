#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <mpi.h>

#include <memory>
#include <span>
#include <vector>

namespace orvml::parallel {

namespace detail {
class PartContent;
}

/// By what the cells are dealt out.
enum class Method {
  block,        ///< they stay on the rank whose slice has them
  coordinates,  ///< by their middles along a Hilbert curve, in numbers that differ by one at most
  graph         ///< by which cells share a face, with PT-Scotch: few shared faces between ranks
};

struct Distribution {
  Method method = Method::graph;
  /// Whether each rank also gets the cells of others that have a node in common with one of its
  /// own.
  bool withGhosts = false;
};

/// The part of a mesh that one rank computes on: its cells, the nodes that they use, numbered from
/// 0 on, and on request the ghosts, cells of other ranks around its own.
///
/// Dealt out are the cells of the highest dimension that the document has. Edges and faces below
/// go to the lowest rank that owns one of those with all their nodes, so that a part has the cells
/// that its faces bound; where there is none, to the owner of their lowest node. They have no
/// ghosts. A node is owned by the lowest rank that owns one of the dealt cells with it; one of
/// none of them stays where its slice has it.
///
/// Parts are moved, and own what they hold. They hold a communicator, which is freed with them:
/// to destroy a part, or to assign another one to it, is collective.
class ORVML_EXPORT Part {
 public:
  explicit Part(std::unique_ptr<const detail::PartContent> content);
  Part(Part&& other) noexcept;
  Part& operator=(Part&& other) noexcept;
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;
  ~Part();

  /// A view of the part, valid as long as it is, with its attributes; node indices are local. All
  /// type groups of the whole are there, in each of them first the owned cells, then the ghosts,
  /// both in the order of the whole. The owned nodes come first, likewise.
  [[nodiscard]] DocumentView view() const&;
  DocumentView view() const&& = delete;

  // What is known of each node and cell of the view, one value for each; valid as long as the part.

  /// The numbers of the nodes, or of the cells of one kind, in the whole document.
  [[nodiscard]] std::span<const int> globalNumbers(Entity entity) const& noexcept;
  std::span<const int> globalNumbers(Entity entity) const&& = delete;
  /// The ranks that own them.
  [[nodiscard]] std::span<const int> owners(Entity entity) const& noexcept;
  std::span<const int> owners(Entity entity) const&& = delete;

  /// How many nodes this rank owns.
  [[nodiscard]] int ownedNodes() const noexcept;
  /// How many cells of each type group it owns.
  [[nodiscard]] std::vector<int> ownedCells(Entity entity) const;

  /// The ranks that node values are exchanged with, ascending.
  [[nodiscard]] std::vector<int> neighbours() const;

  // Gives the nodes, or the cells, of other ranks the values that their owners have, with one
  // message from each neighbour. Collective, with the same width everywhere. `values` has `width`
  // values for each of the view, node after node or cell after cell; when it has not, this rank
  // throws std::invalid_argument, and the others wait for it. A part has memory for one
  // double each; the first exchange of more has the ranks agree on whether all have it, and throws
  // std::bad_alloc on all of them when one has not.

  void exchangeNodes(std::span<double> values, int width = 1) const;
  void exchangeNodes(std::span<int> values, int width = 1) const;
  void exchangeCells(Entity entity, std::span<double> values, int width = 1) const;
  void exchangeCells(Entity entity, std::span<int> values, int width = 1) const;

  // Brings values of this part back into the order of the slices that it was made from, to be saved
  // with them: each rank gets those of the nodes, or cells, of its slice, from their owners.
  // Collective; sizes as above, on which the ranks agree here.

  [[nodiscard]] std::vector<double> toSlice(Entity entity, std::span<const double> values,
                                            int width = 1) const;
  [[nodiscard]] std::vector<int> toSlice(Entity entity, std::span<const int> values,
                                         int width = 1) const;

 private:
  std::unique_ptr<const detail::PartContent> content_;
};

/// Deals out a mesh, of which every rank has a slice as for save(), so that each rank ends with the
/// part that it computes on. The slices stay what they are.
///
/// Collective. Throws Error, the same on every rank: Code::sizesDisagree when the slices do not
/// belong together, and for an attribute without a value for each node or cell;
/// Code::wrongDimension; Code::conversionBadIndex when a cell names a node that does not exist;
/// Code::memoryOutOfProportion for far more cells without nodes than anything is stored of;
/// Code::tooManyValues when the whole, or the graph of its cells, is more than 32 bits count, or
/// when more than this many values would go from one rank to another. std::bad_alloc of one rank is
/// thrown on all, and std::runtime_error when PT-Scotch fails.
[[nodiscard]] ORVML_EXPORT Part distribute(MPI_Comm comm, const DocumentView& slice,
                                           const Distribution& how = {});

}  // namespace orvml::parallel
