#pragma once

#include <orvml/check.hpp>
#include <orvml/view.hpp>

#include "drawable_cells.h"
#include "json.h"

namespace orvml_report {

/// The findings about a document, and about the file as a whole, with where their places are.
[[nodiscard]] Json findingsAsJson(const orvml::CheckReport& report,
                                  const orvml::DocumentView& document, const NodePlaces& places);

}  // namespace orvml_report
