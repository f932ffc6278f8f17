#include "console.h"
#include "convert/format.h"
#include "convert/format_error.h"
#include "convert/msh_bytes.h"
#include "convert/msh_cells.h"
#include "convert/msh_data.h"
#include "convert/placed_groups.h"
#include "convert/tag_index.h"

#include <algorithm>
#include <array>
#include <map>

namespace orvml_tool {

using orvml::CellForm;
using orvml::Entity;

namespace {

// Bytes of the shortest items: as binary, and as text with one digit for each number.
struct ShortestItem {
  std::size_t binary;
  std::size_t text;
};
constexpr ShortestItem kMshTag = {8, 2};
constexpr ShortestItem kMshNode = {32, 8};
constexpr ShortestItem kMshBlock = {20, 8};
constexpr ShortestItem kMshPoint = {36, 10};
constexpr ShortestItem kMshEntity = {68, 18};
constexpr ShortestItem kMshReference = {4, 2};

/// "Elements" and its like, as they are in the file.
struct MshElementBlock {
  int dimension = 0;
  int entity = 0;
  std::size_t cells = 0;
};

class MshReader {
 public:
  MshReader(std::string_view bytes, ConversionReport& report) : bytes_(bytes), report_(report) {}

  ForeignMesh read() {
    readFormat();
    for (std::string_view name; bytes_.nextSection(name);) {
      readSection(name);
    }
    finishNodes();
    mesh_.nodeArrays = data_.arraysOf("NodeData", bytes_, nodeTags_, report_);
    cellTags_.finish("the element");
    mesh_.cellArrays = data_.arraysOf("ElementData", bytes_, cellTags_, report_);
    if (!placeByFacts()) {
      addEntities();
      reportTags();
    }
    reportRest();
    return std::move(mesh_);
  }

 private:
  void readFormat() {
    std::string_view name;
    while (bytes_.nextSection(name) && name == "Comments") {
      drop(name);
    }
    if (name != "MeshFormat") {
      bytes_.refuse("it does not begin with $MeshFormat");
    }
    const std::string version(bytes_.line());
    if (!version.starts_with("4.1 ")) {
      bytes_.refuse("it is not of the format 4.1 of msh, but of " +
                    printable(std::string_view(version.substr(0, version.find(' ')))) +
                    ": 'gmsh IN.msh -save -format msh41 -o OUT.msh' makes one of 4.1");
    }
    const bool isBinary = version.starts_with("4.1 1");
    if (version != "4.1 0 8" && version != "4.1 1 8") {
      bytes_.refuse("its numbers are in a form that is not known: " +
                    printable(std::string_view(version)));
    }
    if (isBinary) {
      bytes_.setBinary(false);
      constexpr int kSwappedOne = 0x01000000;
      const int one = bytes_.value<int>();
      if (one != 1 && one != kSwappedOne) {
        bytes_.refuse("the order of its bytes is not known");
      }
      bytes_.setBinary(one != 1);
    }
    bytes_.endSection("MeshFormat");
  }

  void readSection(std::string_view name) {
    if (name == "Entities") {
      readEntities();
    } else if (name == "PhysicalNames") {
      readPhysicalNames();
    } else if (name == "Nodes") {
      readNodes();
    } else if (name == "Elements") {
      readElements();
    } else if (name == "NodeData" || name == "ElementData") {
      data_.note(bytes_, name);
      return;
    } else if (name == "OrvmlDocument") {
      readFacts(name);
      return;
    } else {
      drop(name);
      return;
    }
    bytes_.endSection(name);
  }

  void drop(std::string_view name) {
    bytes_.passSection(name);
    ++droppedSections_[std::string(name)];
  }

  void readFacts(std::string_view name) {
    const std::size_t begin = bytes_.position();
    auto facts = factsIn(bytes_.line());
    bytes_.goTo(begin);
    if (facts) {
      bytes_.passSection(name);
      mesh_.facts = std::move(facts);
    } else {
      drop(name);
    }
  }

  // Entities.

