#pragma once

#include <orvml/view.hpp>
#include <orvml/vtk_cells.hpp>

#include "draft.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvml_tool {

/// What a document says that formats of meshes have no place for. Formats that let a file hold a
/// text for who knows it keep it there as JSON, so that the way back loses nothing.
struct DocumentFacts {
  struct Group {
    orvml::Entity container = orvml::Entity::elements;
    orvml::CellForm form;
    std::int64_t cells = 0;
  };
  struct Attribute {
    orvml::Entity entity = orvml::Entity::nodes;
    std::string name;
    std::string storedName;  ///< what the array is called in the other file
    bool holdsInts = false;
    bool mustBeTransmitted = false;
  };

  orvml::Kind kind = orvml::Kind::input;
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string creator;
  int dimension = 3;
  bool hasOlderPrisms = false;  ///< whether prisms are in orvml::olderVtkPrismOrder()
  std::vector<Group> groups;    ///< of the cells in the file, in their order
  std::vector<Attribute> attributes;
  std::vector<std::pair<std::string, double>> parameters;
  std::vector<std::pair<std::string, Numbers>> vectorParameters;
};

/// The facts of a document, but for groups and attributes, which whoever writes them adds.
[[nodiscard]] DocumentFacts factsOf(const orvml::DocumentView& document);

/// As JSON of one line, in ASCII.
[[nodiscard]] std::string textOf(const DocumentFacts& facts);

/// What textOf() made; none for any other text.
[[nodiscard]] std::optional<DocumentFacts> factsIn(std::string_view text);

}  // namespace orvml_tool
