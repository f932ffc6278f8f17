#include "check.h"
#include "console.h"
#include "facts.h"

#include <algorithm>
#include <array>

namespace orvml_tool {

namespace {

using orvml::CheckFinding;
using orvml::Severity;

Colour colourOf(Severity severity) {
  constexpr std::array<Colour, 3> kColours = {Colour::cyan, Colour::yellow, Colour::red};
  return kColours[static_cast<std::size_t>(severity)];
}

/// "2 errors, 1 warning and 1 note".
std::string countsText(const std::vector<CheckFinding>& findings) {
  std::vector<std::string> parts;
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note}) {
    const auto count =
        std::count_if(findings.begin(), findings.end(),
                      [&](const CheckFinding& finding) { return finding.severity == severity; });
    if (count > 0) {
      parts.push_back(counted(count, name(severity)));
    }
  }
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
  }
  return text.empty() ? "nothing found" : text;
}

std::string placesText(const CheckFinding& finding) {
  std::string text;
  for (const orvml::CheckPlace& place : finding.places) {
    text += (text.empty() ? "" : ", ") + std::string(name(place.kind)) + " " + shown(place.index);
  }
  const bool areAll = finding.count <= static_cast<std::int64_t>(finding.places.size());
  return text.empty() || areAll ? text : text + " and more";
}

void printFinding(const CheckFinding& finding) {
  print("    " + printable(finding.sentence) + "\n");
  if (!finding.places.empty()) {
    print("      at " + placesText(finding) + "\n");
  }
}

/// Findings of one code and what helps against all of them.
void printGroup(const std::vector<CheckFinding>& findings, const CheckFinding& first) {
  print("  " + coloured(name(first.severity), colourOf(first.severity)) + " " +
        coloured(first.code, Colour::bold) + "\n");
  for (const CheckFinding& finding : findings) {
    if (finding.code == first.code) {
      printFinding(finding);
    }
  }
  print("    cure: " + std::string(first.cure) + "\n");
}

/// The worst first, and in the order in which they were found.
void printFindings(const std::vector<CheckFinding>& findings) {
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note}) {
    for (auto finding = findings.begin(); finding != findings.end(); ++finding) {
      const bool wasPrinted =
          std::any_of(findings.begin(), finding,
                      [&](const CheckFinding& other) { return other.code == finding->code; });
      if (finding->severity == severity && !wasPrinted) {
        printGroup(findings, *finding);
      }
    }
  }
}

void printFigure(const orvml::QualityFigure& figure) {
  constexpr std::size_t kMedian = 3;
  print("    " + std::string(figure.name) + ": " + rounded(figure.minimum) + " to " +
        rounded(figure.maximum) + ", median " + rounded(figure.percentiles[kMedian]) + "\n");
  std::string percentiles;
  for (std::size_t i = 0; i < figure.percentiles.size(); ++i) {
    percentiles += (i == 0 ? "" : ", ") + std::to_string(orvml::kQualityPercentiles[i]) +
                   " %: " + rounded(figure.percentiles[i]);
  }
  print("      " + percentiles + "\n");
  std::string worst;
  for (const orvml::MeasuredCell& cell : figure.worst) {
    worst += (worst.empty() ? "" : ", ") + shown(cell.cell) + " (" + rounded(cell.value) + ")";
  }
  print("      worst cells: " + worst + "\n");
}

void printQuality(const std::vector<orvml::CellQuality>& quality) {
  for (const orvml::CellQuality& cells : quality) {
    print("  quality of " + countedCells(cells.cells, cells.shape) + " in " +
          documentPath(cells.kind) + "/" + groupName(cells.entity) + "\n");
    for (const orvml::QualityFigure& figure : cells.figures) {
      printFigure(figure);
    }
  }
}

}  // namespace

void printReport(const CheckedFile& checked) {
  if (checked.error) {
    return;
  }
  print(coloured(checked.file.shown(), Colour::bold) + ": " + countsText(checked.report.findings) +
        "\n");
  printFindings(checked.report.findings);
  printQuality(checked.report.quality);
}

}  // namespace orvml_tool
