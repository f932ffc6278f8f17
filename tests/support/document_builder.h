#pragma once

#include "orvml_io.h"

#include <deque>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// Owns a handle and deletes its document at the end.
class Handle {
 public:
  Handle() = default;
  explicit Handle(void* handle) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(other.release()) {}
  Handle& operator=(Handle&&) = delete;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { OrvML_IO_DeleteOrvInputHandle(handle_); }

  [[nodiscard]] void* get() const noexcept { return handle_; }
  /// The variable itself, for functions that take a handle by reference.
  [[nodiscard]] void*& out() noexcept { return handle_; }
  void* release() noexcept {
    void* released = handle_;
    handle_ = nullptr;
    return released;
  }

 private:
  void* handle_ = nullptr;
};

/// A document made by a constructor together with the arrays that it adopts. Attributes are
/// released at the end: the library leaves their blocks to the caller of such a document.
class BuiltDocument {
 public:
  static BuiltDocument input(int dimension);
  static BuiltDocument output(int dimension);
  BuiltDocument(BuiltDocument&&) noexcept = default;
  BuiltDocument& operator=(BuiltDocument&&) = delete;
  BuiltDocument(const BuiltDocument&) = delete;
  BuiltDocument& operator=(const BuiltDocument&) = delete;
  ~BuiltDocument();

  [[nodiscard]] void* handle() const noexcept { return handle_.get(); }

  BuiltDocument& identification(const char* module, const char* version, const char* creator);
  BuiltDocument& nodes(std::vector<double> coordinates);
  /// Cells in type groups; `cells` are the connectivities group after group.
  BuiltDocument& cells(ORVML_TYPE_OF_ENTITY entity, std::vector<ElemType> shapes,
                       std::vector<int> nodesPerCell, std::vector<int> cellsPerGroup,
                       std::vector<int> connectivities);
  BuiltDocument& scalar(const char* name, double value);
  BuiltDocument& vector(const char* name, const std::vector<int>& values);
  BuiltDocument& vector(const char* name, const std::vector<double>& values);
  BuiltDocument& attribute(ORVML_TYPE_OF_ENTITY entity, const char* name,
                           const std::vector<int>& values, bool mustBeTransmitted = false);
  BuiltDocument& attribute(ORVML_TYPE_OF_ENTITY entity, const char* name,
                           const std::vector<double>& values, bool mustBeTransmitted = false);

 private:
  BuiltDocument(void* handle, int dimension);
  int* keep(std::vector<int> values);

  std::deque<std::vector<int>> ints_;
  std::deque<std::vector<ElemType>> shapes_;
  std::deque<std::vector<double>> doubles_;
  int dimension_;
  Handle handle_;
};

/// A tetrahedral mesh with everything a document can hold: nodes, edges, faces, volume elements,
/// scalar and vector parameters of both types, attributes of both types on every kind.
BuiltDocument fullDocument();

/// Three triangles and two quadrilaterals on seven nodes, with one scalar parameter.
BuiltDocument documentWithMixedShapes();

}  // namespace orvml_io_tests
