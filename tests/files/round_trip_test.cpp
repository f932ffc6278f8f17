// What is written comes back, up to what files do not keep.
#include "files/described_document.h"
#include "files/exchange_file_fixture.h"
#include "files/random_document.h"

#include <limits>
#include <numeric>

namespace orvml_io_tests {
namespace {

/// Readers report documents without nodes, and without scalar parameters, as partly read.
int expectedReadResult(void* document) {
  const bool isPartly =
      OrvML_IO_GetNumberOfNodes(document) == 0 || OrvML_IO_GetNumberOfParameters(document) == 0;
  return isPartly ? 1 : 0;
}

class RoundTrip : public ExchangeFileTest {
 protected:
  void expectSameAsInput(const BuiltDocument& document) {
    ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 0);
    const ReadDocument back = readInput(path());
    EXPECT_EQ(back.result, expectedReadResult(document.handle()));
    ASSERT_NE(back.handle(), nullptr);
    EXPECT_EQ(describe(back.handle()), describe(document.handle()));
  }
};

TEST_F(RoundTrip, FullDocument) { expectSameAsInput(fullDocument()); }

TEST_F(RoundTrip, MixedShapes) { expectSameAsInput(documentWithMixedShapes()); }

TEST_F(RoundTrip, EmptyDocument) { expectSameAsInput(BuiltDocument::input(2)); }

TEST_F(RoundTrip, OutputDocument) {
  const BuiltDocument document = fullDocument();
  ASSERT_EQ(OrvML_IO_WriteOrvOutput(path(), document.handle()), 0);

  const ReadDocument back = readOutput(path());

  EXPECT_EQ(back.result, 0);
  EXPECT_EQ(describe(back.handle()), describe(document.handle()));
}

TEST_F(RoundTrip, ExtremeNumbers) {
  using DoubleLimits = std::numeric_limits<double>;
  using IntLimits = std::numeric_limits<int>;
  const std::vector<double> doubles = {DoubleLimits::max(),      DoubleLimits::lowest(),
                                       DoubleLimits::min(),      DoubleLimits::denorm_min(),
                                       DoubleLimits::infinity(), -0.0};
  BuiltDocument document = BuiltDocument::input(3);
  document.identification("m", "1", "c").nodes(doubles);
  document.scalar("max", DoubleLimits::max()).vector("d", doubles);
  document.vector("i", std::vector<int>{IntLimits::max(), IntLimits::min(), 0});
  document.attribute(ORVML_NODES, "d", doubles);
  document.cells(ORVML_EDGES, {LINEAR}, {2}, {1}, {IntLimits::max(), IntLimits::min()});

  expectSameAsInput(document);
}

TEST_F(RoundTrip, ManyValues) {
  constexpr int kNumberOfNodes = 20000;
  constexpr int kNumberOfCells = 30000;
  std::vector<double> coordinates(kNumberOfNodes * 3);
  std::iota(coordinates.begin(), coordinates.end(), 0.25);
  std::vector<int> connectivities(kNumberOfCells * 4);
  std::iota(connectivities.begin(), connectivities.end(), -5);
  BuiltDocument document = BuiltDocument::input(3);
  document.identification("m", "1", "c").nodes(coordinates);
  document.cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {kNumberOfCells}, connectivities);
  document.attribute(ORVML_ELEMENTS, "colour", std::vector<int>(kNumberOfCells, 3));
  document.scalar("size", 1.0);

  expectSameAsInput(document);
}

TEST_F(RoundTrip, ManyNames) {
  BuiltDocument document = documentWithMixedShapes();
  for (int i = 0; i < 200; ++i) {
    const std::string name = "name " + std::to_string(i);
    document.scalar(name.c_str(), i).vector(name.c_str(), std::vector<int>{i});
    document.attribute(ORVML_FACES, name.c_str(), std::vector<double>{i + 0.5});
  }

  expectSameAsInput(document);
}

class RandomRoundTrip : public RoundTrip, public ::testing::WithParamInterface<unsigned> {};

TEST_P(RandomRoundTrip, KeepsTheDocument) { expectSameAsInput(randomDocument(GetParam())); }

TEST_P(RandomRoundTrip, LeavesTheWrittenDocumentAsItWas) {
  const BuiltDocument document = randomDocument(GetParam());
  const std::string before = describe(document.handle());

  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 0);

  EXPECT_EQ(describe(document.handle()), before);
}

