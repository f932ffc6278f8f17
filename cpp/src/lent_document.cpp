#include "lent_document.h"

#include "lent_values.h"
#include "requirements.h"

#include <string>

namespace orvml::detail {

namespace {

/// Makes the vectors of a view entries of a store, which borrows their values.
void lendAll(const Attributes& vectors, const char* what, orvml_io::OML_AttributesVector& store) {
  for (const Attribute& vector : vectors) {
    requireVector(vector, what);
    lend(vector, store);
  }
}

}  // namespace

const int* joinedNodeIndices(const CellsView& cells, std::vector<int>& copied) {
  static constexpr int kNone = 0;
  const int* first = nullptr;
  const int* next = nullptr;
  bool areContiguous = true;
  for (const CellGroup& group : cells.groups()) {
    const std::span<const int> indices = group.nodeIndices();
    if (!indices.empty()) {
      first = first == nullptr ? indices.data() : first;
      areContiguous = areContiguous && (next == nullptr || next == indices.data());
      next = indices.data() + indices.size();
    }
  }
  if (first != nullptr && !areContiguous) {
    copied.clear();
    for (const CellGroup& group : cells.groups()) {
      copied.insert(copied.end(), group.nodeIndices().begin(), group.nodeIndices().end());
    }
    return copied.data();
  }
  return first == nullptr ? &kNone : first;
}

LentCells::LentCells(const CellsView& cells) {
  for (const CellGroup& group : cells.groups()) {
    shapes_.push_back(static_cast<ElemType>(group.shape()));
    nodesPerCell_.push_back(group.nodesPerCell());
    cellsPerGroup_.push_back(group.size());
  }
  elems_.numberOfElements = cells.size();
  elems_.numberOfElementTypes = require32(shapes_.size());
  elems_.elementTypes = shapes_.data();
  elems_.numberOfNodesByElement = nodesPerCell_.data();
  elems_.numberOfElementsByType = cellsPerGroup_.data();
  elems_.setConnectivities(orvml_io::borrowedArray(joinedNodeIndices(cells, copied_)));
  lendAll(cells.attributes(), "the attribute", elems_.attributes);
}

LentDocument::LentDocument(const DocumentView& view)
    : edges_(view.edges()), faces_(view.faces()), elements_(view.elements()) {
  requireDimension(view.dimension());
  setIdentification(view.identification(), document_);
  setNodes(view);
  for (const Parameter& parameter : view.parameters()) {
    requireName(parameter.name, "the parameter");
    document_.parametersScalar.Set(std::string(parameter.name).c_str(), parameter.value);
  }
  lendAll(view.vectorParameters(), "the vector parameter", document_.parametersVector);
  document_.meshDimension = view.dimension();
  // Last, when nothing can fail any more: the document would release them.
  document_.nodes = nodes_.numberOfNodes == 0 ? nullptr : &nodes_;
  document_.edges = edges_.elems();
  document_.faces = faces_.elems();
  document_.elements = elements_.elems();
}

LentDocument::~LentDocument() {
  // The containers belong to this object.
  document_.nodes = nullptr;
  document_.edges = nullptr;
  document_.faces = nullptr;
  document_.elements = nullptr;
}

void LentDocument::setNodes(const DocumentView& view) {
  const NodesView& nodes = view.nodes();
  if (nodes.size() == 0) {
    return;
  }
  requireCoordinates(view);
  nodes_.setCoordinates(orvml_io::borrowedArray(nodes.coordinates().data()),
                        static_cast<long long>(nodes.coordinates().size()));
  nodes_.numberOfNodes = nodes.size();
  lendAll(nodes.attributes(), "the attribute", nodes_.attributes);
}

}  // namespace orvml::detail
