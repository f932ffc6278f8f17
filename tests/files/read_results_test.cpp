// What the readers of whole files answer.
#include "files/child_process.h"
#include "files/exchange_file_fixture.h"
#include "files/failing_call.h"

#include <sys/stat.h>

#include <fstream>

namespace orvml_io_tests {
namespace {

/// What the reader of both documents gave.
struct ReadBoth {
  int result = 0;
  Handle input;
  Handle output;
};

ReadBoth readBoth(const char* path) {
  ReadBoth both;
  both.result = OrvML_IO_ReadOrvInputAndOrvOutput(path, both.input.out(), both.output.out());
  return both;
}

class ReadResult : public ExchangeFileTest {
 protected:
  void expectZeroAndNoDocuments(const char* file) {
    const ReadDocument input = readInput(file);
    const ReadDocument output = readOutput(file);
    const ReadBoth both = readBoth(file);
    EXPECT_EQ(input.result, 0) << file;
    EXPECT_EQ(output.result, 0) << file;
    EXPECT_EQ(both.result, 0) << file;
    EXPECT_EQ(input.handle(), nullptr) << file;
    EXPECT_EQ(output.handle(), nullptr) << file;
    EXPECT_EQ(both.input.get(), nullptr) << file;
    EXPECT_EQ(both.output.get(), nullptr) << file;
  }

  /// Makes a file with both documents, for tests to spoil.
  RawFile smallBoth() {
    RawFile file = smallInput();
    addSmallDocument(file, "/OrvOutput");
    return file;
  }
};

TEST_F(ReadResult, IsOneForANullFileName) {
  EXPECT_EQ(readInput(nullptr).result, 1);
  EXPECT_EQ(readOutput(nullptr).result, 1);
  EXPECT_EQ(readBoth(nullptr).result, 1);
}

TEST_F(ReadResult, IsZeroForAMissingFile) { expectZeroAndNoDocuments("no/such/file.h5"); }

TEST_F(ReadResult, IsZeroForAFolder) { expectZeroAndNoDocuments("/"); }

TEST_F(ReadResult, IsZeroForAnEmptyPath) { expectZeroAndNoDocuments(""); }

TEST_F(ReadResult, IsZeroForAnEmptyFile) {
  std::ofstream(path()).close();

  expectZeroAndNoDocuments(path());
}

TEST_F(ReadResult, IsZeroForAFileThatIsNotHdf5) {
  std::ofstream(path()) << std::string(5000, 'x');

  expectZeroAndNoDocuments(path());
}

TEST_F(ReadResult, IsZeroForAnHdf5FileWithoutTheMarker) {
  RawFile file = smallInput();
  file.removeAttribute("/", "FORMAT");
  file.close();

  expectZeroAndNoDocuments(path());
}

TEST_F(ReadResult, IsZeroForAFileWithoutTheRightToRead) {
  smallInput().close();
  ASSERT_EQ(::chmod(path(), 0), 0);
  constexpr int kNotObservable = 99;

  const int result = resultInChild([&] {
    if (!becomeOrdinaryUser()) {
      return kNotObservable;
    }
    void* handle = nullptr;
    const int read = OrvML_IO_ReadOrvInput(path(), handle);
    return handle == nullptr ? read : 50;
  });

  if (result == kNotObservable) {
    GTEST_SKIP() << "the super-user may read everything";
  }
  EXPECT_EQ(result, 0);
}

TEST_F(ReadResult, IsOneForAHandleInUse) {
  smallInput().close();
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* handle = inUse.get();

  EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), handle), 1);
  EXPECT_EQ(OrvML_IO_ReadOrvOutput(path(), handle), 1);

  EXPECT_EQ(handle, inUse.get());
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle), 0);
}

TEST_F(ReadResult, IsOneForAHandleInUseEvenWithoutAFile) {
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* handle = inUse.get();

  EXPECT_EQ(OrvML_IO_ReadOrvInput("no/such/file.h5", handle), 1);
  EXPECT_EQ(OrvML_IO_ReadOrvOutput("no/such/file.h5", handle), 1);
}

TEST_F(ReadResult, OfBothIsMinusOneForAnInputHandleInUse) {
  smallBoth().close();
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* input = inUse.get();
  void* output = nullptr;

  EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path(), input, output), -1);

  EXPECT_EQ(input, inUse.get());
  EXPECT_EQ(output, nullptr);
}

