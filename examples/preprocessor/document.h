// The flat interface of the library as the preprocessor uses it: every result is looked at, and a
// failure is an exception.
#pragma once

#include "exchange/identification.h"
#include "exchange/mesh.h"
#include "orvml_io.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orvml_examples {

/// Owns a document and, when the program built it, the mesh arrays that the document adopted.
class Document {
 public:
  static Document newInput(const Identification& identification);
  static Document readInput(const std::string& path);
  static Document readOutput(const std::string& path);

  Document(Document&& other) noexcept;
  Document& operator=(Document&&) = delete;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  /// A deep copy that stands for itself: it outlives this document and its arrays.
  [[nodiscard]] Document cloneInput() const;
  /// Whether this and the other hold the same mesh, attributes and scalar parameters.
  [[nodiscard]] bool equalsInput(const Document& other) const;

  void writeInput(const std::string& path) const;
  /// Prints the mesh as text.
  void printMesh(const std::string& path) const;

  [[nodiscard]] Identification identification() const;
  [[nodiscard]] int dimension() const;

  /// Hands a mesh to a document that this program built.
  void setMesh(Mesh mesh);
  [[nodiscard]] Mesh mesh() const;
  [[nodiscard]] int numberOf(ORVML_TYPE_OF_ENTITY entity) const;

  void setParameter(const char* name, int value);
  void setParameter(const char* name, double value);
  void setParameter(const char* name, const std::vector<int>& values);
  void setParameter(const char* name, const std::vector<double>& values);
  [[nodiscard]] bool hasParameter(const char* name) const;
  [[nodiscard]] double parameter(const char* name) const;
  [[nodiscard]] std::size_t numberOfParameters() const;
  [[nodiscard]] std::size_t numberOfVectorParameters() const;
  [[nodiscard]] bool hasVectorParameter(const char* name) const;
  [[nodiscard]] std::vector<int> intParameter(const char* name) const;
  [[nodiscard]] std::vector<double> doubleParameter(const char* name) const;

  /// One value for each entity of the kind. Which attributes are the user's, and so must be sent
  /// back, is part of the agreement about the names.
  void setAttribute(const char* name, const std::vector<int>& values);
  void setAttribute(const char* name, const std::vector<double>& values);
  /// ORVML_UNKNOWN_VALUE when the document has no such attribute.
  [[nodiscard]] ORVML_TYPE_OF_VALUE attributeType(const char* name) const;
  [[nodiscard]] std::vector<int> intAttribute(const char* name) const;
  [[nodiscard]] std::vector<double> doubleAttribute(const char* name) const;
  [[nodiscard]] std::vector<std::string> namesToTransmit(ORVML_TYPE_OF_ENTITY entity) const;

 private:
  Document(void* handle, bool builtHere) : handle_(handle), builtHere_(builtHere) {}

  void setCells(ORVML_TYPE_OF_ENTITY entity, Cells& cells);
  [[nodiscard]] Cells cells(ORVML_TYPE_OF_ENTITY entity) const;

  void* handle_;
  bool builtHere_;
  Mesh adopted_;
};

}  // namespace orvml_examples
