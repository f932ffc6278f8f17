#include "findings_json.h"

#include <orvml/cell_faces.hpp>

#include "words.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace orvml_report {

namespace {

using orvml::CheckPlace;
using orvml::DocumentView;
using orvml::Entity;
using orvml::PlaceKind;

constexpr std::string_view kInput = "/OrvInput";
constexpr std::string_view kOutput = "/OrvOutput";

/// Whether an object lies in a group, or is it.
bool isIn(std::string_view object, std::string_view group) noexcept {
  return object.starts_with(group) &&
         (object.size() == group.size() || object[group.size()] == '/');
}

/// The next name of a path such as "/Faces/Attributes/size", which is taken from it.
std::string_view takeName(std::string_view& path) noexcept {
  path.remove_prefix(path.starts_with('/') ? 1 : 0);
  const std::string_view name = path.substr(0, path.find('/'));
  path.remove_prefix(name.size());
  return name;
}

std::optional<Entity> entityOfGroup(std::string_view name) noexcept {
  return name == "Nodes"      ? std::optional(Entity::nodes)
         : name == "Edges"    ? std::optional(Entity::edges)
         : name == "Faces"    ? std::optional(Entity::faces)
         : name == "Elements" ? std::optional(Entity::elements)
                              : std::nullopt;
}

PlaceKind kindOf(Entity entity) noexcept {
  constexpr PlaceKind kKinds[] = {PlaceKind::node, PlaceKind::edge, PlaceKind::face,
                                  PlaceKind::element};
  return kKinds[static_cast<std::size_t>(entity)];
}

/// The cell that a value of the array of node indices belongs to.
std::optional<std::int64_t> cellOfIndex(const orvml::CellsView& cells, std::int64_t value) {
  std::int64_t first = 0;
  for (const orvml::CellGroup& group : cells.groups()) {
    const auto indices = static_cast<std::int64_t>(group.nodeIndices().size());
    if (value < indices) {
      return first + value / group.nodesPerCell();
    }
    value -= indices;
    first += group.size();
  }
  return std::nullopt;
}

/// A value of an array is at a node or a cell where the array is theirs.
CheckPlace located(const CheckPlace& place, std::string_view object, const DocumentView& document) {
  std::string_view path = object;
  (void)takeName(path);
  const auto entity = entityOfGroup(takeName(path));
  const std::string_view array = takeName(path);
  if (place.kind != PlaceKind::value || !entity || place.index < 0) {
    return place;
  }
  if (array.ends_with("Attributes") && !path.empty()) {
    return {kindOf(*entity), place.index};
  }
  if (*entity == Entity::nodes && array == "coordinates" && document.nodes().dimension() > 0) {
    return {PlaceKind::node, place.index / document.nodes().dimension()};
  }
  if (*entity != Entity::nodes && array == "connectivities") {
    if (const auto cell = cellOfIndex(document.cells(*entity), place.index)) {
      return {kindOf(*entity), *cell};
    }
  }
  return place;
}

std::optional<Entity> entityOf(PlaceKind kind) noexcept {
  switch (kind) {
    case PlaceKind::edge:
      return Entity::edges;
    case PlaceKind::face:
      return Entity::faces;
    case PlaceKind::element:
      return Entity::elements;
    default:
      return std::nullopt;
  }
}

/// A cell by its number over all groups.
std::pair<orvml::CellForm, std::span<const int>> cellAt(const orvml::CellsView& cells,
                                                        std::int64_t number) {
  for (const orvml::CellGroup& group : cells.groups()) {
    if (number >= 0 && number < group.size()) {
      return {{group.shape(), group.nodesPerCell()}, group[static_cast<int>(number)]};
    }
    number -= group.size();
  }
  return {};
}

using Line = std::pair<std::size_t, std::size_t>;  // of places in a cell

void addLoop(std::size_t corners, const std::vector<std::uint8_t>& nodes, std::set<Line>& lines) {
  for (std::size_t i = 0; i < corners; ++i) {
    const std::size_t from = nodes[i];
    const std::size_t to = nodes[(i + 1) % corners];
    lines.insert({std::min(from, to), std::max(from, to)});
  }
}

/// The edges of a form between its corners; none for shapes that have none.
std::set<Line> linesOf(orvml::CellForm form) {
  const std::vector<std::uint8_t> kRing = {0, 1, 2, 3};
  std::set<Line> lines;
  if (form.shape == orvml::Shape::line && form.nodesPerCell >= 2) {
    lines.insert({0, 1});
  } else if (!orvml::linearPartsOf(form).empty()) {
    addLoop(form.shape == orvml::Shape::triangle ? 3 : 4, kRing, lines);
  } else {
    for (const orvml::CellFace& face : orvml::facesOf(form)) {
      addLoop(face.corners, face.nodes, lines);
    }
  }
  return lines;
}

Json asPoint(const Point& point) { return {point[0], point[1], point[2]}; }

/// The corners of a cell that have a place, and the edges between them. Cells without edges have
/// their nodes as points.
void addCell(Json& json, orvml::CellForm form, std::span<const int> cell,
             const NodePlaces& places) {
  constexpr std::size_t kMostPoints = 27;
  constexpr std::size_t kNone = SIZE_MAX;
  const std::set<Line> lines = linesOf(form);
  std::size_t corners = std::min(cell.size(), kMostPoints);
  if (!lines.empty()) {
    corners = 0;
    for (const Line& line : lines) {
      corners = std::max(corners, line.second + 1);
    }
  }
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < corners; ++i) {
    const bool isPlaced = places.isPlaced(cell[i]);
    numbers.push_back(isPlaced ? json["points"].size() : kNone);
    if (isPlaced) {
      json["points"].push_back(asPoint(places[cell[i]]));
    }
  }
  for (const auto& [from, to] : lines) {
    if (numbers[from] != kNone && numbers[to] != kNone) {
      json["lines"].push_back({numbers[from], numbers[to]});
    }
  }
}

Json placeAsJson(const CheckPlace& place, const DocumentView& document, const NodePlaces& places) {
  Json json = {{"kind", name(place.kind)},
               {"index", place.index},
               {"points", Json::array()},
               {"lines", Json::array()}};
  if (place.kind == PlaceKind::node && place.index >= 0 && place.index < places.size() &&
      places.isPlaced(static_cast<int>(place.index))) {
    json["points"].push_back(asPoint(places[static_cast<int>(place.index)]));
  }
  if (const auto entity = entityOf(place.kind)) {
    const auto [form, cell] = cellAt(document.cells(*entity), place.index);
    addCell(json, form, cell, places);
  }
  return json;
}

}  // namespace

Json findingsAsJson(const orvml::CheckReport& report, const DocumentView& document,
                    const NodePlaces& places) {
  const bool isInput = document.kind() == orvml::Kind::input;
  Json findings = Json::array();
  for (const orvml::CheckFinding& finding : report.findings) {
    if (isIn(finding.object, isInput ? kOutput : kInput)) {
      continue;
    }
    Json at = Json::array();
    for (const CheckPlace& place : finding.places) {
      at.push_back(placeAsJson(located(place, finding.object, document), document, places));
    }
    findings.push_back({{"severity", name(finding.severity)},
                        {"code", finding.code},
                        {"object", finding.object},
                        {"count", finding.count},
                        {"sentence", finding.sentence},
                        {"cure", finding.cure},
                        {"places", std::move(at)}});
  }
  return findings;
}

}  // namespace orvml_report
