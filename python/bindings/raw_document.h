#pragma once

#include <orvml/orvml.hpp>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A document as it crosses the border between the two languages: a dictionary of NumPy arrays,
/// texts and numbers, `RawDocument` of `_orvml.pyi`. Both directions share memory instead of
/// copying it.
namespace orvml::python {

namespace py = pybind11;

/// A text of a file. Bytes that are no UTF-8 become lone surrogates, as those of file names do in
/// Python, so that they come back as they were.
[[nodiscard]] py::str textOf(std::string_view text);
[[nodiscard]] std::string bytesOf(const py::handle& text);

/// Shows a document as a dictionary of read-only arrays.
///
/// @param owner  what the memory of the views belongs to; every array keeps it alive
[[nodiscard]] py::dict toPython(const DocumentView& document, const py::object& owner);

/// The view of a dictionary, which it keeps the arrays of. Made and destroyed by who holds the
/// interpreter's lock; the view may be used without it.
class HeldDocument {
 public:
  /// Throws TypeError for arrays that are not aligned, contiguous and of the right type.
  explicit HeldDocument(const py::dict& raw);

  [[nodiscard]] const DocumentView& view() const noexcept;
  /// Null when it is a document of the other kind.
  [[nodiscard]] const InputView* input() const noexcept { return std::get_if<InputView>(&view_); }
  [[nodiscard]] const OutputView* output() const noexcept {
    return std::get_if<OutputView>(&view_);
  }

 private:
  [[nodiscard]] std::string_view keep(const py::handle& text);
  template <class Value>
  [[nodiscard]] py::array_t<Value> keepArray(const py::handle& array);
  [[nodiscard]] NodesView nodes(const py::dict& raw, int dimension);
  [[nodiscard]] CellsView cells(const py::dict& raw, const char* entity);
  [[nodiscard]] Attributes attributes(const py::handle& rows);
  [[nodiscard]] Parameters parameters(const py::handle& rows);
  [[nodiscard]] DocumentParts parts(const py::dict& raw);

  std::deque<std::string> texts_;  // a deque, whose elements stay where they are
  std::vector<py::array> arrays_;
  std::variant<InputView, OutputView> view_;
};

}  // namespace orvml::python
