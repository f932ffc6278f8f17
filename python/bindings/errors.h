#pragma once

/// How what the library throws becomes exceptions of Python.
namespace orvml::python {

/// Has orvml::Error raised as `orvml.Error`. The class is looked up when one is thrown, so that the
/// module can be imported before the package is whole.
void registerErrors();

}  // namespace orvml::python
