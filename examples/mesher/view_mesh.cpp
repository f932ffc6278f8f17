#include "mesher/view_mesh.h"

#include "exchange/check.h"

#include <utility>

namespace orvml_examples {

namespace {

Cells cellsOf(const orvml::CellsView& view) {
  Cells cells;
  for (const orvml::CellGroup& group : view.groups()) {
    const auto nodeIndices = group.nodeIndices();
    cells.addGroup(static_cast<ElemType>(group.shape()), group.nodesPerCell(),
                   {nodeIndices.begin(), nodeIndices.end()});
  }
  return cells;
}

void setCells(orvml::Entity entity, Cells cells, orvml::Document& document) {
  std::vector<orvml::GroupSize> groups;
  for (std::size_t group = 0; group < cells.shapes.size(); ++group) {
    groups.push_back({static_cast<orvml::Shape>(cells.shapes[group]), cells.nodesPerCell[group],
                      cells.cellsPerGroup[group]});
  }
  if (!groups.empty()) {
    document.setCells(entity, groups, std::move(cells.connectivities));
  }
}

}  // namespace

Identification identificationOf(const orvml::DocumentView& document) {
  const orvml::Identification& identification = document.identification();
  return {std::string(identification.moduleName), std::string(identification.moduleFormatVersion),
          std::string(identification.creator)};
}

Mesh meshOf(const orvml::DocumentView& document) {
  require(document.dimension() == Mesh::kDimension && document.nodes().size() > 0,
          "the document has no nodes with three coordinates");
  const auto coordinates = document.nodes().coordinates();
  return {{coordinates.begin(), coordinates.end()},
          cellsOf(document.edges()),
          cellsOf(document.faces()),
          cellsOf(document.elements())};
}

void setMesh(Mesh mesh, orvml::Document& document) {
  document.setNodes(std::move(mesh.coordinates));
  setCells(orvml::Entity::edges, std::move(mesh.edges), document);
  setCells(orvml::Entity::faces, std::move(mesh.faces), document);
  setCells(orvml::Entity::elements, std::move(mesh.elements), document);
}

}  // namespace orvml_examples
