#include "console.h"
#include "convert/format.h"
#include "convert/msh_cells.h"
#include "convert/msh_entities.h"
#include "convert/placed_groups.h"
#include "messages.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <type_traits>

namespace orvml_tool {

using orvml::Attribute;
using orvml::DocumentView;
using orvml::Entity;

namespace {

// Of one number with what stands behind it.
constexpr std::size_t kLongestMshNumber = 32;

/// How the binary form holds numbers: as they lie in memory, nothing between them.
struct MshBinary {
  static constexpr bool kIsText = false;
  template <class T>
  static char* put(char* out, T value, char /*after*/) {
    std::memcpy(out, &value, sizeof value);
    return out + sizeof value;
  }
};

struct MshText {
  static constexpr bool kIsText = true;
  template <class T>
  static char* put(char* out, T value, char after) {
    out = std::to_chars(out, out + kLongestMshNumber - 1, value).ptr;
    *out = after;
    return out + 1;
  }
};

/// The array of the other file that has an attribute of nodes, or one of cells that several
/// containers may share.
struct MshArray {
  std::string storedName;
  std::vector<std::pair<Entity, Attribute>> parts;  // in the order of the containers
};

/// Names between quotes on a line of their own, for which there are no escapes.
class MshNames {
 public:
  std::string of(std::string_view name) {
    const std::string shownName = printable(name);
    std::string wanted = shownName;
    std::replace(wanted.begin(), wanted.end(), '"', '\'');
    std::string free = wanted;
    for (int number = 2; !used_.insert(free).second; ++number) {
      free = wanted + "-" + std::to_string(number);
    }
    return free;
  }

 private:
  std::set<std::string> used_;
};

template <class Numbers>
class MshWriter {
 public:
  MshWriter(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
            ConversionReport& report)
      : document_(document),
        options_(options),
        sink_(sink),
        report_(report),
        facts_(factsOf(document)),
        groups_(placedGroups(document, options.containers, "msh", mshCellOf, report)),
        entities_(document, groups_, options.entityAttribute, report) {
    if (numberOfCells(groups_) > INT_MAX) {
      throw Refusal("there are more cells than Gmsh numbers the values of",
                    "write the containers to files of their own, with --split");
    }
    collectGroups();
    collectArrays();
  }

  void write() {
    writeFormat();
    writeEntities();
    writeNodes();
    writeElements();
    for (const MshArray& array : nodeArrays_) {
      writeNodeData(array);
    }
    for (const MshArray& array : cellArrays_) {
      writeElementData(array);
    }
    writeFacts();
  }

 private:
  // What is written.

  /// Groups without cells are in the facts alone, of whatever form they are.
  void collectGroups() {
    for (const Entity container : options_.containers) {
      for (const orvml::CellGroup& group : document_.cells(container).groups()) {
        const orvml::CellForm form{group.shape(), group.nodesPerCell()};
        if (group.size() == 0 || mshCellOf(form)) {
          facts_.groups.push_back({container, form, group.size()});
        }
      }
    }
  }

  void collectArrays() {
    std::map<std::string_view, MshArray> cellArrays;
    MshNames nodeNames;
    for (const Attribute& attribute : document_.attributes(Entity::nodes)) {
      nodeArrays_.push_back({nodeNames.of(attribute.name), {{Entity::nodes, attribute}}});
      addFacts(Entity::nodes, attribute, nodeArrays_.back().storedName);
    }
    for (const Entity container : options_.containers) {
      for (const Attribute& attribute : document_.attributes(container)) {
        if (isHandedOn(container, attribute)) {
          cellArrays[attribute.name].parts.emplace_back(container, attribute);
        }
      }
    }
    MshNames cellNames;
    for (auto& [name, array] : cellArrays) {
      array.storedName = cellNames.of(name);
      for (const auto& [container, attribute] : array.parts) {
        addFacts(container, attribute, array.storedName);
      }
      cellArrays_.push_back(std::move(array));
    }
  }

