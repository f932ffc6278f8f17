// The part of the Python package `orvml` that is written in C++: the modern interface in
// dictionaries of NumPy arrays. It is not meant to be used directly; `_orvml.pyi` says what crosses
// the border.
#include <orvml/cell_measures.hpp>
#include <orvml/shape.hpp>
#include <orvml/version.hpp>
#include <orvml/vtk_cells.hpp>

#include "errors.h"
#include "files.h"
#include "pages.h"
#include "raw_document.h"
#include "reports.h"

#include <pybind11/stl.h>

namespace {

namespace py = pybind11;

py::list names(int first, int last, std::string_view (*nameOf)(int)) {
  py::list all;
  for (int i = first; i <= last; ++i) {
    all.append(nameOf(i));
  }
  return all;
}

/// The number of VTK's cell, none where there is no such cell.
std::optional<int> vtkCellNumber(int shape, int nodesPerCell) {
  return orvml::vtkCellType({static_cast<orvml::Shape>(shape), nodesPerCell});
}

std::vector<int> olderPrismOrder(int nodesPerCell) {
  const auto order = orvml::olderVtkPrismOrder(nodesPerCell);
  return {order.begin(), order.end()};
}

}  // namespace

PYBIND11_MODULE(_orvml, module) {
  orvml::python::registerErrors();
  orvml::python::addFiles(module);
  orvml::python::addReports(module);
  orvml::python::addPages(module);
  module.def("vtk_cell_type", &vtkCellNumber, py::arg("shape"), py::arg("nodes_per_cell"));
  module.def("older_vtk_prism_order", &olderPrismOrder, py::arg("nodes_per_cell"));
  // Older ones take the size of a value from where NumPy 1 has it.
  module.attr("knows_numpy_2") = PYBIND11_VERSION_HEX >= 0x020C0000;
  module.attr("version") = orvml::version();
  module.attr("format_version") = orvml::formatVersion();
  // In the order of their numbers, from 0.
  module.attr("shape_names") = names(0, static_cast<int>(orvml::Shape::circle), [](int shape) {
    return name(static_cast<orvml::Shape>(shape));
  });
  module.attr("measure_names") =
      names(0, static_cast<int>(orvml::CellMeasure::size),
            [](int measure) { return name(static_cast<orvml::CellMeasure>(measure)); });
}
