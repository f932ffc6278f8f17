#include "hostile/reading.h"

#include "cpp_files/reading_through_cpp.h"
#include "hostile/every_accessor.h"
#include "support/captured_output.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace orvml_io_tests {

namespace {

using Reader = int (*)(const char* path, void*& handle);

void expectStated(int status) { EXPECT_TRUE(status == 0 || status == 1) << status; }

/// Writes a document and, when that succeeds, expects its counts to come back.
void rewrite(void* document) {
  const TempFile temp;
  const int written = OrvML_IO_WriteOrvInput(temp.path(), document);
  expectStated(written);
  if (written != 0) {
    return;
  }
  Handle copy;
  (void)OrvML_IO_ReadOrvInput(temp.path(), copy.out());
  ASSERT_NE(copy.get(), nullptr);
  EXPECT_EQ(countsOf(copy.get()), countsOf(document));
}

using Clone = void* (*)(void* source);
using Compare = bool (*)(void* first, void* second);

/// The functions of one kind of document.
struct Kind {
  Reader read;
  Clone clone;
  Compare areEqual;
};

constexpr Kind kInput = {OrvML_IO_ReadOrvInput, OrvML_IO_NewOrvInputHandle,
                         OrvML_IO_OrvInputsAreEqual};
constexpr Kind kOutput = {OrvML_IO_ReadOrvOutput, OrvML_IO_NewOrvOutputHandle,
                          OrvML_IO_OrvOutputsAreEqual};

/// Clones a document, compares the two both ways, and uses the clone when the document is gone.
void cloneAndCompare(const Kind& kind, Handle document) {
  Handle copy(kind.clone(document.get()));
  ASSERT_NE(copy.get(), nullptr);
  EXPECT_EQ(countsOf(copy.get()), countsOf(document.get()));
  (void)kind.areEqual(document.get(), copy.get());
  (void)kind.areEqual(copy.get(), document.get());
  EXPECT_TRUE(kind.areEqual(document.get(), document.get()));
  { const Handle released(std::move(document)); }
  callEveryAccessor(copy.get());
}

void print(void* document) {
  const TempFile text;
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(text.path(), document), 0);
}

/// Hands a document to every exported function that takes one, and deletes it.
void use(const Kind& kind, Handle document) {
  const int dimension = OrvML_IO_GetMeshDimension(document.get());
  EXPECT_TRUE(dimension == 2 || dimension == 3) << dimension;
  callEveryAccessor(document.get());
  rewrite(document.get());
  print(document.get());
  cloneAndCompare(kind, std::move(document));
}

Reading readWith(const Kind& kind, const char* path) {
  Handle document;
  Reading reading;
  reading.status = kind.read(path, document.out());
  expectStated(reading.status);
  if (document.get() != nullptr) {
    reading.hasDocument = true;
    reading.counts = countsOf(document.get());
    use(kind, std::move(document));
  }
  return reading;
}

ReadingOfBoth readBoth(const char* path) {
  Handle input;
  Handle output;
  const int status = OrvML_IO_ReadOrvInputAndOrvOutput(path, input.out(), output.out());
  expectStated(status);
  return {status, input.get() != nullptr, output.get() != nullptr};
}

/// The reader of both documents ends with the first failure.
void expectAgreement(const Readings& readings) {
  const bool reachesOutput = readings.input.status == 0;
  EXPECT_EQ(readings.both.status, reachesOutput ? readings.output.status : readings.input.status);
  EXPECT_EQ(readings.both.hasInput, readings.input.hasDocument);
  EXPECT_EQ(readings.both.hasOutput, reachesOutput && readings.output.hasDocument);
}

/// Leaves the file in the folder that the environment names, for the tests of other languages.
void keepForOthers(const char* path) {
  static int number = 0;
  if (const char* folder = std::getenv("ORVML_IO_TESTS_KEEP"); folder != nullptr) {
    std::error_code ignored;  // some tests read what is no file
    std::filesystem::copy_file(
        path, std::filesystem::path(folder) / (std::to_string(number++) + ".h5"), ignored);
  }
}

}  // namespace

Readings readInEveryWay(const char* path) {
  keepForOthers(path);
  const OpenIds ids;
  Readings readings;
  readings.input = readWith(kInput, path);
  readings.output = readWith(kOutput, path);
  readings.both = readBoth(path);
  OpenIds::closeAll();  // what the flat readers leave open
  readInEveryWayOfCpp(path, readings);
  return readings;
}

Readings readInSilence(const char* path) {
  CapturedOutput captured;
  const Readings readings = readInEveryWay(path);
  EXPECT_EQ(captured.stop(), "");
  expectAgreement(readings);
  return readings;
}

Reading readInputInSilence(const char* path) {
  keepForOthers(path);
  const OpenIds ids;
  CapturedOutput captured;
  const Reading reading = readWith(kInput, path);
  EXPECT_EQ(captured.stop(), "");
  return reading;
}

}  // namespace orvml_io_tests
