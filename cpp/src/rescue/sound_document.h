#pragma once

#include <orvml/rescue.hpp>

#include "rescue/losses.h"
#include "rescue/rescued_document.h"

namespace orvml::detail {

/// Drops what check() has errors for until there are none.
void makeSound(RescuedDocument& document, const RescueOptions& options, Losses& losses);

}  // namespace orvml::detail
