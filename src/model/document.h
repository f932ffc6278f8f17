#pragma once

#include "model/elems.h"
#include "model/nodes.h"
#include "orvml_io.h"
#include "values/attributes_scalar.h"
#include "values/attributes_vector.h"

#include <memory>

namespace orvml_io {

/// Size of the identification strings with their terminator.
inline constexpr int kIdentificationBytes = 80;

/// Copies a text into an identification string. What is longer than 79 bytes is cut there.
void copyIdentification(char (&destination)[kIdentificationBytes], const char* text) noexcept;

/// An exchange document: a mesh, its parameters and its identification. Handles point to this
/// class.
class OrvInputAndOrvOutput {
 public:
  char moduleName[kIdentificationBytes] = {};
  char moduleFormatVersion[kIdentificationBytes] = {};
  char ioCreator[kIdentificationBytes] = {};
  char fileFormatVersion[kIdentificationBytes] = {};  // of the file read; selects its layout

  /// True for documents made by a constructor: the mesh arrays are the caller's, the mesh setters
  /// work and deletion releases no mesh array. False for documents that the library filled: it
  /// allocated every mesh array, the mesh setters refuse and deletion releases everything.
  bool arraysOwnedByCaller = true;

  int meshDimension = 0;  // coordinates per node; 2 or 3 in a valid document
  Nodes* nodes = nullptr;
  Elems* edges = nullptr;
  Elems* faces = nullptr;
  Elems* elements = nullptr;
  OML_AttributesScalar<double> parametersScalar;
  OML_AttributesVector parametersVector;

  OrvInputAndOrvOutput() = default;
  OrvInputAndOrvOutput(const OrvInputAndOrvOutput&) = delete;
  OrvInputAndOrvOutput& operator=(const OrvInputAndOrvOutput&) = delete;
  OrvInputAndOrvOutput(OrvInputAndOrvOutput&&) = delete;
  OrvInputAndOrvOutput& operator=(OrvInputAndOrvOutput&&) = delete;
  virtual ~OrvInputAndOrvOutput();

  // Content and containers (document.cpp)
  void DeleteContent() noexcept;
  void DeleteParametersContent() noexcept;
  void DeleteNodes() noexcept;
  void DeleteElements() noexcept;
  void DeleteFaces() noexcept;
  void DeleteEdges() noexcept;

  // Mesh (document_mesh.cpp). The setters adopt the arrays they are given.
  void SetNodesCoords(int count, const double* coordinates);
  double* GetNodesCoords() const noexcept;
  void SetNumberOfNodes(int count) noexcept;
  int GetNumberOfNodes() const noexcept;

  Elems* GetGenericElems(ORVML_TYPE_OF_ENTITY entity) const noexcept;
  int GetElems(ORVML_TYPE_OF_ENTITY entity, int*& connectivities) const noexcept;
  int GetElems(ORVML_TYPE_OF_ENTITY entity, int*& connectivities, ElemType*& elementTypes,
               int*& numberOfNodesByElement, int*& numberOfElementsByType) const noexcept;
  int GetNumberOfElems(ORVML_TYPE_OF_ENTITY entity) const noexcept;
  int GetNumberOfElementTypes(ORVML_TYPE_OF_ENTITY entity) const noexcept;
  int GetNNodeElement(ORVML_TYPE_OF_ENTITY entity, int typeIndex) const noexcept;
  ElemType GetElementType(ORVML_TYPE_OF_ENTITY entity, int typeIndex) const noexcept;
  void SetElems(int count, int* connectivities, int numberOfElementTypes, ElemType* elementTypes,
                int* numberOfNodesByElement, int* numberOfElementsByType,
                ORVML_TYPE_OF_ENTITY entity);
  void SetElems(int count, int* connectivities, ElemType elementType, int numberOfNodesByElement,
                ORVML_TYPE_OF_ENTITY entity);

  /// Returns the attribute store of a kind; null without a container and for an unknown kind.
  OML_AttributesVector* attributesOf(ORVML_TYPE_OF_ENTITY entity) const noexcept;

