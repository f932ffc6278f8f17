#include "core_views.h"

#include "hdf5/extents.h"

#include <optional>
#include <utility>

namespace orvml::detail {

using orvml_io::Elems;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

namespace {

/// Cells that need no node indices have all of them, with an array of none or without: a reader
/// that refused the array leaves none, and a copy of such a document has an empty one.
bool holdsNodeIndices(const Elems& elems) {
  if (elems.elementTypes == nullptr || elems.numberOfElementsByType == nullptr ||
      elems.numberOfNodesByElement == nullptr) {
    return false;
  }
  const std::optional<int> needed = orvml_io::connectivitySize32(
      elems.numberOfElementsByType, elems.numberOfNodesByElement, elems.numberOfElementTypes);
  return needed && (elems.connectivities != nullptr || *needed == 0);
}

std::vector<CellGroup> groupsOf(const Elems& elems) {
  std::vector<CellGroup> groups;
  if (!holdsNodeIndices(elems)) {
    return groups;
  }
  groups.reserve(static_cast<std::size_t>(elems.numberOfElementTypes));
  const int* next = elems.connectivities;
  for (int i = 0; i < elems.numberOfElementTypes; ++i) {
    const auto shape = static_cast<Shape>(elems.elementTypes[i]);
    const int cells = elems.numberOfElementsByType[i];
    const int nodesPerCell = elems.numberOfNodesByElement[i];
    const auto length = static_cast<std::size_t>(cells) * static_cast<std::size_t>(nodesPerCell);
    groups.push_back(nodesPerCell == 0
                         ? CellGroup::withoutNodes(shape, cells)
                         : CellGroup(shape, nodesPerCell, std::span<const int>(next, length)));
    next += length;
  }
  return groups;
}

}  // namespace

ORVML_TYPE_OF_ENTITY coreEntity(Entity entity) noexcept {
  switch (entity) {
    case Entity::edges:
      return ORVML_EDGES;
    case Entity::faces:
      return ORVML_FACES;
    case Entity::elements:
      return ORVML_ELEMENTS;
    default:
      return ORVML_NODES;
  }
}

Identification identificationOf(const OrvInputAndOrvOutput& document) {
  return {document.moduleName, document.moduleFormatVersion, document.ioCreator};
}

Attributes attributesOf(const OML_AttributesVector& store) {
  std::vector<Attribute> attributes;
  attributes.reserve(store.count());
  for (const auto& [name, entry] : store) {
    const auto length = static_cast<std::size_t>(entry.length);
    if (entry.code == orvml_io::kIntCode) {
      const std::span<const int> values(static_cast<const int*>(entry.data), length);
      attributes.emplace_back(std::string_view(name), values, entry.mustBeTransmitted);
    } else if (entry.code == orvml_io::kDoubleCode) {
      const std::span<const double> values(static_cast<const double*>(entry.data), length);
      attributes.emplace_back(std::string_view(name), values, entry.mustBeTransmitted);
    }
  }
  return Attributes(std::move(attributes));
}

NodesView nodesOf(const OrvInputAndOrvOutput& document) {
  if (document.nodes == nullptr) {
    return {};
  }
  const orvml_io::Nodes& nodes = *document.nodes;
  const int dimension = document.meshDimension;
  const long long held = nodes.heldCoordinates(dimension);
  const bool isWhole = dimension > 0 && nodes.numberOfNodes > 0 &&
                       held == static_cast<long long>(nodes.numberOfNodes) * dimension;
  if (!isWhole) {
    return NodesView::withoutCoordinates(nodes.numberOfNodes, dimension);
  }
  return {std::span<const double>(nodes.coords, static_cast<std::size_t>(held)), dimension,
          attributesOf(nodes.attributes)};
}

CellsView cellsOf(const OrvInputAndOrvOutput& document, Entity entity) {
  const Elems* elems = document.GetGenericElems(coreEntity(entity));
  return elems == nullptr ? CellsView()
                          : CellsView(groupsOf(*elems), attributesOf(elems->attributes));
}

Parameters parametersOf(const OrvInputAndOrvOutput& document) {
  std::vector<Parameter> parameters;
  parameters.reserve(document.parametersScalar.count());
  for (const auto& [name, value] : document.parametersScalar) {
    parameters.emplace_back(std::string_view(name), value);
  }
  return Parameters(std::move(parameters));
}

DocumentParts partsOf(const OrvInputAndOrvOutput& document) {
  return {.identification = identificationOf(document),
          .dimension = document.meshDimension,
          .nodes = nodesOf(document),
          .edges = cellsOf(document, Entity::edges),
          .faces = cellsOf(document, Entity::faces),
          .elements = cellsOf(document, Entity::elements),
          .parameters = parametersOf(document),
          .vectorParameters = attributesOf(document.parametersVector)};
}

}  // namespace orvml::detail
