#include "hostile/valid_files.h"

#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>

namespace orvml_io_tests {

namespace {

/// Adds two vectors with a gap between them to a group of positions.
template <class AddVector>
void addPositions(RawFile& file, const std::string& group, const AddVector& addVector) {
  file.group(group);
  file.intAttributeValue(group, "MAX_ID", 3);
  addVector(group + "/0");
  addVector(group + "/2");
}

void addInts(RawFile& file, const std::string& group, std::size_t length) {
  addPositions(file, group,
               [&](const std::string& path) { file.intVector(path, std::vector<int>(length, 7)); });
}

void addDoubles(RawFile& file, const std::string& group, std::size_t length) {
  addPositions(file, group, [&](const std::string& path) {
    file.doubleVector(path, std::vector<double>(length, 0.5));
  });
}

void addAttributes(RawFile& file, const std::string& container, std::size_t count) {
  addDoubles(file, container + "/FunctionAttributes", count);
  addDoubles(file, container + "/UserAttributes", count);
  addInts(file, container + "/FunctionMarkers", count);
  addInts(file, container + "/UserMarkers", count);
}

void addDocument(RawFile& file, const std::string& group) {
  file.documentGroup(group, 3);
  file.group(group + "/Nodes");
  file.doubleTable(group + "/Nodes/coordinates", 4, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
}

}  // namespace

void makeCurrentFile(const char* path) {
  const BuiltDocument input = fullDocument();
  const BuiltDocument output = documentWithMixedShapes();
  const int status = OrvML_IO_WriteOrvInputAndOrvOutput(path, input.handle(), output.handle());
  EXPECT_EQ(status, 0);
}

void makeLegacyFile(const char* path, const std::string& version) {
  RawFile file = RawFile::createMarked(path, version);
  file.textAttribute("/", "ORVML_IO_CREATOR", "tests");
  file.textAttribute("/", "ORVML_MODULE_NAME", "OrvML_OCTREE_MESHER");
  file.textAttribute("/", "ORVML_MODULE_FORMAT_VERSION", "2.1");
  addDocument(file, "/OrvInput");
  file.elements("/OrvInput/Edges", {3}, {LINEAR}, {2}, {0, 1, 1, 2, 2, 0});
  file.elements("/OrvInput/Faces", {1, 1}, {TRIANGLE, QUADRILATERAL}, {3, 4},
                {0, 1, 2, 0, 1, 2, 3});
  file.elements("/OrvInput/Elements", {1}, {TETRAHEDRA}, {4}, {0, 1, 2, 3});
  addAttributes(file, "/OrvInput/Nodes", 4);
  addAttributes(file, "/OrvInput/Edges", 3);
  addAttributes(file, "/OrvInput/Faces", 2);
  addAttributes(file, "/OrvInput/Elements", 1);
  file.doubleVector("/OrvInput/parameters", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 3, 11, 12, 13, 14});
  addInts(file, "/OrvInput/GenericMarkers", 2);
  addDoubles(file, "/OrvInput/GenericAttributes", 2);
  addDocument(file, "/OrvOutput");
}

void ValidFile::make(const char* path) const {
  if (std::strcmp(version, "1.4") == 0) {
    makeCurrentFile(path);
  } else {
    makeLegacyFile(path, version);
  }
}

const std::vector<ValidFile>& validFiles() {
  static const std::vector<ValidFile> files = {{"Current", "1.4"}, {"OneThree", "1.3"},
                                               {"OneTwo", "1.2"},  {"OneOne", "1.1"},
                                               {"OneZero", "1.0"}, {"NoVersion", ""}};
  return files;
}

std::ostream& operator<<(std::ostream& stream, const ValidFile& file) {
  return stream << file.name;
}

}  // namespace orvml_io_tests
