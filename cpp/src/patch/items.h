#pragma once

#include <orvml/view.hpp>

#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

namespace orvml::detail {

/// The parts of a document in the order of a patch. The numbers lie in files.
enum class Section : int {
  moduleName = 0,
  moduleFormatVersion = 1,
  creator = 2,
  dimension = 3,
  coordinates = 4,
  groupsOfEdges = 5,  ///< shape, nodes per cell and number of cells of each group
  edges = 6,          ///< node indices, an item for each group
  groupsOfFaces = 7,
  faces = 8,
  groupsOfElements = 9,
  elements = 10,
  nodeAttributes = 11,
  edgeAttributes = 12,
  faceAttributes = 13,
  elementAttributes = 14,
  parameters = 15,
  vectorParameters = 16,
  endOfSections = 17
};

/// What an item of a document is found by: the number of a group, or the name of a parameter or
/// attribute, or nothing.
struct ItemKey {
  Section section = Section::moduleName;
  std::string name;

  friend bool operator<(const ItemKey& a, const ItemKey& b) noexcept {
    return std::tie(a.section, a.name) < std::tie(b.section, b.name);
  }
};

struct Item {
  std::variant<std::span<const int>, std::span<const double>> values;
  bool mustBeTransmitted = false;
};

/// A document as a flat list of arrays, which is what a patch changes.
struct Items {
  std::map<ItemKey, Item> all;
  std::deque<std::vector<int>> kept;  ///< what no view has as an array of its own

  void keep(Section section, std::vector<int> values);
};

/// What a file would hold of a document; borrows its arrays.
[[nodiscard]] Items itemsOf(const DocumentView& document);

/// Bytes of a text, as the ints of a patch. Returns nothing for what are no bytes.
[[nodiscard]] std::vector<int> bytesOfText(std::string_view text);
[[nodiscard]] std::optional<std::string> textOfBytes(std::span<const int> bytes);

/// Makes the document of items again; borrows their arrays, and the texts that it adds. Throws
/// Code::patchDamaged where the items do not fit each other.
[[nodiscard]] DocumentParts partsOf(const Items& items, std::deque<std::string>& texts);

}  // namespace orvml::detail
