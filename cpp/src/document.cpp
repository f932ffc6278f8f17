#include <orvml/document.hpp>

#include "core_views.h"
#include "document_access.h"
#include "hdf5/extents.h"
#include "lent_values.h"
#include "requirements.h"

#include <string>

namespace orvml {

using detail::DocumentContent;
using orvml_io::Elems;
using orvml_io::makeNewArray;
using orvml_io::NewArray;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

namespace {

template <class Core>
std::unique_ptr<OrvInputAndOrvOutput> makeCore(int dimension) {
  detail::requireDimension(dimension);
  auto document = std::make_unique<Core>();
  document->arraysOwnedByCaller = false;
  document->meshDimension = dimension;
  return document;
}

/// A copy that owns all it holds. Unlike the copies of the flat interface it has the vector
/// parameters also where there are no scalar ones.
template <class Core>
std::unique_ptr<OrvInputAndOrvOutput> cloneOf(const OrvInputAndOrvOutput& source) {
  auto clone = std::make_unique<Core>();
  clone->arraysOwnedByCaller = false;
  clone->CopyFromOther(&source);
  clone->arraysOwnedByCaller = false;
  if (source.parametersScalar.count() == 0) {
    clone->parametersVector.CopyFromOther(source.parametersVector);
  }
  return clone;
}

/// Which container of the core holds the cells of an entity.
Elems*& slotOf(OrvInputAndOrvOutput& document, Entity entity) {
  switch (entity) {
    case Entity::edges:
      return document.edges;
    case Entity::faces:
      return document.faces;
    case Entity::elements:
      return document.elements;
    default:
      throw Error(Code::wrongKind, "nodes are no cells");
  }
}

/// The attributes of an entity; none where there are no nodes, or no cells.
OML_AttributesVector* storeOf(OrvInputAndOrvOutput& document, Entity entity) noexcept {
  return document.attributesOf(detail::coreEntity(entity));
}

std::size_t countOf(const OrvInputAndOrvOutput& document, Entity entity) noexcept {
  const int count = entity == Entity::nodes ? document.GetNumberOfNodes()
                                            : document.GetNumberOfElems(detail::coreEntity(entity));
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

const char* nameOf(Entity entity) noexcept {
  switch (entity) {
    case Entity::nodes:
      return "nodes";
    case Entity::edges:
      return "edges";
    case Entity::faces:
      return "faces";
    default:
      return "volume elements";
  }
}

/// What the core keeps of groups of cells.
struct GroupArrays {
  NewArray<int> cells;
  NewArray<ElemType> shapes;
  NewArray<int> nodesPerCell;
  int numberOfCells = 0;
};

/// Throws where the sizes do not fit each other or the node indices.
GroupArrays arraysOf(const std::vector<GroupSize>& groups, std::size_t numberOfIndices) {
  const int length = detail::require32(groups.size());
  GroupArrays arrays{makeNewArray<int>(length), makeNewArray<ElemType>(length),
                     makeNewArray<int>(length), 0};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    arrays.cells[i] = groups[i].cells;
    arrays.shapes[i] = static_cast<ElemType>(groups[i].shape);
    arrays.nodesPerCell[i] = groups[i].nodesPerCell;
  }
  const std::optional<int> cells = orvml_io::sum32(arrays.cells.get(), length);
  const std::optional<int> indices =
      orvml_io::connectivitySize32(arrays.cells.get(), arrays.nodesPerCell.get(), length);
  if (!cells || !indices) {
    throw Error(Code::sizesDisagree, "the groups have negative sizes, or more than 32 bits count");
  }
  if (static_cast<std::size_t>(*indices) != numberOfIndices) {
    throw Error(Code::sizesDisagree, "there are " + std::to_string(numberOfIndices) +
                                         " node indices, the groups need " +
                                         std::to_string(*indices));
  }
  arrays.numberOfCells = *cells;
  return arrays;
}

void releaseGroups(Elems& elems) noexcept {
  if (elems.groupArraysMadeByLibrary) {
    elems.DeleteAuxiliarContent();
  }
}

}  // namespace

Document::Document(std::unique_ptr<OrvInputAndOrvOutput> document)
    : content_(std::make_unique<DocumentContent>()) {
  content_->document = std::move(document);
}

Document::Document(Document&& other) noexcept = default;

Document& Document::operator=(Document&& other) noexcept = default;

Document::~Document() = default;

OrvInputAndOrvOutput& Document::core() const noexcept { return *content_->document; }

Input Document::input(const Identification& identification, int dimension) {
  return {identification, dimension};
}

Output Document::output(const Identification& identification, int dimension) {
  return {identification, dimension};
}

Kind Document::kind() const noexcept {
  return dynamic_cast<const orvml_io::OrvInput*>(&core()) != nullptr ? Kind::input : Kind::output;
}

Identification Document::identification() const& noexcept {
  return detail::identificationOf(core());
}

void Document::setIdentification(const Identification& identification) {
  detail::setIdentification(identification, core());
}

int Document::dimension() const noexcept { return core().meshDimension; }

NodesView Document::nodes() const& { return detail::nodesOf(core()); }

CellsView Document::cells(Entity entity) const& { return detail::cellsOf(core(), entity); }

Attributes Document::attributes(Entity entity) const& {
  const OML_AttributesVector* store = storeOf(core(), entity);
  return store == nullptr ? Attributes() : detail::attributesOf(*store);
}

Parameters Document::parameters() const& { return detail::parametersOf(core()); }

Attributes Document::vectorParameters() const& {
  return detail::attributesOf(core().parametersVector);
}

DocumentParts Document::parts() const { return detail::partsOf(core()); }

std::vector<GroupSize> Document::oneGroup(Shape shape, int nodesPerCell, std::size_t indices) {
  if (nodesPerCell < 1 || indices % static_cast<std::size_t>(nodesPerCell) != 0) {
    throw Error(Code::sizesDisagree, std::to_string(indices) + " node indices are no cells of " +
                                         std::to_string(nodesPerCell) + " nodes");
  }
  return {{shape, nodesPerCell, detail::require32(indices) / nodesPerCell}};
}

void Document::setNodes(std::span<const double> coordinates, Keeper keeper) {
  const NodesView view(coordinates, dimension());  // throws when they are no rows
  OrvInputAndOrvOutput& document = core();
  if (view.size() != document.GetNumberOfNodes()) {
    remove(Entity::nodes);
  }
  if (document.nodes == nullptr) {
    document.nodes = std::make_unique<orvml_io::Nodes>().release();
  }
  Keeper& kept = content_->keepers[{static_cast<int>(Entity::nodes), {}}];
  document.nodes->setCoordinates(orvml_io::borrowedArray(coordinates.data()),
                                 static_cast<long long>(coordinates.size()));
  document.nodes->numberOfNodes = view.size();
  kept = std::move(keeper);
}

void Document::setCells(Entity entity, const std::vector<GroupSize>& groups,
                        std::span<const int> nodeIndices, Keeper keeper) {
  GroupArrays arrays = arraysOf(groups, nodeIndices.size());
  if (static_cast<std::size_t>(arrays.numberOfCells) != countOf(core(), entity)) {
    remove(entity);
  }
  Elems*& slot = slotOf(core(), entity);
  if (slot == nullptr) {
    slot = std::make_unique<Elems>().release();
  }
  Keeper& kept = content_->keepers[{static_cast<int>(entity), {}}];
  Elems& elems = *slot;
  releaseGroups(elems);
  // Cells of no nodes have an array of no indices all the same.
  static constexpr int kNone = 0;
  elems.setConnectivities(
      orvml_io::borrowedArray(nodeIndices.empty() ? &kNone : nodeIndices.data()));
  elems.numberOfElements = arrays.numberOfCells;
  elems.numberOfElementTypes = static_cast<int>(groups.size());
  elems.numberOfElementsByType = arrays.cells.release();
  elems.elementTypes = arrays.shapes.release();
  elems.numberOfNodesByElement = arrays.nodesPerCell.release();
  elems.groupArraysMadeByLibrary = true;
  elems.typeArraysOwnedByCaller = false;
  kept = std::move(keeper);
}

void Document::remove(Entity entity) {
  switch (entity) {
    case Entity::nodes:
      core().DeleteNodes();
      break;
    case Entity::edges:
      core().DeleteEdges();
      break;
    case Entity::faces:
      core().DeleteFaces();
      break;
    case Entity::elements:
      core().DeleteElements();
      break;
  }
  std::erase_if(content_->keepers, [entity](const auto& kept) {
    return kept.first.first == static_cast<int>(entity);
  });
}

void Document::setParameter(std::string_view name, double value) {
  detail::requireName(name, "the parameter");
  core().parametersScalar.Set(std::string(name).c_str(), value);
}

bool Document::removeParameter(std::string_view name) {
  return core().parametersScalar.Delete(name);
}

void Document::setVectorParameter(const Attribute& vector, Keeper keeper) {
  detail::requireVector(vector, "the vector parameter");
  Keeper& kept = content_->keepers[{DocumentContent::kOfNoEntity, std::string(vector.name)}];
  detail::lend(vector, core().parametersVector);
  kept = std::move(keeper);
}

bool Document::removeVectorParameter(std::string_view name) {
  const std::string text(name);
  const bool isThere = core().parametersVector.find(name) != nullptr;
  core().parametersVector.Delete(text.c_str());
  content_->keepers.erase({DocumentContent::kOfNoEntity, text});
  return isThere;
}

void Document::setAttribute(Entity entity, const Attribute& attribute, Keeper keeper) {
  detail::requireName(attribute.name, "the attribute");
  OML_AttributesVector* store = storeOf(core(), entity);
  const std::size_t count = countOf(core(), entity);
  if (store == nullptr || attribute.size() != count) {
    throw Error(Code::sizesDisagree,
                "the attribute \"" + std::string(attribute.name) + "\" has " +
                    std::to_string(attribute.size()) + " values, there are " +
                    std::to_string(count) + " " + nameOf(entity),
                {{}, std::string(attribute.name), {}});
  }
  Keeper& kept = content_->keepers[{static_cast<int>(entity), std::string(attribute.name)}];
  detail::lend(attribute, *store);
  kept = std::move(keeper);
}

bool Document::removeAttribute(Entity entity, std::string_view name) {
  OML_AttributesVector* store = storeOf(core(), entity);
  if (store == nullptr || store->find(name) == nullptr) {
    return false;
  }
  const std::string text(name);
  store->Delete(text.c_str());
  content_->keepers.erase({static_cast<int>(entity), text});
  return true;
}

Input::Input(const Identification& identification, int dimension)
    : Document(makeCore<orvml_io::OrvInput>(dimension)) {
  setIdentification(identification);
}

Input Input::clone() const {
  return detail::DocumentAccess::make<Input>(cloneOf<orvml_io::OrvInput>(core()));
}

Output::Output(const Identification& identification, int dimension)
    : Document(makeCore<orvml_io::OrvOutput>(dimension)) {
  setIdentification(identification);
}

Output Output::clone() const {
  return detail::DocumentAccess::make<Output>(cloneOf<orvml_io::OrvOutput>(core()));
}

}  // namespace orvml
