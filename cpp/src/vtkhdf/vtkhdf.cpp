#include <orvml/fingerprint.hpp>
#include <orvml/mapped_file.hpp>
#include <orvml/vtkhdf.hpp>

#include "hdf5/layout.h"
#include "hdf5/silence.h"
#include "opened_file.h"
#include "safe_file.h"
#include "vtkhdf/linked_group.h"
#include "vtkhdf/vtk_arrays.h"
#include "vtkhdf/vtk_target.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;
using detail::OpenedFile;
using detail::SafeFile;
using detail::VtkGroup;

void requireOwn(VtkGroup group, const std::filesystem::path& path) {
  if (group == VtkGroup::ofOthers) {
    throw Error(Code::vtkGroupOfOthers,
                std::string(layout::kVtkHdf) + " was made by another program",
                {path, layout::kVtkHdf, {}});
  }
}

/// Does some work with the copy of a file; errors are about the file itself.
template <class Work>
auto about(const std::filesystem::path& path, const Work& work) {
  try {
    return work();
  } catch (const Error& error) {
    throw Error(error.code(), error.sentence(), {path, error.object(), error.hdf5Reason()});
  }
}

/// What readers find in a file; none of a document that is not there.
using Content = std::pair<std::optional<Fingerprint>, std::optional<Fingerprint>>;

Content contentOf(const MappedFile& file) {
  Content content;
  if (file.hasInput()) {
    content.first = fingerprint(file.input());
  }
  if (file.hasOutput()) {
    content.second = fingerprint(file.output());
  }
  return content;
}

/// The same of a file that may be damaged; none of one that cannot be read at all.
std::optional<Content> contentAt(const std::filesystem::path& path) {
  try {
    return contentOf(MappedFile(path, Policy::tolerant));
  } catch (const Error&) {
    return std::nullopt;
  }
}

/// A damaged file may say of one place that two arrays lie there, or none. What HDF5 writes there
/// would then be the end of what is there.
void requireUnchanged(bool isUnchanged, const std::filesystem::path& path) {
  if (!isUnchanged) {
    throw Error(Code::fileDamaged, "is an HDF5 file that cannot be changed without damage to it",
                {path, {}, {}});
  }
}

/// The file as it was given, or the one that was found when none was said.
Kind kindOf(const MappedFile& file, const std::optional<Kind>& wanted,
            const std::filesystem::path& path) {
  const Kind kind = wanted.value_or(file.hasOutput() ? Kind::output : Kind::input);
  if (!wanted && !file.hasInput() && !file.hasOutput()) {
    throw Error(Code::noDocument, "holds no document", {path, {}, {}});
  }
  if (!(kind == Kind::input ? file.hasInput() : file.hasOutput())) {
    detail::throwMissing(kind, path);
  }
  return kind;
}

void requireNodes(const NodesView& nodes, Kind kind) {
  const auto values =
      static_cast<std::size_t>(nodes.size()) * static_cast<std::size_t>(nodes.dimension());
  if (nodes.size() == 0 || nodes.coordinates().size() < values) {
    const std::string object = std::string(detail::groupOf(kind)) + layout::kNodes;
    throw Error(Code::conversionNoNodes, object + " has no nodes that could be shown",
                {{}, object, {}});
  }
}

