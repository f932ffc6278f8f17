#include "convert/vtk_xml.h"

#include "convert/format_error.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <functional>
#include <memory>
#include <utility>

namespace orvml_tool {

namespace {

constexpr std::string_view kAppendedTag = "<AppendedData";
constexpr std::string_view kBlanks = " \t\r\n";

std::optional<VtkType> vtkTypeNamed(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, VtkType>, 10> kTypes = {{{"Int8", {'i', 1}},
                                                                            {"UInt8", {'u', 1}},
                                                                            {"Int16", {'i', 2}},
                                                                            {"UInt16", {'u', 2}},
                                                                            {"Int32", {'i', 4}},
                                                                            {"UInt32", {'u', 4}},
                                                                            {"Int64", {'i', 8}},
                                                                            {"UInt64", {'u', 8}},
                                                                            {"Float32", {'f', 4}},
                                                                            {"Float64", {'f', 8}}}};
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(),
                                   [&](const auto& type) { return type.first == name; });
  return found == kTypes.end() ? std::nullopt : std::optional(found->second);
}

std::optional<VtkArray::Section> sectionNamed(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, VtkArray::Section>, 5> kSections = {
      {{"FieldData", VtkArray::Section::fieldData},
       {"PointData", VtkArray::Section::pointData},
       {"CellData", VtkArray::Section::cellData},
       {"Points", VtkArray::Section::points},
       {"Cells", VtkArray::Section::cells}}};
  const auto* found = std::find_if(kSections.begin(), kSections.end(),
                                   [&](const auto& section) { return section.first == name; });
  return found == kSections.end() ? std::nullopt : std::optional(found->second);
}

/// The attributes of one element.
class XmlAttributes {
 public:
  explicit XmlAttributes(const XML_Char** pairs) : pairs_(pairs) {}

  [[nodiscard]] std::string_view text(std::string_view name) const {
    for (const XML_Char** pair = pairs_; *pair != nullptr; pair += 2) {
      if (name == *pair) {
        return pair[1];
      }
    }
    return {};
  }

  [[nodiscard]] std::optional<std::uint64_t> count(std::string_view name) const {
    std::string_view digits = text(name);
    if (digits.empty()) {
      return std::nullopt;
    }
    digits.remove_prefix(std::min(digits.find_first_not_of(kBlanks), digits.size()));
    std::uint64_t value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc()) {
      throw FormatError("'" + std::string(text(name)) + "' is no " + std::string(name));
    }
    return value;
  }

 private:
  const XML_Char** pairs_;
};

// Expat has begun to deprecate this for a function that older releases do not have. The reason,
// numbers of 32 bits, is none where XML_Size has as many as here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
XML_Size lineOf(XML_Parser parser) { return XML_GetCurrentLineNumber(parser); }
#pragma GCC diagnostic pop

