#include "facts.h"

#include "console.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvml_tool {

namespace {

void add(Range& range, double value) noexcept {
  if (!std::isfinite(value)) {
    ++range.notFinite;
    return;
  }
  range.minimum = range.isEmpty ? value : std::min(range.minimum, value);
  range.maximum = range.isEmpty ? value : std::max(range.maximum, value);
  range.isEmpty = false;
}

}  // namespace

Range rangeOf(const orvml::Attribute& vector) {
  Range range;
  std::visit(
      [&](const auto& values) {
        for (const auto value : values) {
          add(range, static_cast<double>(value));
        }
      },
      vector.values);
  return range;
}

std::vector<Range> boundingBoxOf(const orvml::NodesView& nodes) {
  if (nodes.coordinates().empty()) {
    return {};
  }
  std::vector<Range> box(static_cast<std::size_t>(nodes.dimension()));
  std::size_t axis = 0;
  for (const double value : nodes.coordinates()) {
    add(box[axis], value);
    axis = axis + 1 == box.size() ? 0 : axis + 1;
  }
  return box;
}

std::vector<ShapeCount> countShapes(const std::vector<orvml::GroupDescription>& groups) {
  std::vector<ShapeCount> counts;
  for (const orvml::GroupDescription& group : groups) {
    auto found = std::find_if(counts.begin(), counts.end(), [&](const ShapeCount& count) {
      return count.shape == group.shape && count.nodesPerCell == group.nodesPerCell;
    });
    if (found == counts.end()) {
      found = counts.insert(found, {group.shape, group.nodesPerCell, 0});
    }
    found->cells += group.cells;
  }
  return counts;
}

std::string shapeName(orvml::Shape shape) {
  const std::string known(name(shape));
  return known == "unknown" ? "shape " + std::to_string(static_cast<int>(shape)) : known;
}

std::string countedCells(std::int64_t count, orvml::Shape shape) {
  const std::string known(name(shape));
  if (known == "unknown") {
    return counted(count, "cell") + " of " + shapeName(shape);
  }
  const bool isSolid = known.ends_with("hedron");
  return isSolid && count != 1 ? shown(count) + " " + known.substr(0, known.size() - 2) + "a"
                               : counted(count, known);
}

std::string kindName(orvml::Kind kind) { return kind == orvml::Kind::input ? "input" : "output"; }

std::string documentPath(orvml::Kind kind) {
  return kind == orvml::Kind::input ? "/OrvInput" : "/OrvOutput";
}

std::string groupName(orvml::Entity entity) {
  constexpr std::array<const char*, 4> kNames = {"Nodes", "Edges", "Faces", "Elements"};
  return kNames[static_cast<std::size_t>(entity)];
}

}  // namespace orvml_tool