bool makeText(hid_t group, const char* name, std::string_view text) {
  const orvml_io::DatatypeId type(H5Tcopy(H5T_C_S1));
  const orvml_io::DataspaceId space(H5Screate(H5S_SCALAR));
  if (H5Tset_size(type.get(), text.size()) < 0 || H5Tset_strpad(type.get(), H5T_STR_NULLPAD) < 0) {
    return false;
  }
  const orvml_io::AttributeId attribute(
      H5Acreate2(group, name, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
  return attribute.valid() && H5Awrite(attribute.get(), type.get(), text.data()) >= 0;
}

bool makeVersion(hid_t group) {
  constexpr std::array kVersion = {1, 0};
  constexpr hsize_t kNumbers = kVersion.size();
  const orvml_io::DataspaceId space(H5Screate_simple(1, &kNumbers, nullptr));
  const orvml_io::AttributeId attribute(
      H5Acreate2(group, "Version", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, H5P_DEFAULT));
  return attribute.valid() && H5Awrite(attribute.get(), H5T_NATIVE_INT, kVersion.data()) >= 0;
}

bool makeCount(hid_t group, const char* name, std::int64_t count) {
  return detail::makeArray<std::int64_t>(
      group, name, 1, 1, [count](std::span<std::int64_t> place) { place.front() = count; });
}

/// ParaView wants the text of the type to have exactly its length in bytes.
void makeHeader(const detail::VtkTarget& target) {
  const hid_t group = target.group;
  target.require(
      makeVersion(group) && makeText(group, "Type", "UnstructuredGrid") &&
      makeText(group, layout::kLinkedDocument, detail::groupOf(target.document.kind())) &&
      makeCount(group, "NumberOfPoints", target.document.nodes().size()) &&
      makeCount(group, "NumberOfCells", target.cells.cells()) &&
      makeCount(group, "NumberOfConnectivityIds", target.cells.indices()));
}

/// Removes the group that there may be. The file is closed then: HDF5 gives back only the space at
/// its end, and what is made while it is open would fill the rest in part.
void removeGroup(SafeFile& file, const std::filesystem::path& path) {
  file.openCopy();
  const VtkGroup group = detail::vtkGroupOf(file.id());
  requireOwn(group, path);
  if (group == VtkGroup::ofLinkVtk && H5Ldelete(file.id(), layout::kVtkHdf, H5P_DEFAULT) < 0) {
    file.throwUnwritten();
  }
  file.close();
}

/// All identifiers are closed at the end, without which the file would stay open.
void makeGroup(SafeFile& file, const DocumentView& document, const detail::ShownCells& cells,
               std::vector<ConversionNote>& notes) {
  const orvml_io::GroupId group(
      H5Gcreate2(file.id(), layout::kVtkHdf, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  detail::StoredArrays stored(file.id(), document.kind());
  const detail::VtkTarget target{file, group.get(), document, cells, stored, notes};
  target.require(group.valid());
  makeHeader(target);
  showPoints(target);
  showCells(target);
  showValues(target);
}

void requireNoLoss(const std::vector<ConversionNote>& notes, const std::filesystem::path& path) {
  const auto loss = std::find_if(notes.begin(), notes.end(),
                                 [](const ConversionNote& note) { return isLoss(note.fate); });
  if (loss != notes.end()) {
    throw Error(Code::conversionLoses, "would not be shown as it is: " + loss->sentence,
                {path, loss->object, {}});
  }
}

/// Makes the group in the copy of a file.
VtkLinkReport linkCopy(SafeFile& file, const std::filesystem::path& path,
                       const VtkLinkOptions& options) {
  VtkLinkReport report;
  const MappedFile mapped(file.name());
  const Content before = contentOf(mapped);
  report.document = kindOf(mapped, options.document, path);
  const DocumentView document =
      report.document == Kind::input ? DocumentView(mapped.input()) : DocumentView(mapped.output());
  requireNodes(document.nodes(), report.document);
  const detail::ShownCells cells(document, options, report.notes);
  report.points = document.nodes().size();
  report.cells = cells.cells();
  removeGroup(file, path);
  file.openCopy();
  makeGroup(file, document, cells, report.notes);
  file.close();
  requireUnchanged(contentAt(file.name()) == before, path);
  return report;
}

}  // namespace

bool isLinkedForVtk(const std::filesystem::path& path) {
  return detail::vtkGroupOf(OpenedFile(path).id()) == VtkGroup::ofLinkVtk;
}

VtkLinkReport linkVtk(const std::filesystem::path& path, const VtkLinkOptions& options) {
  requireOwn(detail::vtkGroupOf(OpenedFile(path).id()), path);
  detail::FailureWatch watch;
  SafeFile file(path, watch, SafeFile::AsCopy());
  const std::uint64_t bytesBefore = std::filesystem::file_size(file.name());
  VtkLinkReport report = about(path, [&] { return linkCopy(file, path, options); });
  if (options.isStrict) {
    requireNoLoss(report.notes, path);
  }
  report.bytesBefore = bytesBefore;
  report.bytesAfter = std::filesystem::file_size(file.name());
  file.finish(options.save.flush);
  return report;
}

bool unlinkVtk(const std::filesystem::path& path, const SaveOptions& options) {
  const VtkGroup group = detail::vtkGroupOf(OpenedFile(path).id());
  requireOwn(group, path);
  if (group == VtkGroup::none) {
    return false;
  }
  detail::FailureWatch watch;
  SafeFile file(path, watch, SafeFile::AsCopy());
  const std::optional<Content> before = contentAt(file.name());
  about(path, [&] { removeGroup(file, path); });
  requireUnchanged(contentAt(file.name()) == before, path);
  file.finish(options.flush);
  return true;
}

}  // namespace orvml
