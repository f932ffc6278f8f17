#include "convert/format.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace orvml_tool {

std::span<const MeshFormat> foreignFormats() {
  static const std::vector<MeshFormat> kFormats = {
      {"vtu", {"vtu"}, writeVtu, readVtu, false},
      {"msh", {"msh"}, writeMsh, readMsh},
      {"inp", {"inp"}, writeInp, nullptr},
      {"nastran", {"nas", "bdf", "dat"}, writeNastran, nullptr},
      {"stl", {"stl"}, writeStl, readStl},
      {"ply", {"ply"}, writePly, readPly},
      {"obj", {"obj"}, writeObj, readObj},
      {"off", {"off"}, writeOff, readOff},
  };
  return kFormats;
}

const MeshFormat* formatNamed(std::string_view name) {
  const auto formats = foreignFormats();
  const auto found = std::find_if(formats.begin(), formats.end(),
                                  [&](const MeshFormat& format) { return format.name == name; });
  return found == formats.end() ? nullptr : &*found;
}

std::string endingOf(const std::string& file) {
  std::string ending = std::filesystem::path(file).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return ending.empty() ? ending : ending.substr(1);
}

const MeshFormat* formatOfEnding(const std::string& file) {
  const std::string ending = endingOf(file);
  const auto formats = foreignFormats();
  const auto found = std::find_if(formats.begin(), formats.end(), [&](const MeshFormat& format) {
    return std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end();
  });
  return found == formats.end() ? nullptr : &*found;
}

}  // namespace orvml_tool
