#include "check/check_document.h"

#include "check/cell_faults.h"
#include "check/task_threads.h"

#include <iterator>
#include <utility>

namespace orvml {

namespace detail {

namespace {

/// Looks at each node and each cell by itself. Returns whether every cell is sound.
bool checkEach(CheckedMesh& mesh, const Believed& believed, const CheckOptions& options,
               FindingList& findings) {
  CellSweep cells(mesh, believed, findings);
  FindingList ofNodes(options);
  // The nodes first, because they take longer than a piece.
  performAll(cells.pieces() + 1, options.threads, [&](std::size_t task) {
    if (task == 0) {
      checkFinite(mesh, ofNodes);
      checkCoincidence(mesh, options.coincidenceTolerance, ofNodes);
    } else {
      cells.look(task - 1);
    }
  });
  cells.tellIndices(findings);
  findings.append(ofNodes.take());
  return cells.tellForms(findings);
}

void checkMesh(CheckedMesh& mesh, const Believed& believed, const CheckOptions& options,
               FindingList& findings) {
  const bool areSound = checkEach(mesh, believed, options, findings);
  FindingList ofNeighbours(options);
  const bool areApart = checkFaces(mesh, options.threads, ofNeighbours);
  checkSurface(mesh, ofNeighbours);
  checkDuplicates(mesh, !(areSound && areApart), findings);
  findings.append(ofNeighbours.take());
}

}  // namespace

void checkDocument(const DocumentView& document, const Believed& believed,
                   const CheckOptions& options, FindingList& findings,
                   std::vector<CellQuality>& quality) {
  checkNames(document, believed, findings);
  CheckedMesh mesh = meshOf(document, believed, findings);
  checkMesh(mesh, believed, options, findings);
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
