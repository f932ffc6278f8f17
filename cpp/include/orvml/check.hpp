#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/shape.hpp>
#include <orvml/view.hpp>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Tells whether what a document or a file holds is sound: its mesh, its attributes, its names, and
/// what other programs will make of it. `docs/checks.md` has every code with an example and a cure.
///
/// The order of nodes in a cell is that of VTK for each shape and its quadratic forms; prisms have
/// their first triangle counter-clockwise seen from the second, boundary faces are
/// counter-clockwise seen from outside. That is a convention: the format stores whatever it is
/// given.
namespace orvml {

/// How much a finding matters.
enum class Severity {
  note,     ///< worth knowing; nothing has to be done
  warning,  ///< sound in itself, and probably not what was meant
  error     ///< wrong, or lost
};

/// Returns "note", "warning" or "error".
[[nodiscard]] ORVML_EXPORT std::string_view name(Severity severity) noexcept;

/// What check() finds beside the codes of orvml::Code. Each has a text that stays what it is, such
/// as "orvml.mesh.index-out-of-range".
enum class CheckCode {
  // Cells and nodes
  indexOutOfRange,
  repeatedNode,
  wrongNodeCount,
  unknownShape,
  misplacedShape,
  duplicateCell,
  unusedNode,
  coordinatesMissing,
  coordinateNotFinite,
  coincidentNodes,
  zeroSizeCell,
  invertedCell,
  foldedCell,

  // Faces of volume elements
  faceWithoutElement,
  faceSharedByMany,
  inwardFace,

  // Surfaces
  openSurface,
  nonManifoldSurface,
  inconsistentSurface,
  inwardSurface,

  // Attributes, names and texts
  attributeLength,
  nameAtLimit,
  textAtLimit,

  // What the flat functions lose
  lostInClone,
  lostWhenWritten,
  flagNotRead,

  // The file
  legacyLayout,
  integersClamped
};

/// Returns the text of a code.
[[nodiscard]] ORVML_EXPORT std::string_view text(CheckCode code) noexcept;

/// What stands behind the code of a finding.
struct CheckRule {
  std::string_view code;     ///< such as "orvml.mesh.index-out-of-range"
  Severity severity;         ///< that of every finding with the code
  std::string_view meaning;  ///< in a few words
  std::string_view cure;     ///< what helps
};

/// Returns every rule that a finding can come from: those of CheckCode in its order, then those
/// that readers know, of which orvml::text(Code) gives the codes.
[[nodiscard]] ORVML_EXPORT std::span<const CheckRule> checkRules() noexcept;

/// What an index of a finding counts, always from 0.
enum class PlaceKind { node, edge, face, element, value };

/// Returns "node", "edge", "face", "element" or "value".
[[nodiscard]] ORVML_EXPORT std::string_view name(PlaceKind kind) noexcept;

/// A node, a cell or a value of an array.
struct CheckPlace {
  PlaceKind kind = PlaceKind::node;
  std::int64_t index = 0;  ///< cells are counted over all groups of their kind

