#include "console.h"
#include "convert/document_facts.h"
#include "convert/format.h"
#include "convert/joined_attributes.h"
#include "convert/placed_groups.h"
#include "convert/vtu.h"
#include "convert/xml_names.h"
#include "facts.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <limits>

// VTK's XML file of an unstructured grid, with its arrays as raw bytes behind the XML: what VTK,
// and whoever reads its files, takes fastest.
namespace orvml_tool {

namespace {

using orvml::DocumentView;
using orvml::Entity;

constexpr std::size_t kBlockBytes = std::size_t{1} << 15U;  // VTK's own
constexpr int kLevel = 5;                                   // VTK's own
// Of an attribute with a number of up to 20 digits. Zeros in front of it would keep meshio, which
// compares texts, from finding the array.
constexpr std::size_t kOffsetRoom = 29;

std::optional<ForeignCell> vtuCellOf(orvml::CellForm form, bool hasOlderPrisms) {
  const auto type = orvml::vtkCellType(form);
  if (!type) {
    return std::nullopt;
  }
  const bool isTurned = hasOlderPrisms && form.shape == orvml::Shape::prism;
  return ForeignCell{
      *type,
      {},
      isTurned ? orvml::olderVtkPrismOrder(form.nodesPerCell) : std::span<const std::uint8_t>()};
}

/// The bytes of one array behind the XML, as they are or in compressed blocks.
class AppendedArray {
 public:
  AppendedArray(ByteSink& sink, std::uint64_t bytes, bool compresses)
      : sink_(sink), compresses_(compresses) {
    if (!compresses_) {
      sink_.writeValue(bytes);
      return;
    }
    const std::uint64_t blocks = (bytes + kBlockBytes - 1) / kBlockBytes;
    header_ = {blocks, kBlockBytes, bytes % kBlockBytes};
    headerPosition_ = sink_.position();
    const std::vector<std::uint64_t> room(kSizes + blocks);
    sink_.writeValues(std::span(room));
    block_.reserve(kBlockBytes);
    compressed_.resize(::compressBound(kBlockBytes));
  }

  void write(std::string_view bytes) {
    if (!compresses_) {
      sink_.write(bytes);
      return;
    }
    while (!bytes.empty()) {
      const std::string_view part = bytes.substr(0, kBlockBytes - block_.size());
      block_ += part;
      bytes.remove_prefix(part.size());
      if (block_.size() == kBlockBytes) {
        compressBlock();
      }
    }
  }

  template <class T>
  void writeValues(std::span<const T> values) {
    write({reinterpret_cast<const char*>(values.data()), values.size_bytes()});
  }

  void finish() {
    if (!block_.empty()) {
      compressBlock();
    }
    if (compresses_) {
      sink_.patch(headerPosition_, {reinterpret_cast<const char*>(header_.data()),
                                    header_.size() * sizeof header_.front()});
    }
  }

 private:
  static constexpr std::size_t kSizes = 3;  // before those of the blocks

  void compressBlock() {
    uLongf size = compressed_.size();
    if (::compress2(reinterpret_cast<Bytef*>(compressed_.data()), &size,
                    reinterpret_cast<const Bytef*>(block_.data()), block_.size(), kLevel) != Z_OK) {
      throw std::bad_alloc();
    }
    sink_.write(std::string_view(compressed_).substr(0, size));
    header_.push_back(size);
    block_.clear();
  }

  ByteSink& sink_;
  bool compresses_;
  std::vector<std::uint64_t> header_;
  std::uint64_t headerPosition_ = 0;
  std::string block_;
  std::string compressed_;
};

/// Values that are made one after the other, in blocks.
template <class T>
class MadeValues {
 public:
  explicit MadeValues(AppendedArray& array) : array_(array) { values_.reserve(kValues); }
  void add(T value) {
    values_.push_back(value);
    if (values_.size() == kValues) {
      finish();
    }
  }
  void finish() {
    array_.writeValues(std::span<const T>(values_));
    values_.clear();
  }

