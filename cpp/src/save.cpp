#include <orvml/save.hpp>

#include "hdf5/datasets.h"
#include "hdf5/layout.h"
#include "lent_values.h"
#include "model/document.h"
#include "model/names.h"
#include "requirements.h"
#include "safe_file.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;
using orvml_io::Elems;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

/// Makes the vectors of a view entries of a store, which borrows their values.
void lendAll(const Attributes& vectors, const char* what, OML_AttributesVector& store) {
  for (const Attribute& vector : vectors) {
    detail::requireVector(vector, what);
    detail::lend(vector, store);
  }
}

/// Cells in the form that the core writes. It borrows the node indices of a view whose groups lie
/// one behind the other, and holds a copy of others.
class WrittenCells {
 public:
  WrittenCells(const CellsView& cells, const char* what) {
    for (const CellGroup& group : cells.groups()) {
      shapes_.push_back(static_cast<ElemType>(group.shape()));
      nodesPerCell_.push_back(group.nodesPerCell());
      cellsPerGroup_.push_back(group.size());
    }
    elems_.numberOfElements = cells.size();
    elems_.numberOfElementTypes = detail::require32(shapes_.size());
    elems_.elementTypes = shapes_.data();
    elems_.numberOfNodesByElement = nodesPerCell_.data();
    elems_.numberOfElementsByType = cellsPerGroup_.data();
    elems_.setConnectivities(orvml_io::borrowedArray(nodeIndicesOf(cells)));
    lendAll(cells.attributes(), what, elems_.attributes);
  }
  WrittenCells(const WrittenCells&) = delete;
  WrittenCells& operator=(const WrittenCells&) = delete;
  WrittenCells(WrittenCells&&) = delete;
  WrittenCells& operator=(WrittenCells&&) = delete;
  ~WrittenCells() = default;

  /// What the document refers to while it is written; null without cells, which files do not keep.
  [[nodiscard]] Elems* elems() noexcept { return elems_.numberOfElements == 0 ? nullptr : &elems_; }

 private:
  const int* nodeIndicesOf(const CellsView& cells) {
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
      for (const CellGroup& group : cells.groups()) {
        copied_.insert(copied_.end(), group.nodeIndices().begin(), group.nodeIndices().end());
      }
      return copied_.data();
    }
    return first == nullptr ? &kNone : first;
  }

  std::vector<ElemType> shapes_;
  std::vector<int> nodesPerCell_;
  std::vector<int> cellsPerGroup_;
  std::vector<int> copied_;
  Elems elems_;
};

/// A view in the form that the core writes. It borrows all arrays.
class WrittenDocument {
 public:
  explicit WrittenDocument(const DocumentView& view)
      : edges_(view.edges(), "the attribute"),
        faces_(view.faces(), "the attribute"),
        elements_(view.elements(), "the attribute") {
    detail::requireDimension(view.dimension());
    detail::setIdentification(view.identification(), document_);
    setNodes(view);
    for (const Parameter& parameter : view.parameters()) {
      detail::requireName(parameter.name, "the parameter");
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
  WrittenDocument(const WrittenDocument&) = delete;
  WrittenDocument& operator=(const WrittenDocument&) = delete;
  WrittenDocument(WrittenDocument&&) = delete;
  WrittenDocument& operator=(WrittenDocument&&) = delete;
  ~WrittenDocument() {
    // The containers belong to this object.
    document_.nodes = nullptr;
    document_.edges = nullptr;
    document_.faces = nullptr;
    document_.elements = nullptr;
  }

  [[nodiscard]] const OrvInputAndOrvOutput& document() const noexcept { return document_; }

 private:
  void setNodes(const DocumentView& view) {
    const NodesView& nodes = view.nodes();
    if (nodes.size() == 0) {
      return;
    }
    if (nodes.dimension() != view.dimension() || nodes.coordinates().empty()) {
      throw Error(
          Code::sizesDisagree,
          "the nodes have " + (nodes.coordinates().empty() ? std::string("no coordinates")
                                                           : std::to_string(nodes.dimension()) +
                                                                 " coordinates, the mesh has " +
                                                                 std::to_string(view.dimension())));
    }
    nodes_.setCoordinates(orvml_io::borrowedArray(nodes.coordinates().data()),
                          static_cast<long long>(nodes.coordinates().size()));
    nodes_.numberOfNodes = nodes.size();
    lendAll(nodes.attributes(), "the attribute", nodes_.attributes);
  }

  orvml_io::Nodes nodes_;
  WrittenCells edges_;
  WrittenCells faces_;
  WrittenCells elements_;
  OrvInputAndOrvOutput document_;
};

bool isMarked(hid_t file) {
  return orvml_io::setText(file, layout::kFormat, layout::kFormatMarker) == orvml_io::kOk &&
         orvml_io::setText(file, layout::kFormatVersion, orvml_io::kFormatVersion) == orvml_io::kOk;
}

void write(const std::filesystem::path& path, const DocumentView* input, const DocumentView* output,
           const SaveOptions& options) {
  // What cannot be written shows before anything is touched.
  std::optional<WrittenDocument> writtenInput;
  std::optional<WrittenDocument> writtenOutput;
  if (input != nullptr) {
    writtenInput.emplace(*input);
  }
  if (output != nullptr) {
    writtenOutput.emplace(*output);
  }
  detail::FailureWatch watch;
  detail::SafeFile file(path, watch);
  const char* version = orvml_io::kFormatVersion;
  const bool isWritten =
      isMarked(file.id()) &&
      (!writtenInput ||
       orvml_io::OrvInput::Write(writtenInput->document(), file.id(), version) == orvml_io::kOk) &&
      (!writtenOutput ||
       orvml_io::OrvOutput::Write(writtenOutput->document(), file.id(), version) == orvml_io::kOk);
  if (!isWritten) {
    file.throwUnwritten();
  }
  file.finish(options.flush);
}

}  // namespace

void save(const std::filesystem::path& path, const InputView& input, const SaveOptions& options) {
  write(path, &input, nullptr, options);
}

void save(const std::filesystem::path& path, const OutputView& output, const SaveOptions& options) {
  write(path, nullptr, &output, options);
}

void save(const std::filesystem::path& path, const InputView& input, const OutputView& output,
          const SaveOptions& options) {
  write(path, &input, &output, options);
}

}  // namespace orvml
