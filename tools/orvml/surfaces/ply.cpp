#include "surfaces/surface.h"
#include "surfaces/words.h"

#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>

namespace orvml_tool {

namespace {

/// A number in a binary file.
struct Type {
  std::string_view name;
  std::string_view otherName;
  char kind;  // 'i' with a sign, 'u' without, 'f' for floating point
  std::size_t bytes;
};

constexpr std::array<Type, 8> kTypes = {{{"char", "int8", 'i', 1},
                                         {"uchar", "uint8", 'u', 1},
                                         {"short", "int16", 'i', 2},
                                         {"ushort", "uint16", 'u', 2},
                                         {"int", "int32", 'i', 4},
                                         {"uint", "uint32", 'u', 4},
                                         {"float", "float32", 'f', 4},
                                         {"double", "float64", 'f', 8}}};

struct Property {
  std::string_view name;
  Type type;
  std::optional<Type> countType;  // of a list
};

struct Element {
  std::string_view name;
  std::size_t count = 0;
  std::vector<Property> properties;
};

struct Header {
  std::string_view format;
  std::vector<Element> elements;
  std::size_t bytes = 0;
};

Type typeNamed(std::string_view name, const Words& words) {
  for (const Type& type : kTypes) {
    if (type.name == name || type.otherName == name) {
      return type;
    }
  }
  words.refuse("'" + std::string(name) + "' is no type of a property");
}

Property propertyIn(const Words& words) {
  const auto& line = words.line();
  if (line.size() == 5 && line[1] == "list") {
    return {line[4], typeNamed(line[3], words), typeNamed(line[2], words)};
  }
  if (line.size() != 3) {
    words.refuse("a property has a type and a name");
  }
  return {line[2], typeNamed(line[1], words), {}};
}

void addLine(Header& header, const Words& words) {
  const auto& line = words.line();
  if (line.front() == "format" && line.size() == 3) {
    header.format = line[1];
  } else if (line.front() == "element" && line.size() == 3) {
    header.elements.push_back({line[1], words.count(line[2]), {}});
  } else if (line.front() == "property" && !header.elements.empty()) {
    header.elements.back().properties.push_back(propertyIn(words));
  } else if (line.front() != "comment" && line.front() != "obj_info") {
    words.refuse("'" + std::string(line.front()) + "' does not belong into a header");
  }
}

Header headerOf(std::string_view bytes) {
  Words words(bytes);
  if (!words.nextLine() || words.line().front() != "ply") {
    words.refuse("there is no ply at the beginning, so it is another kind of file");
  }
  Header header;
  while (words.nextLine() && words.line().front() != "end_header") {
    addLine(header, words);
  }
  if (words.line().empty()) {
    words.refuse("the header has no end");
  }
  header.bytes = words.position();
  return header;
}

/// The numbers behind the header, one after the other.
class PlyNumbers {
 public:
  virtual ~PlyNumbers() = default;
  [[nodiscard]] virtual double next(const Type& type) = 0;

  /// A number of nodes, or of a node.
  std::int64_t nextInteger(const Type& type) {
    const double value = next(type);
    constexpr double kGreatest = 4294967295.0;  // of the types that there are
    if (type.kind == 'f' || !(std::abs(value) <= kGreatest) || std::trunc(value) != value) {
      throw FormatError("the nodes of a face are no integers");
    }
    return static_cast<std::int64_t>(value);
  }

 protected:
  PlyNumbers() = default;
  PlyNumbers(const PlyNumbers&) = default;
  PlyNumbers& operator=(const PlyNumbers&) = default;
  PlyNumbers(PlyNumbers&&) = default;
  PlyNumbers& operator=(PlyNumbers&&) = default;
};

class TextNumbers final : public PlyNumbers {
 public:
  explicit TextNumbers(std::string_view text) : words_(text) {}
  double next(const Type&) override { return words_.number(words_.next()); }

 private:
  Words words_;
};

class BinaryNumbers final : public PlyNumbers {
 public:
  BinaryNumbers(std::string_view bytes, bool areSwapped) : bytes_(bytes), areSwapped_(areSwapped) {}

