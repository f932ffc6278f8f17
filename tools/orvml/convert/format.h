#pragma once

#include <orvml/view.hpp>

#include "convert/byte_sink.h"
#include "convert/conversion_report.h"
#include "convert/foreign_mesh.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The other formats of meshes that the command writes and reads.
namespace orvml_tool {

struct ExportOptions {
  /// Which cells are written, in the order of the format.
  std::vector<orvml::Entity> containers = {orvml::Entity::edges, orvml::Entity::faces,
                                           orvml::Entity::elements};
  bool asText = false;          ///< of formats that have both: text instead of binary
  bool compresses = false;      ///< of formats that can
  bool hasOlderPrisms = false;  ///< prisms in the order of VTK before 9.7, where that is a question
  std::string entityAttribute;  ///< the attribute of cells that numbers the entities or sets
};

/// Writes a document. Its node indices were checked where the format looks nodes up. Throws Refusal
/// for what cannot be written at all.
using Exporter = void (*)(const orvml::DocumentView& document, const ExportOptions& options,
                          ByteSink& sink, ConversionReport& report);

/// Reads the bytes of a whole file, which may be mapped and stay valid until the draft is used up.
/// Nothing is guessed; throws FormatError for what it does not understand. No bytes make it read or
/// write outside of what it owns, or take more memory than a small multiple of their number.
using Importer = Draft (*)(std::string_view bytes, const ImportOptions& options,
                           ConversionReport& report);

struct MeshFormat {
  std::string_view name;
  std::vector<std::string_view> endings;  ///< without the dot, in small letters
  Exporter writes = nullptr;              ///< null for formats that are only read
  Importer reads = nullptr;               ///< null for formats that are only written
  /// Whether the exporter uses node indices for more than writing them down.
  bool looksNodesUp = true;
};

/// All of them.
[[nodiscard]] std::span<const MeshFormat> foreignFormats();

/// What follows the last dot of a file's name, in small letters.
[[nodiscard]] std::string endingOf(const std::string& file);

/// The format of a name, or of the ending of a file's name; null when there is none.
[[nodiscard]] const MeshFormat* formatNamed(std::string_view name);
[[nodiscard]] const MeshFormat* formatOfEnding(const std::string& file);

// One function for each format and direction, each in a file of its own.
void writeVtu(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
Draft readVtu(std::string_view, const ImportOptions&, ConversionReport&);
void writeMsh(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
Draft readMsh(std::string_view, const ImportOptions&, ConversionReport&);
void writeInp(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
void writeNastran(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
void writeStl(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
void writePly(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
void writeObj(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
void writeOff(const orvml::DocumentView&, const ExportOptions&, ByteSink&, ConversionReport&);
Draft readStl(std::string_view, const ImportOptions&, ConversionReport&);
Draft readPly(std::string_view, const ImportOptions&, ConversionReport&);
Draft readObj(std::string_view, const ImportOptions&, ConversionReport&);
Draft readOff(std::string_view, const ImportOptions&, ConversionReport&);

}  // namespace orvml_tool
