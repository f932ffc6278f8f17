#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/shape.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvml {

/// How the bytes of a dataset are arranged in its file.
enum class Layout { compact, contiguous, chunked, other };

/// A dataset as it is stored.
struct StoredArray {
  std::string object;                  ///< its absolute path in the file
  std::vector<std::uint64_t> extents;  ///< as stored, of any rank
  std::string type;                    ///< for example "float64" or "int32, big-endian"
  Layout layout = Layout::contiguous;
  std::vector<std::string> filters;  ///< as HDF5 names them, for example "deflate"
  std::uint64_t storedBytes = 0;     ///< bytes that it takes in the file
};

/// A named vector without its values.
struct AttributeDescription {
  std::string name;
  bool holdsInts = false;  ///< as it is read: ints, else doubles
  int size = 0;            ///< number of values
  bool mustBeTransmitted = false;
  StoredArray stored;
};

struct ParameterDescription {
  std::string name;
  double value = 0.0;
};

struct GroupDescription {
  Shape shape = Shape::none;
  int nodesPerCell = 0;
  int cells = 0;
};

struct NodesDescription {
  int size = 0;
  std::optional<StoredArray> coordinates;
  std::vector<AttributeDescription> attributes;
};

struct CellsDescription {
  int size = 0;
  std::vector<GroupDescription> groups;
  std::optional<StoredArray> nodeIndices;
  std::vector<AttributeDescription> attributes;
};

struct DocumentDescription {
  Kind kind = Kind::input;
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string creator;
  int dimension = 0;
  NodesDescription nodes;
  CellsDescription edges;
  CellsDescription faces;
  CellsDescription elements;
  std::vector<ParameterDescription> parameters;
  std::vector<AttributeDescription> vectorParameters;
};

/// What a file holds, without the values of its arrays.
struct Description {
  std::string formatVersion;
  std::uint64_t fileBytes = 0;
  std::optional<DocumentDescription> input;
  std::optional<DocumentDescription> output;
  std::vector<Finding> findings;  ///< what is not as the format says
};

/// Describes an exchange file without reading the values of a large array; what it says does not
/// depend on the size of the mesh, and neither does its time. It reads the sizes of the groups of
/// cells and the table of parameters. Trouble in the file becomes a finding. Nothing stays open.
/// Arrays that load() refuses because they would take memory out of all proportion to the file are
/// described, for none is read.
///
/// Throws Error when the file is none, as load() does. A file without any document is described.
[[nodiscard]] ORVML_EXPORT Description describe(const std::filesystem::path& path);

}  // namespace orvml
