#pragma once

#include <orvml/conversion.hpp>
#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/save.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

/// One file, two formats: a group in an exchange file by which VTK, and with it ParaView, opens the
/// file itself.
namespace orvml {

/// What VTK is to see.
struct VtkLinkOptions {
  /// Which document; else the output, or the input where there is no other.
  std::optional<Kind> document = {};
  bool edges = true;  ///< whether the edges are among the cells
  bool faces = true;
  bool elements = true;
  /// Whether prisms are turned: VTK before 9.7, and so ParaView 5.11, takes those whose base is
  /// seen counter-clockwise from the opposite triangle, as files have them, for inside out.
  bool turnsPrisms = false;
  bool isStrict = false;  ///< whether to throw Code::conversionLoses where isLoss() would be noted
  SaveOptions save = {};
};

/// What VTK sees, and what became of each part of the document on the way.
struct VtkLinkReport {
  Kind document = Kind::output;
  std::int64_t points = 0;
  std::int64_t cells = 0;
  std::uint64_t bytesBefore = 0;  ///< of the file
  std::uint64_t bytesAfter = 0;
  std::vector<ConversionNote> notes;  ///< nodes, cells, attributes, parameters
};

/// Adds the group `/VTKHDF` to an exchange file, or replaces the one that an earlier call added:
/// an UnstructuredGrid of version 1.0 of the VTKHDF format.
///
/// Its arrays are those of the document, under a second name, wherever VTK takes them as they are.
/// Cells of several kinds follow each other, edges before faces before elements, in virtual
/// datasets that hold no values of their own. The cell array `orvml.container` tells the kinds
/// apart: 1 is an edge, 2 a face, 3 an element.
///
/// - Copied are coordinates of the plane, which get a third one; prisms that are turned; scalar
///   parameters, which become field data; whatever is stored in a way that VTK does not read, or in
///   a layout before names; and joined arrays when this library was built with HDF5 before 1.10.
/// - Dropped are cells that VTK has no type for, and attributes without one value for each of their
///   nodes or cells. An attribute that only some kinds of cells have is padded on the others: with
///   NaN, and with -1 where it holds ints.
/// - A name that cannot be that of an array, or is taken, gets another one.
///
/// All else is as it was: readers of the format pass over the group, check() does not tell of it,
/// and the fingerprints are the same, which is looked at before the new file takes its place.
/// A file that is written anew does not have the group; its maker links it again.
///
/// The file is changed as safely as save() does it: in a copy beside it.
///
/// Throws Error, after which the file is as it was: as load() does for a document that cannot be
/// read whole, and as save() does; Code::noDocument, Code::noInput or Code::noOutput;
/// Code::conversionNoNodes for a document without nodes; Code::conversionBadIndex for cells that
/// name a node which does not exist, on which VTK would fall; Code::conversionLoses;
/// Code::vtkGroupOfOthers when there is such a group that linkVtk() has not made.
ORVML_EXPORT VtkLinkReport linkVtk(const std::filesystem::path& path,
                                   const VtkLinkOptions& options = {});

/// Whether a file has the group that linkVtk() adds. Throws Error as load() does when the file is
/// none.
[[nodiscard]] ORVML_EXPORT bool isLinkedForVtk(const std::filesystem::path& path);

/// Takes the group away, and gives back the space that it took. Returns whether there was one; a
/// file without it is not touched.
///
/// Throws Error, after which the file is as it was: as linkVtk() does, but that the documents may
/// be damaged.
ORVML_EXPORT bool unlinkVtk(const std::filesystem::path& path, const SaveOptions& options = {});

}  // namespace orvml
