#include "console.h"
#include "convert/format.h"
#include "convert/format_error.h"
#include "convert/placed_groups.h"
#include "convert/vtk_array_bytes.h"
#include "convert/vtk_xml.h"
#include "convert/vtu.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <map>

namespace orvml_tool {

namespace {

using orvml::CellForm;
using orvml::Entity;
using orvml::Shape;
using Section = VtkArray::Section;

/// What becomes of a cell of VTK.
struct ReadCell {
  CellForm form;                   // without shape: it is dropped
  std::vector<std::size_t> order;  // node i of the cell is node order[i] there; empty: the same
};

/// Cells whose number of nodes does not follow from their type count by it.
ReadCell cellOfVtk(int type, std::size_t nodes) {
  constexpr int kPolyline = 4;
  constexpr int kPolygon = 7;
  constexpr int kPixel = 8;
  constexpr int kVoxel = 11;
  switch (type) {
    case kPolyline:
      return nodes == 2 ? ReadCell{{Shape::line, 2}, {}} : ReadCell{};
    case kPolygon:
      return nodes == 3   ? ReadCell{{Shape::triangle, 3}, {}}
             : nodes == 4 ? ReadCell{{Shape::quadrilateral, 4}, {}}
                          : ReadCell{};
    case kPixel:
      return {{Shape::quadrilateral, 4}, {0, 1, 3, 2}};
    case kVoxel:
      return {{Shape::hexahedron, 8}, {0, 1, 3, 2, 4, 5, 7, 6}};
    default:
      return {orvml::formOfVtkCell(type).value_or(CellForm()), {}};
  }
}

std::size_t sizeOf(const Numbers& numbers) {
  return std::visit([](const auto& values) { return values.size(); }, numbers);
}

/// Every so many values, from one on.
Numbers component(const Numbers& numbers, std::size_t components, std::size_t first) {
  return std::visit(
      [&](const auto& all) -> Numbers {
        std::remove_cvref_t<decltype(all)> values;
        values.reserve(all.size() / components);
        for (std::size_t i = first; i < all.size(); i += components) {
          values.push_back(all[i]);
        }
        return values;
      },
      numbers);
}

/// An array that grows piece by piece.
class GrowingArray {
 public:
  /// @param before  how many values the pieces before would have had
  void append(const Numbers& values, std::size_t before) {
    pad(before);
    if (values.index() == 1 || values_.index() == 1) {
      auto& all = doubles();
      std::visit([&](const auto& more) { all.insert(all.end(), more.begin(), more.end()); },
                 values);
    } else {
      const auto& more = std::get<std::vector<int>>(values);
      auto& all = std::get<std::vector<int>>(values_);
      all.insert(all.end(), more.begin(), more.end());
    }
  }

  ForeignArray take(const std::string& name, std::size_t wanted) {
    pad(wanted);
    return {name, std::move(values_), std::move(isGiven_)};
  }

  void keep(const std::vector<bool>& kept) {
    std::visit(
        [&](auto& values) {
          std::size_t size = 0;
          for (std::size_t i = 0; i < values.size(); ++i) {
            if (kept[i]) {
              values[size] = values[i];
              if (!isGiven_.empty()) {
                isGiven_[size] = isGiven_[i];
              }
              ++size;
            }
          }
          values.resize(size);
          isGiven_.resize(isGiven_.empty() ? 0 : size);
        },
        values_);
  }

  void pad(std::size_t wanted) {
    const std::size_t size = sizeOf(values_);
    if (size < wanted || !isGiven_.empty()) {
      isGiven_.resize(size, true);
      isGiven_.resize(std::max(size, wanted), false);
    }
    std::visit(
        [&](auto& values) {
          using Value = typename std::remove_reference_t<decltype(values)>::value_type;
          values.resize(std::max(size, wanted), std::is_same_v<Value, double>
                                                    ? static_cast<Value>(NAN)
                                                    : static_cast<Value>(-1));
        },
        values_);
  }

 private:
  std::vector<double>& doubles() {
    if (const auto* ints = std::get_if<std::vector<int>>(&values_)) {
      values_ = std::vector<double>(ints->begin(), ints->end());
    }
    return std::get<std::vector<double>>(values_);
  }

  Numbers values_;
  std::vector<bool> isGiven_;
};

class VtuReader {
 public:
  VtuReader(std::string_view bytes, ConversionReport& report)
      : file_(vtkXmlIn(bytes)), report_(report) {}

  ForeignMesh read() {
    readFieldData();
    for (const VtkPiece& piece : file_.pieces) {
      readPiece(piece);
    }
    reportCells();
    takeArrays(mesh_.nodeArrays, nodeArrays_, mesh_.coordinates.size() / kAxesOfVtk);
    applyContainers();
    if (keptCells_ < isKept_.size()) {
      for (auto& [name, array] : cellArrays_) {
        array.pad(isKept_.size());
        array.keep(isKept_);
      }
    }
    takeArrays(mesh_.cellArrays, cellArrays_, keptCells_);
    return std::move(mesh_);
  }

 private:
  static constexpr std::size_t kAxesOfVtk = 3;