  void readEntities() {
    const std::array<std::uint64_t, 4> counts = {
        bytes_.value<std::uint64_t>(), bytes_.value<std::uint64_t>(), bytes_.value<std::uint64_t>(),
        bytes_.value<std::uint64_t>()};
    for (int dimension = 0; dimension < 4; ++dimension) {
      const ShortestItem shortest = dimension == 0 ? kMshPoint : kMshEntity;
      const std::size_t entities = bytes_.count(counts.at(static_cast<std::size_t>(dimension)),
                                                shortest.binary, shortest.text);
      for (std::size_t i = 0; i < entities; ++i) {
        readEntity(dimension);
      }
    }
  }

  void readEntity(int dimension) {
    constexpr std::size_t kOfPlace = 3;
    constexpr std::size_t kOfBox = 6;
    const int tag = bytes_.value<int>();
    bytes_.pass<double>(dimension == 0 ? kOfPlace : kOfBox);
    const std::size_t groups = bytes_.count(kMshReference.binary, kMshReference.text);
    for (std::size_t i = 0; i < groups; ++i) {
      const int group = bytes_.value<int>();
      if (i == 0) {
        physicalGroups_[{dimension, tag}] = group;
      }
    }
    severalGroups_ += groups > 1 ? 1 : 0;
    if (dimension > 0) {
      const std::size_t bounding = bytes_.count(kMshReference.binary, kMshReference.text);
      bytes_.pass<int>(bounding);
      boundaries_ += static_cast<std::int64_t>(bounding);
    }
  }

  /// They are text in binary files, too.
  void readPhysicalNames() {
    constexpr std::size_t kShortest = 6;
    const std::size_t names = bytes_.count(bytes_.textValue<std::uint64_t>(), kShortest, kShortest);
    for (std::size_t i = 0; i < names; ++i) {
      const int dimension = bytes_.textValue<int>();
      const int tag = bytes_.textValue<int>();
      physicalNames_ += (i == 0 ? "" : ", ") + std::to_string(tag) + " of dimension " +
                        std::to_string(dimension) + std::string(bytes_.line());
    }
    numberOfNames_ += static_cast<std::int64_t>(names);
  }

  // Nodes.

  void finishNodes() {
    if (!areNodesFinished_) {
      nodeTags_.finish("the node");
      areNodesFinished_ = true;
    }
  }

  void readNodes() {
    if (areNodesFinished_ || nodeTags_.size() > 0) {
      bytes_.refuse("there are nodes behind the nodes or elements");
    }
    const std::size_t blocks = bytes_.count(kMshBlock.binary, kMshBlock.text);
    const std::size_t nodes = bytes_.count(kMshNode.binary, kMshNode.text);
    bytes_.pass<std::uint64_t>(2);  // the least and the greatest tag
    mesh_.coordinates.reserve(3 * nodes);
    for (std::size_t i = 0; i < blocks; ++i) {
      readNodeBlock();
    }
    if (nodeTags_.size() != nodes) {
      bytes_.refuse("the blocks of nodes do not have as many as they should");
    }
  }

  void readNodeBlock() {
    const int dimension = bytes_.value<int>();
    const int entity = bytes_.value<int>();
    const bool isParametric = bytes_.value<int>() != 0;
    const std::size_t nodes = bytes_.count(kMshNode.binary, kMshNode.text);
    if (dimension < 0 || dimension > 3) {
      bytes_.refuse("a block of nodes is of no dimension");
    }
    hasNodesOnSeveral_ = hasNodesOnSeveral_ || (nodeTags_.size() > 0 && nodes > 0 &&
                                                nodeEntity_ != std::pair(dimension, entity));
    nodeEntity_ = {dimension, entity};
    for (std::size_t i = 0; i < nodes; ++i) {
      nodeTags_.add(bytes_.value<std::uint64_t>());
    }
    const std::size_t first = mesh_.coordinates.size();
    mesh_.coordinates.resize(first + 3 * nodes);
    if (!isParametric) {
      bytes_.fill(mesh_.coordinates.data() + first, 3 * nodes);
      return;
    }
    parametricNodes_ += static_cast<std::int64_t>(nodes);
    for (std::size_t i = 0; i < nodes; ++i) {
      bytes_.fill(&mesh_.coordinates[first + 3 * i], 3);
      bytes_.pass<double>(static_cast<std::size_t>(dimension));
    }
  }

