#include <orvml/diff.hpp>
#include <orvml/version.hpp>

#include "attribute_budget.h"
#include "cell_measures.h"
#include "document_json.h"
#include "drawn_mesh.h"
#include "findings_json.h"
#include "json.h"
#include "mesh_json.h"
#include "packed_arrays.h"
#include "place_marks.h"
#include "report.h"
#include "report_page.h"
#include "words.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

namespace orvml_report {

namespace {

using orvml::DocumentView;

/// What is collected of both documents.
struct Draft {
  explicit Draft(const ReportOptions& options) : budget(options.limits) {}

  PackedArrays arrays;
  AttributeBudget budget;
  std::vector<std::string> notes;
};

bool isAngle(orvml::CellMeasure measure) noexcept {
  return measure == orvml::CellMeasure::smallestAngle ||
         measure == orvml::CellMeasure::largestAngle;
}

Json histogramsOf(std::span<const MeasuredCells> measured) {
  Json histograms = Json::array();
  for (const MeasuredCells& one : measured) {
    if (const auto& histogram = one.histogram) {
      histograms.push_back({{"entity", nameOf(one.entity)},
                            {"measure", nameOf(one)},
                            {"unit", isAngle(one.measure) ? "degrees" : ""},
                            {"minimum", histogram->minimum},
                            {"maximum", histogram->maximum},
                            {"counts", histogram->counts},
                            {"cells", histogram->cells},
                            {"without", histogram->without},
                            {"beyond", histogram->beyond}});
    }
  }
  return histograms;
}

Json documentAsJson(const ReportedDocument& document, const StoredMesh& stored,
                    const PlaceMarks* marks, const ReportOptions& options, Draft& draft) {
  const DocumentView& view = *document.view;
  const NodePlaces places(view.nodes());
  std::vector<std::string> notes;
  const DrawnMesh drawn = drawnMesh(stored, places, options.limits, notes);
  const std::vector<MeasuredCells> measured =
      measuredCells(view.nodes(), stored, drawn, options.threads);
  Json json = factsAsJson(document);
  json["findings"] =
      document.report == nullptr ? Json() : findingsAsJson(*document.report, view, places);
  json["histograms"] = histogramsOf(measured);
  Json mesh =
      meshAsJson({view, stored, places, drawn, measured, marks}, draft.budget, draft.arrays, notes);
  json["notes"] = notes;
  json["mesh"] = std::move(mesh);
  draft.notes.insert(draft.notes.end(), notes.begin(), notes.end());
  return json;
}

Json differencesOf(std::span<const ReportedDocument> documents) {
  if (documents.size() < 2) {
    return {};
  }
  Json differences = Json::array();
  for (const orvml::Difference& difference :
       diff(*documents[0].view, *documents[1].view).differences) {
    differences.push_back({{"change", text(difference.change)},
                           {"object", difference.object},
                           {"sentence", difference.sentence}});
  }
  return differences;
}

std::string titleOf(std::span<const ReportedDocument> documents, const ReportOptions& options) {
  if (!options.title.empty()) {
    return options.title;
  }
  std::string title = documents[0].name;
  if (documents.size() == 2 && documents[1].name != title) {
    title += (title.empty() || documents[1].name.empty() ? "" : " and ") + documents[1].name;
  }
  return title.empty() ? "Mesh" : title;
}

Json reportAsJson(std::span<const ReportedDocument> documents, const ReportOptions& options,
                  Draft& draft) {
  std::vector<StoredMesh> stored;
  for (const ReportedDocument& document : documents) {
    stored.emplace_back(*document.view);
  }
  std::array<PlaceMarks, 2> marks;
  const bool areCompared = documents.size() == 2;
  if (areCompared) {
    marks = placeMarksOf({documents[0].view, documents[1].view}, {&stored[0], &stored[1]});
  }
  Json report = {{"format", 1},
                 {"title", titleOf(documents, options)},
                 {"madeBy", "liborvml " + std::string(orvml::version())},
                 {"documents", Json::array()},
                 {"differences", differencesOf(documents)}};
  for (std::size_t i = 0; i < documents.size(); ++i) {
    report["documents"].push_back(
        documentAsJson(documents[i], stored[i], areCompared ? &marks[i] : nullptr, options, draft));
  }
  return report;
}

/// JSON of which nothing ends the element that it stands in, whatever the names in it are.
std::string safeText(const Json& json) {
  constexpr std::string_view kLessThan = "\\u003c";
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  for (const char character : text) {
    if (character == '<') {
      safe += kLessThan;
    } else {
      safe += character;
    }
  }
  return safe;
}

std::string filled(const std::string& json, const std::string& arrays) {
  const std::size_t marker = kReportPage.find(kDataMarker);
  if (marker == std::string_view::npos) {
    throw std::logic_error("the page has no place for its data");
  }
  std::string html;
  html.reserve(kReportPage.size() + json.size() + arrays.size() + 256);
  html.append(kReportPage.substr(0, marker));
  html.append("<script type=\"application/json\" id=\"report\">").append(json);
  html.append("</script>\n<script type=\"application/octet-stream\" id=\"arrays\">").append(arrays);
  html.append("</script>").append(kReportPage.substr(marker + kDataMarker.size()));
  return html;
}

}  // namespace

Page pageOf(std::span<const ReportedDocument> documents, const ReportOptions& options) {
  if (documents.empty() || documents.size() > 2) {
    throw std::invalid_argument("a page shows one document, or two");
  }
  for (const ReportedDocument& document : documents) {
    if (document.view == nullptr) {
      throw std::invalid_argument("there is no document");
    }
  }
  Draft draft(options);
  const std::string json = safeText(reportAsJson(documents, options, draft));
  return {filled(json, draft.arrays.finish()), std::move(draft.notes)};
}

}  // namespace orvml_report
