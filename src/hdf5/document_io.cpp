// The members that write and read a whole document in a fixed order, and its root attributes and
// dimension: OrvInputAndOrvOutput::WriteCommonPart down to ReadSpatialDimension, and the Write
// and Read members of OrvInput and OrvOutput.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/octree_mesher.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"

#include <optional>
#include <string>
#include <utility>

namespace orvml_io {

namespace {

// An old spelling of the octree mesher's name, which files still hold.
constexpr char kOctreeMesherOldSpelling[] = "OrvML_OCTREE_MESHER";

}  // namespace

int OrvInputAndOrvOutput::WriteIOCreator(hid_t file) const {
  return setText(file, layout::kIOCreator, ioCreator);
}

int OrvInputAndOrvOutput::WriteModuleNameAndVersion(hid_t file) const {
  if (setText(file, layout::kModuleName, moduleName) != kOk) {
    return kFailed;
  }
  return setText(file, layout::kModuleFormatVersion, moduleFormatVersion);
}

int OrvInputAndOrvOutput::ReadIOCreator(SourceFile& file) {
  if (const auto text = readRootText(file.id(), layout::kIOCreator)) {
    copyIdentification(ioCreator, text->c_str());
  }
  return kOk;
}

int OrvInputAndOrvOutput::ReadModuleNameAndVersion(SourceFile& file) {
  if (const auto text = readRootText(file.id(), layout::kModuleName)) {
    copyIdentification(moduleName,
                       *text == kOctreeMesherOldSpelling ? kOctreeMesher : text->c_str());
  }
  if (const auto text = readRootText(file.id(), layout::kModuleFormatVersion)) {
    copyIdentification(moduleFormatVersion, text->c_str());
  }
  return kOk;
}

int OrvInputAndOrvOutput::ReadFormatVersion(SourceFile& file) {
  const auto text = readRootText(file.id(), layout::kFormatVersion);
  copyIdentification(fileFormatVersion, text ? text->c_str() : "");
  return kOk;
}

int OrvInputAndOrvOutput::ReadSpatialDimension(SourceFile& file, const OpenGroup& document) {
  meshDimension = -1;
  const Opened<DatasetId> dataset = file.openDataset(document, layout::kDimension);
  if (!dataset.isObject()) {
    file.reportIfAbsent(dataset.found, document, layout::kDimension);
    return kFailed;
  }
  const std::optional<Extent> extent = extentOf(dataset.id.get());
  int dimension = -1;
  if (!extent || extent->numberOfValues != 1) {
    file.report(Trouble::wrongShape, document, layout::kDimension,
                [] { return "is not one number"; });
    return kFailed;
  }
  if (readValues(dataset.id.get(), &dimension) != kOk) {
    file.report(Trouble::unreadable, document, layout::kDimension, [] { return "cannot be read"; });
    return kFailed;
  }
  meshDimension = dimension;
  if (!isAcceptedDimension(dimension)) {
    file.report(Trouble::badValue, document, layout::kDimension, [dimension] {
      return "is " + std::to_string(dimension) + ", a mesh has dimension 2 or 3";
    });
  }
  // Contract: 1 passes here and is rejected only by the readers of whole documents.
  return dimension < 1 || dimension > 3 ? kFailed : kOk;
}

int OrvInputAndOrvOutput::WriteCommonPart(hid_t file, const char* group,
                                          const char* version) const {
  const OpenGroup root(file, 0);
  const GroupId created = createGroupIfAbsent(root, group);
  const OpenGroup document = root.below(created.get(), group);
  if (WriteIOCreator(file) != kOk || WriteModuleNameAndVersion(file) != kOk ||
      makeVector(document, layout::kDimension, 1, &meshDimension) != kOk) {
    return kFailed;
  }
  if (WriteNodes(document) != kOk || WriteEdges(document) != kOk || WriteFaces(document) != kOk ||
      WriteElements(document) != kOk) {
    return kFailed;
  }
  if (WriteParametersScalar(document, version) != kOk) {
    return kFailed;
  }
  return WriteParametersVector(document, version);
}

int OrvInputAndOrvOutput::ReadCommonPart(SourceFile& file, const char* group) {
  Opened<GroupId> opened = file.openGroup(file.root(), group);
  if (!opened.isObject()) {
    file.reportIfAbsent(opened.found, file.root(), group);
    // Contract: no error here; the dimension stays as it was, which readers test.
    return opened.isRefused() ? kFailed : kOk;
  }
  const OpenGroup document =
      file.root().below(file.keepOpen(std::move(opened.id), KeptOpen::documentGroup), group);
  // The version comes first: the readers of attributes and parameters select their layout by it.
  (void)ReadFormatVersion(file);
  (void)ReadIOCreator(file);
  (void)ReadModuleNameAndVersion(file);
  AnyFailure any;
  any.add(ReadSpatialDimension(file, document));
  any.add(ReadNodes(file, document));
  any.add(ReadEdges(file, document));
  any.add(ReadFaces(file, document));
  any.add(ReadElements(file, document));
  any.add(ReadParametersScalar(file, document));
  any.add(ReadParametersVector(file, document));
  return any.status();
}

int OrvInput::Write(const OrvInputAndOrvOutput& document, hid_t file, const char* version) {
  return file < 0 ? kFailed : document.WriteCommonPart(file, layout::kOrvInput, version);
}

int OrvOutput::Write(const OrvInputAndOrvOutput& document, hid_t file, const char* version) {
  return document.WriteCommonPart(file, layout::kOrvOutput, version);
}

int OrvInput::Read(SourceFile& file) {
  return !file.valid() ? kFailed : ReadCommonPart(file, layout::kOrvInput);
}

int OrvOutput::Read(SourceFile& file) {
  return !file.valid() ? kFailed : ReadCommonPart(file, layout::kOrvOutput);
}

}  // namespace orvml_io
