#include "errors.h"

#include <orvml/error.hpp>

#include "raw_document.h"

#include <exception>

namespace orvml::python {

namespace {

py::object pathOrNone(const std::filesystem::path& file) {
  return file.empty() ? py::object(py::none()) : py::object(textOf(file.native()));
}

void raise(const Error& error) {
  const auto make = py::module_::import("orvml._errors").attr("error_of");
  const py::object exception =
      make(textOf(text(error.code())), textOf(error.sentence()), pathOrNone(error.file()),
           textOf(error.object()), textOf(error.hdf5Reason()));
  PyErr_SetObject(py::type::handle_of(exception).ptr(), exception.ptr());
}

}  // namespace

void registerErrors() {
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) {
        std::rethrow_exception(thrown);
      }
    } catch (const Error& error) {
      raise(error);
    }
  });
}

}  // namespace orvml::python