  double next(const Type& type) override {
    if (bytes_.size() < type.bytes) {
      throw FormatError("the file ends too early");
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < type.bytes; ++i) {
      const std::size_t place = areSwapped_ ? type.bytes - 1 - i : i;
      bits |= std::uint64_t{static_cast<unsigned char>(bytes_[place])} << (8 * i);
    }
    bytes_.remove_prefix(type.bytes);
    return valueOf(bits, type);
  }

 private:
  static double valueOf(std::uint64_t bits, const Type& type) {
    if (type.kind == 'f') {
      return type.bytes == sizeof(double)
                 ? std::bit_cast<double>(bits)
                 : double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
    }
    if (type.kind == 'u') {
      return static_cast<double>(bits);
    }
    switch (type.bytes) {
      case 1:
        return static_cast<std::int8_t>(bits);
      case 2:
        return static_cast<std::int16_t>(bits);
      default:
        return static_cast<std::int32_t>(bits);
    }
  }

  std::string_view bytes_;
  bool areSwapped_;  // whether the most significant byte comes first
};

/// Counts a value that a surface has no place for. Names are told of once and not for ever.
void passOver(Surface& surface, const Element& element, const Property& property) {
  constexpr std::size_t kLongest = 40;
  constexpr std::size_t kMost = 20;
  const std::string name = std::string(element.name.substr(0, kLongest)) + "." +
                           std::string(property.name.substr(0, kLongest));
  const bool isKnown = surface.passedOver.count(name) > 0 || surface.passedOver.size() < kMost;
  ++surface.passedOver[isKnown ? name : "other properties"];
}

void readVertex(Surface& surface, const Element& element, PlyNumbers& numbers) {
  std::array<std::optional<double>, 3> point;
  for (const Property& property : element.properties) {
    if (property.countType) {
      throw FormatError("a vertex has a list");
    }
    const double value = numbers.next(property.type);
    const std::size_t axis = property.name.size() == 1 ? std::string_view("xyz").find(property.name)
                                                       : std::string_view::npos;
    if (axis != std::string_view::npos) {
      point[axis] = value;
    } else {
      passOver(surface, element, property);
    }
  }
  for (const auto& value : point) {
    if (!value) {
      throw FormatError("a vertex has no x, y and z");
    }
    surface.coordinates.push_back(*value);
  }
}

void readNodes(const Property& property, PlyNumbers& numbers, std::vector<std::int64_t>& nodes) {
  const std::int64_t size = numbers.nextInteger(*property.countType);
  nodes.clear();
  for (std::int64_t i = 0; i < size; ++i) {
    nodes.push_back(numbers.nextInteger(property.type));
  }
}

void skipValues(const Property& property, PlyNumbers& numbers) {
  const std::int64_t size = property.countType ? numbers.nextInteger(*property.countType) : 1;
  for (std::int64_t i = 0; i < size; ++i) {
    (void)numbers.next(property.type);
  }
}

void readOther(Surface& surface, const Element& element, PlyNumbers& numbers,
               std::vector<std::int64_t>& nodes) {
  for (const Property& property : element.properties) {
    const bool areNodes = element.name == "face" && property.countType &&
                          (property.name == "vertex_indices" || property.name == "vertex_index");
    if (areNodes) {
      readNodes(property, numbers, nodes);
      surface.addFace(nodes);
    } else {
      skipValues(property, numbers);
      passOver(surface, element, property);
    }
  }
}

Surface readElements(const Header& header, PlyNumbers& numbers) {
  Surface surface;
  std::vector<std::int64_t> nodes;
  for (const Element& element : header.elements) {
    for (std::size_t i = 0; i < element.count && !element.properties.empty(); ++i) {
      if (element.name == "vertex") {
        readVertex(surface, element, numbers);
      } else {
        readOther(surface, element, numbers, nodes);
      }
    }
  }
  return surface;
}

}  // namespace

Surface surfaceFromPly(std::string_view bytes) {
  const Header header = headerOf(bytes);
  const std::string_view content = bytes.substr(header.bytes);
  if (header.format == "ascii") {
    TextNumbers numbers(content);
    return readElements(header, numbers);
  }
  if (header.format == "binary_little_endian" || header.format == "binary_big_endian") {
    BinaryNumbers numbers(content, header.format == "binary_big_endian");
    return readElements(header, numbers);
  }
  throw FormatError("'" + std::string(header.format) + "' is no format of ply files");
}

}  // namespace orvml_tool