TEST_P(RandomRoundTrip, KeepsBothDocumentsOfAFile) {
  const BuiltDocument input = randomDocument(GetParam());
  const BuiltDocument output = randomDocument(GetParam() + 1000);
  // A file has one identification: give both the same.
  for (void* document : {input.handle(), output.handle()}) {
    OrvML_IO_SetOrvMeshLibraryModuleName("m", document);
    OrvML_IO_SetOrvMeshLibraryModuleFormatVersion("1", document);
    OrvML_IO_SetOrvMeshLibraryIOCreator("c", document);
  }
  writtenBoth(input, output).close();

  const ReadDocument backIn = readInput(path());
  const ReadDocument backOut = readOutput(path());

  EXPECT_EQ(describe(backIn.handle()), describe(input.handle()));
  EXPECT_EQ(describe(backOut.handle()), describe(output.handle()));
}

TEST_P(RandomRoundTrip, WritesTheSameFileAgainFromWhatWasRead) {
  const BuiltDocument document = randomDocument(GetParam());
  written(document).close();
  const ReadDocument first = readInput(path());
  const TempFile copy;
  ASSERT_EQ(OrvML_IO_WriteOrvInput(copy.path(), first.handle()), 0);
  const ReadDocument second = readInput(copy.path());
  const TempFile copyOfCopy;
  ASSERT_EQ(OrvML_IO_WriteOrvInput(copyOfCopy.path(), second.handle()), 0);

  EXPECT_EQ(describe(second.handle()), describe(document.handle()));
  EXPECT_EQ(allPaths(RawFile::open(copyOfCopy.path())), allPaths(RawFile::open(copy.path())));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRoundTrip, ::testing::Range(1U, 41U));

// A random document that leaves most things out would prove little.
TEST(RandomDocument, OfTheSeedsInUseHasEveryKindOfContentOften) {
  int nodes = 0;
  int cells = 0;
  int scalars = 0;
  int vectors = 0;
  for (unsigned seed = 1; seed < 41; ++seed) {
    const BuiltDocument document = randomDocument(seed);
    nodes += OrvML_IO_GetNumberOfNodes(document.handle()) > 0 ? 1 : 0;
    cells += OrvML_IO_GetNumberOfElements(document.handle()) > 0 ? 1 : 0;
    scalars += OrvML_IO_GetNumberOfParameters(document.handle()) > 0 ? 1 : 0;
    vectors += OrvML_IO_GetNumberOfParametersVector(document.handle()) > 0 ? 1 : 0;
  }
  EXPECT_GE(nodes, 20);
  EXPECT_GE(cells, 20);
  EXPECT_GE(scalars, 20);
  EXPECT_GE(vectors, 20);
}

class LostContent : public ExchangeFileTest {
 protected:
  BuiltDocument document_ = documentWithMixedShapes();
};

TEST_F(LostContent, ContainerWhoseGroupsHoldNoCellsIsMissingAfterwards) {
  document_.cells(ORVML_EDGES, {LINEAR}, {2}, {0}, {0, 1});
  document_.attribute(ORVML_EDGES, "a", std::vector<int>{1});
  written(document_).close();

  const ReadDocument back = readInput(path());

  EXPECT_EQ(back.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfElementTypesInEdges(back.handle()), 0);
  const int value = 0;
  EXPECT_EQ(OrvML_IO_SetAttributesEntitiesVector(back.handle(), ORVML_EDGES, "a", &value, 1, false),
            1)
      << "without a container there is nothing to attach to";
}

TEST_F(LostContent, ContainerWithoutTypeGroupsIsMissingAfterwards) {
  document_.cells(ORVML_ELEMENTS, {}, {}, {}, {0});
  written(document_).close();

  const ReadDocument back = readInput(path());

  EXPECT_EQ(back.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfElements(back.handle()), 0);
}

TEST_F(LostContent, CallbacksAreNullAfterwards) {
  int anything = 0;
  void* handle = document_.handle();
  OrvML_IO_SetCallbackStatus(handle, &anything, &anything);
  written(document_).close();
  ReadDocument back = readInput(path());
  void* first = &anything;
  void* second = &anything;

  OrvML_IO_GetCallbackStatus(back.document.out(), first, second);

  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(second, nullptr);
}

}  // namespace
}  // namespace orvml_io_tests
