#include "check/stored_file.h"
#include "hdf5/exchange_file.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"
#include "model/names.h"
#include "opened_file.h"
#include "rescue/read_document.h"
#include "vtkhdf/linked_group.h"

#include <algorithm>
#include <initializer_list>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

namespace {

constexpr const char* kContainers[] = {layout::kNodes, layout::kEdges, layout::kFaces,
                                       layout::kElements};

/// Which layouts the objects of a file belong to.
struct Layouts {
  bool hasNamed = false;
  bool hasPositional = false;
};

bool holdsAny(const OpenGroup& group, std::initializer_list<const char*> subPaths) {
  return std::any_of(subPaths.begin(), subPaths.end(), [&](const char* subPath) {
    return orvml_io::Orv_H5_GroupExists(group, subPath);
  });
}

void lookAtContainers(SourceFile& file, const OpenGroup& document, Layouts& layouts) {
  for (const char* subPath : kContainers) {
    const auto opened = file.openGroup(document, subPath);
    if (opened.isObject()) {
      const OpenGroup container = document.below(opened.id.get(), subPath);
      layouts.hasNamed |= holdsAny(container, {layout::kAttributes});
      layouts.hasPositional |=
          holdsAny(container, {layout::kFunctionAttributes, layout::kUserAttributes,
                               layout::kFunctionMarkers, layout::kUserMarkers});
    }
  }
}

/// A table of names and values, or values alone.
void lookAtParameters(SourceFile& file, const OpenGroup& document, Layouts& layouts) {
  const auto opened = file.openDataset(document, layout::kParameters);
  if (opened.isObject()) {
    const orvml_io::DatatypeId type(H5Dget_type(opened.id.get()));
    const H5T_class_t typeClass = type.valid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
    layouts.hasNamed |= typeClass == H5T_COMPOUND;
    layouts.hasPositional |= typeClass == H5T_FLOAT || typeClass == H5T_INTEGER;
  }
}

Layouts layoutsOf(hid_t id) {
  SourceFile file(id);
  Layouts layouts;
  for (const Kind kind : {Kind::input, Kind::output}) {
    const auto opened = file.openGroup(file.root(), groupOf(kind));
    if (!opened.isObject()) {
      continue;
    }
    const OpenGroup document = file.root().below(opened.id.get(), groupOf(kind));
    lookAtParameters(file, document, layouts);
    lookAtContainers(file, document, layouts);
    layouts.hasNamed |= holdsAny(document, {layout::kParametersVector});
    layouts.hasPositional |=
        holdsAny(document, {layout::kGenericMarkers, layout::kGenericAttributes});
  }
  return layouts;
}

/// The version counts, unless every object with a name or a position contradicts it.
std::string versionToReadBy(hid_t file, const std::string& stated, Losses& losses) {
  const std::string object = std::string("/") + layout::kFormatVersion;
  const std::string what = stated.empty() ? "is missing" : "is " + stated;
  const bool isLegacy = orvml_io::isBelowNamedFormat(stated.c_str());
  const Layouts layouts = layoutsOf(file);
  if (isLegacy && layouts.hasNamed && !layouts.hasPositional) {
    losses.addChange(object, what + ", and the objects have names as in the present format");
    return orvml_io::kFormatVersion;
  }
  if (!isLegacy && layouts.hasPositional && !layouts.hasNamed) {
    losses.addChange(object, what + ", and the objects have positions as in older formats");
    return {};
  }
  return stated;
}

/// What a reader makes of the objects that do not belong, or hold too large integers.
void takeStoredObjects(hid_t file, FileFacts& facts, Losses& losses) {
  FindingList findings(CheckOptions{});
  checkStoredObjects(file, orvml_io::isBelowNamedFormat(facts.version.c_str()), findings);
  for (CheckFinding& finding : findings.take()) {
    if (finding.code != text(CheckCode::integersClamped)) {
      losses.addAsTold({finding.code, finding.object, {}, 1, std::move(finding.sentence)});
      continue;
    }
    // Of node indices only the cells that name such a node are lost.
    if (!finding.object.ends_with(layout::kConnectivities)) {
      losses.add(finding.code, finding.object, "holds integers of more than 32 bits");
      facts.clamped.insert(std::move(finding.object));
    }
  }
}

}  // namespace

FileFacts factsOf(hid_t file, Losses& losses) {
  const orvml_io::Silence silence;
  FileFacts facts;
  facts.statedVersion = orvml_io::readRootText(file, layout::kFormatVersion).value_or("");
  facts.isMarked = orvml_io::IsOrvMeshLibraryIOFormat(file);
  if (!facts.isMarked) {
    losses.addChange(std::string("/") + layout::kFormat,
                     "is missing, or not the marker of exchange files");
  }
  if (!orvml_io::linkNames(file)) {
    losses.add(Code::objectUnreadable, "/", "cannot be listed, and may have held more");
  }
  if (vtkGroupOf(file) == VtkGroup::ofLinkVtk) {
    losses.addChange(layout::kVtkHdf,
                     "is left out: it shows what stands elsewhere, and can be linked again");
  }
  facts.version = versionToReadBy(file, facts.statedVersion, losses);
  takeStoredObjects(file, facts, losses);
  return facts;
}

}  // namespace orvml::detail
