#pragma once

#include <hdf5.h>

#include <string>
#include <vector>

namespace orvml_io_tests {

/// What an HDF5 object or attribute looks like to the C interface alone.
struct RawShape {
  H5T_class_t typeClass = H5T_NO_CLASS;
  std::size_t typeBytes = 0;
  bool isSigned = false;
  std::vector<hsize_t> extents;  // empty for a scalar
};

/// An HDF5 file read and made by raw C calls, without the library: the independent oracle of what
/// the library writes, and the author of files that the library has to read. Every call that
/// should not fail adds a test failure when it does.
class RawFile {
 public:
  static RawFile open(const char* path);
  /// Opens a file that a test is going to change.
  static RawFile openForWriting(const char* path);
  static RawFile create(const char* path);
  /// Makes an exchange file: the marker, and the version unless it is empty.
  static RawFile createMarked(const char* path, const std::string& version = "1.4");

  RawFile(RawFile&& other) noexcept;
  RawFile& operator=(RawFile&&) = delete;
  RawFile(const RawFile&) = delete;
  RawFile& operator=(const RawFile&) = delete;
  ~RawFile();

  [[nodiscard]] hid_t id() const noexcept { return file_; }

  // What is there.
  [[nodiscard]] bool has(const std::string& path) const;
  [[nodiscard]] bool isGroup(const std::string& path) const;
  [[nodiscard]] bool isDataset(const std::string& path) const;
  [[nodiscard]] std::vector<std::string> members(const std::string& group) const;
  [[nodiscard]] RawShape shape(const std::string& dataset) const;
  [[nodiscard]] std::vector<int> ints(const std::string& dataset) const;
  [[nodiscard]] std::vector<double> doubles(const std::string& dataset) const;
  [[nodiscard]] bool hasAttribute(const std::string& object, const std::string& name) const;
  [[nodiscard]] std::vector<std::string> attributes(const std::string& object) const;
  [[nodiscard]] RawShape attributeShape(const std::string& object, const std::string& name) const;
  /// The bytes of a fixed-length string attribute as they lie in the file, terminator included.
  [[nodiscard]] std::string attributeBytes(const std::string& object,
                                           const std::string& name) const;
  [[nodiscard]] int intAttribute(const std::string& object, const std::string& name) const;

  // Making a file. Parents must exist.
  void group(const std::string& path);
  void intVector(const std::string& path, const std::vector<int>& values);
  void doubleVector(const std::string& path, const std::vector<double>& values);
  void doubleTable(const std::string& path, hsize_t rows, hsize_t columns,
                   const std::vector<double>& values);
  /// Makes a dataset of any type and extents; no extents make a scalar; null data is not written.
  void dataset(const std::string& path, hid_t type, const std::vector<hsize_t>& extents,
               const void* data);
  void textAttribute(const std::string& object, const std::string& name, const std::string& text);
  void intAttributeValue(const std::string& object, const std::string& name, int value);
  void attribute(const std::string& object, const std::string& name, hid_t type,
                 const std::vector<hsize_t>& extents, const void* data);
  void remove(const std::string& path);
  void removeAttribute(const std::string& object, const std::string& name);
  /// Makes the table of scalar parameters at a path.
  void parameterTable(const std::string& path,
                      const std::vector<std::pair<std::string, double>>& parameters);
  /// Makes the group and "/dimension" of a document.
  void documentGroup(const std::string& group, int dimension);
  /// Makes an element container with all its datasets.
  void elements(const std::string& group, const std::vector<int>& counts,
                const std::vector<int>& shapes, const std::vector<int>& nodesPerElement,
                const std::vector<int>& connectivities);

  void close();

 private:
  explicit RawFile(hid_t file) : file_(file) {}
  hid_t file_ = -1;
};

}  // namespace orvml_io_tests
