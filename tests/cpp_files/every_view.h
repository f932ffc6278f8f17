#pragma once

#include <orvml/error.hpp>
#include <orvml/view.hpp>

namespace orvml_io_tests {

/// Reads every value that a view shows, so that a fault or a sanitizer tells when one is not there.
/// Returns how many values there were.
std::size_t touchEverything(const orvml::DocumentView& view);

}  // namespace orvml_io_tests
