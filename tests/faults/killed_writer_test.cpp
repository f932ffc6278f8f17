// A writer that is killed leaves a file that readers take for no exchange file, or one that is
// complete: HDF5 writes what makes a file readable last. A part of a document never comes back.
#include "faults/child.h"
#include "faults/finding.h"
#include "faults/outcome.h"
#include "faults/transfers.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>

namespace orvml_io_tests {
namespace {

constexpr char kNothingLeft[] = "no call is left";

/// Tells what a file holds; nothing when a reader takes it for no exchange file.
using Describe = std::string (*)(const char* path);

std::string everythingIn(const char* path) { return readInput(path).documents; }

/// Writes a document in a child that is killed at the n-th write. Returns what is read afterwards,
/// in another child; kNothingLeft when the writer needs fewer calls.
std::string readAfterKilling(const BuiltDocument& document, int n, Mishap mishap,
                             Describe describeFile = everythingIn) {
  const TempFile file;
  const ChildEnd writer = runInChild([&] {
    const FailingSystemCall failure(SystemCall::write, n, mishap);
    return std::to_string(OrvML_IO_WriteOrvInput(file.path(), document.handle()));
  });
  if (writer.signal != SIGKILL) {
    EXPECT_EQ(writer.text, "0");
    return kNothingLeft;
  }
  const ChildEnd reader = runInChild([&] { return describeFile(file.path()); });
  EXPECT_EQ(reader.signal, 0) << reader.text;
  return reader.text;
}

std::string wholeOf(const BuiltDocument& document) {
  const TempFile file;
  EXPECT_EQ(OrvML_IO_WriteOrvInput(file.path(), document.handle()), 0);
  return everythingIn(file.path());
}

int numberOfWrites(const BuiltDocument& document) {
  const TempFile file;
  const FailingSystemCall counter(SystemCall::write);
  EXPECT_EQ(OrvML_IO_WriteOrvInput(file.path(), document.handle()), 0);
  return counter.calls();
}

BuiltDocument withManyAttributes() {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 0, 0, 1, 1, 1});
  for (int i = 0; i < 400; ++i) {
    document.attribute(ORVML_NODES, ("attribute " + std::to_string(i)).c_str(),
                       std::vector<double>{0.5 * i, 1});
  }
  return document;
}

constexpr int kLargeWriters = kFailureStep > 1 ? 2 : 5;
constexpr int kManyNodes = 100 * 1000 * 1000 / 24;  // of 24 bytes each: 100 MB

BuiltDocument withManyNodes() {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes(std::vector<double>(std::size_t{kManyNodes} * 3, 0.25))
      .attribute(ORVML_NODES, "size", std::vector<double>(1000, 1.0));
  return document;
}

/// Tells whether a file holds the document of many nodes: "whole", "a part", or nothing.
std::string manyNodesIn(const char* path) {
  Handle input;
  (void)OrvML_IO_ReadOrvInput(path, input.out());
  if (input.get() == nullptr) {
    return "";
  }
  double* coordinates = nullptr;
  (void)OrvML_IO_GetNodesCoords(input.get(), coordinates);
  const bool isWhole = OrvML_IO_GetNumberOfNodes(input.get()) == kManyNodes &&
                       coordinates != nullptr &&
                       std::all_of(coordinates, coordinates + std::size_t{kManyNodes} * 3,
                                   [](double value) { return value == 0.25; }) &&
                       OrvML_IO_GetAttribute(input.get(), "size", ORVML_NODES) != nullptr;
  return isWhole ? "whole" : "a part";
}

class KilledWriter : public ::testing::TestWithParam<Mishap> {};

TEST_P(KilledWriter, LeavesNothingOrAWholeSmallDocument) {
  const BuiltDocument document = fullDocument();
  const std::string whole = wholeOf(document);
  int n = 1;
  for (std::string found; found != kNothingLeft; n += kFailureStep) {
    found = readAfterKilling(document, n, GetParam());
    EXPECT_TRUE(found.empty() || found == whole || found == kNothingLeft)
        << "write " << n << ": " << lostParts(whole, found);
  }

  RecordProperty("failures", n - 1);
  EXPECT_GT(n, 10);
}

// The first writes, the last ones, and some between.
TEST_P(KilledWriter, LeavesNothingOrAWholeDocumentOfManyAttributes) {
  const BuiltDocument document = withManyAttributes();
  const std::string whole = wholeOf(document);
  const int writes = numberOfWrites(document);
  constexpr int kEnds = 20;
  const int step = std::max(1, writes / 60);
  RecordProperty("writes", writes);
  for (int n = 1; n <= writes; n += n < kEnds || n > writes - kEnds ? kFailureStep : step) {
    const std::string found = readAfterKilling(document, n, GetParam());
    EXPECT_TRUE(found.empty() || found == whole)
        << "write " << n << " of " << writes << ": " << lostParts(whole, found);
  }
}

TEST_P(KilledWriter, LeavesNothingOrAWholeLargeDocument) {
  const BuiltDocument document = withManyNodes();
  const int writes = numberOfWrites(document);
  RecordProperty("writes", writes);
  std::mt19937 random(2026);
  for (int i = 0; i < kLargeWriters; ++i) {
    const int n = 1 + static_cast<int>(random() % static_cast<unsigned>(writes));
    const std::string found = readAfterKilling(document, n, GetParam(), manyNodesIn);
    EXPECT_TRUE(found.empty() || found == "whole") << "write " << n << " of " << writes;
  }
}

INSTANTIATE_TEST_SUITE_P(Kills, KilledWriter,
                         ::testing::Values(Mishap::killBefore, Mishap::killInside),
                         [](const ::testing::TestParamInfo<Mishap>& kill) {
                           return std::string(nameOf(kill.param));
                         });

}  // namespace
}  // namespace orvml_io_tests
