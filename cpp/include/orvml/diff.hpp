#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvml {

/// How far two doubles may be apart and still count as equal: |a - b| is at most `absolute` plus
/// `relative` times the larger of |a| and |b|. Two values that are no numbers are equal, one that
/// is none differs from any other by infinity. Integers are compared exactly.
struct Tolerance {
  double absolute = 0.0;
  double relative = 0.0;
};

struct DiffOptions {
  Tolerance tolerance = {};  ///< of whatever has none of its own

  /// Of the parameters, vector parameters and attributes of a name, and of "coordinates".
  std::map<std::string, Tolerance, std::less<>> toleranceOf = {};

  /// When it is set, nodes are the same that lie at most so far apart, and cells of a shape that
  /// have the same nodes, whatever their order: renumbered meshes are equal, and attributes are
  /// compared between what belongs together. In the unit of the coordinates, 0 or more.
  std::optional<double> matchWithin = {};
};

/// In which way an object differs.
enum class Change {
  onlyInFirst,
  onlyInSecond,
  text,    ///< a text of the identification, or the kind of the document
  number,  ///< the dimension
  size,    ///< the number of nodes, cells or values
  type,    ///< ints in one document, doubles in the other
  groups,  ///< the shapes or sizes of the groups of cells
  values,
  flag  ///< the one of must-be-transmitted
};

/// Returns the text of a change, such as "only-in-first".
[[nodiscard]] ORVML_EXPORT std::string_view text(Change change) noexcept;

/// One object that differs between two documents.
struct Difference {
  Change change = Change::values;
  std::string object;    ///< its path below the group of the document, such as "/Nodes/coordinates"
  std::string sentence;  ///< what differs, without the path

  // Of values: how many differ, which of the first document is the first, and where the difference
  // is largest. Positions count values, 0-based; of coordinates, the value by the dimension is the
  // node. With matched meshes positions are those of the first document.
  std::int64_t count = 0;
  std::int64_t first = -1;
  std::int64_t worst = -1;
  double largest = 0.0;  ///< |a - b|, in the unit of the values
};

/// How many nodes and cells of two meshes belong together.
struct MatchedEntity {
  std::int64_t matched = 0;
  std::int64_t onlyInFirst = 0;
  std::int64_t onlyInSecond = 0;
  bool isRenumbered = false;  ///< whether one that is matched has another number
};

struct MatchReport {
  MatchedEntity nodes;
  MatchedEntity edges;
  MatchedEntity faces;
  MatchedEntity elements;
};

struct DiffReport {
  std::vector<Difference> differences;  ///< in the order of the format's tree, names ascending

  /// What the comparison of the flat interface answers for the first document with the second: it
  /// knows one tolerance of 1e-15, compares from the first document's side, and leaves flags,
  /// identifications and vector parameters aside. Nothing for two kinds of documents, and for
  /// documents that no file can hold.
  std::optional<bool> areEqualByContract;

  std::optional<MatchReport> match;  ///< when it was asked for

  [[nodiscard]] bool areSame() const noexcept { return differences.empty(); }
};

/// Compares all that two documents hold: identification, dimension, mesh, parameters of both kinds,
/// attributes with their types and flags. Throws std::invalid_argument for a tolerance or distance
/// that is negative or no number.
[[nodiscard]] ORVML_EXPORT DiffReport diff(const DocumentView& first, const DocumentView& second,
                                           const DiffOptions& options = {});

}  // namespace orvml
