#pragma once

#include "values/attributes_vector.h"

namespace orvml_io {

/// The nodes of one document. The number of coordinates per node is the document's `meshDimension`,
/// which is passed to every operation that needs it.
class Nodes {
 public:
  double* coords = nullptr;  // [numberOfNodes x meshDimension], row-major; the caller's unless the
                             // document's arraysOwnedByCaller is false
  bool coordsAreBorrowed = false;  // whether nothing ever releases them
  int numberOfNodes = 0;
  OML_AttributesVector attributes;  // one value per node in each

  /// Number of values behind `coords` where the library allocated it, kUnknownLength where it is
  /// the caller's. Callers may raise the number of nodes or the dimension of a document that owns
  /// its arrays; nothing then reads past this length.
  long long coordsLength = kUnknownLength;
  static constexpr long long kUnknownLength = -1;

  /// Tells whether `numberOfNodes x dimension` values lie behind `coords`, as far as is known.
  bool holdsCoordinates(int dimension) const noexcept;

  /// Returns how many of the `numberOfNodes x dimension` values lie behind `coords`: all of them
  /// where the array is the caller's, none where there is no array.
  long long heldCoordinates(int dimension) const noexcept;

  /// Replaces the coordinates by an array that the library made or was lent, of `length` values,
  /// and releases the old ones if they are not borrowed.
  void setCoordinates(NewArray<double> values, long long length) noexcept;

  /// Empties the container; the container itself stays. Returns 0.
  ///
  /// Contract: the coordinates are released with array delete whoever made them; a caller who
  /// clears a document of its own hands them over.
  int DeleteContent() noexcept;

  /// Copies the coordinates and attributes of another container into this (fresh) one, as a part of
  /// an operation that makes other large arrays (null: of none). Returns 0.
  ///
  /// Contract: a source without nodes is not copied at all, its attributes neither.
  int CopyFromOther(const Nodes* other, int dimension, FreshMemory* operation = nullptr);

  /// Compares coordinates with the tolerance of kTolerance and the attributes from this side; see
  /// src/compare/equality.cpp.
  bool IsEqual(const Nodes* other, int dimension) const;

  /// Writes the container's group below that of the document; see src/hdf5/mesh_datasets.cpp.
  [[nodiscard]] int Write(const OpenGroup& document, int dimension) const;
  /// Reads the container's group below that of the document into this (empty) container.
  [[nodiscard]] int Read(SourceFile& file, const OpenGroup& document, const char* formatVersion);
  /// Reads the attribute vectors in the layout of the format version.
  [[nodiscard]] int ReadAttributes(SourceFile& file, const OpenGroup& container, int count,
                                   const char* formatVersion);
};

}  // namespace orvml_io
