#pragma once

#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace orvml_io_tests {

using Names = std::vector<std::string>;
using Extents = std::vector<hsize_t>;

/// A container of a document and its group in a file.
struct Container {
  const char* name;  // of the group
  ORVML_TYPE_OF_ENTITY entity;

  [[nodiscard]] std::string group() const { return std::string("/OrvInput/") + name; }
  friend std::ostream& operator<<(std::ostream& stream, const Container& container) {
    return stream << container.name;
  }
};

inline constexpr Container kCellContainers[] = {
    {"Edges", ORVML_EDGES}, {"Faces", ORVML_FACES}, {"Elements", ORVML_ELEMENTS}};
inline constexpr Container kAllContainers[] = {{"Nodes", ORVML_NODES},
                                               {"Edges", ORVML_EDGES},
                                               {"Faces", ORVML_FACES},
                                               {"Elements", ORVML_ELEMENTS}};

/// What a reader gave.
struct ReadDocument {
  int result = 0;
  Handle document;

  [[nodiscard]] void* handle() const noexcept { return document.get(); }
};

ReadDocument readInput(const char* path);
ReadDocument readOutput(const char* path);

/// Gives each test a path of its own and forgets the identifiers that the library leaves open.
class ExchangeFileTest : public ::testing::Test {
 protected:
  [[nodiscard]] const char* path() const noexcept { return temp_.path(); }
  [[nodiscard]] IdCounts opened() const { return ids_.opened(); }

  /// Writes a document, which must succeed, and opens the file without the library.
  RawFile written(const BuiltDocument& input);
  RawFile writtenOutput(const BuiltDocument& output);
  RawFile writtenBoth(const BuiltDocument& input, const BuiltDocument& output);
  /// Writes an input document, which must give 1, and opens what is left of the file.
  RawFile writtenWithFailure(const BuiltDocument& input);

  /// Makes an exchange file with a complete input document: three nodes, one triangle, the scalar
  /// parameter "size" = 0.5. It reads with result 0, so that a test shows what its change does.
  RawFile smallInput(const std::string& version = "1.4");
  RawFile smallOutput();

  /// Closes a file that was made by hand and reads its document.
  ReadDocument read(RawFile& file);
  ReadDocument readAsOutput(RawFile& file);

 private:
  TempFile temp_;
  OpenIds ids_;
};

/// Adds the small document to a file, see ExchangeFileTest::smallInput().
void addSmallDocument(RawFile& file, const std::string& group);

/// Puts another dataset in the place of an existing one.
void replaceInts(RawFile& file, const std::string& path, const std::vector<int>& values);
void replaceDataset(RawFile& file, const std::string& path, hid_t type, const Extents& extents,
                    const void* data);

/// Makes a dataset whose extents can be asked for but whose values cannot be read: they went
/// through a filter that is not there any more.
void unreadableDataset(RawFile& file, const std::string& path, hid_t type, const Extents& extents);
void replaceByUnreadable(RawFile& file, const std::string& path, hid_t type,
                         const Extents& extents);

/// Tells whether a dataset is stored in a type, byte order included.
bool isStoredAs(const RawFile& file, const std::string& dataset, hid_t type);

/// All paths of a file in ascending order; groups end with a slash.
std::vector<std::string> allPaths(const RawFile& file);

/// The coordinates of a document; empty when it has none.
std::vector<double> coordinatesOf(void* document);
/// The connectivities of one kind; empty when the document has none.
std::vector<int> connectivitiesOf(void* document, ORVML_TYPE_OF_ENTITY entity);

std::string bytesOf(const char* path);

}  // namespace orvml_io_tests
