// The library prints nothing, and the caller's handler of HDF5 errors is neither called nor lost.
#include "files/exchange_file_fixture.h"
#include "files/failing_call.h"
#include "support/captured_output.h"

#include <fstream>

namespace orvml_io_tests {
namespace {

/// Something that a caller does with the files of the fixture.
struct Operation {
  const char* name;
  void (*prepare)(const char* path);
  int (*run)(const char* path);
  int result;

  friend std::ostream& operator<<(std::ostream& stream, const Operation& operation) {
    return stream << operation.name;
  }
};

void prepareNothing(const char* /*path*/) {}

void prepareBoth(const char* path) {
  const BuiltDocument document = fullDocument();
  ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path, document.handle(), document.handle()), 0);
}

void prepareText(const char* path) { std::ofstream(path) << std::string(3000, 'x'); }

void prepareUnmarked(const char* path) { RawFile::create(path).group("/OrvInput"); }

void prepareMarkerAlone(const char* path) { RawFile::createMarked(path).close(); }

/// A document every part of which fails to be read in some way.
void prepareSpoilt(const char* path) {
  RawFile file = RawFile::createMarked(path);
  file.documentGroup("/OrvInput", 3);
  file.intAttributeValue("/", "ORVML_MODULE_NAME", 1);
  file.group("/OrvInput/Nodes");
  unreadableDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {2, 3});
  file.group("/OrvInput/Edges");
  file.elements("/OrvInput/Faces", {1}, {TRIANGLE}, {3}, {0, 1, 2});
  file.remove("/OrvInput/Faces/connectivities");
  file.intVector("/OrvInput/parameters", {1});
  file.group("/OrvInput/ParametersVector");
  file.group("/OrvInput/ParametersVector/group");
  unreadableDataset(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {2});
  file.intVector("/OrvInput/ParametersVector/" + std::string(1100, 'n'), {1});
}

int readInputResult(const char* path) { return readInput(path).result; }

int readOutputResult(const char* path) { return readOutput(path).result; }

int readBothResult(const char* path) {
  Handle input;
  Handle output;
  return OrvML_IO_ReadOrvInputAndOrvOutput(path, input.out(), output.out());
}

int readIntoUsedHandle(const char* path) {
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* handle = inUse.get();
  return OrvML_IO_ReadOrvInput(path, handle);
}

int writeFull(const char* path) { return OrvML_IO_WriteOrvInput(path, fullDocument().handle()); }

int writeOutput(const char* path) { return OrvML_IO_WriteOrvOutput(path, fullDocument().handle()); }

int writeBoth(const char* path) {
  const BuiltDocument document = fullDocument();
  return OrvML_IO_WriteOrvInputAndOrvOutput(path, document.handle(), document.handle());
}

int writeToMissingFolder(const char* /*path*/) { return writeFull("/no/such/folder/file.h5"); }

int writeRefusedName(const char* path) {
  BuiltDocument document = fullDocument();
  document.attribute(ORVML_NODES, "no/group", std::vector<int>{1});
  return OrvML_IO_WriteOrvInput(path, document.handle());
}

int writeRefusedCounts(const char* path) {
  const BuiltDocument document = fullDocument();
  OrvML_IO_SetNumberOfNodes(document.handle(), -1);
  return OrvML_IO_WriteOrvInput(path, document.handle());
}

int writeWithoutMarker(const char* path) {
  const FailingCall failure(Hdf5Function::createAttribute, "FORMAT");
  return writeFull(path);
}

int writeWithoutClosing(const char* path) {
  const FailingCall failure(Hdf5Function::closeFile);
  return writeFull(path);
}

int writeWhileOpen(const char* path) {
  const ReadDocument document = readInput(path);
  return OrvML_IO_WriteOrvInput(path, document.handle());
}

const Operation kOperations[] = {
    {"ReadFullInput", prepareBoth, readInputResult, 0},
    {"ReadFullOutput", prepareBoth, readOutputResult, 0},
    {"ReadBoth", prepareBoth, readBothResult, 0},
    {"ReadMissingFile", prepareNothing, readInputResult, 0},
    {"ReadMissingOutputFile", prepareNothing, readOutputResult, 0},
    {"ReadBothOfMissingFile", prepareNothing, readBothResult, 0},
    {"ReadText", prepareText, readInputResult, 0},
    {"ReadUnmarked", prepareUnmarked, readInputResult, 0},
    {"ReadWithoutInput", prepareMarkerAlone, readInputResult, 1},
    {"ReadWithoutOutput", prepareMarkerAlone, readOutputResult, 0},
    {"ReadSpoilt", prepareSpoilt, readInputResult, 1},
    {"ReadBothSpoilt", prepareSpoilt, readBothResult, 1},
    {"ReadIntoUsedHandle", prepareBoth, readIntoUsedHandle, 1},
    {"WriteFullInput", prepareNothing, writeFull, 0},
    {"WriteFullOutput", prepareNothing, writeOutput, 0},
    {"WriteBoth", prepareNothing, writeBoth, 0},
    {"WriteToMissingFolder", prepareNothing, writeToMissingFolder, 1},
    {"WriteRefusedName", prepareNothing, writeRefusedName, 1},
    {"WriteRefusedCounts", prepareNothing, writeRefusedCounts, 1},
    {"WriteWithoutMarker", prepareNothing, writeWithoutMarker, 1},
    {"WriteWithoutClosing", prepareNothing, writeWithoutClosing, -1},
    {"WriteWhileOpen", prepareBoth, writeWhileOpen, 1},
};

