#pragma once

#include <pybind11/pybind11.h>

/// Reading, writing and mending files.
namespace orvml::python {

void addFiles(pybind11::module_& module);

}  // namespace orvml::python
