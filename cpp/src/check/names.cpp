#include "check/checked_mesh.h"
#include "check/rules.h"
#include "hdf5/layout.h"
#include "model/limits.h"

#include <utility>

namespace orvml::detail {

namespace {

namespace layout = orvml_io::layout;

constexpr std::size_t kLongestName = orvml_io::kNameBytes - 1;

/// Looks at a name that stands in a file as that of a record or an object.
void checkName(std::string_view name, const std::string& group, FindingList& findings) {
  const std::string object = group + "/" + std::string(name);
  if (name.size() > kLongestName) {
    findings.add(ruleOf(Code::nameTooLong), object,
                 "has a name of " +
                     countText(static_cast<std::int64_t>(name.size()), "byte", "bytes") +
                     ", at most 79 are allowed");
  } else if (name.empty() || name == "." || name.find('/') != std::string_view::npos ||
             name.find('\0') != std::string_view::npos) {
    findings.add(ruleOf(Code::nameNotAllowed), object,
                 "has a name that is empty, or that stands for a path");
  } else if (name.size() == kLongestName) {
    findings.add(ruleOf(CheckCode::nameAtLimit), object,
                 "has a name of 79 bytes, which may have been cut");
  }
}

void checkText(std::string_view text, const char* attribute, FindingList& findings) {
  const std::string object = std::string("/") + attribute;
  const auto size = static_cast<std::int64_t>(text.size());
  if (text.size() > kLongestName) {
    findings.add(ruleOf(Code::textTooLong), object,
                 "has " + countText(size, "byte", "bytes") + ", at most 79 are allowed");
  } else if (text.size() == kLongestName) {
    findings.add(ruleOf(CheckCode::textAtLimit), object, "has 79 bytes, and may have been cut");
  }
}

void checkLengths(const Attributes& attributes, std::int64_t count, const std::string& group,
                  PlaceKind kind, FindingList& findings) {
  for (const Attribute& attribute : attributes) {
    if (attribute.size() != static_cast<std::size_t>(count)) {
      const auto size = static_cast<std::int64_t>(attribute.size());
      findings.add(ruleOf(CheckCode::attributeLength), group + "/" + std::string(attribute.name),
                   "has " + countText(size, "value", "values") + " for " + countText(count, kind));
    } else if (count == 0) {
      findings.add(ruleOf(CheckCode::lostWhenWritten), group + "/" + std::string(attribute.name),
                   "is not written, as there are no " + std::string(name(kind)) + "s");
    }
  }
}

/// What the flat readers do not see. One finding, whatever the number of attributes.
void checkFlags(const DocumentView& document, FindingList& findings) {
  std::int64_t flagged = 0;
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    for (const Attribute& attribute : document.attributes(entity)) {
      flagged += attribute.mustBeTransmitted ? 1 : 0;
    }
  }
  if (flagged > 0) {
    findings.add(ruleOf(CheckCode::flagNotRead), objectOf(document.kind()),
                 "has " + countText(flagged, "attribute", "attributes") +
                     " to be transmitted, which the flat readers do not see");
  }
}

void checkDimension(const DocumentView& document, FindingList& findings) {
  const NodesView& nodes = document.nodes();
  const int dimension = document.dimension();
  const std::string object = objectOf(document.kind()) + layout::kDimension;
  if (dimension != 2 && dimension != 3) {
    findings.add(ruleOf(Code::wrongDimension), object,
                 "is " + std::to_string(dimension) + ", it has to be 2 or 3");
  } else if (nodes.size() > 0 && nodes.dimension() != dimension) {
    findings.add(ruleOf(Code::wrongDimension), object,
                 "is " + std::to_string(dimension) + ", and the nodes have " +
                     countText(nodes.dimension(), "coordinate", "coordinates"));
  }
}

}  // namespace

void checkNames(const DocumentView& document, const Believed& believed, FindingList& findings) {
  const std::string group = objectOf(document.kind());
  checkDimension(document, findings);
  checkText(document.identification().creator, layout::kIOCreator, findings);
  checkText(document.identification().moduleName, layout::kModuleName, findings);
  checkText(document.identification().moduleFormatVersion, layout::kModuleFormatVersion, findings);
  for (const Parameter& parameter : document.parameters()) {
    checkName(parameter.name, group + layout::kParameters, findings);
  }
  for (const Attribute& vector : document.vectorParameters()) {
    checkName(vector.name, group + layout::kParametersVector, findings);
  }
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    const std::string attributes = objectOf(document.kind(), entity) + layout::kAttributes;
    for (const Attribute& attribute : document.attributes(entity)) {
      checkName(attribute.name, attributes, findings);
    }
    if (believed.attributes[static_cast<std::size_t>(entity)]) {
      const int count =
          entity == Entity::nodes ? document.nodes().size() : document.cells(entity).size();
      checkLengths(document.attributes(entity), count, attributes, placeKindOf(entity), findings);
    }
  }
  if (document.parameters().empty() && !document.vectorParameters().empty()) {
    const auto count = static_cast<std::int64_t>(document.vectorParameters().size());
    findings.add(ruleOf(CheckCode::lostInClone), group + layout::kParametersVector,
                 "has " + countText(count, "vector", "vectors") +
                     " that a clone of the flat functions loses, for there is no scalar parameter");
  }
  checkFlags(document, findings);
}

}  // namespace orvml::detail
