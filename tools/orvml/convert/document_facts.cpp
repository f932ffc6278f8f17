#include "convert/document_facts.h"

#include "console.h"
#include "json.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <climits>
#include <cmath>

namespace orvml_tool {

using orvml::Entity;

namespace {

// Told by who reads the text: nobody else writes it.
constexpr std::string_view kFactsFormat = "orvml-document";
constexpr int kVersion = 1;

/// A text as JSON has it; as a list of its bytes when it is no UTF-8, which names may be.
Json asJsonText(const std::string& text) {
  const std::string quoted = Json(text).dump(-1, ' ', true, Json::error_handler_t::ignore);
  if (Json::parse(quoted).get<std::string>() == text) {
    return text;
  }
  Json bytes = Json::array();
  for (const char byte : text) {
    bytes.push_back(static_cast<int>(static_cast<unsigned char>(byte)));
  }
  return bytes;
}

std::string textIn(const Json& json) {
  if (json.is_string()) {
    return json.get<std::string>();
  }
  std::string text;
  for (const Json& byte : json) {
    text += static_cast<char>(byte.get<unsigned char>());
  }
  return text;
}

constexpr int kHexadecimal = 16;

/// A number with all its bits: texts of them stand for the numbers that JSON does not have.
Json asJsonNumber(double value) {
  if (std::isfinite(value)) {
    return value;
  }
  std::array<char, kHexadecimal> digits = {};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 std::bit_cast<std::uint64_t>(value), kHexadecimal);
  return std::string(digits.data(), end.ptr);
}

double numberOf(const Json& json) {
  if (!json.is_string()) {
    return json.get<double>();
  }
  const auto digits = json.get<std::string>();
  std::uint64_t bits = 0;
  (void)std::from_chars(digits.data(), digits.data() + digits.size(), bits, kHexadecimal);
  return std::bit_cast<double>(bits);
}

Json asJsonValues(const Numbers& numbers) {
  return std::visit(
      [](const auto& values) {
        Json json = Json::array();
        for (const auto value : values) {
          json.push_back(asJsonNumber(static_cast<double>(value)));
        }
        return json;
      },
      numbers);
}

Numbers numbersIn(const Json& json, bool areInts) {
  std::vector<double> values;
  std::transform(json.begin(), json.end(), std::back_inserter(values), numberOf);
  if (!areInts) {
    return values;
  }
  std::vector<int> ints;
  for (const double value : values) {
    if (!(value >= INT_MIN && value <= INT_MAX)) {
      throw Json::out_of_range::create(406, "no integer of 32 bits", &json);
    }
    ints.push_back(static_cast<int>(value));
  }
  return ints;
}

Json jsonOf(const DocumentFacts::Group& group) {
  return {static_cast<int>(group.container), static_cast<int>(group.form.shape),
          group.form.nodesPerCell, group.cells};
}

Entity entityIn(const Json& json) {
  const int number = json.get<int>();
  if (number < 0 || number > static_cast<int>(Entity::elements)) {
    throw Json::out_of_range::create(406, "no kind of entity", &json);
  }
  return static_cast<Entity>(number);
}

DocumentFacts::Group groupIn(const Json& json) {
  return {entityIn(json.at(0)),
          {static_cast<orvml::Shape>(json.at(1).get<int>()), json.at(2).get<int>()},
          json.at(3).get<std::int64_t>()};
}

Json jsonOf(const DocumentFacts::Attribute& attribute) {
  return {static_cast<int>(attribute.entity), asJsonText(attribute.name),
          asJsonText(attribute.storedName), attribute.holdsInts, attribute.mustBeTransmitted};
}

DocumentFacts::Attribute attributeIn(const Json& json) {
  return {entityIn(json.at(0)), textIn(json.at(1)), textIn(json.at(2)), json.at(3).get<bool>(),
          json.at(4).get<bool>()};
}

Json jsonOf(const std::pair<std::string, double>& parameter) {
  return {asJsonText(parameter.first), asJsonNumber(parameter.second)};
}

Json jsonOf(const std::pair<std::string, Numbers>& vector) {
  return {asJsonText(vector.first), vector.second.index() == 0, asJsonValues(vector.second)};
}

template <class Items>
Json asJsonList(const Items& items) {
  Json list = Json::array();
  for (const auto& item : items) {
    list.push_back(jsonOf(item));
  }
  return list;
}

DocumentFacts factsOfJson(const Json& json) {
  DocumentFacts facts;
  facts.kind = json.at("kind") == "input" ? orvml::Kind::input : orvml::Kind::output;
  facts.moduleName = textIn(json.at("module"));
  facts.moduleFormatVersion = textIn(json.at("moduleFormat"));
  facts.creator = textIn(json.at("creator"));
  facts.dimension = json.at("dimension") == 2 ? 2 : 3;
  facts.hasOlderPrisms = json.at("olderPrisms").get<bool>();
  std::transform(json.at("groups").begin(), json.at("groups").end(),
                 std::back_inserter(facts.groups), groupIn);
  std::transform(json.at("attributes").begin(), json.at("attributes").end(),
                 std::back_inserter(facts.attributes), attributeIn);
  for (const Json& parameter : json.at("parameters")) {
    facts.parameters.emplace_back(textIn(parameter.at(0)), numberOf(parameter.at(1)));
  }
  for (const Json& vector : json.at("vectorParameters")) {
    facts.vectorParameters.emplace_back(textIn(vector.at(0)),
                                        numbersIn(vector.at(2), vector.at(1).get<bool>()));
  }
  return facts;
}

}  // namespace

DocumentFacts factsOf(const orvml::DocumentView& document) {
  const orvml::Identification& made = document.identification();
  DocumentFacts facts;
  facts.kind = document.kind();
  facts.moduleName = made.moduleName;
  facts.moduleFormatVersion = made.moduleFormatVersion;
  facts.creator = made.creator;
  facts.dimension = document.dimension();
  for (const orvml::Parameter& parameter : document.parameters()) {
    facts.parameters.emplace_back(parameter.name, parameter.value);
  }
  for (const orvml::Attribute& vector : document.vectorParameters()) {
    facts.vectorParameters.emplace_back(
        vector.name,
        std::visit([](auto values) -> Numbers { return std::vector(values.begin(), values.end()); },
                   vector.values));
  }
  return facts;
}

std::string textOf(const DocumentFacts& facts) {
  const Json json = {{"format", kFactsFormat},
                     {"version", kVersion},
                     {"kind", facts.kind == orvml::Kind::input ? "input" : "output"},
                     {"module", asJsonText(facts.moduleName)},
                     {"moduleFormat", asJsonText(facts.moduleFormatVersion)},
                     {"creator", asJsonText(facts.creator)},
                     {"dimension", facts.dimension},
                     {"olderPrisms", facts.hasOlderPrisms},
                     {"groups", asJsonList(facts.groups)},
                     {"attributes", asJsonList(facts.attributes)},
                     {"parameters", asJsonList(facts.parameters)},
                     {"vectorParameters", asJsonList(facts.vectorParameters)}};
  return json.dump(-1, ' ', true);
}

std::optional<DocumentFacts> factsIn(std::string_view text) {
  const Json json = Json::parse(text, nullptr, false);
  try {
    const bool isOurs = json.is_object() && json.value("format", "") == kFactsFormat &&
                        json.value("version", 0) == kVersion;
    return isOurs ? std::optional(factsOfJson(json)) : std::nullopt;
  } catch (const std::exception&) {  // changed by who does not know it
    return std::nullopt;
  }
}

}  // namespace orvml_tool
