#include <orvml/version.hpp>

#include "check.h"
#include "exit_codes.h"

#include <algorithm>
#include <filesystem>

namespace orvml_tool {

namespace {

constexpr const char* kSchema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

/// A path as a URI reference. Colons are escaped, too: in the first part of a relative one they
/// would end a scheme.
std::string uriOf(const std::string& path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri = path.starts_with('/') ? "file://" : "";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (kPlain.find(character) != std::string_view::npos) {
      uri += character;
    } else {
      uri += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
  }
  return uri;
}

Json locationOf(const CheckedFile& checked, const std::string& object) {
  Json location = {
      {"physicalLocation", {{"artifactLocation", {{"uri", uriOf(checked.file.given())}}}}}};
  if (!object.empty()) {
    location["logicalLocations"] = Json::array({{{"fullyQualifiedName", object}}});
  }
  return location;
}

Json rules() {
  Json list = Json::array();
  for (const orvml::CheckRule& rule : orvml::checkRules()) {
    list.push_back({{"id", rule.code},
                    {"shortDescription", {{"text", rule.meaning}}},
                    {"help", {{"text", rule.cure}}},
                    {"defaultConfiguration", {{"level", name(rule.severity)}}}});
  }
  return list;
}

/// Every code that a finding can have is among the rules.
std::ptrdiff_t ruleIndexOf(std::string_view code) {
  const auto rules = orvml::checkRules();
  return std::find_if(rules.begin(), rules.end(),
                      [&](const auto& rule) { return rule.code == code; }) -
         rules.begin();
}

Json resultOf(const CheckedFile& checked, const orvml::CheckFinding& finding) {
  Json places = Json::array();
  for (const orvml::CheckPlace& place : finding.places) {
    places.push_back({{"kind", name(place.kind)}, {"index", place.index}});
  }
  return {{"ruleId", finding.code},
          {"ruleIndex", ruleIndexOf(finding.code)},
          {"level", name(finding.severity)},
          {"message", {{"text", finding.sentence}}},
          {"locations", Json::array({locationOf(checked, finding.object)})},
          {"partialFingerprints",
           {{"codeAndObject/v1", std::string(finding.code) + " " + finding.object}}},
          {"properties", {{"count", finding.count}, {"places", std::move(places)}}}};
}

Json notificationOf(const CheckedFile& checked) {
  return {{"level", "error"},
          {"descriptor", {{"id", text(checked.error->code())}}},
          {"message", {{"text", checked.error->sentence()}}},
          {"locations", Json::array({locationOf(checked, checked.error->object())})}};
}

}  // namespace

Json reportsAsSarif(const std::vector<CheckedFile>& files, int exitCode) {
  Json results = Json::array();
  Json notifications = Json::array();
  for (const CheckedFile& checked : files) {
    for (const orvml::CheckFinding& finding : checked.report.findings) {
      results.push_back(resultOf(checked, finding));
    }
    if (checked.error) {
      notifications.push_back(notificationOf(checked));
    }
  }
  Json invocation = {{"executionSuccessful", exitCode != kUnreadable}, {"exitCode", exitCode}};
  if (!notifications.empty()) {
    invocation["toolExecutionNotifications"] = std::move(notifications);
  }
  const Json driver = {{"name", "orvml"}, {"version", orvml::version()}, {"rules", rules()}};
  const Json run = {{"tool", {{"driver", driver}}},
                    {"invocations", Json::array({std::move(invocation)})},
                    {"results", std::move(results)}};
  return {{"$schema", kSchema}, {"version", "2.1.0"}, {"runs", Json::array({run})}};
}

}  // namespace orvml_tool
