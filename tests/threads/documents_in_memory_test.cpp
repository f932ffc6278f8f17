// Documents that different threads use at the same time, without a lock. What is wrong with that
// only ThreadSanitizer sees reliably: scripts/test runs this program with it.
#include "files/described_document.h"
#include "fuzz/harness/whole_interface.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/temp_file.h"
#include "threads/together.h"

#include <gtest/gtest.h>

#include <deque>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

constexpr int kRounds = 10;
constexpr unsigned kChanges = 16;  // the ways in which useWithChange() empties a document

/// A full document that no other thread has: one parameter and one attribute hold its number.
BuiltDocument documentOfThread(int thread) {
  BuiltDocument document = fullDocument();
  document.scalar("thread", thread)
      .vector("threads", std::vector<int>{thread, thread})
      .attribute(ORVML_NODES, "thread", std::vector<int>(5, thread), true);
  return document;
}

std::string textIn(const TempFile& file) {
  std::ifstream stream(file.path());
  return {std::istreambuf_iterator<char>(stream), {}};
}

class DocumentsInMemory : public ::testing::TestWithParam<int> {
 protected:
  [[nodiscard]] int threads() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Threads, DocumentsInMemory, ::testing::Values(2, 3, 8),
                         ::testing::PrintToStringParamName());

TEST_P(DocumentsInMemory, AreFilledAskedAndDeletedWithoutALock) {
  runTogether(threads(), [](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      const BuiltDocument document = documentOfThread(thread);

      useWithoutChange(document.handle());

      EXPECT_EQ(scalarOf(document.handle(), "thread"), thread);
      EXPECT_EQ(intParameterOf(document.handle(), "threads"), (std::vector<int>{thread, thread}));
      EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "thread"),
                std::vector<int>(5, thread));
    }
  });
}

TEST_P(DocumentsInMemory, AreClonedAndComparedWithoutALock) {
  runTogether(threads(), [](int thread) {
    const BuiltDocument document = documentOfThread(thread);
    for (int round = 0; round < kRounds; ++round) {
      const Handle input(OrvML_IO_NewOrvInputHandle(document.handle()));
      const Handle output(OrvML_IO_NewOrvOutputHandle(input.get()));

      requireEqual(document.handle(), input.get());
      requireEqual(input.get(), output.get());

      EXPECT_EQ(describe(output.get()), describe(document.handle()));
    }
  });
}

TEST_P(DocumentsInMemory, AreChangedAndClearedWithoutALock) {
  runTogether(threads(), [](int thread) {
    const BuiltDocument document = documentOfThread(thread);
    for (unsigned choice = 0; choice < kChanges; ++choice) {
      Handle clone(OrvML_IO_NewOrvInputHandle(document.handle()));

      useWithChange(clone.out(), choice);
    }
    EXPECT_EQ(scalarOf(document.handle(), "thread"), thread);
  });
}

TEST_P(DocumentsInMemory, AreMadeWithOneShapeAndLabelledWithoutALock) {
  runTogether(threads(), [](int thread) {
    const double coordinates[] = {0, 0, 1, 0, 0, 1};
    int nodes[] = {0, 1, 2};
    ElemType edgeShapes[] = {LINEAR};
    int nodesPerEdge[] = {2};
    int edgesPerGroup[] = {1};
    Handle document(OrvML_IO_NewOrvInputHandleWithFaces("module", "1", "creator", 2, 3, coordinates,
                                                        1, nodes, TRIANGLE, 3));
    for (int round = 0; round < kRounds; ++round) {
      OrvML_IO_SetOrvMeshLibraryModuleName(std::to_string(thread).c_str(), document.get());
      OrvML_IO_SetEdges(document.get(), 1, nodes, 1, edgeShapes, nodesPerEdge, edgesPerGroup);
      OrvML_IO_SetCallbackStatus(document.out(), &nodes[0], &nodes[1]);
      OrvML_IO_DeleteElements(document.get());
    }

    void* first = nullptr;
    void* second = nullptr;
    OrvML_IO_GetCallbackStatus(document.get(), first, second);

    EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.get()), std::to_string(thread));
    EXPECT_EQ(first, &nodes[0]);
    EXPECT_EQ(second, &nodes[1]);
    OrvML_IO_DeleteEdges(document.get());
  });
}

TEST_P(DocumentsInMemory, ArePrintedToDistinctFilesWithoutALock) {
  const TempFile expected;
  ASSERT_EQ(OrvML_IO_WriteMeshInOrvFormat(expected.path(), fullDocument().handle()), 0);
  const std::deque<TempFile> files(static_cast<std::size_t>(threads()));

  runTogether(threads(), [&files](int thread) {
    const BuiltDocument document = documentOfThread(thread);
    for (int round = 0; round < kRounds; ++round) {
      const char* path = files[static_cast<std::size_t>(thread)].path();
      EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(path, document.handle()), 0);
    }
  });

  for (const TempFile& file : files) {
    EXPECT_EQ(textIn(file), textIn(expected));
  }
}

// The setters adopt the caller's arrays. Two documents may have adopted the same ones: the library
// only reads them.
TEST_P(DocumentsInMemory, MayShareTheArraysOfTheCaller) {
  const std::vector<double> coordinates = {0, 0, 1, 0, 0, 1};
  std::vector<int> nodes = {0, 1, 2};
  std::vector<ElemType> shapes = {TRIANGLE};
  std::vector<int> nodesPerCell = {3};
  std::vector<int> cells = {1};

  runTogether(threads(), [&](int /*thread*/) {
    for (int round = 0; round < kRounds; ++round) {
      const Handle document(
          OrvML_IO_NewOrvInputHandleWithNodes("m", "1", "c", 2, 3, coordinates.data()));
      OrvML_IO_SetFaces(document.get(), 1, nodes.data(), 1, shapes.data(), nodesPerCell.data(),
                        cells.data());
      const Handle clone(OrvML_IO_NewOrvOutputHandle(document.get()));

      useWithoutChange(document.get());
      requireEqual(document.get(), clone.get());
    }
  });

  EXPECT_EQ(nodes, (std::vector<int>{0, 1, 2}));
}

// A clone shares nothing with its source: each may belong to another thread.
TEST_P(DocumentsInMemory, AndTheirClonesAreIndependent) {
  Handle source(OrvML_IO_NewOrvInputHandle(documentOfThread(0).handle()));
  std::deque<Handle> clones;
  for (int thread = 1; thread < threads(); ++thread) {
    clones.emplace_back(OrvML_IO_NewOrvInputHandle(source.get()));
  }

  runTogether(threads(), [&source, &clones](int thread) {
    if (thread == 0) {
      useWithChange(source.out(), 1);
      OrvML_IO_DeleteOrvInputHandle(source.out());
    } else {
      Handle& clone = clones[static_cast<std::size_t>(thread) - 1];
      useWithoutChange(clone.get());
      useWithChange(clone.out(), static_cast<unsigned>(thread));
    }
  });

  EXPECT_EQ(source.get(), nullptr);
}

TEST_P(DocumentsInMemory, AreNotNeededForTheConstants) {
  runTogether(threads(), [](int /*thread*/) {
    EXPECT_STREQ(OrvML_IO_GetVersion(), "1.10.0");
    EXPECT_STREQ(OrvML_IO_GetFormatVersion(), "1.4");
    EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(nullptr), "1.4");
    EXPECT_EQ(OrvML_IO_GetFormatVersion_Number("1.4"), 1.4);
    EXPECT_STREQ(ElemTypeNames[TRIANGLE], "Triangle");
  });
}

}  // namespace
}  // namespace orvml_io_tests