 private:
  static constexpr std::size_t kValues = 1U << 13U;
  AppendedArray& array_;
  std::vector<T> values_;
};

class VtuWriter {
 public:
  VtuWriter(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
            ConversionReport& report)
      : document_(document),
        options_(options),
        sink_(sink),
        report_(report),
        groups_(placedGroups(
            document, options.containers, "vtu",
            [&](orvml::CellForm form) { return vtuCellOf(form, options.hasOlderPrisms); }, report)),
        facts_(factsOf(document)) {
    facts_.hasOlderPrisms = options.hasOlderPrisms;
    for (const PlacedGroup& placed : groups_) {
      numberOfIndices_ += placed.group.nodeIndices().size();
      facts_.groups.push_back({placed.container,
                               {placed.group.shape(), placed.group.nodesPerCell()},
                               placed.group.size()});
    }
  }

  void write() {
    sink_.write(
        "<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" "
        "byte_order=\"LittleEndian\" header_type=\"UInt64\"");
    sink_.write(options_.compresses ? " compressor=\"vtkZLibDataCompressor\">\n" : ">\n");
    sink_.write("<UnstructuredGrid>\n");
    const std::string piece =
        "<Piece NumberOfPoints=\"" + shown(std::int64_t{document_.nodes().size()}) +
        "\" NumberOfCells=\"" + shown(static_cast<std::int64_t>(numberOfCells(groups_))) + "\">\n";
    // The facts name the arrays, so they are written last, though they stand first.
    declarePointData();
    declareCellData();
    declarePoints();
    declareCells();
    std::vector<Declared> arrays;
    std::swap(arrays, sections_);
    declareFieldData();
    writeDeclarations(sections_);
    sink_.write(piece);
    writeDeclarations(arrays);
    sink_.write("</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_");
    begin_ = sink_.position();
    writeArrays(sections_);
    writeArrays(arrays);
    sink_.write("\n</AppendedData>\n</VTKFile>\n");
  }

 private:
  struct Declared {
    std::string section;
    std::string attributes;
    std::uint64_t bytes = 0;
    std::function<void(AppendedArray& array)> write;
    std::uint64_t offsetPosition = 0;
  };

  void declare(const std::string& section, const std::string& type, const std::string& name,
               const std::string& more, std::uint64_t bytes,
               std::function<void(AppendedArray& array)> write) {
    sections_.push_back({section,
                         "type=\"" + type + "\" Name=\"" + quotedForXml(name) + "\"" + more, bytes,
                         std::move(write), 0});
  }

  void declareValues(const std::string& section, const std::string& name, const std::string& more,
                     const orvml::Attribute::Values& values) {
    std::visit(
        [&](auto span) {
          declare(section, typeName(span.data()), name, more, span.size_bytes(),
                  [span](AppendedArray& array) { array.writeValues(span); });
        },
        values);
  }

  static const char* typeName(const int*) { return "Int32"; }
  static const char* typeName(const double*) { return "Float64"; }

  void declarePointData() {
    XmlNames names(report_);
    for (const orvml::Attribute& attribute : document_.nodes().attributes()) {
      const std::string name =
          names.of(attribute.name, attributePath(document_, Entity::nodes, attribute.name));
      declareValues("PointData", name, "", attribute.values);
      facts_.attributes.push_back({Entity::nodes, std::string(attribute.name), name,
                                   attribute.holdsInts(), attribute.mustBeTransmitted});
    }
  }

  /// Whether the cells alone do not tell which container they are of.
  [[nodiscard]] bool needsContainers() const {
    return std::any_of(groups_.begin(), groups_.end(), [&](const PlacedGroup& placed) {
      return placed.container != groups_.front().container ||
             placed.container != containerOf(placed.group.shape());
    });
  }