  void readFieldData() {
    for (const VtkArray& array : file_.fieldData) {
      if (array.name == kFactsArray && array.type) {
        const Numbers bytes = valuesOf(file_, array, std::nullopt);
        std::string text;
        std::visit(
            [&](const auto& values) {
              for (const auto value : values) {
                text += value >= 0 && value <= UCHAR_MAX
                            ? static_cast<char>(static_cast<unsigned char>(value))
                            : '\0';
              }
            },
            bytes);
        mesh_.facts = factsIn(text);
      } else if (!array.type) {
        report_.add(orvml::Fate::dropped, "field data '" + array.name + "'", 1,
                    "are texts or of a type that is none of numbers");
      } else {
        addParameter(array.name, storableValuesOf(array, std::nullopt));
      }
    }
  }

  void addParameter(const std::string& name, Numbers values) {
    if (sizeOf(values) == 1) {
      mesh_.parameters.emplace_back(
          name,
          std::visit([](const auto& all) { return double{static_cast<double>(all[0])}; }, values));
    } else {
      mesh_.vectorParameters.emplace_back(name, std::move(values));
    }
  }

  /// The values of an array that becomes an attribute or a vector parameter, which are of 32 bits
  /// or floating-point numbers.
  Numbers storableValuesOf(const VtkArray& array, std::optional<std::uint64_t> wanted) {
    Numbers values = valuesOf(file_, array, wanted);
    if (array.type->kind != 'f' && std::holds_alternative<std::vector<double>>(values)) {
      report_.add(orvml::Fate::approximated, "the array '" + array.name + "'",
                  static_cast<std::int64_t>(sizeOf(values)),
                  "has integers beyond 32 bits and becomes one of doubles");
    }
    return values;
  }

  static const VtkArray& arrayOf(const VtkPiece& piece, Section section, std::string_view name) {
    for (const VtkArray& array : piece.arrays) {
      if (array.section == section && (name.empty() || array.name == name)) {
        return array;
      }
    }
    throw FormatError("a piece has no " + std::string(name.empty() ? "points" : name));
  }

  void readPiece(const VtkPiece& piece) {
    if (piece.points > INT_MAX || piece.cells > INT_MAX) {
      throw FormatError("a piece has more points or cells than an exchange file can count");
    }
    const std::size_t firstPoint = mesh_.coordinates.size() / kAxesOfVtk;
    const std::size_t firstCell = isKept_.size();
    if (piece.points > 0) {
      readPoints(piece);
    }
    if (piece.cells > 0) {
      readCells(piece, firstPoint);
    }
    for (const VtkArray& array : piece.arrays) {
      if (array.section == Section::pointData) {
        readArray(array, piece.points, firstPoint, nodeArrays_);
      } else if (array.section == Section::cellData) {
        readArray(array, piece.cells, firstCell, cellArrays_);
      }
    }
  }

  void readPoints(const VtkPiece& piece) {
    const Numbers values =
        valuesOf(file_, arrayOf(piece, Section::points, ""), piece.points * kAxesOfVtk);
    std::visit(
        [&](const auto& all) {
          mesh_.coordinates.insert(mesh_.coordinates.end(), all.begin(), all.end());
        },
        values);
    if (mesh_.coordinates.size() / kAxesOfVtk > INT_MAX) {
      throw FormatError("there are more points than an exchange file can count");
    }
  }

  void readCells(const VtkPiece& piece, std::size_t firstPoint) {
    const auto types = integersOf(file_, arrayOf(piece, Section::cells, "types"), piece.cells);
    const auto ends = integersOf(file_, arrayOf(piece, Section::cells, "offsets"), piece.cells);
    const auto nodes =
        integersOf(file_, arrayOf(piece, Section::cells, "connectivity"), std::nullopt);
    std::int64_t begin = 0;
    for (std::size_t cell = 0; cell < types.size(); ++cell) {
      const std::int64_t end = ends[cell];
      if (end < begin || end > static_cast<std::int64_t>(nodes.size())) {
        throw FormatError("cell " + std::to_string(cell) + " ends behind the node numbers");
      }
      const auto first = static_cast<std::size_t>(begin);
      addCell(static_cast<int>(std::clamp<std::int64_t>(types[cell], -1, UCHAR_MAX)),
              std::span(nodes).subspan(first, static_cast<std::size_t>(end - begin)), firstPoint,
              piece.points);
      begin = end;
    }
  }

  void addCell(int type, std::span<const std::int64_t> nodes, std::size_t firstPoint,
               std::uint64_t points) {
    if (type != lastType_ || nodes.size() != lastSize_) {
      last_ = cellOfVtk(type, nodes.size());
      lastType_ = type;
      lastSize_ = nodes.size();
    }
    if (last_.form.shape == Shape::none) {
      ++dropped_[{type, nodes.size()}];
      isKept_.push_back(false);
      return;
    }
    if (nodes.size() != static_cast<std::size_t>(last_.form.nodesPerCell)) {
      throw FormatError("a cell of VTK's type " + std::to_string(type) + " has " +
                        std::to_string(nodes.size()) + " nodes");
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::int64_t node = nodes[last_.order.empty() ? i : last_.order[i]];
      if (node < 0 || static_cast<std::uint64_t>(node) >= points) {
        throw FormatError("a cell names point " + std::to_string(node) + " of " +
                          std::to_string(points));
      }
      mesh_.nodeIndices.push_back(static_cast<int>(static_cast<std::size_t>(node) + firstPoint));
    }
    turned_ += last_.order.empty() ? 0 : 1;
    mesh_.addRun(containerOf(last_.form.shape), last_.form, 1);
    isKept_.push_back(true);
    ++keptCells_;
  }

