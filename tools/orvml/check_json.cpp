#include "check.h"
#include "facts.h"

namespace orvml_tool {

namespace {

Json findingAsJson(const orvml::CheckFinding& finding) {
  Json places = Json::array();
  for (const orvml::CheckPlace& place : finding.places) {
    places.push_back({{"kind", name(place.kind)}, {"index", place.index}});
  }
  return {{"severity", name(finding.severity)},
          {"code", finding.code},
          {"object", finding.object},
          {"count", finding.count},
          {"places", std::move(places)},
          {"sentence", finding.sentence},
          {"cure", finding.cure}};
}

Json figureAsJson(const orvml::QualityFigure& figure) {
  Json percentiles = Json::object();
  for (std::size_t i = 0; i < figure.percentiles.size(); ++i) {
    percentiles[std::to_string(orvml::kQualityPercentiles[i])] = figure.percentiles[i];
  }
  Json worst = Json::array();
  for (const orvml::MeasuredCell& cell : figure.worst) {
    worst.push_back({{"cell", cell.cell}, {"value", cell.value}});
  }
  return {{"name", figure.name},
          {"minimum", figure.minimum},
          {"percentiles", std::move(percentiles)},
          {"maximum", figure.maximum},
          {"worst", std::move(worst)}};
}

Json qualityAsJson(const std::vector<orvml::CellQuality>& quality) {
  Json list = Json::array();
  for (const orvml::CellQuality& cells : quality) {
    Json figures = Json::array();
    for (const orvml::QualityFigure& figure : cells.figures) {
      figures.push_back(figureAsJson(figure));
    }
    list.push_back({{"document", kindName(cells.kind)},
                    {"entity", groupName(cells.entity)},
                    {"shape", name(cells.shape)},
                    {"cells", cells.cells},
                    {"figures", std::move(figures)}});
  }
  return list;
}

Json fileAsJson(const CheckedFile& checked) {
  if (checked.error) {
    return {{"file", checked.file.given()}, {"error", asJson(*checked.error)}};
  }
  Json findings = Json::array();
  for (const orvml::CheckFinding& finding : checked.report.findings) {
    findings.push_back(findingAsJson(finding));
  }
  const auto worst = checked.report.worst();
  Json json = {{"file", checked.file.given()},
               {"worst", worst ? Json(name(*worst)) : Json()},
               {"findings", std::move(findings)}};
  if (!checked.report.quality.empty()) {
    json["quality"] = qualityAsJson(checked.report.quality);
  }
  return json;
}

}  // namespace

Json reportsAsJson(const std::vector<CheckedFile>& files) {
  Json list = Json::array();
  for (const CheckedFile& checked : files) {
    list.push_back(fileAsJson(checked));
  }
  return {{"files", std::move(list)}};
}

}  // namespace orvml_tool