  /// An attribute goes with its cells, when none of them can be written.
  bool isHandedOn(Entity container, const Attribute& attribute) {
    const bool hasCells =
        std::any_of(groups_.begin(), groups_.end(),
                    [&](const PlacedGroup& placed) { return placed.container == container; });
    if (!hasCells && attribute.size() > 0) {
      report_.add(orvml::Fate::dropped, attributePath(document_, container, attribute.name),
                  static_cast<std::int64_t>(attribute.size()), "goes with all its cells");
      return false;
    }
    return true;
  }

  void addFacts(Entity entity, const Attribute& attribute, const std::string& storedName) {
    facts_.attributes.push_back({entity, std::string(attribute.name), storedName,
                                 attribute.holdsInts(), attribute.mustBeTransmitted});
    if (storedName != attribute.name) {
      report_.add(orvml::Fate::renamed, attributePath(document_, entity, attribute.name), 1,
                  "is called '" + storedName + "', as a name between quotes on one line can be");
    }
  }

  // Numbers.

  template <class T>
  void put(T value, char after) {
    char* begin = sink_.room(kLongestMshNumber);
    sink_.advance(static_cast<std::size_t>(Numbers::put(begin, value, after) - begin));
  }
  void put(const std::array<double, 3>& point) {
    for (const double value : point) {
      put(value, ' ');
    }
  }
  void putCount(std::size_t count, char after) { put(std::uint64_t{count}, after); }

  /// Has `putOne(place, item)` write one item after the other, of no more than some numbers each,
  /// which returns where it ends.
  template <class PutOne>
  void putEach(std::size_t items, std::size_t numbersEach, PutOne putOne) {
    const std::size_t longest = numbersEach * kLongestMshNumber;
    const std::size_t atOnce = ByteSink::kBlock / 4 / longest;
    for (std::size_t item = 0; item < items;) {
      const std::size_t end = std::min(items, item + atOnce);
      char* const begin = sink_.room((end - item) * longest);
      char* out = begin;
      for (; item < end; ++item) {
        out = putOne(out, item);
      }
      sink_.advance(static_cast<std::size_t>(out - begin));
    }
  }

  void beginSection(std::string_view name) { sink_.write("$" + std::string(name) + "\n"); }
  void endSection(std::string_view name) {
    sink_.write((Numbers::kIsText ? "$End" : "\n$End") + std::string(name) + "\n");
  }

  // Sections.

  void writeFormat() {
    sink_.write(Numbers::kIsText ? "$MeshFormat\n4.1 0 8\n" : "$MeshFormat\n4.1 1 8\n");
    if (!Numbers::kIsText) {
      put(1, '\n');
    }
    endSection("MeshFormat");
  }

  void writeEntities() {
    beginSection("Entities");
    std::array<std::size_t, 4> counts = {};
    for (const auto& [key, entity] : entities_.all()) {
      ++counts.at(static_cast<std::size_t>(key.first));
    }
    for (std::size_t dimension = 0; dimension < counts.size(); ++dimension) {
      putCount(counts.at(dimension), dimension + 1 < counts.size() ? ' ' : '\n');
    }
    for (const auto& [key, entity] : entities_.all()) {
      writeEntity(key, entity);
    }
    endSection("Entities");
  }

  /// Without entities that bound it, which an exchange file does not know.
  void writeEntity(MshEntities::Key key, const MshEntity& entity) {
    const auto [dimension, tag] = key;
    put(tag, ' ');
    put(entity.box.least());
    if (dimension > 0) {
      put(entity.box.greatest());
    }
    const char behind = dimension > 0 ? ' ' : '\n';
    if (entities_.areGrouped()) {
      putCount(1, ' ');
      put(entity.group, behind);
    } else {
      putCount(0, behind);
    }
    if (dimension > 0) {
      putCount(0, '\n');
    }
  }