  // Deep copy (clone.cpp). Apart from the parameter stores, the destination must be fresh: what it
  // held is overwritten without being released. The operation is what was learned about fresh
  // memory while other parts were copied. All return 0.
  int CopyFromOther(const OrvInputAndOrvOutput* source);
  int CopyNodesFromOther(const Nodes* source, FreshMemory* operation = nullptr);
  int CopyElemsFromOther(const Elems* source, FreshMemory* operation = nullptr);
  int CopyFacesFromOther(const Elems* source, FreshMemory* operation = nullptr);
  int CopyEdgesFromOther(const Elems* source, FreshMemory* operation = nullptr);
  int CopyParametersFromOther(const OrvInputAndOrvOutput* source, FreshMemory* operation = nullptr);

  // Comparison (src/compare/equality.cpp)
  bool IsEqual(const OrvInputAndOrvOutput* other) const;
  /// Compares the scalar parameters from this side. Returns 1 when they are equal, else 0.
  int ParametersAreEqual(const OrvInputAndOrvOutput* other) const;

  // Exchange file: root attributes and dimension (src/hdf5/document_io.cpp)
  [[nodiscard]] int WriteIOCreator(hid_t file) const;
  [[nodiscard]] int WriteModuleNameAndVersion(hid_t file) const;
  int ReadIOCreator(const SourceFile& file);
  int ReadModuleNameAndVersion(const SourceFile& file);
  int ReadFormatVersion(const SourceFile& file);
  [[nodiscard]] int ReadSpatialDimension(const SourceFile& file, const char* group);
  [[nodiscard]] int WriteCommonPart(hid_t file, const char* group, const char* version) const;
  [[nodiscard]] int ReadCommonPart(const SourceFile& file, const char* group);

  // Exchange file: containers (src/hdf5/mesh_datasets.cpp)
  [[nodiscard]] int WriteNodes(hid_t file, const char* group) const;
  [[nodiscard]] int WriteEdges(hid_t file, const char* group) const;
  [[nodiscard]] int WriteFaces(hid_t file, const char* group) const;
  [[nodiscard]] int WriteElements(hid_t file, const char* group) const;
  [[nodiscard]] int ReadNodes(const SourceFile& file, const char* group);
  [[nodiscard]] int ReadEdges(const SourceFile& file, const char* group);
  [[nodiscard]] int ReadFaces(const SourceFile& file, const char* group);
  [[nodiscard]] int ReadElements(const SourceFile& file, const char* group);

  // Exchange file: parameters (src/hdf5/value_datasets.cpp)
  [[nodiscard]] int WriteParametersScalar(hid_t file, const char* group, const char* version) const;
  [[nodiscard]] int ReadParametersScalar(const SourceFile& file, const char* group);
  [[nodiscard]] int WriteParametersVector(hid_t file, const char* group, const char* version) const;
  [[nodiscard]] int ReadParametersVector(const SourceFile& file, const char* group);

  // Exchange file: parameters of formats older than 1.4 (src/hdf5/legacy_layouts.cpp)
  [[nodiscard]] int WriteParametersScalarOld(hid_t file, const char* group) const;
  [[nodiscard]] int ReadParametersScalarOld(const SourceFile& file, const char* group);
  [[nodiscard]] int WriteParametersVectorOld(hid_t file, const char* group) const;
  [[nodiscard]] int ReadParametersVectorOld(const SourceFile& file, const char* group);
};

/// Tells whether a document that is read may have the dimension.
inline bool isAcceptedDimension(int dimension) noexcept { return dimension == 2 || dimension == 3; }

/// The document that a pre-processor sends to a meshing module.
class OrvInput : public OrvInputAndOrvOutput {
 public:
  /// Two pointers that the library keeps for the meshing module and never looks into.
  struct Callback {
    void* first = nullptr;
    void* second = nullptr;
  };
  Callback statusCallback;
  Callback errorCallback;

  [[nodiscard]] int Read(const SourceFile& file);
};

/// The document that a meshing module sends back.
class OrvOutput : public OrvInputAndOrvOutput {
 public:
  [[nodiscard]] int Read(const SourceFile& file);
};

/// Turns a document into its handle. A handle always points to the base class, whichever the kind.
inline void* handleOf(OrvInputAndOrvOutput* document) noexcept { return document; }

/// Turns a handle back into its document; null for a null handle.
inline OrvInputAndOrvOutput* documentOf(void* handle) noexcept {
  return static_cast<OrvInputAndOrvOutput*>(handle);
}

/// Turns the handle of an input document back; null for a null handle and for an output document.
inline OrvInput* inputOf(void* handle) noexcept {
  return dynamic_cast<OrvInput*>(documentOf(handle));
}

}  // namespace orvml_io
