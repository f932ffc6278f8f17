#pragma once

#include <pybind11/pybind11.h>

/// Checking, comparing and measuring documents.
namespace orvml::python {

void addReports(pybind11::module_& module);

}  // namespace orvml::python
