#include <orvml/describe.hpp>

#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"
#include "opened_file.h"
#include "stand_in.h"
#include "stored_values.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

/// Zeros in the place of arrays, the same ones for all that are not larger.
class Zeros {
 public:
  [[nodiscard]] const void* ofBytes(std::size_t bytes) {
    alignas(double) static constexpr std::array<char, 4096> kFew = {};
    if (bytes <= kFew.size()) {
      return kFew.data();
    }
    if (made_.empty() || made_.back()->bytes() < bytes) {
      made_.push_back(std::make_unique<detail::StandIn>(bytes));
    }
    return made_.back()->address();
  }

 private:
  std::vector<std::unique_ptr<detail::StandIn>> made_;  // each larger than the ones before
};

std::string typeText(hid_t dataset) {
  const orvml_io::DatatypeId type(H5Dget_type(dataset));
  const std::string bits = std::to_string(H5Tget_size(type.get()) * 8);
  const bool isSwapped =
      H5Tget_size(type.get()) > 1 && H5Tget_order(type.get()) != H5Tget_order(H5T_NATIVE_INT);
  const char* order = !isSwapped                                 ? ""
                      : H5Tget_order(type.get()) == H5T_ORDER_BE ? ", big-endian"
                      : H5Tget_order(type.get()) == H5T_ORDER_LE ? ", little-endian"
                                                                 : ", of another byte order";
  switch (H5Tget_class(type.get())) {
    case H5T_INTEGER:
      return (H5Tget_sign(type.get()) == H5T_SGN_NONE ? "uint" : "int") + bits + order;
    case H5T_FLOAT:
      return "float" + bits + order;
    case H5T_ENUM:
      return "enumeration of " + bits + " bits" + order;
    default:
      return "other";
  }
}

std::vector<std::uint64_t> extentsOf(hid_t dataset) {
  const orvml_io::DataspaceId space(H5Dget_space(dataset));
  std::array<hsize_t, H5S_MAX_RANK> extents = {};
  const int rank = H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
  return {extents.begin(), extents.begin() + std::max(rank, 0)};
}

std::vector<std::string> filtersOf(hid_t creation) {
  std::vector<std::string> filters;
  const int count = H5Pget_nfilters(creation);
  for (int i = 0; i < count; ++i) {
    unsigned flags = 0;
    std::size_t numberOfParameters = 0;
    std::array<char, 64> name = {};
    const H5Z_filter_t filter =
        H5Pget_filter2(creation, static_cast<unsigned>(i), &flags, &numberOfParameters, nullptr,
                       name.size() - 1, name.data(), nullptr);
    filters.push_back(name[0] != '\0' ? std::string(name.data())
                                      : "filter " + std::to_string(filter));
  }
  return filters;
}

Layout layoutOf(hid_t creation) {
  switch (H5Pget_layout(creation)) {
    case H5D_COMPACT:
      return Layout::compact;
    case H5D_CONTIGUOUS:
      return Layout::contiguous;
    case H5D_CHUNKED:
      return Layout::chunked;
    default:
      return Layout::other;
  }
}

StoredArray storedArrayOf(hid_t dataset) {
  if (H5Dget_offset(dataset) != HADDR_UNDEF) {
    // In one stretch, which leaves nothing to ask the list for, whose copy costs much.
    return {orvml_io::pathOfObject(dataset),
            extentsOf(dataset),
            typeText(dataset),
            Layout::contiguous,
            {},
            H5Dget_storage_size(dataset)};
  }
  const orvml_io::PropertyListId creation(H5Dget_create_plist(dataset));
  return {orvml_io::pathOfObject(dataset), extentsOf(dataset),        typeText(dataset),
          layoutOf(creation.get()),        filtersOf(creation.get()), H5Dget_storage_size(dataset)};
}

/// Takes notes of the arrays that a reader asks for, and gives it zeros in their place.
class NotedArrays : public orvml_io::ArrayReader {
 public:
  [[nodiscard]] const void* lend(const orvml_io::WantedArray& wanted) override {
    StoredArray stored = storedArrayOf(wanted.dataset);
    std::string object = stored.object;
    stored_.insert_or_assign(std::move(object), std::move(stored));
    const std::size_t valueBytes = wanted.code == orvml_io::kIntCode ? sizeof(int) : sizeof(double);
    return zeros_.ofBytes(static_cast<std::size_t>(wanted.length) * valueBytes);
  }
  [[nodiscard]] bool read(const orvml_io::WantedArray& /*wanted*/, void* /*values*/) override {
    return false;
  }

