#pragma once

#include <pybind11/pybind11.h>

/// Pages that show documents in a browser.
namespace orvml::python {

void addPages(pybind11::module_& module);

}  // namespace orvml::python
