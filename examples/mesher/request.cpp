#include "mesher/request.h"

#include "exchange/check.h"
#include "exchange/names.h"

#include <algorithm>
#include <cmath>

namespace orvml_examples {

namespace {

void requireSupported(const orvml::InputView& input) {
  const std::string_view module = input.identification().moduleName;
  require(module == kModuleName,
          "the document is for another meshing module: " + std::string(module));
  const orvml::Parameters& parameters = input.parameters();
  require(parameters.at(names::kQuadraticType) == 0, "only linear elements can be made");
  require(parameters.at(names::kInputIsWatertight) != 0, "only a watertight surface can be filled");
}

std::optional<Sweep> sweepOf(const orvml::InputView& input) {
  const orvml::Attribute* stored = input.vectorParameters().find(names::kSweepVector);
  if (stored == nullptr) {
    return std::nullopt;
  }
  const auto vector = stored->doubles();
  const double layers = input.parameters().at(names::kSweepLayers);
  require(vector.size() == 3, "a sweep needs a vector of three coordinates");
  require(layers >= 1 && layers == std::floor(layers), "a sweep needs a whole number of layers");
  const auto sources = input.vectorParameters().at(names::kSweepSources).ints();
  return Sweep{{vector[0], vector[1], vector[2]},
               static_cast<int>(layers),
               {sources.begin(), sources.end()}};
}

}  // namespace

Request requestOf(const orvml::InputView& input) {
  requireSupported(input);
  const auto volumesSizes = input.vectorParameters().at(names::kVolumesSizes).doubles();
  require(!volumesSizes.empty(), "the size of the volume is missing");
  return {*std::min_element(volumesSizes.begin(), volumesSizes.end()),
          input.parameters().at(names::kToleranceForGaps),
          std::acos(input.parameters().at(names::kMinCosinusForSharpEdges)), sweepOf(input)};
}

}  // namespace orvml_examples
