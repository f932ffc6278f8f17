#pragma once

#include <orvml/describe.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What is told of the content of a file beside the content itself.
namespace orvml_tool {

/// The least and the greatest of some values, of which those that are not finite do not count.
struct Range {
  double minimum = 0.0;
  double maximum = 0.0;
  bool isEmpty = true;
  std::int64_t notFinite = 0;
};

[[nodiscard]] Range rangeOf(const orvml::Attribute& vector);

/// The range of each coordinate; none for nodes without coordinates.
[[nodiscard]] std::vector<Range> boundingBoxOf(const orvml::NodesView& nodes);

/// The cells of one shape and number of nodes, over all groups.
struct ShapeCount {
  orvml::Shape shape = orvml::Shape::none;
  int nodesPerCell = 0;
  std::int64_t cells = 0;
};

/// In the order in which the shapes come first.
[[nodiscard]] std::vector<ShapeCount> countShapes(
    const std::vector<orvml::GroupDescription>& groups);

/// Such as "tetrahedron", or "shape 42" for one that the format does not name.
[[nodiscard]] std::string shapeName(orvml::Shape shape);

/// Such as "1 tetrahedron" or "12 tetrahedra".
[[nodiscard]] std::string countedCells(std::int64_t count, orvml::Shape shape);

/// "input" or "output".
[[nodiscard]] std::string kindName(orvml::Kind kind);

/// "/OrvInput" or "/OrvOutput".
[[nodiscard]] std::string documentPath(orvml::Kind kind);

/// The four kinds of entities by their names in the format.
[[nodiscard]] std::string groupName(orvml::Entity entity);  ///< such as "Nodes"

}  // namespace orvml_tool
