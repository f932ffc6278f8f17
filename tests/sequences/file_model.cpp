#include "sequences/file_model.h"

#include <algorithm>

namespace orvml_io_tests {

namespace {

constexpr std::size_t kNameBytes = 80;  // with the terminator

/// The first values of an array, or zeros where there is none: a missing array is made as a dataset
/// that is never written.
template <class T>
Shared<T> storedArray(const Shared<T>& source, int count) {
  std::vector<T> values(static_cast<std::size_t>(std::max(count, 0)));
  if (source != nullptr) {
    std::copy_n(source->values.begin(), values.size(), values.begin());
  }
  return makeShared(std::move(values));
}

NamedVectors withoutFlags(const NamedVectors& vectors) {
  NamedVectors result = vectors;
  for (auto& named : result) {
    named.second.mustBeTransmitted = false;
    named.second.block = nullptr;
  }
  return result;
}

NodesModel throughAFile(const NodesModel& nodes, int dimension) {
  return {storedArray(nodes.coords, nodes.count * dimension), nodes.count,
          withoutFlags(nodes.attributes)};
}

CellsModel throughAFile(const CellsModel& cells) {
  CellsModel result;
  result.count = cells.cellsInGroups();
  result.connectivities = storedArray(cells.connectivities, cells.connectivityLength());
  result.groups = cells.groups;
  result.shapes = storedArray(cells.shapes, cells.groups);
  result.nodesPerCell = storedArray(cells.nodesPerCell, cells.groups);
  result.cellsPerGroup = storedArray(cells.cellsPerGroup, cells.groups);
  result.keepsGroupArrays = false;
  result.attributes = withoutFlags(cells.attributes);
  return result;
}

/// Tells whether a dataset can be made under a name.
bool isMemberName(const std::string& name) { return !name.empty() && name.size() < kNameBytes; }

/// Keeps the vectors that are written before the first that cannot be, and tells whether all are.
bool keepWrittenVectors(NamedVectors& vectors) {
  const auto failing = std::find_if(vectors.begin(), vectors.end(),
                                    [](const auto& named) { return !isMemberName(named.first); });
  const bool all = failing == vectors.end();
  vectors.erase(failing, vectors.end());
  return all;
}

bool areTableNames(const std::map<std::string, double>& scalars) {
  return std::all_of(scalars.begin(), scalars.end(),
                     [](const auto& parameter) { return parameter.first.size() < kNameBytes; });
}

/// The steps of writing a document, in their order; the first that fails ends the work. What was
/// written before then, and by the failing step, stays.
class Writer {
 public:
  explicit Writer(const DocumentModel& source) : source_(source) {
    written_.isInput = source.isInput;
    written_.dimension = source.dimension;
  }

  DocumentModel take() { return std::move(written_); }

  bool writeAll() {
    return writeNodes() && writeCells(ORVML_EDGES) && writeCells(ORVML_FACES) &&
           writeCells(ORVML_ELEMENTS) && writeScalars() && writeVectors();
  }

 private:
  bool writeNodes() {
    if (!source_.nodes || source_.nodes->count == 0) {
      return true;
    }
    written_.nodes = source_.nodes;
    return keepWrittenVectors(written_.nodes->attributes);
  }

  bool writeCells(ORVML_TYPE_OF_ENTITY entity) {
    const CellsModel* cells = source_.cellsOf(entity);
    if (cells == nullptr || cells->groups == 0) {
      return true;
    }
    return keepWrittenVectors(written_.cells.emplace(entity, *cells).first->second.attributes);
  }

  bool writeScalars() {
    if (!areTableNames(source_.scalars)) {
      return false;
    }
    written_.scalars = source_.scalars;
    return true;
  }

  bool writeVectors() {
    written_.vectors = source_.vectors;
    return keepWrittenVectors(written_.vectors);
  }

  const DocumentModel& source_;
  DocumentModel written_;
};

/// Tells whether every part that readers insist on is there. Node containers and scalar parameters
/// that were not written count as parts that cannot be read; the other parts may be missing.
bool readsWhole(const DocumentModel& stored) {
  return stored.dimension >= 1 && stored.dimension <= 3 && stored.nodes.has_value() &&
         !stored.scalars.empty();
}

}  // namespace

DocumentModel throughAFile(const DocumentModel& document) {
  DocumentModel result = document;
  result.ownsArrays = true;
  // The callbacks are not written.
  result.statusCallback = {};
  result.errorCallback = {};
  // Containers without nodes or without cells are lost with their attributes.
  result.nodes.reset();
  if (document.nodes && document.nodes->count != 0) {
    // Arrays end where their counts say; missing ones come back as zeros; flags are lost.
    result.nodes = throughAFile(*document.nodes, document.dimension);
  }
  result.cells.clear();
  for (const auto& [entity, cells] : document.cells) {
    if (cells.cellsInGroups() != 0) {
      // The number of cells becomes the sum over the groups.
      result.cells.emplace(entity, throughAFile(cells));
    }
  }
  result.vectors = withoutFlags(document.vectors);
  return result;
}

int FileModel::write(const DocumentModel* input, const DocumentModel* output) {
  if (isHeldOpen_) {
    return 1;
  }
  *this = FileModel();
  isExchangeFile_ = true;
  int result = input == nullptr ? 0 : writeDocument(*input, input_);
  if (result == 0 && output != nullptr) {
    result = writeDocument(*output, output_);
  }
  return result;
}

int FileModel::writeDocument(const DocumentModel& document, std::optional<DocumentModel>& place) {
  identification_ = {document.moduleName, document.moduleFormatVersion, document.ioCreator};
  Writer writer(document);
  const bool all = writer.writeAll();
  place = throughAFile(writer.take());
  return all ? 0 : 1;
}

ReadModel FileModel::readInput() {
  if (!isExchangeFile_) {
    return {0, std::nullopt};
  }
  if (!input_) {
    return {1, std::nullopt};
  }
  isHeldOpen_ = true;
  ReadModel result = read(*input_);
  if (!result.document) {
    result.result = 1;
  } else {
    result.document->isInput = true;
  }
  return result;
}

ReadModel FileModel::readOutput() {
  if (!isExchangeFile_ || !output_) {
    return {0, std::nullopt};
  }
  isHeldOpen_ = true;
  ReadModel result = read(*output_);
  if (result.document) {
    result.document->isInput = false;
  }
  return result;
}

ReadModel FileModel::read(const DocumentModel& stored) const {
  ReadModel result;
  result.result = readsWhole(stored) ? 0 : 1;
  if (stored.dimension == 2 || stored.dimension == 3) {
    // A copy of its own for each reader.
    result.document = throughAFile(stored);
    result.document->moduleName = identification_.moduleName;
    result.document->moduleFormatVersion = identification_.moduleFormatVersion;
    result.document->ioCreator = identification_.ioCreator;
  }
  return result;
}

}  // namespace orvml_io_tests