class VtkXmlParser {
 public:
  VtkXmlParser() : parser_(XML_ParserCreate(nullptr)) {
    if (parser_ == nullptr) {
      throw std::bad_alloc();
    }
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &VtkXmlParser::startsElement, &VtkXmlParser::endsElement);
    XML_SetCharacterDataHandler(parser_.get(), &VtkXmlParser::hasText);
    XML_SetStartDoctypeDeclHandler(parser_.get(), &VtkXmlParser::hasDoctype);
  }

  /// @param isWhole  whether that is all, or the end of the XML is left out
  void parse(std::string_view xml, bool isWhole) {
    constexpr std::size_t kBlock = std::size_t{1} << 20U;
    do {
      const std::string_view part = xml.substr(0, kBlock);
      xml.remove_prefix(part.size());
      const bool isLast = isWhole && xml.empty();
      const XML_Status status = XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()),
                                          isLast ? XML_TRUE : XML_FALSE);
      if (failure_) {
        std::rethrow_exception(failure_);
      }
      if (status != XML_STATUS_OK) {
        throw FormatError("line " + std::to_string(lineOf(parser_.get())) +
                          " is no XML: " + XML_ErrorString(XML_GetErrorCode(parser_.get())));
      }
    } while (!xml.empty());
    if (!hasGrid_) {
      throw FormatError("there is no unstructured grid in it");
    }
  }

  VtkXml take() { return std::move(found_); }

 private:
  struct Free {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
  };

  /// An exception cannot pass through the parser, which is written in C.
  template <class Step>
  void guarded(Step&& step) noexcept {
    try {
      if (!failure_) {
        step();
      }
    } catch (...) {
      failure_ = std::current_exception();
      (void)XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  static void XMLCALL startsElement(void* self, const XML_Char* name, const XML_Char** pairs) {
    auto& parser = *static_cast<VtkXmlParser*>(self);
    parser.guarded([&] { parser.start(name, XmlAttributes(pairs)); });
  }
  static void XMLCALL endsElement(void* self, const XML_Char* name) {
    auto& parser = *static_cast<VtkXmlParser*>(self);
    parser.guarded([&] { parser.end(name); });
  }
  static void XMLCALL hasText(void* self, const XML_Char* text, int length) {
    auto& parser = *static_cast<VtkXmlParser*>(self);
    parser.guarded([&] {
      if (parser.array_ != nullptr && parser.depthInArray_ == 0) {
        parser.array_->text.append(text, static_cast<std::size_t>(length));
      }
    });
  }
  /// Entities could make a large text of a small one.
  static void XMLCALL hasDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                 int) {
    auto& parser = *static_cast<VtkXmlParser*>(self);
    parser.guarded([] { throw FormatError("there is a document type, which VTK does not write"); });
  }

  void start(std::string_view name, const XmlAttributes& attributes) {
    if (array_ != nullptr) {
      ++depthInArray_;
    } else if (name == "VTKFile") {
      startFile(attributes);
    } else if (name == "UnstructuredGrid") {
      hasGrid_ = true;
    } else if (name == "Piece") {
      found_.pieces.push_back({attributes.count("NumberOfPoints").value_or(0),
                               attributes.count("NumberOfCells").value_or(0),
                               {}});
    } else if (name == "DataArray" || name == "Array") {
      startArray(attributes);
    } else if (name == "AppendedData") {
      found_.isAppendedBase64 = attributes.text("encoding") == "base64";
    } else {
      section_ = sectionNamed(name);
    }
  }

  void startFile(const XmlAttributes& attributes) {
    if (attributes.text("type") != "UnstructuredGrid") {
      throw FormatError("it holds '" + std::string(attributes.text("type")) +
                        "' and no UnstructuredGrid");
    }
    found_.isBigEndian = attributes.text("byte_order") == "BigEndian";
    if (attributes.text("header_type") == "UInt64") {
      found_.headerBytes = sizeof(std::uint64_t);
    }
    found_.compressor = attributes.text("compressor");
  }

  void startArray(const XmlAttributes& attributes) {
    if (!section_) {
      throw FormatError("there is an array outside of data, points and cells");
    }
    VtkArray array;
    array.section = *section_;
    array.name = attributes.text("Name");
    array.type = vtkTypeNamed(attributes.text("type"));
    array.components = attributes.count("NumberOfComponents").value_or(1);
    array.tuples = attributes.count("NumberOfTuples");
    const std::string_view form = attributes.text("format");
    array.form = form == "appended" ? VtkArray::Form::appended
                 : form == "binary" ? VtkArray::Form::binary
                                    : VtkArray::Form::ascii;
    array.offset = attributes.count("offset").value_or(0);
    if (*section_ == VtkArray::Section::fieldData) {
      array_ = &found_.fieldData.emplace_back(std::move(array));
    } else if (found_.pieces.empty()) {
      throw FormatError("there is an array before the first piece");
    } else {
      array_ = &found_.pieces.back().arrays.emplace_back(std::move(array));
    }
  }

  void end(std::string_view name) {
    if (depthInArray_ > 0) {
      --depthInArray_;
    } else if (name == "DataArray" || name == "Array") {
      array_ = nullptr;
    } else if (sectionNamed(name)) {
      section_.reset();
    }
  }

  std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> parser_;
  std::exception_ptr failure_;
  VtkXml found_;
  bool hasGrid_ = false;
  std::optional<VtkArray::Section> section_;
  VtkArray* array_ = nullptr;  // whose text comes
  int depthInArray_ = 0;       // within what VTK notes of an array, which is none of its values
};

}  // namespace

VtkXml vtkXmlIn(std::string_view bytes) {
  VtkXmlParser parser;
  const std::size_t tag = bytes.find(kAppendedTag);
  if (tag == std::string_view::npos) {
    parser.parse(bytes, true);
    return parser.take();
  }
  // What comes behind that tag may be raw bytes, which are no XML.
  const std::size_t end = bytes.find('>', tag);
  const std::size_t mark =
      end == std::string_view::npos ? end : bytes.find_first_not_of(kBlanks, end + 1);
  if (mark == std::string_view::npos || bytes[mark] != '_') {
    throw FormatError("the appended data do not begin with _");
  }
  parser.parse(bytes.substr(0, end + 1), false);
  VtkXml found = parser.take();
  found.appended = bytes.substr(mark + 1);
  return found;
}

}  // namespace orvml_tool
