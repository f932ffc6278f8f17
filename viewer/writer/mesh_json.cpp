#include "mesh_json.h"

#include "fields.h"
#include "words.h"

#include <algorithm>
#include <utility>

namespace orvml_report {

namespace {

using orvml::Entity;

Carriers carriersOf(const MeshParts& parts, const DrawnCells* cells) {
  if (cells == nullptr) {
    const auto& nodes = parts.drawn.nodes;
    const auto all = static_cast<std::size_t>(parts.document.nodes().size());
    return {Entity::nodes, parts.document.nodes().size(), nodes ? &*nodes : nullptr,
            nodes ? nodes->size() : all};
  }
  return {cells->entity, parts.document.cells(cells->entity).size(),
          cells->numbers ? &*cells->numbers : nullptr, cells->size()};
}

int numberOf(const Carriers& carriers, std::size_t index) noexcept {
  return carriers.numbers != nullptr ? (*carriers.numbers)[index] : static_cast<int>(index);
}

Json numbersOf(const Carriers& carriers, PackedArrays& arrays) {
  return carriers.numbers != nullptr ? arrays.addInts(*carriers.numbers) : Json();
}

Json nodesAsJson(const MeshParts& parts, const Carriers& carriers, PackedArrays& arrays) {
  std::vector<Point> points(carriers.count);
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i] = parts.places[numberOf(carriers, i)];
  }
  return {{"count", carriers.count},
          {"coordinates", arrays.addPoints(points)},
          {"numbers", numbersOf(carriers, arrays)},
          {"fields", Json::array()}};
}

/// Turns nodes of the document into those of the page.
class NodeNumbers {
 public:
  explicit NodeNumbers(const MeshParts& parts) {
    // Nodes without a place may be claimed by the billions; cells that are drawn have none of them.
    if (parts.drawn.nodes && !parts.drawn.cells.empty()) {
      inPage_.assign(static_cast<std::size_t>(parts.document.nodes().size()), 0);
      int next = 0;
      for (const int node : *parts.drawn.nodes) {
        inPage_[static_cast<std::size_t>(node)] = next++;
      }
    }
  }

  [[nodiscard]] Json packed(const DrawnGroup& group, PackedArrays& arrays) const {
    if (inPage_.empty()) {
      return arrays.addInts(group.nodes(), group.form.nodesPerCell);
    }
    std::vector<int> nodes(group.nodes().size());
    std::transform(group.nodes().begin(), group.nodes().end(), nodes.begin(),
                   [&](int node) { return inPage_[static_cast<std::size_t>(node)]; });
    return arrays.addInts(nodes, group.form.nodesPerCell);
  }

 private:
  std::vector<int> inPage_;
};

Json cellsAsJson(const DrawnCells& cells, const Carriers& carriers, const NodeNumbers& numbers,
                 PackedArrays& arrays) {
  Json groups = Json::array();
  for (const DrawnGroup& group : cells.groups) {
    groups.push_back({{"shape", name(group.form.shape)},
                      {"nodesPerCell", group.form.nodesPerCell},
                      {"count", group.size()},
                      {"nodes", numbers.packed(group, arrays)}});
  }
  return {{"entity", nameOf(cells.entity)},
          {"isSkin", cells.isSkin},
          {"groups", std::move(groups)},
          {"numbers", numbersOf(carriers, arrays)},
          {"outer", cells.outer.empty() ? Json() : arrays.addBytes(cells.outer)},
          {"fields", Json::array()}};
}

std::vector<std::uint8_t> marksOf(const MeshParts& parts, const Carriers& carriers) {
  const std::vector<std::uint8_t>& all = (*parts.marks)[carriers.entity];
  std::vector<std::uint8_t> marks(carriers.count);
  for (std::size_t i = 0; i < marks.size(); ++i) {
    const int number = numberOf(carriers, i);
    marks[i] =
        all[carriers.entity == Entity::nodes ? static_cast<std::size_t>(number)
                                             : parts.stored.of(carriers.entity).indexOf(number)];
  }
  return marks;
}

Json fieldsOf(const MeshParts& parts, const Carriers& carriers, AttributeBudget& budget,
              PackedArrays& arrays, std::vector<std::string>& notes) {
  Json fields = Json::array();
  if (parts.marks != nullptr) {
    fields.push_back(differenceField(marksOf(parts, carriers), arrays));
  }
  for (const MeasuredCells& measured : parts.measured) {
    if (measured.entity == carriers.entity && measured.histogram &&
        measured.drawn.size() == carriers.count) {
      fields.push_back(measureField(nameOf(measured), measured.drawn, arrays));
    }
  }
  for (Json& field : attributeFields(parts.document.attributes(carriers.entity), carriers, budget,
                                     arrays, notes)) {
    fields.push_back(std::move(field));
  }
  return fields;
}

}  // namespace

Json meshAsJson(const MeshParts& parts, AttributeBudget& budget, PackedArrays& arrays,
                std::vector<std::string>& notes) {
  const Carriers nodes = carriersOf(parts, nullptr);
  Json mesh = {{"nodes", nodesAsJson(parts, nodes, arrays)}, {"cells", Json::array()}};
  {
    const NodeNumbers numbers(parts);
    for (const DrawnCells& cells : parts.drawn.cells) {
      mesh["cells"].push_back(cellsAsJson(cells, carriersOf(parts, &cells), numbers, arrays));
    }
  }
  mesh["nodes"]["fields"] = fieldsOf(parts, nodes, budget, arrays, notes);
  for (std::size_t i = 0; i < parts.drawn.cells.size(); ++i) {
    mesh["cells"][i]["fields"] =
        fieldsOf(parts, carriersOf(parts, &parts.drawn.cells[i]), budget, arrays, notes);
  }
  budget.tell(notes);
  return mesh;
}

}  // namespace orvml_report
