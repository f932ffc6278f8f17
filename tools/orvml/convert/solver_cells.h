#pragma once

#include <orvml/vtk_cells.hpp>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// How the cells of exchange files become elements of solvers.
namespace orvml_tool {

/// Places of nodes in a cell, in the order of VTK. Those beyond the nodes of the cell are the nodes
/// that are made for it.
using NodePlaces = std::vector<std::uint8_t>;

/// A node that an element has and the cell has not.
struct MadeNode {
  enum class Place { middleOfEdge, middleOfQuadrilateral };
  Place place = Place::middleOfEdge;
  /// The two ends of the edge, or the four corners and then the four middles of the edges of the
  /// quadrilateral. Cells that share the corners share the node.
  NodePlaces nodes;
};

/// What a solver has for a form.
struct SolverCell {
  orvml::CellForm form;
  std::string_view name;           ///< of the element
  std::vector<NodePlaces> pieces;  ///< the nodes of each of the elements that a cell becomes
  /// For pyramids, whose base is parted from its node of the least number: the elements where that
  /// is the second or the fourth one. So cells on both sides part a base alike.
  std::vector<NodePlaces> otherPieces;
  std::vector<MadeNode> made;

  /// How many nodes of the cell no element has.
  [[nodiscard]] std::size_t nodesLeftOut() const;
  /// The elements for a cell of these nodes.
  [[nodiscard]] const std::vector<NodePlaces>& piecesFor(std::span<const int> nodes) const noexcept;
};

/// The elements of CalculiX and Abaqus. Faces of documents in the plane are plane stress elements,
/// those in space are shells.
[[nodiscard]] const std::vector<SolverCell>& inpCells(int dimension);

/// The cards of Nastran.
[[nodiscard]] const std::vector<SolverCell>& nastranCells();

}  // namespace orvml_tool
