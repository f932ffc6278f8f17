#include "convert/xml_names.h"

#include "console.h"

#include <algorithm>

namespace orvml_tool {

namespace {

/// The first character as XML can hold it.
std::string_view writtenCharacter(std::string_view text) {
  const bool isSpace = text.front() == '\t' || text.front() == '\n' || text.front() == '\r';
  const std::string_view character = text.substr(0, isSpace ? 1 : characterLength(text));
  const bool isNone =
      character.empty() || character == "\xef\xbf\xbe" || character == "\xef\xbf\xbf";
  return isNone ? "_" : character;
}

}  // namespace

std::string XmlNames::of(std::string_view name, const std::string& object) {
  std::string wanted;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view character = writtenCharacter(rest);
    wanted += character;
    rest.remove_prefix(character == "_" ? 1 : character.size());
  }
  std::string free = wanted;
  for (std::int64_t number = 2; used_.contains(free); ++number) {
    free = wanted + "-" + shown(number);
  }
  used_.insert(free);
  if (free != name) {
    report_.add(orvml::Fate::renamed, object, 1, "is called '" + free + "' there");
  }
  return free;
}

std::string quotedForXml(std::string_view text) {
  std::string quoted;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        quoted += "&amp;";
        break;
      case '<':
        quoted += "&lt;";
        break;
      case '>':
        quoted += "&gt;";
        break;
      case '"':
        quoted += "&quot;";
        break;
      case '\t':
        quoted += "&#9;";
        break;
      case '\n':
        quoted += "&#10;";
        break;
      case '\r':
        quoted += "&#13;";
        break;
      default:
        quoted += letter;
    }
  }
  return quoted;
}

}  // namespace orvml_tool