  friend bool operator==(const CheckPlace&, const CheckPlace&) = default;
};

/// Something that check() found.
struct CheckFinding {
  std::string_view code;           ///< text(CheckCode) or text(Code); it never ends
  Severity severity;               ///< how much it matters
  std::string object;              ///< absolute path in a file, such as "/OrvInput/Faces"
  std::vector<CheckPlace> places;  ///< the first few, in ascending order; may be empty
  std::int64_t count = 1;          ///< how many there are
  std::string sentence;            ///< what was found, beginning with the object
  std::string_view cure;           ///< what helps
};

/// A cell and what a measure says of it.
struct MeasuredCell {
  std::int64_t cell = 0;  ///< counted over all groups of its kind, from 0
  double value = 0.0;
};

/// The percentiles that QualityFigure has.
inline constexpr std::array<int, 7> kQualityPercentiles = {1, 5, 25, 50, 75, 95, 99};

/// How the values of one measure are distributed.
struct QualityFigure {
  std::string_view name;  ///< such as "scaled Jacobian"
  double minimum = 0.0;
  std::array<double, 7> percentiles = {};  ///< as kQualityPercentiles says, with 24 bits each
  double maximum = 0.0;
  std::vector<MeasuredCell> worst;  ///< at most ten, the worst first
};

/// The quality of all cells of one shape, linear and quadratic ones together: the corners are
/// measured. L is the length of an edge, J the triple product of three edges that meet in a corner.
///
/// - "scaled Jacobian", 1 is ideal, negative is inverted. Triangle: 2/sqrt(3) times the sine of the
///   smallest angle that two edges make. Quadrilateral and hexahedron: the least J of unit edges,
///   the hexahedron's principal axes among them. Tetrahedron: sqrt(2) J over the largest product of
///   three lengths at a corner. Prism: 2/sqrt(3) times the least J of unit edges. Pyramid: s is
///   sqrt(2) times the least J over lengths of the four tetrahedra of its base; 0 when s is
///   negative, 2 - s when it is above 1.
/// - "aspect ratio", 1 is ideal. Triangle: Lmax (L0 + L1 + L2) / (4 sqrt(3) area). Quadrilateral:
///   Lmax times the sum of L over four areas. Tetrahedron: Lmax / (2 sqrt(6) inscribed radius).
///   Hexahedron: the longest of its three principal axes over the shortest. Prism and pyramid: Lmax
///   over the shortest edge. Cells without volume have 1e30.
/// - "smallest angle" and "largest angle" of triangles and quadrilaterals in degrees; "smallest
///   dihedral angle" and "largest dihedral angle" of volume elements, between the mean planes of
///   the faces at each edge.
///
/// Sources: P. M. Knupp, Achieving finite element mesh quality via optimization of the Jacobian
/// matrix norm and associated quantities, IJNME 48 (2000), and Algebraic mesh quality metrics for
/// unstructured initial meshes, FEAD 39 (2003); C. J. Stimpson et al., The Verdict Geometric
/// Quality Library, SAND2007-1751, whose definitions the first two measures follow.
struct CellQuality {
  Kind kind = Kind::input;
  Entity entity = Entity::elements;
  Shape shape = Shape::none;
  std::int64_t cells = 0;  ///< of those whose nodes have finite coordinates
  std::vector<QualityFigure> figures;
};

/// What is looked for and how much is told.
struct CheckOptions {
  /// Nodes that are no further apart than this share of the diagonal of the mesh's bounding box
  /// coincide; 0 finds equal coordinates alone, a negative one looks for none.
  double coincidenceTolerance = 1e-10;
  bool quality = false;  ///< whether the quality of the cells is measured, too
  int places = 10;       ///< how many places a finding has at most
  int threads = 1;       ///< how many share the checks of a mesh, the caller's included
};

/// What check() says.
struct ORVML_EXPORT CheckReport {
  std::vector<CheckFinding> findings;
  std::vector<CellQuality> quality;  ///< empty unless it was asked for

  /// The severity of the worst finding; none where there are no findings.
  [[nodiscard]] std::optional<Severity> worst() const noexcept;
  /// Whether there are neither errors nor warnings.
  [[nodiscard]] bool isClean() const noexcept;
};

/// Checks a document, wherever it lies. A document of dimension 3 without volume elements is taken
/// for the surface of a body, one of dimension 2 for a mesh of its faces. Cells whose indices are
/// out of range are told and left out of everything else; quadratic cells are judged by their
/// curved form, but for the 7-node triangle and the 19-node pyramid whose inner nodes are left out.
///
/// Beside the document it takes a few bytes a node, and up to 4 bytes a cell where the numbering is
/// not local or something is wrong with faces; the measures of quality take 4 bytes a cell. Throws
/// std::bad_alloc, and std::system_error when a thread cannot be started.
[[nodiscard]] ORVML_EXPORT CheckReport check(const DocumentView& document,
                                             const CheckOptions& options = {});

/// Checks a file: how it is stored, what does not belong, and the documents as above. It is mapped,
/// and read as far as it can be; arrays that are not as the format says are told, and nothing is
/// concluded from their values.
///
/// Throws Error when the file is none, or holds no document, as MappedFile does.
[[nodiscard]] ORVML_EXPORT CheckReport check(const std::filesystem::path& path,
                                             const CheckOptions& options = {});

}  // namespace orvml
