#include "requirements.h"

#include "model/document.h"
#include "model/limits.h"

#include <string>

namespace orvml::detail {

namespace {

std::string quoted(std::string_view what, std::string_view name) {
  return std::string(what) + " \"" + std::string(name) + "\"";
}

Error errorOf(Code code, std::string sentence, std::string_view object) {
  return Error(code, std::move(sentence), {{}, std::string(object), {}});
}

std::string bytesSentence(std::size_t found, std::size_t allowed) {
  return " has " + std::to_string(found) + " bytes, at most " + std::to_string(allowed) +
         " are allowed";
}

}  // namespace

void requireName(std::string_view name, std::string_view what) {
  constexpr std::size_t kLongest = orvml_io::kNameBytes - 1;
  if (name.size() > kLongest) {
    throw errorOf(Code::nameTooLong, quoted(what, name) + bytesSentence(name.size(), kLongest),
                  name);
  }
  if (name.empty()) {
    throw errorOf(Code::nameNotAllowed, std::string(what) + " has an empty name", name);
  }
  if (name == "." || name.find('/') != std::string_view::npos) {
    throw errorOf(Code::nameNotAllowed, quoted(what, name) + " has a name that stands for a path",
                  name);
  }
  if (name.find('\0') != std::string_view::npos) {
    throw errorOf(Code::nameNotAllowed, std::string(what) + " has a name with a null byte", name);
  }
}

void requireVector(const Attribute& vector, std::string_view what) {
  requireName(vector.name, what);
  (void)require32(vector.size());
}

void requireIdentification(std::string_view text, std::string_view what) {
  constexpr std::size_t kLongest = orvml_io::kIdentificationBytes - 1;
  if (text.size() > kLongest) {
    throw errorOf(Code::textTooLong, std::string(what) + bytesSentence(text.size(), kLongest),
                  what);
  }
  if (text.find('\0') != std::string_view::npos) {
    throw errorOf(Code::nameNotAllowed, std::string(what) + " has a null byte", what);
  }
}

void requireDimension(int dimension) {
  if (!orvml_io::isAcceptedDimension(dimension)) {
    throw Error(Code::wrongDimension,
                "a mesh of dimension " + std::to_string(dimension) + ", it has to be 2 or 3");
  }
}

void requireCoordinates(const DocumentView& document) {
  const NodesView& nodes = document.nodes();
  const bool areKnown = !nodes.coordinates().empty();
  if (nodes.size() > 0 && (!areKnown || nodes.dimension() != document.dimension())) {
    throw Error(Code::sizesDisagree,
                "the nodes have " +
                    (areKnown ? std::to_string(nodes.dimension()) + " coordinates, the mesh has " +
                                    std::to_string(document.dimension())
                              : std::string("no coordinates")));
  }
}

int require32(std::size_t count) {
  if (count > static_cast<std::size_t>(orvml_io::kMostValues)) {
    throw Error(Code::tooManyValues, std::to_string(count) + " values are more than 32 bits count");
  }
  return static_cast<int>(count);
}

}  // namespace orvml::detail