  [[nodiscard]] std::optional<StoredArray> find(const std::string& object) const {
    const auto found = stored_.find(object);
    return found == stored_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  Zeros zeros_;
  std::map<std::string, StoredArray> stored_;
};

std::vector<AttributeDescription> describeVectors(const OML_AttributesVector& store,
                                                  const std::string& group,
                                                  const NotedArrays& noted) {
  std::vector<AttributeDescription> descriptions;
  descriptions.reserve(store.count());
  for (const auto& [name, entry] : store) {
    std::string object = group;
    object.append("/").append(name);
    descriptions.push_back({name, entry.code == orvml_io::kIntCode, entry.length,
                            entry.mustBeTransmitted, noted.find(object).value_or(StoredArray())});
  }
  return descriptions;
}

NodesDescription describeNodes(const OrvInputAndOrvOutput& document, const std::string& group,
                               const NotedArrays& noted) {
  if (document.nodes == nullptr) {
    return {};
  }
  const std::string path = group + layout::kNodes;
  return {document.nodes->numberOfNodes, noted.find(path + layout::kCoordinates),
          describeVectors(document.nodes->attributes, path + layout::kAttributes, noted)};
}

CellsDescription describeCells(const orvml_io::Elems* elems, const std::string& path,
                               const NotedArrays& noted) {
  if (elems == nullptr) {
    return {};
  }
  CellsDescription description;
  description.size = elems->numberOfElements;
  const bool areGroupsKnown = elems->elementTypes != nullptr &&
                              elems->numberOfElementsByType != nullptr &&
                              elems->numberOfNodesByElement != nullptr;
  for (int i = 0; areGroupsKnown && i < elems->numberOfElementTypes; ++i) {
    description.groups.push_back({static_cast<Shape>(elems->elementTypes[i]),
                                  elems->numberOfNodesByElement[i],
                                  elems->numberOfElementsByType[i]});
  }
  description.nodeIndices = noted.find(path + layout::kConnectivities);
  description.attributes = describeVectors(elems->attributes, path + layout::kAttributes, noted);
  return description;
}

DocumentDescription describeDocument(const OrvInputAndOrvOutput& document, Kind kind,
                                     const NotedArrays& noted) {
  const std::string group = detail::groupOf(kind);
  DocumentDescription description;
  description.kind = kind;
  description.moduleName = document.moduleName;
  description.moduleFormatVersion = document.moduleFormatVersion;
  description.creator = document.ioCreator;
  description.dimension = document.meshDimension;
  description.nodes = describeNodes(document, group, noted);
  description.edges = describeCells(document.edges, group + layout::kEdges, noted);
  description.faces = describeCells(document.faces, group + layout::kFaces, noted);
  description.elements = describeCells(document.elements, group + layout::kElements, noted);
  for (const auto& [name, value] : document.parametersScalar) {
    description.parameters.push_back({name, value});
  }
  description.vectorParameters =
      describeVectors(document.parametersVector, group + layout::kParametersVector, noted);
  return description;
}

}  // namespace

Description describe(const std::filesystem::path& path) {
  const detail::OpenedFile file(path);
  Description description;
  description.fileBytes = file.bytes();
  {
    const orvml_io::Silence silence;
    description.formatVersion =
        orvml_io::readRootText(file.id(), layout::kFormatVersion).value_or("");
  }
  for (const Kind kind : {Kind::input, Kind::output}) {
    if (!file.holds(kind)) {
      continue;
    }
    NotedArrays noted;
    detail::ReadDocument read = detail::readDocument(file, kind, Policy::tolerant, &noted);
    std::move(read.findings.begin(), read.findings.end(), std::back_inserter(description.findings));
    if (read.document != nullptr) {
      (kind == Kind::input ? description.input : description.output) =
          describeDocument(*read.document, kind, noted);
    }
  }
  return description;
}

}  // namespace orvml
