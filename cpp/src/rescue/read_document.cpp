// The reader of a document: its order, its dimension and its texts. Its mesh is in read_mesh.cpp,
// named values are in read_vectors.cpp.
#include "rescue/read_document.h"

#include "check/finding_list.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"
#include "model/names.h"
#include "opened_file.h"
#include "rescue/document_reader.h"

#include <utility>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

/// What the core's reader found; what it finds no fault with is none.
void DocumentReader::tellFindings() {
  for (Finding& finding : findingsOf(diagnosis_)) {
    losses_.addAsTold(
        {text(finding.code), std::move(finding.object), {}, 1, std::move(finding.sentence)});
  }
}

/// Coordinates lie in rows, whatever the dimension is said to be.
bool DocumentReader::readDimension(const OpenGroup& document) {
  orvml_io::Diagnosis diagnosis;
  SourceFile file(file_.id(), &diagnosis);
  ReadValuesOfCore core;
  (void)core.ReadSpatialDimension(file, document);
  const auto coordinates = file.openDataset(document, layout::kNodesCoordinates);
  const orvml_io::Extent extent =
      coordinates.isObject() ? orvml_io::extentOf(coordinates.id.get()).value_or(orvml_io::Extent())
                             : orvml_io::Extent();
  const hsize_t columns =
      extent.rank == 2 && extent.first > 0 ? extent.numberOfValues / extent.first : 0;
  const std::string object = group_ + layout::kDimension;
  read_.dimension = core.meshDimension;
  if ((columns == 2 || columns == 3) && static_cast<int>(columns) != core.meshDimension) {
    read_.dimension = static_cast<int>(columns);
    losses_.addChange(object,
                      "is the number of columns of the coordinates, " + std::to_string(columns));
  } else if (!orvml_io::isAcceptedDimension(core.meshDimension)) {
    for (Finding& finding : findingsOf(diagnosis)) {
      if (finding.object == object) {
        losses_.addAsTold({text(finding.code), object, {}, 1, std::move(finding.sentence)});
      }
    }
  }
  return orvml_io::isAcceptedDimension(read_.dimension);
}

void DocumentReader::readText(const char* attribute, std::string& text) {
  const std::string object = std::string("/") + attribute;
  const auto found = orvml_io::readRootText(file_.id(), attribute);
  if (!found) {
    if (H5Aexists(file_.id(), attribute) != 0) {
      losses_.add(Code::objectUnreadable, object, "cannot be read");
    }
  } else if (found->size() >= orvml_io::kIdentificationBytes) {
    losses_.add(Code::textTooLong, object,
                "has " + std::to_string(found->size()) + " bytes, at most 79 are allowed");
  } else {
    text = *found;
  }
}

void DocumentReader::readIdentification() {
  readText(layout::kIOCreator, read_.creator);
  readText(layout::kModuleName, read_.moduleName);
  readText(layout::kModuleFormatVersion, read_.moduleFormatVersion);
  ReadValuesOfCore core;
  (void)core.ReadModuleNameAndVersion(file_);
  if (!read_.moduleName.empty() && read_.moduleName != core.moduleName) {
    read_.moduleName = core.moduleName;
    losses_.addChange(std::string("/") + layout::kModuleName,
                      "has an old spelling, and is now " + read_.moduleName);
  }
}

/// Objects of a group whose names are lost look as if they had never been.
void DocumentReader::requireNames(const OpenGroup& group, const std::string& path) {
  if (!orvml_io::linkNames(group.id())) {
    losses_.add(Code::objectUnreadable, path, "cannot be listed, and may have held more");
  }
}

std::optional<RescuedDocument> readDocument(hid_t file, Kind kind, const FileFacts& facts,
                                            Losses& losses) {
  const orvml_io::Silence silence;
  return DocumentReader(file, kind, facts, losses).read();
}

}  // namespace orvml::detail
