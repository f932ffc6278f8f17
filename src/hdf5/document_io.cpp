// The members that write and read a whole document in a fixed order, and its root attributes and
// dimension: OrvInputAndOrvOutput::WriteCommonPart down to ReadSpatialDimension, and the Write
// and Read members of OrvInput and OrvOutput.
#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"

namespace orvml_io {

namespace {

// An old spelling of the octree mesher's name, which files still hold.
constexpr char kOctreeMesherOldSpelling[] = "OrvML_OCTREE_MESHER";
constexpr char kOctreeMesher[] = "ORVML_OCTREE_MESHER";

int writeRootText(hid_t file, const char* name, const char* text) {
  return setText(file, name, text);
}

int writeDimension(hid_t file, const char* group, int dimension) {
  Path path(group);
  return path.append(layout::kDimension) ? makeVector(file, path, 1, &dimension) : kFailed;
}

}  // namespace

int OrvInputAndOrvOutput::WriteIOCreator(hid_t file) const {
  return writeRootText(file, layout::kIOCreator, ioCreator);
}

int OrvInputAndOrvOutput::WriteModuleNameAndVersion(hid_t file) const {
  if (writeRootText(file, layout::kModuleName, moduleName) != kOk) {
    return kFailed;
  }
  return writeRootText(file, layout::kModuleFormatVersion, moduleFormatVersion);
}

int OrvInputAndOrvOutput::ReadIOCreator(const SourceFile& file) {
  if (const auto text = readRootText(file.id(), layout::kIOCreator)) {
    copyIdentification(ioCreator, text->c_str());
  }
  return kOk;
}

int OrvInputAndOrvOutput::ReadModuleNameAndVersion(const SourceFile& file) {
  if (const auto text = readRootText(file.id(), layout::kModuleName)) {
    copyIdentification(moduleName,
                       *text == kOctreeMesherOldSpelling ? kOctreeMesher : text->c_str());
  }
  if (const auto text = readRootText(file.id(), layout::kModuleFormatVersion)) {
    copyIdentification(moduleFormatVersion, text->c_str());
  }
  return kOk;
}

int OrvInputAndOrvOutput::ReadFormatVersion(const SourceFile& file) {
  const auto text = readRootText(file.id(), layout::kFormatVersion);
  copyIdentification(fileFormatVersion, text ? text->c_str() : "");
  return kOk;
}

int OrvInputAndOrvOutput::ReadSpatialDimension(const SourceFile& file, const char* group) {
  meshDimension = -1;
  Path path(group);
  if (!path.append(layout::kDimension)) {
    return kFailed;
  }
  const DatasetId dataset = file.tryOpenDataset(path);
  int dimension = -1;
  if (!dataset.valid() || !isVectorOfLength(dataset.get(), 1, sizeof(int)) ||
      readValues(dataset.get(), &dimension) != kOk) {
    return kFailed;
  }
  meshDimension = dimension;
  // Contract: 1 passes here and is rejected only by the readers of whole documents.
  return dimension >= 1 && dimension <= 3 ? kOk : kFailed;
}

int OrvInputAndOrvOutput::WriteCommonPart(hid_t file, const char* group,
                                          const char* version) const {
  (void)createGroupIfAbsent(file, Path(group));
  if (WriteIOCreator(file) != kOk || WriteModuleNameAndVersion(file) != kOk ||
      writeDimension(file, group, meshDimension) != kOk) {
    return kFailed;
  }
  if (WriteNodes(file, group) != kOk || WriteEdges(file, group) != kOk ||
      WriteFaces(file, group) != kOk || WriteElements(file, group) != kOk) {
    return kFailed;
  }
  if (WriteParametersScalar(file, group, version) != kOk) {
    return kFailed;
  }
  return WriteParametersVector(file, group, version);
}

int OrvInputAndOrvOutput::ReadCommonPart(const SourceFile& file, const char* group) {
  if (!file.tryKeepGroup(Path(group), KeptOpen::documentGroup)) {
    // Contract: no error here; the dimension stays as it was, which readers test.
    return file.hasRefused() ? kFailed : kOk;
  }
  // The version comes first: the readers of attributes and parameters select their layout by it.
  (void)ReadFormatVersion(file);
  (void)ReadIOCreator(file);
  (void)ReadModuleNameAndVersion(file);
  AnyFailure any;
  any.add(ReadSpatialDimension(file, group));
  any.add(ReadNodes(file, group));
  any.add(ReadEdges(file, group));
  any.add(ReadFaces(file, group));
  any.add(ReadElements(file, group));
  any.add(ReadParametersScalar(file, group));
  any.add(ReadParametersVector(file, group));
  // What comes from another file counts as an object that failed to read, wherever it was met.
  any.add(file.hasRefused() ? kFailed : kOk);
  return any.status();
}

int OrvInput::Write(const OrvInputAndOrvOutput& document, hid_t file, const char* version) {
  return file < 0 ? kFailed : document.WriteCommonPart(file, layout::kOrvInput, version);
}

int OrvOutput::Write(const OrvInputAndOrvOutput& document, hid_t file, const char* version) {
  return file < 0 ? kFailed : document.WriteCommonPart(file, layout::kOrvOutput, version);
}

int OrvInput::Read(const SourceFile& file) {
  return !file.valid() ? kFailed : ReadCommonPart(file, layout::kOrvInput);
}

int OrvOutput::Read(const SourceFile& file) {
  return !file.valid() ? kFailed : ReadCommonPart(file, layout::kOrvOutput);
}

}  // namespace orvml_io