  void declareCellData() {
    XmlNames names(report_);
    names.reserve(kContainerArray);
    if (needsContainers()) {
      declare("CellData", "UInt8", std::string(kContainerArray), "", numberOfCells(groups_),
              [this](AppendedArray& array) {
                writeForEachCell<std::uint8_t>(array, [](const PlacedGroup& placed) {
                  return static_cast<std::uint8_t>(placed.container);
                });
              });
    }
    for (JoinedAttribute& joined : joinedAttributes(document_, groups_, report_)) {
      const std::string name =
          names.of(joined.name, "the cells' attribute " + std::string(joined.name));
      for (const Entity container : {Entity::edges, Entity::faces, Entity::elements}) {
        if (const auto& attribute = joined.of(container)) {
          facts_.attributes.push_back({container, std::string(joined.name), name,
                                       attribute->holdsInts(), attribute->mustBeTransmitted});
        }
      }
      const std::size_t width = joined.holdsInts ? sizeof(int) : sizeof(double);
      declare("CellData", joined.holdsInts ? "Int32" : "Float64", name, "",
              numberOfCells(groups_) * width, [this, joined](AppendedArray& array) {
                for (const PlacedGroup& placed : groups_) {
                  writeOfGroup(array, joined, placed);
                }
              });
    }
  }

  static void writeOfGroup(AppendedArray& array, const JoinedAttribute& joined,
                           const PlacedGroup& placed) {
    const auto size = static_cast<std::size_t>(placed.group.size());
    const auto& attribute = joined.of(placed.container);
    if (!attribute && joined.holdsInts) {
      writeRepeated(array, -1, size);
    } else if (!attribute) {
      writeRepeated(array, std::numeric_limits<double>::quiet_NaN(), size);
    } else if (!attribute->holdsInts()) {
      array.writeValues(attribute->doubles().subspan(placed.first, size));
    } else if (joined.holdsInts) {
      array.writeValues(attribute->ints().subspan(placed.first, size));
    } else {
      MadeValues<double> made(array);
      for (const int value : attribute->ints().subspan(placed.first, size)) {
        made.add(value);
      }
      made.finish();
    }
  }

  template <class T>
  static void writeRepeated(AppendedArray& array, T value, std::size_t count) {
    const std::vector<T> block(std::min(count, kBlockBytes), value);
    for (; count > 0; count -= std::min(count, block.size())) {
      array.writeValues(std::span(block).first(std::min(count, block.size())));
    }
  }

  template <class T, class Of>
  void writeForEachCell(AppendedArray& array, Of&& of) const {
    for (const PlacedGroup& placed : groups_) {
      writeRepeated<T>(array, of(placed), static_cast<std::size_t>(placed.group.size()));
    }
  }

  void declarePoints() {
    const auto xyz = document_.nodes().coordinates();
    const bool isPlane = document_.nodes().dimension() == 2;
    if (isPlane && !xyz.empty()) {
      report_.add(orvml::Fate::padded, pathOf(document_, Entity::nodes) + "/coordinates",
                  document_.nodes().size(), "get z = 0, because vtu has points in space alone");
    }
    declare("Points", "Float64", "Points", " NumberOfComponents=\"3\"",
            xyz.size_bytes() / (isPlane ? 2 : 1) * (isPlane ? 3 : 1),
            [xyz, isPlane](AppendedArray& array) {
              if (!isPlane) {
                array.writeValues(xyz);
                return;
              }
              MadeValues<double> made(array);
              for (std::size_t node = 0; node < xyz.size(); node += 2) {
                made.add(xyz[node]);
                made.add(xyz[node + 1]);
                made.add(0.0);
              }
              made.finish();
            });
  }

  void declareCells() {
    if (numberOfIndices_ <= INT_MAX) {
      declareCellsAs<std::int32_t>("Int32");
    } else {
      declareCellsAs<std::int64_t>("Int64");
    }
    declare("Cells", "UInt8", "types", "", numberOfCells(groups_), [this](AppendedArray& array) {
      writeForEachCell<std::uint8_t>(array, [](const PlacedGroup& placed) {
        return static_cast<std::uint8_t>(placed.cell.type);
      });
    });
  }

  template <class Index>
  void declareCellsAs(const std::string& type) {
    declare("Cells", type, "connectivity", "", numberOfIndices_ * sizeof(Index),
            [this](AppendedArray& array) {
              for (const PlacedGroup& placed : groups_) {
                writeIndices<Index>(array, placed);
              }
            });
    declare("Cells", type, "offsets", "", numberOfCells(groups_) * sizeof(Index),
            [this](AppendedArray& array) {
              Index end = 0;
              for (const PlacedGroup& placed : groups_) {
                end = writeEnds(array, end, placed.group);
              }
            });
  }

