#include "mesher/request.h"

#include "exchange/check.h"
#include "exchange/names.h"

#include <algorithm>
#include <cmath>

namespace orvml_examples {

namespace {

void requireSupported(const Document& document) {
  require(document.identification().moduleName == kModuleName,
          "the document is for another meshing module: " + document.identification().moduleName);
  require(document.parameter(names::kQuadraticType) == 0, "only linear elements can be made");
  require(document.parameter(names::kInputIsWatertight) != 0,
          "only a watertight surface can be filled");
}

std::optional<Sweep> sweepOf(const Document& document) {
  if (!document.hasVectorParameter(names::kSweepVector)) {
    return std::nullopt;
  }
  const std::vector<double> vector = document.doubleParameter(names::kSweepVector);
  const double layers = document.parameter(names::kSweepLayers);
  require(vector.size() == 3, "a sweep needs a vector of three coordinates");
  require(layers >= 1 && layers == std::floor(layers), "a sweep needs a whole number of layers");
  return Sweep{{vector[0], vector[1], vector[2]},
               static_cast<int>(layers),
               document.intParameter(names::kSweepSources)};
}

}  // namespace

Request requestOf(const Document& document) {
  requireSupported(document);
  const std::vector<double> volumesSizes = document.doubleParameter(names::kVolumesSizes);
  require(!volumesSizes.empty(), "the size of the volume is missing");
  return {*std::min_element(volumesSizes.begin(), volumesSizes.end()),
          document.parameter(names::kToleranceForGaps),
          std::acos(document.parameter(names::kMinCosinusForSharpEdges)), sweepOf(document)};
}

}  // namespace orvml_examples
