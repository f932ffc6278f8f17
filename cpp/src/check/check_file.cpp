#include <orvml/mapped_file.hpp>

#include "check/check_document.h"
#include "check/rules.h"
#include "check/stored_file.h"
#include "hdf5/layout.h"
#include "opened_file.h"

#include <utility>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;
using detail::Believed;

/// Tells whether an object is a group or lies in it, but not among its attributes.
bool isOfMesh(std::string_view object, std::string_view group) {
  if (!object.starts_with(group)) {
    return false;
  }
  const std::string_view rest = object.substr(group.size());
  return rest.empty() || (rest[0] == '/' && !rest.starts_with(layout::kAttributes));
}

/// What a reader met tells what the document is not to be believed.
Believed believedOf(Kind kind, std::span<const Finding> findings) {
  Believed believed;
  for (const Finding& finding : findings) {
    if (finding.code == Code::objectForeign) {
      continue;
    }
    for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
      if (isOfMesh(finding.object, detail::objectOf(kind, entity))) {
        const auto number = static_cast<std::size_t>(entity);
        believed.cells[number] = false;
        believed.attributes[number] = false;
        believed.coordinates = believed.coordinates && entity != Entity::nodes;
      }
    }
  }
  return believed;
}

}  // namespace

CheckReport check(const std::filesystem::path& path, const CheckOptions& options) {
  const MappedFile mapped(path, Policy::tolerant);
  CheckReport report;
  detail::FindingList findings(options);
  for (const Finding& finding : mapped.findings()) {
    findings.addAsTold(detail::ruleOf(finding.code), finding.object, finding.sentence);
  }
  detail::checkStoredFile(detail::OpenedFile(path).id(), findings);
  if (mapped.hasInput()) {
    detail::checkDocument(mapped.input(), believedOf(Kind::input, mapped.findings()), options,
                          findings, report.quality);
  }
  if (mapped.hasOutput()) {
    detail::checkDocument(mapped.output(), believedOf(Kind::output, mapped.findings()), options,
                          findings, report.quality);
  }
  report.findings = findings.take();
  return report;
}

}  // namespace orvml