  void writeNodes() {
    const auto nodes = static_cast<std::size_t>(document_.nodes().size());
    beginSection("Nodes");
    putCount(nodes > 0 ? 1 : 0, ' ');
    putCount(nodes, ' ');
    putCount(nodes > 0 ? 1 : 0, ' ');
    putCount(nodes, '\n');
    if (nodes > 0) {
      const auto [dimension, tag] = entities_.ofNodes();
      put(dimension, ' ');
      put(tag, ' ');
      put(0, ' ');
      putCount(nodes, '\n');
      putEach(nodes, 1, [](char* out, std::size_t node) {
        return Numbers::put(out, std::uint64_t{node + 1}, '\n');
      });
      writeCoordinates(nodes);
    }
    endSection("Nodes");
  }

  void writeCoordinates(std::size_t nodes) {
    const auto xyz = document_.nodes().coordinates();
    const auto width = static_cast<std::size_t>(document_.dimension());
    if (width != 3) {
      report_.add(orvml::Fate::padded, pathOf(document_, Entity::nodes),
                  static_cast<std::int64_t>(nodes), "get z = 0, which msh has of every node");
    } else if (!Numbers::kIsText) {
      sink_.writeValues(xyz);
      return;
    }
    putEach(nodes, 3, [=](char* out, std::size_t node) {
      out = Numbers::put(out, xyz[node * width], ' ');
      out = Numbers::put(out, xyz[node * width + 1], ' ');
      return Numbers::put(out, width == 3 ? xyz[node * width + 2] : 0.0, '\n');
    });
  }

  void writeElements() {
    std::size_t blocks = 0;
    for (const PlacedGroup& placed : groups_) {
      entities_.forEachBlock(placed, [&](auto, auto, auto) { ++blocks; });
    }
    const std::size_t cells = numberOfCells(groups_);
    beginSection("Elements");
    putCount(blocks, ' ');
    putCount(cells, ' ');
    putCount(cells > 0 ? 1 : 0, ' ');
    putCount(cells, '\n');
    std::size_t tag = 1;
    for (const PlacedGroup& placed : groups_) {
      entities_.forEachBlock(placed, [&](auto key, std::size_t first, std::size_t size) {
        put(key.first, ' ');
        put(key.second, ' ');
        put(placed.cell.type, ' ');
        putCount(size, '\n');
        writeCells(placed, first, size, tag);
        tag += size;
      });
    }
    endSection("Elements");
  }

  void writeCells(const PlacedGroup& placed, std::size_t first, std::size_t cells,
                  std::size_t tag) {
    const auto width = static_cast<std::size_t>(placed.group.nodesPerCell());
    const int* const nodes = placed.group.nodeIndices().data() + first * width;
    const std::uint8_t* const order = placed.cell.order.data();
    if (order != nullptr) {
      putCells(nodes, cells, width, tag,
               [=](const int* cell, std::size_t i) { return cell[order[i]]; });
      return;
    }
    const auto inOrder = [](const int* cell, std::size_t i) { return cell[i]; };
    // The loops over the nodes of the cells that most meshes have are unrolled.
    if (width == 3) {
      putCells(nodes, cells, std::integral_constant<std::size_t, 3>(), tag, inOrder);
    } else if (width == 4) {
      putCells(nodes, cells, std::integral_constant<std::size_t, 4>(), tag, inOrder);
    } else if (width == 8) {
      putCells(nodes, cells, std::integral_constant<std::size_t, 8>(), tag, inOrder);
    } else {
      putCells(nodes, cells, width, tag, inOrder);
    }
  }

  template <class Width, class NodeAt>
  void putCells(const int* nodes, std::size_t cells, Width width, std::size_t tag, NodeAt nodeAt) {
    putEach(cells, width + 1, [=](char* out, std::size_t cell) {
      const int* const ofCell = nodes + cell * width;
      out = Numbers::put(out, std::uint64_t{tag + cell}, ' ');
      for (std::size_t i = 0; i < width; ++i) {
        out = Numbers::put(out, static_cast<std::uint64_t>(nodeAt(ofCell, i)) + 1,
                           i + 1 < width ? ' ' : '\n');
      }
      return out;
    });
  }

