#include "reports.h"

#include "plain_values.h"
#include "raw_document.h"

#include <pybind11/stl.h>

#include <map>
#include <optional>
#include <utility>

namespace orvml::python {

namespace {

CheckOptions optionsOf(double coincidenceTolerance, bool quality, int places, int threads) {
  return {.coincidenceTolerance = coincidenceTolerance,
          .quality = quality,
          .places = places,
          .threads = threads};
}

py::dict checkDocument(const py::dict& raw, double coincidenceTolerance, bool quality, int places,
                       int threads) {
  const HeldDocument held(raw);
  const CheckReport report = [&] {
    const py::gil_scoped_release released;
    return check(held.view(), optionsOf(coincidenceTolerance, quality, places, threads));
  }();
  return plain(report);
}

py::dict checkFile(const py::object& path, double coincidenceTolerance, bool quality, int places,
                   int threads) {
  const std::filesystem::path file = bytesOf(path);
  const CheckReport report = [&] {
    const py::gil_scoped_release released;
    return check(file, optionsOf(coincidenceTolerance, quality, places, threads));
  }();
  return plain(report);
}

py::dict diffDocuments(const py::dict& first, const py::dict& second, double absolute,
                       double relative, const py::dict& toleranceOf,
                       std::optional<double> matchWithin) {
  const HeldDocument a(first);
  const HeldDocument b(second);
  DiffOptions options{.tolerance = {absolute, relative}, .matchWithin = matchWithin};
  for (const auto& [name, tolerance] : toleranceOf) {
    const auto [ofAbsolute, ofRelative] = tolerance.cast<std::pair<double, double>>();
    options.toleranceOf[bytesOf(name)] = {ofAbsolute, ofRelative};
  }
  const DiffReport report = [&] {
    const py::gil_scoped_release released;
    return diff(a.view(), b.view(), options);
  }();
  return plain(report);
}

py::dict fingerprintOf(const py::dict& raw) {
  const HeldDocument held(raw);
  const Fingerprint all = [&] {
    const py::gil_scoped_release released;
    return fingerprint(held.view());
  }();
  return plain(all);
}

py::array measure(const py::dict& raw, const std::string& entity, int measured) {
  const HeldDocument held(raw);
  const CellsView& cells = entity == "edges"   ? held.view().edges()
                           : entity == "faces" ? held.view().faces()
                                               : held.view().elements();
  auto values = [&] {
    const py::gil_scoped_release released;
    return measureCells(held.view().nodes(), cells, static_cast<CellMeasure>(measured));
  }();
  // The array takes the memory over instead of copying it.
  auto owned = std::make_unique<std::vector<double>>(std::move(values));
  const auto size = static_cast<py::ssize_t>(owned->size());
  double* data = owned->data();
  const py::capsule owner(owned.release(),
                          [](void* pointer) { delete static_cast<std::vector<double>*>(pointer); });
  return py::array_t<double>(std::vector<py::ssize_t>{size}, data, owner);
}

}  // namespace

void addReports(py::module_& module) {
  module.def("check_document", &checkDocument, py::arg("document"),
             py::arg("coincidence_tolerance"), py::arg("quality"), py::arg("places"),
             py::arg("threads"));
  module.def("check_file", &checkFile, py::arg("path"), py::arg("coincidence_tolerance"),
             py::arg("quality"), py::arg("places"), py::arg("threads"));
  module.def("diff", &diffDocuments, py::arg("first"), py::arg("second"), py::arg("absolute"),
             py::arg("relative"), py::arg("tolerance_of"), py::arg("match_within"));
  module.def("fingerprint", &fingerprintOf, py::arg("document"));
  module.def("measure", &measure, py::arg("document"), py::arg("entity"), py::arg("measure"));
}

}  // namespace orvml::python
