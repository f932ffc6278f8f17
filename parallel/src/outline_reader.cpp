#include "outline_reader.h"

#include "core_views.h"
#include "hdf5/probes.h"
#include "hdf5/read_budget.h"
#include "stand_in.h"

#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace orvml::parallel::detail {

namespace {

using orvml::detail::StandIn;
using orvml_io::Elems;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

/// Notes where the arrays of nodes and cells lie, and gives the reader stand-ins for them.
class NotedArrays : public orvml_io::ArrayReader {
 public:
  NotedArrays(const orvml::detail::OpenedFile& file, Kind kind)
      : path_(file.path()), budget_(file.id()) {
    for (const Entity entity : kEntities) {
      groups_.push_back(groupPathOf(kind, entity) + "/");
    }
  }

  [[nodiscard]] const void* lend(const orvml_io::WantedArray& wanted) override {
    const std::string object = orvml_io::pathOfObject(wanted.dataset);
    if (wanted.length == 0 || !isShared(object)) {
      return nullptr;
    }
    const std::size_t valueBytes = wanted.code == orvml_io::kIntCode ? sizeof(int) : sizeof(double);
    requireAffordable(wanted, valueBytes, object);
    const auto bytes = static_cast<std::size_t>(wanted.length) * valueBytes;
    const auto& standIn = standIns_.emplace_back(std::make_unique<StandIn>(bytes));
    objects_.emplace(standIn->address(), object);
    return standIn->address();
  }
  [[nodiscard]] bool read(const orvml_io::WantedArray& /*wanted*/, void* /*values*/) override {
    return false;
  }

  /// Where an array lies that the reader was given; empty for one that it read.
  [[nodiscard]] std::string objectOf(const void* values) const {
    const auto found = objects_.find(values);
    return found == objects_.end() ? std::string() : found->second;
  }

 private:
  /// Whether it belongs to the nodes or cells, and not to the document as a whole.
  [[nodiscard]] bool isShared(std::string_view object) const {
    for (const std::string& group : groups_) {
      if (object.substr(0, group.size()) == group) {
        return true;
      }
    }
    return false;
  }

  void requireAffordable(const orvml_io::WantedArray& wanted, std::size_t valueBytes,
                         const std::string& object) {
    if (!budget_.take(
            orvml_io::readCostOf(wanted.dataset, wanted.extent, wanted.length, valueBytes))) {
      throw Error(Code::memoryOutOfProportion,
                  object + " would take memory out of all proportion to the file",
                  {path_, object, {}});
    }
  }

  std::filesystem::path path_;
  orvml_io::ReadBudget budget_;
  std::vector<std::string> groups_;
  std::vector<std::unique_ptr<StandIn>> standIns_;
  std::map<const void*, std::string> objects_;
};

std::vector<VectorOutline> outlinesOf(const OML_AttributesVector& store, const NotedArrays& noted) {
  std::vector<VectorOutline> outlines;
  for (const auto& [name, entry] : store) {
    outlines.push_back({name, entry.code == orvml_io::kIntCode, entry.mustBeTransmitted,
                        entry.length, noted.objectOf(entry.data), 0});
  }
  return outlines;
}

EntityOutline outlineOf(const Elems* elems, const NotedArrays& noted) {
  EntityOutline outline;
  if (elems == nullptr) {
    return outline;
  }
  outline.size = elems->numberOfElements;
  for (int i = 0; i < elems->numberOfElementTypes; ++i) {
    outline.groups.push_back({static_cast<int>(elems->elementTypes[i]),
                              elems->numberOfNodesByElement[i], elems->numberOfElementsByType[i]});
  }
  outline.object = noted.objectOf(elems->connectivities);
  outline.attributes = outlinesOf(elems->attributes, noted);
  return outline;
}

EntityOutline outlineOf(const orvml_io::Nodes* nodes, const NotedArrays& noted) {
  if (nodes == nullptr) {
    return {};
  }
  return {nodes->numberOfNodes,
          {},
          outlinesOf(nodes->attributes, noted),
          noted.objectOf(nodes->coords)};
}

NamedValues namedValuesOf(const std::string& name, const OML_AttributesVector::Entry& entry) {
  if (entry.code == orvml_io::kIntCode) {
    const int* values = static_cast<const int*>(entry.data);
    return {name, std::vector<int>(values, values + entry.length)};
  }
  const double* values = static_cast<const double*>(entry.data);
  return {name, std::vector<double>(values, values + entry.length)};
}

DocumentOutline outlineOf(const OrvInputAndOrvOutput& document, Kind kind,
                          const NotedArrays& noted) {
  DocumentOutline outline;
  outline.kind = kind;
  outline.moduleName = document.moduleName;
  outline.moduleFormatVersion = document.moduleFormatVersion;
  outline.creator = document.ioCreator;
  outline.dimension = document.meshDimension;
  outline.of(Entity::nodes) = outlineOf(document.nodes, noted);
  for (const Entity entity : kCellEntities) {
    outline.of(entity) =
        outlineOf(document.GetGenericElems(orvml::detail::coreEntity(entity)), noted);
  }
  for (const auto& [name, value] : document.parametersScalar) {
    outline.parameters.emplace_back(name, value);
  }
  for (const auto& [name, entry] : document.parametersVector) {
    outline.vectorParameters.push_back(namedValuesOf(name, entry));
  }
  return outline;
}

}  // namespace

DocumentOutline readOutline(const orvml::detail::OpenedFile& file, Kind kind) {
  NotedArrays noted(file, kind);
  const orvml::detail::ReadDocument read =
      orvml::detail::readDocument(file, kind, Policy::strict, &noted);
  if (read.document == nullptr) {
    orvml::detail::throwMissing(kind, file.path());
  }
  return outlineOf(*read.document, kind, noted);
}

}  // namespace orvml::parallel::detail