  void beginData(std::string_view section, const std::string& name, std::size_t entries) {
    beginSection(section);
    sink_.write("1\n\"" + name + "\"\n1\n0\n3\n0\n1\n" + std::to_string(entries) + "\n");
  }

  void writeNodeData(const MshArray& array) {
    const auto& [entity, attribute] = array.parts.front();
    if (attribute.size() > 0) {
      beginData("NodeData", array.storedName, attribute.size());
      writeValues(entity, attribute, 0, attribute.size(), 1);
      endSection("NodeData");
    }
  }

  void writeElementData(const MshArray& array) {
    const std::size_t entries = numberOfValues(array);
    if (entries == 0) {
      return;
    }
    beginData("ElementData", array.storedName, entries);
    std::size_t tag = 1;
    for (const PlacedGroup& placed : groups_) {
      const auto size = static_cast<std::size_t>(placed.group.size());
      for (const auto& [container, attribute] : array.parts) {
        if (container == placed.container) {
          writeValues(container, attribute, placed.first, size, tag);
        }
      }
      tag += size;
    }
    endSection("ElementData");
  }

  [[nodiscard]] std::size_t numberOfValues(const MshArray& array) const {
    std::size_t values = 0;
    for (const PlacedGroup& placed : groups_) {
      values += std::any_of(array.parts.begin(), array.parts.end(),
                            [&](const auto& part) { return part.first == placed.container; })
                    ? static_cast<std::size_t>(placed.group.size())
                    : 0;
    }
    return values;
  }

  void writeValues(Entity entity, const Attribute& attribute, std::size_t first, std::size_t count,
                   std::size_t tag) {
    std::visit(
        [&](const auto all) {
          const auto values = all.subspan(first, count);
          putEach(count, 2, [=](char* out, std::size_t i) {
            out = Numbers::put(out, static_cast<std::int32_t>(tag + i), ' ');
            return Numbers::put(out, static_cast<double>(values[i]), '\n');
          });
        },
        attribute.values);
    if (Numbers::kIsText && !attribute.holdsInts()) {
      reportPayloads(entity, attribute, attribute.doubles().subspan(first, count));
    }
  }

  /// A text says of a NaN no more than that it is one.
  void reportPayloads(Entity entity, const Attribute& attribute, std::span<const double> values) {
    const auto plain = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
    const auto isLost = [=](double value) {
      return std::isnan(value) && std::bit_cast<std::uint64_t>(value) != plain;
    };
    const auto lost = std::count_if(values.begin(), values.end(), isLost);
    if (lost > 0) {
      report_.add(orvml::Fate::approximated, attributePath(document_, entity, attribute.name), lost,
                  "has NaN with bits of their own, which text does not have");
    }
  }

  /// For readers that know it; the others pass over sections with names that they do not know. They
  /// look for the dollar sign of the next one, and cut long lines anywhere.
  void writeFacts() {
    beginSection("OrvmlDocument");
    for (const char letter : textOf(facts_)) {
      sink_.write(letter == '$' ? std::string_view("\\u0024") : std::string_view(&letter, 1));
    }
    sink_.write("\n");
    sink_.write("$EndOrvmlDocument\n");
  }

  const DocumentView& document_;
  const ExportOptions& options_;
  ByteSink& sink_;
  ConversionReport& report_;
  DocumentFacts facts_;
  std::vector<PlacedGroup> groups_;
  MshEntities entities_;
  std::vector<MshArray> nodeArrays_;
  std::vector<MshArray> cellArrays_;
};

}  // namespace

void writeMsh(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  if (options.asText) {
    MshWriter<MshText>(document, options, sink, report).write();
  } else {
    MshWriter<MshBinary>(document, options, sink, report).write();
  }
}

}  // namespace orvml_tool
