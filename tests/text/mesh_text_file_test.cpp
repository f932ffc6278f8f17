// The file of the text export: when it is made, when it is closed, and what the result says.
#include "orvml_io.h"
#include "support/captured_output.h"
#include "support/decimal_comma.h"
#include "support/document_builder.h"
#include "support/row_name.h"
#include "support/temp_file.h"
#include "text/exported_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <system_error>

namespace {

using namespace orvml_io_tests;
namespace fs = std::filesystem;

BuiltDocument withATriangle() {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({0.5, 0, 1, 0, 0, 1}).cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {0, 1, 2});
  return document;
}

/// How many descriptors of this process refer to a file.
std::ptrdiff_t descriptorsOf(const char* path) {
  const fs::path file = fs::canonical(path);
  const fs::directory_iterator descriptors("/proc/self/fd");
  return std::count_if(begin(descriptors), end(descriptors), [&file](const auto& descriptor) {
    std::error_code goneMeanwhile;
    return fs::read_symlink(descriptor.path(), goneMeanwhile) == file;
  });
}

void fillWith(const char* path, const char* text) { std::ofstream(path) << text; }

TEST(WriteMeshInOrvFormat, GivesOneForAFileInAFolderThatDoesNotExist) {
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("no/such/folder/mesh.txt", withATriangle().handle()), 1);
}

TEST(WriteMeshInOrvFormat, GivesOneForAFolder) {
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("/", withATriangle().handle()), 1);
}

TEST(WriteMeshInOrvFormat, GivesOneForAnEmptyFileName) {
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("", withATriangle().handle()), 1);
}

TEST(WriteMeshInOrvFormat, GivesOneForANullFileName) {
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(nullptr, withATriangle().handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(nullptr, nullptr), 1);
}

TEST(WriteMeshInOrvFormat, GivesOneForAFileThatCannotBeOpenedWhateverTheDocument) {
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("no/such/folder/mesh.txt", nullptr), 1);
}

TEST(WriteMeshInOrvFormat, ReplacesAnExistingFile) {
  const TempFile file;
  fillWith(file.path(), std::string(10000, 'x').c_str());

  ASSERT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), withATriangle().handle()), 0);

  EXPECT_EQ(bytesOf(file.path()), exportedText(withATriangle()));
}

TEST(WriteMeshInOrvFormat, EmptiesAnExistingFileForADocumentWithoutNodes) {
  const TempFile file;
  fillWith(file.path(), "old");

  ASSERT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), BuiltDocument::input(3).handle()), 0);

  EXPECT_EQ(fs::file_size(file.path()), 0U);
}

TEST(WriteMeshInOrvFormat, MakesTheSameFileTwice) {
  const BuiltDocument document = fullDocument();

  EXPECT_EQ(exportedText(document), exportedText(document));
}

// Only opening the file is reported.
TEST(WriteMeshInOrvFormat, GivesZeroWhenTheDiskIsFull) {
  if (!fs::exists("/dev/full")) {
    GTEST_SKIP() << "this system has no device that is always full";
  }
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("/dev/full", withATriangle().handle()), 0);
}

TEST(WriteMeshInOrvFormat, PrintsNothingOnTheStreamsOfTheProcess) {
  const BuiltDocument document = withATriangle();
  const TempFile file;
  CapturedOutput captured;

  OrvML_IO_WriteMeshInOrvFormat(file.path(), document.handle());
  OrvML_IO_WriteMeshInOrvFormat("no/such/folder/mesh.txt", document.handle());

  EXPECT_EQ(captured.stop(), "");
}

struct Content {
  const char* name;
  BuiltDocument (*document)();

  friend std::ostream& operator<<(std::ostream& stream, const Content& content) {
    return stream << content.name;
  }
};

constexpr Content kContentsWithoutNodes[] = {
    {"EmptyDocument", [] { return BuiltDocument::input(3); }},
    {"FacesAlone",
     [] {
       BuiltDocument document = BuiltDocument::input(3);
       document.cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {0, 1, 2});
       return document;
     }},
    {"NodesRemoved",
     [] {
       BuiltDocument document = withATriangle();
       OrvML_IO_DeleteNodes(document.handle());
       return document;
     }},
    {"OutputDocument", [] { return BuiltDocument::output(3); }},
};

constexpr Content kContentsWithNodes[] = {
    {"Triangle", withATriangle},
    {"NodesAlone",
     [] {
       BuiltDocument document = BuiltDocument::input(3);
       document.nodes({0, 0, 0});
       return document;
     }},
    {"ContainerWithoutNodes",
     [] {
       BuiltDocument document = BuiltDocument::input(3);
       document.nodes({});
       return document;
     }},
};

class DocumentWithoutNodeContainer : public ::testing::TestWithParam<Content> {};

// Closing the stream would change the descriptors that the next calls of a program get.
TEST_P(DocumentWithoutNodeContainer, LeavesAnEmptyFileOpen) {
  const TempFile file;
  const BuiltDocument document = GetParam().document();

  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), document.handle()), 0);

  EXPECT_EQ(fs::file_size(file.path()), 0U);
  EXPECT_EQ(descriptorsOf(file.path()), 1);
}

INSTANTIATE_TEST_SUITE_P(Contents, DocumentWithoutNodeContainer,
                         ::testing::ValuesIn(kContentsWithoutNodes), RowName());

TEST(WriteMeshInOrvFormat, TakesANullHandleForADocumentWithoutNodes) {
  const TempFile file;

  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), nullptr), 0);

  EXPECT_EQ(fs::file_size(file.path()), 0U);
  EXPECT_EQ(descriptorsOf(file.path()), 1);
}

class DocumentWithNodeContainer : public ::testing::TestWithParam<Content> {};

TEST_P(DocumentWithNodeContainer, LeavesNoFileOpen) {
  const TempFile file;
  const BuiltDocument document = GetParam().document();

  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), document.handle()), 0);

  EXPECT_EQ(descriptorsOf(file.path()), 0);
}

INSTANTIATE_TEST_SUITE_P(Contents, DocumentWithNodeContainer,
                         ::testing::ValuesIn(kContentsWithNodes), RowName());

TEST(WriteMeshInOrvFormat, PrintsTheDecimalPointOfTheLocale) {
  const DecimalComma comma;
  ASSERT_TRUE(comma.isSet());

  EXPECT_NE(exportedText(withATriangle()).find("\n1 0,500000 0,000000 1,000000\n"),
            std::string::npos);
}

}  // namespace
