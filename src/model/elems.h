#pragma once

#include "orvml_io.h"
#include "values/attributes_vector.h"

namespace orvml_io {

struct Extent;  // src/hdf5/extents.h

/// The cells of one kind (edges, faces or volume elements) of a document, in consecutive type
/// groups: all cells of a group have one shape and one number of nodes.
class Elems {
 public:
  int numberOfElements = 0;
  int* connectivities = nullptr;  // [sum over groups of cells x nodes], 0-based, group after group
  bool connectivitiesAreBorrowed = false;  // whether nothing ever releases them
  int numberOfElementTypes = 0;            // number of type groups
  int* numberOfElementsByType = nullptr;   // [numberOfElementTypes] cells of each group
  ElemType* elementTypes = nullptr;        // [numberOfElementTypes] shape of each group
  int* numberOfNodesByElement = nullptr;   // [numberOfElementTypes] nodes of a cell of each group

  /// Whether DeleteContent leaves the three group arrays alone.
  ///
  /// Contract: it is set when the container is created and cleared by the single-shape setter and
  /// the reader; a generic setter that follows stores the caller's arrays and leaves it cleared.
  bool typeArraysOwnedByCaller = true;

  OML_AttributesVector attributes;  // one value per cell in each

  /// Whether the library allocated the group arrays that are stored now. Unlike the flag above it
  /// follows every change, so that deleting a document never releases an array of the caller.
  bool groupArraysMadeByLibrary = false;

  /// Returns the number of node indices that the type groups claim: the sum of cells times nodes
  /// per cell, 0 where an array is missing or the sum is negative.
  long long connectivityLength() const noexcept;

  /// Copies the groups, connectivities and attributes of another container into this (fresh) one,
  /// which owns its copies. Arrays that the source lacks stay missing. The operation is passed as
  /// for nodes. Returns 0.
  int CopyFromOther(const Elems* other, FreshMemory* operation = nullptr);

  /// Compares group by group and node index by node index, in order, and the attributes from this
  /// side; see src/compare/equality.cpp.
  bool IsEqual(const Elems* other) const;

  /// Replaces the connectivities by an array that the library made or was lent, and releases the
  /// old ones if they are not borrowed.
  void setConnectivities(NewArray<int> values) noexcept;

  /// Releases the group arrays with array delete and sets the number of groups to 0.
  void DeleteAuxiliarContent() noexcept;

  /// Empties the set; the container itself stays.
  ///
  /// Contract: the connectivities are released with array delete whoever made them. Group arrays of
  /// the caller stay referenced, so their number, shapes and node counts are still answered.
  void DeleteContent() noexcept;

  /// Writes the container's group at a sub-path of the document's, which tells edges, faces and
  /// volume elements apart; see src/hdf5/mesh_datasets.cpp.
  [[nodiscard]] int Write(const OpenGroup& document, const char* subPath) const;
  [[nodiscard]] int WriteElementTypes(const OpenGroup& container) const;
  [[nodiscard]] int WriteConnectivities(const OpenGroup& container) const;
  /// Reads the container's group into this (empty) container.
  [[nodiscard]] int Read(SourceFile& file, const OpenGroup& document, const char* subPath,
                         const char* formatVersion, ORVML_TYPE_OF_ENTITY entity);
  [[nodiscard]] int ReadElementTypes(SourceFile& file, const OpenGroup& container);
  [[nodiscard]] int ReadConnectivities(SourceFile& file, const OpenGroup& container);
  /// Reads the attribute vectors in the layout of the format version.
  [[nodiscard]] int ReadAttributes(SourceFile& file, const OpenGroup& container, int count,
                                   const char* formatVersion, ORVML_TYPE_OF_ENTITY entity);

 private:
  [[nodiscard]] int readCellCounts(SourceFile& file, const OpenGroup& container);
  [[nodiscard]] int readShapesAndNodeCounts(SourceFile& file, const OpenGroup& container,
                                            hid_t typesDataset, const Extent& typesExtent);
};

}  // namespace orvml_io
