// What a document asks the mesher for.
#pragma once

#include <orvml/view.hpp>

#include "exchange/sweep.h"

#include <optional>

namespace orvml_examples {

struct Request {
  double volumeSize;  // of the edges of tetrahedra at most
  double toleranceForGaps;
  double sharpAngle;  // in radians, between the normals of two faces
  std::optional<Sweep> sweep;
};

/// Reads the parameters; a document that is not for this module, or asks for something that it
/// cannot do, is an exception.
Request requestOf(const orvml::InputView& input);

}  // namespace orvml_examples
