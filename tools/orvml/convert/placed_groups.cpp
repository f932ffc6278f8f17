#include "convert/placed_groups.h"

#include "console.h"
#include "facts.h"

namespace orvml_tool {

using orvml::CellForm;
using orvml::DocumentView;
using orvml::Entity;

std::vector<PlacedGroup> placedGroups(
    const DocumentView& document, std::span<const Entity> containers, std::string_view format,
    const std::function<std::optional<ForeignCell>(CellForm)>& cellOf, ConversionReport& report) {
  std::vector<PlacedGroup> placed;
  for (const Entity container : containers) {
    std::size_t first = 0;
    for (const orvml::CellGroup& group : document.cells(container).groups()) {
      const CellForm form{group.shape(), group.nodesPerCell()};
      const auto cell = group.nodesPerCell() > 0 ? cellOf(form) : std::nullopt;
      if (cell) {
        placed.push_back({container, group, first, *cell});
      } else if (group.size() > 0) {
        report.add(orvml::Fate::dropped, pathOf(document, container), group.size(),
                   "loses " + countedForm(group.size(), form) + ", which " + std::string(format) +
                       " has no cell for");
      }
      first += static_cast<std::size_t>(group.size());
    }
  }
  return placed;
}

std::size_t numberOfCells(std::span<const PlacedGroup> groups) noexcept {
  std::size_t cells = 0;
  for (const PlacedGroup& placed : groups) {
    cells += static_cast<std::size_t>(placed.group.size());
  }
  return cells;
}

std::string pathOf(const DocumentView& document, Entity entity) {
  return documentPath(document.kind()) + "/" + groupName(entity);
}

std::string attributePath(const DocumentView& document, Entity entity, std::string_view attribute) {
  return pathOf(document, entity) + "/Attributes/" + std::string(attribute);
}

std::string countedForm(std::int64_t count, CellForm form) {
  return countedCells(count, form.shape) + " of " + counted(form.nodesPerCell, "node");
}

}  // namespace orvml_tool
