#include "check/check_document.h"

#include <iterator>
#include <utility>

namespace orvml {

namespace detail {

void checkDocument(const DocumentView& document, const Believed& believed,
                   const CheckOptions& options, FindingList& findings,
                   std::vector<CellQuality>& quality) {
  checkNames(document, believed, findings);
  CheckedMesh mesh = meshOf(document, believed, findings);
  checkIndices(mesh, believed, findings);
  checkFinite(mesh, findings);
  checkCoincidence(mesh, options.coincidenceTolerance, findings);
  checkJacobians(mesh, findings);
  checkDuplicates(mesh, findings);
  checkFaces(mesh, findings);
  checkSurface(mesh, findings);
  if (options.quality && mesh.coordinates != nullptr) {
    auto measured = measureQuality(mesh, document.kind());
    std::move(measured.begin(), measured.end(), std::back_inserter(quality));
  }
}

}  // namespace detail

CheckReport check(const DocumentView& document, const CheckOptions& options) {
  CheckReport report;
  detail::FindingList findings(options);
  detail::checkDocument(document, detail::Believed(), options, findings, report.quality);
  report.findings = findings.take();
  return report;
}

}  // namespace orvml