TEST_F(ReadResult, OfBothIsMinusOneForAnOutputHandleInUse) {
  smallBoth().close();
  const Handle inUse(OrvML_IO_NewOrvOutputHandle());
  void* input = nullptr;
  void* output = inUse.get();

  EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path(), input, output), -1);

  EXPECT_EQ(input, nullptr);
  EXPECT_EQ(output, inUse.get());
}

TEST_F(ReadResult, OfBothIsOneForANullFileNameWhateverTheHandles) {
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* input = inUse.get();
  void* output = inUse.get();

  EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(nullptr, input, output), 1);
}

TEST_F(ReadResult, InputIsOneWithoutADocumentWhenTheFileHoldsOnlyAnOutput) {
  smallOutput().close();

  const ReadDocument input = readInput(path());

  EXPECT_EQ(input.result, 1);
  EXPECT_EQ(input.handle(), nullptr);
}

TEST_F(ReadResult, OutputIsZeroWithoutADocumentWhenTheFileHoldsOnlyAnInput) {
  smallInput().close();

  const ReadDocument output = readOutput(path());

  EXPECT_EQ(output.result, 0);
  EXPECT_EQ(output.handle(), nullptr);
}

TEST_F(ReadResult, OfBothIsOneWithoutDocumentsWhenTheFileHoldsOnlyAnOutput) {
  smallOutput().close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 1);
  EXPECT_EQ(both.input.get(), nullptr);
  EXPECT_EQ(both.output.get(), nullptr);
}

TEST_F(ReadResult, OfBothIsZeroWithTheInputAloneWhenTheFileHoldsNoOutput) {
  smallInput().close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(both.input.get()), 3);
  EXPECT_EQ(both.output.get(), nullptr);
}

TEST_F(ReadResult, MarkedFileWithoutDocumentsHoldsNeither) {
  ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), nullptr, nullptr), 0);

  EXPECT_EQ(readInput(path()).result, 1);
  EXPECT_EQ(readOutput(path()).result, 0);
  EXPECT_EQ(readBoth(path()).result, 1);
}

TEST_F(ReadResult, DatasetAtThePlaceOfADocumentIsNoDocument) {
  RawFile file = RawFile::createMarked(path());
  file.intVector("/OrvInput", {1});

  const ReadDocument input = read(file);

  EXPECT_EQ(input.result, 1);
  EXPECT_EQ(input.handle(), nullptr);
}

TEST_F(ReadResult, OfBothIsZeroWithEachDocumentInItsHandle) {
  const BuiltDocument input = fullDocument();
  const BuiltDocument output = documentWithMixedShapes();
  writtenBoth(input, output).close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfElements(both.input.get()), 2);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(both.input.get()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(both.output.get()), 5);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(both.output.get()), 2);
}

TEST_F(ReadResult, EachReaderTakesItsOwnDocumentOfAFileWithBoth) {
  writtenBoth(fullDocument(), documentWithMixedShapes()).close();

  const ReadDocument input = readInput(path());
  const ReadDocument output = readOutput(path());

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(input.handle()), 5);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(output.handle()), 7);
}

TEST_F(ReadResult, OfBothIsOneWithAPartOfTheInputWhenAStepOfItFailed) {
  RawFile file = smallBoth();
  file.remove("/OrvInput/parameters");
  file.close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(both.input.get()), 3);
  EXPECT_EQ(both.output.get(), nullptr) << "the output is not read";
}

TEST_F(ReadResult, OfBothIsOneWithoutDocumentsWhenTheInputHasNoDimension) {
  RawFile file = smallBoth();
  file.remove("/OrvInput/dimension");
  file.close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 1);
  EXPECT_EQ(both.input.get(), nullptr);
  EXPECT_EQ(both.output.get(), nullptr);
}

TEST_F(ReadResult, OfBothIsOneWithBothWhenAStepOfTheOutputFailed) {
  RawFile file = smallBoth();
  file.remove("/OrvOutput/parameters");
  file.close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 1);
  EXPECT_NE(both.input.get(), nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(both.output.get()), 3);
}