  void readArray(const VtkArray& array, std::uint64_t rows, std::size_t before,
                 std::vector<std::pair<std::string, GrowingArray>>& arrays) {
    const std::size_t components = std::max<std::size_t>(1, array.components);
    if (!array.type) {
      report_.add(orvml::Fate::dropped, "the array '" + array.name + "'", 1,
                  "holds texts or a type that is none of numbers");
      return;
    }
    if (components > INT_MAX || rows > UINT64_MAX / components) {
      throw FormatError("the array '" + array.name + "' has too many components");
    }
    const Numbers values = storableValuesOf(array, rows * components);
    if (components == 1) {
      grow(arrays, array.name, values, before);
      return;
    }
    if (file_.pieces.size() == 1 || before == 0) {
      report_.add(orvml::Fate::split, "the array '" + array.name + "'",
                  static_cast<std::int64_t>(components),
                  "has " + std::to_string(components) + " components, which become '" + array.name +
                      ".0' and so on");
    }
    for (std::size_t i = 0; i < components && rows > 0; ++i) {
      grow(arrays, array.name + "." + std::to_string(i), component(values, components, i), before);
    }
  }

  static void grow(std::vector<std::pair<std::string, GrowingArray>>& arrays,
                   const std::string& name, const Numbers& values, std::size_t before) {
    auto found = std::find_if(arrays.begin(), arrays.end(),
                              [&](const auto& array) { return array.first == name; });
    if (found == arrays.end()) {
      found = arrays.insert(arrays.end(), {name, {}});
    }
    found->second.append(values, before);
  }

  static void takeArrays(std::vector<ForeignArray>& arrays,
                         std::vector<std::pair<std::string, GrowingArray>>& grown,
                         std::size_t size) {
    for (auto& [name, array] : grown) {
      arrays.push_back(array.take(name, size));
    }
  }

  void reportCells() {
    for (const auto& [cell, count] : dropped_) {
      report_.add(orvml::Fate::dropped, counted(count, "cell"), count,
                  "of VTK's type " + std::to_string(cell.first) + " with " +
                      counted(static_cast<std::int64_t>(cell.second), "node") +
                      (count == 1 ? " has" : " have") + " no shape in an exchange file");
    }
    if (turned_ > 0) {
      report_.add(orvml::Fate::turned, counted(turned_, "pixel or voxel"), turned_,
                  "got the order of nodes of quadrilaterals and hexahedra");
    }
    if (file_.pieces.size() > 1) {
      report_.add(orvml::Fate::turned,
                  counted(static_cast<std::int64_t>(file_.pieces.size()), "piece"),
                  static_cast<std::int64_t>(file_.pieces.size()),
                  "became one mesh; points at one place stay apart");
    }
  }

  /// Cells go to the container that a file made here names for each.
  void applyContainers() {
    const auto found = std::find_if(cellArrays_.begin(), cellArrays_.end(), [](const auto& array) {
      return array.first == kContainerArray;
    });
    if (found == cellArrays_.end()) {
      return;
    }
    const ForeignArray array = found->second.take(found->first, isKept_.size());
    cellArrays_.erase(found);
    const auto* containers = std::get_if<std::vector<int>>(&array.values);
    if (containers == nullptr) {
      return;
    }
    std::vector<CellRun> runs;
    std::swap(runs, mesh_.runs);
    std::size_t cell = 0;
    for (const CellRun& run : runs) {
      for (std::size_t i = 0; i < run.cells; ++i, ++cell) {
        while (!isKept_[cell]) {
          ++cell;
        }
        const int told = (*containers)[cell];
        const bool isOne =
            told >= static_cast<int>(Entity::edges) && told <= static_cast<int>(Entity::elements);
        mesh_.addRun(isOne ? static_cast<Entity>(told) : run.container, run.form, 1);
      }
    }
  }

  VtkXml file_;
  ConversionReport& report_;
  ForeignMesh mesh_;
  std::vector<std::pair<std::string, GrowingArray>> nodeArrays_;
  std::vector<std::pair<std::string, GrowingArray>> cellArrays_;
  std::vector<bool> isKept_;  // of the cells of the file
  std::size_t keptCells_ = 0;
  std::map<std::pair<int, std::size_t>, std::int64_t> dropped_;
  std::int64_t turned_ = 0;  // pixels and voxels
  ReadCell last_;
  int lastType_ = -1;
  std::size_t lastSize_ = 0;
};

}  // namespace

Draft readVtu(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOf(VtuReader(bytes, report).read(), options, report);
}

}  // namespace orvml_tool