  /// Writes where each cell of a group ends and returns where the last one does.
  template <class Index>
  static Index writeEnds(AppendedArray& array, Index end, const orvml::CellGroup& group) {
    std::vector<Index> block(kBlockBytes);
    const Index width = group.nodesPerCell();
    for (auto left = static_cast<std::size_t>(group.size()); left > 0;) {
      const std::size_t count = std::min(left, block.size());
      for (std::size_t i = 0; i < count; ++i) {
        end += width;
        block[i] = end;
      }
      array.writeValues(std::span<const Index>(block).first(count));
      left -= count;
    }
    return end;
  }

  template <class Index>
  static void writeIndices(AppendedArray& array, const PlacedGroup& placed) {
    const auto nodes = placed.group.nodeIndices();
    if (placed.cell.order.empty() && std::is_same_v<Index, int>) {
      array.writeValues(nodes);
      return;
    }
    const auto width = static_cast<std::size_t>(placed.group.nodesPerCell());
    MadeValues<Index> made(array);
    for (std::size_t cell = 0; cell < nodes.size(); cell += width) {
      for (std::size_t i = 0; i < width; ++i) {
        made.add(nodes[cell + (placed.cell.order.empty() ? i : placed.cell.order[i])]);
      }
    }
    made.finish();
  }

  void declareFieldData() {
    XmlNames names(report_);
    names.reserve(kFactsArray);
    const std::string root = documentPath(document_.kind()) + "/";
    for (const orvml::Parameter& parameter : document_.parameters()) {
      declare("FieldData", "Float64",
              names.of(parameter.name, root + "parameters " + std::string(parameter.name)),
              " NumberOfTuples=\"1\"", sizeof parameter.value,
              [value = parameter.value](AppendedArray& array) {
                array.writeValues(std::span<const double>(&value, 1));
              });
    }
    for (const orvml::Attribute& vector : document_.vectorParameters()) {
      declareValues("FieldData",
                    names.of(vector.name, root + "parameters/" + std::string(vector.name)),
                    " NumberOfTuples=\"" + shown(static_cast<std::int64_t>(vector.size())) + "\"",
                    vector.values);
    }
    factsText_ = textOf(facts_);
    declare("FieldData", "UInt8", std::string(kFactsArray),
            " NumberOfTuples=\"" + shown(static_cast<std::int64_t>(factsText_.size())) + "\"",
            factsText_.size(), [this](AppendedArray& array) { array.write(factsText_); });
  }

  void writeTag(std::string_view opening, const std::string& section) {
    sink_.write(opening);
    sink_.write(section);
    sink_.write(">\n");
  }

  void writeDeclarations(std::vector<Declared>& arrays) {
    for (std::size_t i = 0; i < arrays.size(); ++i) {
      Declared& array = arrays[i];
      if (i == 0 || arrays[i - 1].section != array.section) {
        writeTag("<", array.section);
      }
      sink_.write("<DataArray ");
      sink_.write(array.attributes);
      sink_.write(" format=\"appended\" ");
      array.offsetPosition = sink_.position();
      sink_.write(std::string(kOffsetRoom, ' '));
      sink_.write("/>\n");
      if (i + 1 == arrays.size() || arrays[i + 1].section != array.section) {
        writeTag("</", array.section);
      }
    }
  }

  /// Compressed arrays have a size when they are written, so the offsets are set then.
  void writeArrays(const std::vector<Declared>& arrays) {
    for (const Declared& declared : arrays) {
      sink_.patch(declared.offsetPosition,
                  "offset=\"" + shown(static_cast<std::int64_t>(sink_.position() - begin_)) + "\"");
      AppendedArray array(sink_, declared.bytes, options_.compresses);
      declared.write(array);
      array.finish();
    }
  }

  const DocumentView& document_;
  const ExportOptions& options_;
  ByteSink& sink_;
  ConversionReport& report_;
  std::vector<PlacedGroup> groups_;
  std::size_t numberOfIndices_ = 0;
  DocumentFacts facts_;
  std::string factsText_;
  std::vector<Declared> sections_;
  std::uint64_t begin_ = 0;
};

}  // namespace

void writeVtu(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  VtuWriter(document, options, sink, report).write();
}

}  // namespace orvml_tool
