#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/document_facts.h"
#include "draft.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvml_tool {

/// Consecutive cells of one form, as another format has them.
struct CellRun {
  orvml::Entity container = orvml::Entity::elements;
  orvml::CellForm form;
  std::size_t cells = 0;
};

/// One value for each node or each cell of a mesh.
struct ForeignArray {
  std::string name;
  Numbers values;
  std::vector<bool> isGiven;  ///< for which ones the file has a value; empty: for all
};

/// A mesh as it was read from a file of another format.
struct ForeignMesh {
  std::vector<double> coordinates;  ///< [nodes x 3], row-major
  std::vector<CellRun> runs;        ///< in the order of the file
  std::vector<int> nodeIndices;     ///< 0-based and in this library's order, run after run
  std::vector<ForeignArray> nodeArrays;
  std::vector<ForeignArray> cellArrays;  ///< over the cells of all runs
  std::vector<std::pair<std::string, double>> parameters;
  std::vector<std::pair<std::string, Numbers>> vectorParameters;
  std::optional<DocumentFacts> facts;  ///< of a file that a conversion from here made

  void addRun(orvml::Entity container, orvml::CellForm form, std::size_t cells);
};

/// The container that cells belong to when their file does not tell: edges for points and lines,
/// faces for triangles and quadrilaterals, elements for the others.
[[nodiscard]] orvml::Entity containerOf(orvml::Shape shape) noexcept;

struct ImportOptions {
  orvml::Kind kind = orvml::Kind::input;  ///< of the document that is made, where no facts tell
  std::optional<int> dimension;           ///< else what the facts say, else 3
};

/// Makes a document of a mesh. Cells of one form become one group of their container, in the order
/// in which the forms come first, unless the facts tell the groups. Prisms of files without facts
/// that have a negative volume are turned. Arrays become attributes of the nodes, or of each
/// container that they have values for.
///
/// Node indices have to be checked before. Throws FormatError where sizes disagree, and Refusal for
/// a dimension of 2 where nodes lie elsewhere than in the plane.
[[nodiscard]] Draft draftOf(ForeignMesh mesh, const ImportOptions& options,
                            ConversionReport& report);

}  // namespace orvml_tool
