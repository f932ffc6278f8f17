#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What stands in an XML file of VTK: where its arrays are, and how.
namespace orvml_tool {

/// A number in an array.
struct VtkType {
  char kind = 'i';        ///< 'i' with a sign, 'u' without, 'f' for floating point
  std::size_t bytes = 1;  ///< 1, 2, 4 or 8
};

struct VtkArray {
  enum class Section { fieldData, pointData, cellData, points, cells };
  enum class Form { ascii, binary, appended };

  Section section = Section::fieldData;
  std::string name;
  std::optional<VtkType> type;  ///< none for texts and types that VTK does not have
  std::size_t components = 1;
  std::optional<std::uint64_t> tuples;  ///< where the file says it
  Form form = Form::ascii;
  std::uint64_t offset = 0;  ///< of appended arrays
  std::string text;          ///< of all others, with blanks
};

struct VtkPiece {
  std::uint64_t points = 0;
  std::uint64_t cells = 0;
  std::vector<VtkArray> arrays;
};

struct VtkXml {
  bool isBigEndian = false;
  std::size_t headerBytes = sizeof(std::uint32_t);  ///< of a size before an array
  std::string compressor;                           ///< empty: none
  bool isAppendedBase64 = false;
  std::string_view appended;  ///< from the byte behind "_" to the end of the file
  std::vector<VtkArray> fieldData;
  std::vector<VtkPiece> pieces;
};

/// Takes an XML file of an unstructured grid apart. Throws FormatError for anything else.
[[nodiscard]] VtkXml vtkXmlIn(std::string_view bytes);

}  // namespace orvml_tool
