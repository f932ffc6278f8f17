#include "check/check_document.h"

#include <future>
#include <iterator>
#include <utility>

namespace orvml {

namespace detail {

namespace {

/// The checks of places, which need no other cells than the one that they look at. Returns whether
/// every cell is sound.
bool checkPlaces(const CheckedMesh& mesh, double tolerance, FindingList& findings) {
  checkFinite(mesh, findings);
  checkCoincidence(mesh, tolerance, findings);
  return checkJacobians(mesh, findings);
}

/// Makes the two halves of the work one after the other, or at the same time.
void checkMesh(const CheckedMesh& mesh, const CheckOptions& options, FindingList& findings) {
  FindingList ofNeighbours(options);
  auto places = std::async(options.threads > 1 ? std::launch::async : std::launch::deferred, [&] {
    return checkPlaces(mesh, options.coincidenceTolerance, findings);
  });
  const bool areApart = checkFaces(mesh, 1, ofNeighbours);
  checkSurface(mesh, ofNeighbours);
  const bool areSound = places.get();
  checkDuplicates(mesh, !(areSound && areApart), findings);
  findings.append(ofNeighbours.take());
}

}  // namespace

void checkDocument(const DocumentView& document, const Believed& believed,
                   const CheckOptions& options, FindingList& findings,
                   std::vector<CellQuality>& quality) {
  checkNames(document, believed, findings);
  CheckedMesh mesh = meshOf(document, believed, findings);
  checkIndices(mesh, believed, findings);
  checkMesh(mesh, options, findings);
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
