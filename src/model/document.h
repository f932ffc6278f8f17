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
  /// Compares two documents, either of which may be missing. A missing one equals a document
  /// without a mesh dimension, which is what a reader gives for a file that lacks the document.
  static bool AreEqual(const OrvInputAndOrvOutput* a, const OrvInputAndOrvOutput* b);
  /// Compares the scalar parameters from this side. Returns 1 when they are equal, else 0.
  int ParametersAreEqual(const OrvInputAndOrvOutput* other) const;

  // Exchange file: root attributes and dimension (src/hdf5/document_io.cpp)
  [[nodiscard]] int WriteIOCreator(hid_t file) const;
  [[nodiscard]] int WriteModuleNameAndVersion(hid_t file) const;
  int ReadIOCreator(SourceFile& file);
  int ReadModuleNameAndVersion(SourceFile& file);
  int ReadFormatVersion(SourceFile& file);
  [[nodiscard]] int ReadSpatialDimension(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int WriteCommonPart(hid_t file, const char* group, const char* version) const;
  [[nodiscard]] int ReadCommonPart(SourceFile& file, const char* group);

  // Exchange file: containers (src/hdf5/mesh_datasets.cpp)
  [[nodiscard]] int WriteNodes(const OpenGroup& document) const;
  [[nodiscard]] int WriteEdges(const OpenGroup& document) const;
  [[nodiscard]] int WriteFaces(const OpenGroup& document) const;
  [[nodiscard]] int WriteElements(const OpenGroup& document) const;
  [[nodiscard]] int ReadNodes(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int ReadEdges(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int ReadFaces(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int ReadElements(SourceFile& file, const OpenGroup& document);

  // Exchange file: parameters (src/hdf5/value_datasets.cpp)
  [[nodiscard]] int WriteParametersScalar(const OpenGroup& document, const char* version) const;
  [[nodiscard]] int ReadParametersScalar(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int WriteParametersVector(const OpenGroup& document, const char* version) const;
  [[nodiscard]] int ReadParametersVector(SourceFile& file, const OpenGroup& document);

  // Exchange file: parameters of formats older than 1.4 (src/hdf5/legacy_layouts.cpp)
  [[nodiscard]] int WriteParametersScalarOld(const OpenGroup& document) const;
  [[nodiscard]] int ReadParametersScalarOld(SourceFile& file, const OpenGroup& document);
  [[nodiscard]] int WriteParametersVectorOld(const OpenGroup& document) const;
  [[nodiscard]] int ReadParametersVectorOld(SourceFile& file, const OpenGroup& document);
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

  /// Writes a document as the input of a file. What it is written as is the caller's choice:
  /// callers hand in documents of either kind.
  [[nodiscard]] static int Write(const OrvInputAndOrvOutput& document, hid_t file,
                                 const char* version);
  [[nodiscard]] int Read(SourceFile& file);
};

/// The document that a meshing module sends back.
class OrvOutput : public OrvInputAndOrvOutput {
 public:
  /// Writes a document as the output of a file, likewise.
  [[nodiscard]] static int Write(const OrvInputAndOrvOutput& document, hid_t file,
                                 const char* version);
  [[nodiscard]] int Read(SourceFile& file);
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