TEST_F(ReadResult, OfBothIsZeroWithTheInputAloneWhenTheOutputHasDimensionOne) {
  RawFile file = smallBoth();
  replaceInts(file, "/OrvOutput/dimension", {1});
  file.close();

  const ReadBoth both = readBoth(path());

  EXPECT_EQ(both.result, 0);
  EXPECT_NE(both.input.get(), nullptr);
  EXPECT_EQ(both.output.get(), nullptr);
}

TEST_F(ReadResult, IsOneWithADocumentWhenItWasWrittenWithoutNodes) {
  BuiltDocument document = BuiltDocument::input(3);
  document.scalar("size", 0.5);
  written(document).close();

  const ReadDocument back = readInput(path());

  EXPECT_EQ(back.result, 1);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(back.handle()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(back.handle()), 0);
  EXPECT_EQ(scalarOf(back.handle(), "size"), 0.5);
}

TEST_F(ReadResult, IsOneWithADocumentWhenItWasWrittenWithoutScalarParameters) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 1, 2}).vector("v", std::vector<int>{1});
  written(document).close();

  const ReadDocument back = readInput(path());

  EXPECT_EQ(back.result, 1);
  EXPECT_EQ(coordinatesOf(back.handle()), (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(intParameterOf(back.handle(), "v"), std::vector<int>{1});
}

TEST_F(ReadResult, OutputIsOneWithADocumentWhenItWasWrittenWithoutNodes) {
  BuiltDocument document = BuiltDocument::output(2);
  document.scalar("size", 0.5);
  writtenOutput(document).close();

  const ReadDocument back = readOutput(path());

  EXPECT_EQ(back.result, 1);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(back.handle()), 2);
}

TEST_F(ReadResult, IsZeroForAFileWithoutTheMarkerThatCannotBeClosed) {
  RawFile::create(path()).close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  expectZeroAndNoDocuments(path());

  EXPECT_EQ(failure.hits(), 3);
}

TEST_F(ReadResult, OfTheInputIsOneWhenClosingFails) {
  smallInput().close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  const ReadDocument input = readInput(path());

  EXPECT_EQ(input.result, 1);
  EXPECT_NE(input.handle(), nullptr);
  EXPECT_EQ(failure.hits(), 1);
}

TEST_F(ReadResult, OfTheOutputIsThatOfClosingWhenItFails) {
  smallOutput().close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  const ReadDocument output = readOutput(path());

  EXPECT_EQ(output.result, -7);
  EXPECT_NE(output.handle(), nullptr);
}

TEST_F(ReadResult, OfTheOutputIsOneWhenAStepAndClosingFail) {
  RawFile file = smallOutput();
  file.remove("/OrvOutput/parameters");
  file.close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  EXPECT_EQ(readOutput(path()).result, 1);
  EXPECT_EQ(failure.hits(), 1);
}

TEST_F(ReadResult, OfBothIsThatOfClosingWhenItFails) {
  smallBoth().close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  EXPECT_EQ(readBoth(path()).result, -7);
}

TEST_F(ReadResult, OfBothIsOneWhenTheInputAndClosingFail) {
  smallOutput().close();
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  EXPECT_EQ(readBoth(path()).result, 1);
  EXPECT_EQ(failure.hits(), 1);
}

TEST_F(ReadResult, DocumentOwnsItsArraysAndRefusesOthers) {
  smallInput().close();
  const ReadDocument document = readInput(path());
  const double coordinates[] = {7, 7, 7};
  int connectivities[] = {0, 1};

  OrvML_IO_SetNodesCoords(document.handle(), 1, coordinates);
  OrvML_IO_SetEdges(document.handle(), 1, connectivities, LINEAR, 2);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfEdges(document.handle()), 0);
}

TEST_F(ReadResult, DocumentTakesNewParametersTextsAndDimension) {
  smallInput().close();
  const ReadDocument document = readInput(path());

  OrvML_IO_SetParameter(document.handle(), "size", 2.0);
  OrvML_IO_SetOrvMeshLibraryModuleName("other", document.handle());
  OrvML_IO_SetMeshDimension(document.handle(), 2);

  EXPECT_EQ(scalarOf(document.handle(), "size"), 2.0);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle()), "other");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document.handle()), 2);
}

}  // namespace
}  // namespace orvml_io_tests