  // Elements.

  void readElements() {
    if (cellTags_.size() > 0) {
      bytes_.refuse("there are elements behind the elements");
    }
    finishNodes();
    const std::size_t blocks = bytes_.count(kMshBlock.binary, kMshBlock.text);
    const std::size_t elements = bytes_.count(2 * kMshTag.binary, 2 * kMshTag.text);
    bytes_.pass<std::uint64_t>(2);  // the least and the greatest tag
    std::size_t found = 0;
    for (std::size_t i = 0; i < blocks; ++i) {
      found += readElementBlock();
    }
    if (found != elements) {
      bytes_.refuse("the blocks of elements do not have as many as they should");
    }
  }

  std::size_t readElementBlock() {
    MshElementBlock block;
    block.dimension = bytes_.value<int>();
    block.entity = bytes_.value<int>();
    const int type = bytes_.value<int>();
    const auto cell = mshCellOfType(type);
    if (!cell) {
      bytes_.refuse("the elements of type " + std::to_string(type) +
                    " have a number of nodes that is not known");
    }
    block.cells =
        bytes_.count((1 + cell->nodes) * kMshTag.binary, (1 + cell->nodes) * kMshTag.text);
    if (cell->form) {
      readCells(block, *cell);
    } else {
      bytes_.pass<std::uint64_t>(block.cells * (1 + cell->nodes));
      dropped_[type] += static_cast<std::int64_t>(block.cells);
    }
    return block.cells;
  }

  void readCells(const MshElementBlock& block, const MshCell& cell) {
    const auto width = static_cast<std::size_t>(cell.form->nodesPerCell);
    const std::size_t first = mesh_.nodeIndices.size();
    mesh_.nodeIndices.resize(first + block.cells * width);
    int* here = mesh_.nodeIndices.data() + first;
    for (std::size_t i = 0; i < block.cells; ++i, here += width) {
      const auto tag = bytes_.value<std::uint64_t>();
      cellTags_.add(tag);
      for (std::size_t node = 0; node < width; ++node) {
        here[cell.order.empty() ? node : cell.order[node]] = nodeOf(tag);
      }
      bytes_.pass<std::uint64_t>(cell.nodes - width);
    }
    shortened_ += cell.nodes > width ? static_cast<std::int64_t>(block.cells) : 0;
    mesh_.addRun(containerOf(cell.form->shape), *cell.form, block.cells);
    blocks_.push_back(block);
  }

  int nodeOf(std::uint64_t element) {
    const auto tag = bytes_.value<std::uint64_t>();
    const std::size_t place = nodeTags_.placeOf(tag);
    if (place == TagIndex::kNone) {
      bytes_.refuse("the element " + std::to_string(element) + " has the node " +
                    std::to_string(tag) + ", which is not there");
    }
    return static_cast<int>(place);
  }

  // What the cells are in a document.

  /// Puts the cells into the containers that they are from; false where the facts know nothing of
  /// them, because there are none or other programs changed the cells.
  bool placeByFacts() {
    if (!mesh_.facts) {
      return false;
    }
    std::vector<CellRun> told;
    for (const DocumentFacts::Group& group : mesh_.facts->groups) {
      if (group.cells > 0) {
        told.push_back({group.container, group.form, static_cast<std::size_t>(group.cells)});
      }
    }
    if (joinedForms(told) != joinedForms(mesh_.runs)) {
      return false;
    }
    mesh_.runs = std::move(told);
    return true;
  }

  using FormCount = std::pair<CellForm, std::size_t>;
  static std::vector<FormCount> joinedForms(const std::vector<CellRun>& runs) {
    std::vector<FormCount> forms;
    for (const CellRun& run : runs) {
      if (!forms.empty() && forms.back().first == run.form) {
        forms.back().second += run.cells;
      } else {
        forms.emplace_back(run.form, run.cells);
      }
    }
    return forms;
  }