int handlerCalls = 0;

herr_t firstGenerationHandler(void* /*data*/) {
  ++handlerCalls;
  return 0;
}

herr_t secondGenerationHandler(hid_t /*stack*/, void* /*data*/) {
  ++handlerCalls;
  return 0;
}

class Silent : public ExchangeFileTest, public ::testing::WithParamInterface<Operation> {
 protected:
  Silent() {
    H5Eget_auto2(H5E_DEFAULT, &savedHandler_, &savedData_);
    GetParam().prepare(path());
    handlerCalls = 0;
  }
  ~Silent() override { H5Eset_auto2(H5E_DEFAULT, savedHandler_, savedData_); }

  void run() { EXPECT_EQ(GetParam().run(path()), GetParam().result); }

  static bool isSecondGeneration() {
    unsigned answer = 0;
    EXPECT_GE(H5Eauto_is_v2(H5E_DEFAULT, &answer), 0);
    return answer != 0;
  }

  int data_ = 0;

 private:
  H5E_auto2_t savedHandler_ = nullptr;
  void* savedData_ = nullptr;
};

TEST_P(Silent, WithTheHandlerThatPrints) {
  CapturedOutput captured;

  const int result = GetParam().run(path());

  EXPECT_EQ(captured.stop(), "");
  EXPECT_EQ(result, GetParam().result);
}

TEST_P(Silent, AndRestoresAHandlerOfTheSecondGeneration) {
  H5Eset_auto2(H5E_DEFAULT, secondGenerationHandler, &data_);

  run();

  H5E_auto2_t handler = nullptr;
  void* data = nullptr;
  ASSERT_TRUE(isSecondGeneration());
  ASSERT_GE(H5Eget_auto2(H5E_DEFAULT, &handler, &data), 0);
  EXPECT_EQ(handler, secondGenerationHandler);
  EXPECT_EQ(data, &data_);
  EXPECT_EQ(handlerCalls, 0);
}

TEST_P(Silent, AndRestoresAHandlerOfTheFirstGeneration) {
  H5Eset_auto1(firstGenerationHandler, &data_);

  run();

  H5E_auto1_t handler = nullptr;
  void* data = nullptr;
  ASSERT_FALSE(isSecondGeneration());
  ASSERT_GE(H5Eget_auto1(&handler, &data), 0);
  EXPECT_EQ(handler, firstGenerationHandler);
  EXPECT_EQ(data, &data_);
  EXPECT_EQ(handlerCalls, 0);
}

TEST_P(Silent, AndKeepsTheHandlerSwitchedOff) {
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);

  run();

  H5E_auto2_t handler = secondGenerationHandler;
  void* data = &data_;
  ASSERT_GE(H5Eget_auto2(H5E_DEFAULT, &handler, &data), 0);
  EXPECT_EQ(handler, nullptr);
  EXPECT_EQ(data, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Each, Silent, ::testing::ValuesIn(kOperations), RowName());

// The restored handler works: the caller's own mistakes are reported again.
TEST(SilenceEnds, WithTheCall) {
  void* handle = nullptr;
  ASSERT_EQ(OrvML_IO_ReadOrvInput("no/such/file.h5", handle), 0);
  CapturedOutput captured;

  H5Fopen("no/such/file.h5", H5F_ACC_RDONLY, H5P_DEFAULT);

  EXPECT_NE(captured.stop().find("HDF5-DIAG"), std::string::npos);
}

TEST(SilentInMemory, WholeLifeOfADocument) {
  CapturedOutput captured;
  {
    const BuiltDocument document = fullDocument();
    void* handle = document.handle();
    double value = 0;
    int* values = nullptr;
    int length = 0;
    OrvML_IO_GetParameter(handle, "missing", value);
    OrvML_IO_GetParameterVector(handle, "missing", values, length);
    OrvML_IO_DeleteAttribute(handle, "missing", ORVML_NODES);
    OrvML_IO_GetNumberOfGenericElements(handle, static_cast<ORVML_TYPE_OF_ENTITY>(9));
    OrvML_IO_SetMeshDimension(nullptr, 3);
    OrvML_IO_GetFormatVersion_Number("");
    OrvML_IO_DeleteParametersContent(handle);
  }

  EXPECT_EQ(captured.stop(), "");
}

}  // namespace
}  // namespace orvml_io_tests
