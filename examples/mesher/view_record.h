#pragma once

#include <orvml/view.hpp>

#include "exchange/record.h"

namespace orvml_examples {

/// All that a document holds, flags included: nothing of it has to be agreed upon.
Record recordOf(const orvml::DocumentView& document);

}  // namespace orvml_examples
