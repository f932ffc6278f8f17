#include "pages.h"

#ifdef ORVML_HAS_REPORT
#include "raw_document.h"
#include "report.h"

#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <utility>
#endif

namespace orvml::python {

#ifdef ORVML_HAS_REPORT

namespace {

/// A document with what a page says of it, as long as the page is made.
struct Shown {
  HeldDocument held;
  std::string name;
  std::optional<std::string> path;  // of the file that it is from
  CheckReport checked = {};
  orvml_report::ReportedDocument reported = {};
};

/// Does what takes long, without the interpreter's lock.
void prepare(Shown& shown, bool isChecked) {
  shown.reported.view = &shown.held.view();
  shown.reported.name = shown.name;
  if (shown.path) {
    const Description description = describe(*shown.path);
    shown.reported.file = {description.fileBytes, description.formatVersion};
  }
  if (isChecked) {
    const CheckOptions options = {.threads = 2};
    shown.checked = shown.path ? check(std::filesystem::path(*shown.path), options)
                               : check(shown.held.view(), options);
    shown.reported.report = &shown.checked;
  }
}

/// @param documents  of each the dictionary, its name and the path of its file or None
py::dict pageOf(const py::list& documents, const py::object& title, bool isChecked) {
  std::vector<std::unique_ptr<Shown>> all;
  for (const py::handle& row : documents) {
    const auto [raw, name, path] = row.cast<std::tuple<py::dict, py::object, py::object>>();
    all.push_back(std::make_unique<Shown>(
        Shown{HeldDocument(raw), bytesOf(name),
              path.is_none() ? std::nullopt : std::optional(bytesOf(path))}));
  }
  const orvml_report::ReportOptions options{.title = bytesOf(title)};
  const orvml_report::Page page = [&] {
    const py::gil_scoped_release released;
    std::vector<orvml_report::ReportedDocument> reported;
    for (const auto& shown : all) {
      prepare(*shown, isChecked);
      reported.push_back(shown->reported);
    }
    return orvml_report::pageOf(reported, options);
  }();
  py::dict made;
  made["html"] = py::bytes(page.html);
  made["notes"] = page.notes;
  return made;
}

}  // namespace

void addPages(py::module_& module) {
  module.attr("has_pages") = true;
  module.def("page", &pageOf, py::arg("documents"), py::arg("title"), py::arg("check"));
}

#else

void addPages(pybind11::module_& module) { module.attr("has_pages") = false; }

#endif

}  // namespace orvml::python