  /// The tags of entities and physical groups are what people know the parts of a mesh by.
  void addEntities() {
    std::vector<int> entities;
    std::vector<int> groups;
    bool hasGroups = false;
    for (const MshElementBlock& block : blocks_) {
      const auto found = physicalGroups_.find({block.dimension, block.entity});
      hasGroups = hasGroups || found != physicalGroups_.end();
      entities.insert(entities.end(), block.cells, block.entity);
      groups.insert(groups.end(), block.cells, found == physicalGroups_.end() ? 0 : found->second);
    }
    if (!entities.empty()) {
      mesh_.cellArrays.push_back({"entity", std::move(entities), {}});
    }
    if (hasGroups) {
      mesh_.cellArrays.push_back({"physical", std::move(groups), {}});
    }
  }

  // What an exchange file has no place for.

  void reportTags() {
    const auto report = [&](const TagIndex& tags, const std::string& what) {
      if (!tags.areNumbersFromOne()) {
        report_.add(orvml::Fate::renamed, what, static_cast<std::int64_t>(tags.size()),
                    "have tags that are not 1, 2, 3 and so on, which are not kept");
      }
    };
    report(nodeTags_, "nodes");
    report(cellTags_, "elements");
  }

  void reportIf(std::int64_t count, orvml::Fate kind, const std::string& object,
                const std::string& what) {
    if (count > 0) {
      report_.add(kind, object, count, what);
    }
  }

  void reportRest() {
    for (const auto& [type, cells] : dropped_) {
      reportIf(cells, orvml::Fate::dropped, counted(cells, "element"),
               "of Gmsh's type " + std::to_string(type) + ", of " +
                   counted(static_cast<std::int64_t>(mshCellOfType(type)->nodes), "node") +
                   ", have no shape in exchange files");
    }
    reportIf(shortened_, orvml::Fate::approximated, counted(shortened_, "pyramid") + " of 14 nodes",
             "come without the node in the middle of the base, with 13 nodes");
    for (const auto& [name, count] : droppedSections_) {
      reportIf(count, orvml::Fate::dropped, "$" + name, "is not read");
    }
    reportIf(parametricNodes_, orvml::Fate::dropped, counted(parametricNodes_, "node"),
             "lose their parametric coordinates");
    reportIf(severalGroups_, orvml::Fate::dropped, "$Entities",
             "has entities in several physical groups, of which the first one is kept: " +
                 std::to_string(severalGroups_));
    reportIf(numberOfNames_, orvml::Fate::dropped, "$PhysicalNames",
             "is not kept: " + physicalNames_);
    reportIf(boundaries_ + (hasNodesOnSeveral_ ? 1 : 0), orvml::Fate::dropped, "$Entities",
             "loses which entities bound which, and which ones nodes lie on");
    reportIf(data_.numberOfTimes(), orvml::Fate::dropped,
             counted(data_.numberOfTimes(), "section") + " of values",
             "have a time that is not kept");
  }

  MshBytes bytes_;
  ConversionReport& report_;
  ForeignMesh mesh_;
  TagIndex nodeTags_;
  TagIndex cellTags_;  // of those that are kept
  MshData data_;
  std::vector<MshElementBlock> blocks_;  // of those that are kept
  std::map<std::pair<int, int>, int> physicalGroups_;
  std::map<std::string, std::int64_t> droppedSections_;
  std::map<int, std::int64_t> dropped_;  // by type
  std::pair<int, int> nodeEntity_;
  bool areNodesFinished_ = false;
  bool hasNodesOnSeveral_ = false;
  std::int64_t shortened_ = 0;
  std::int64_t parametricNodes_ = 0;
  std::int64_t severalGroups_ = 0;
  std::int64_t boundaries_ = 0;
  std::int64_t numberOfNames_ = 0;
  std::string physicalNames_;
};

}  // namespace

Draft readMsh(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOf(MshReader(bytes, report).read(), options, report);
}

}  // namespace orvml_tool
