// Exchange files: writing and reading of inputs, outputs and both.
#include "sequences/caller.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

/// A path for a file function: one of the caller's, or one that leads nowhere.
struct ChosenPath {
  ExchangePath* place;  // null when it leads nowhere
  const char* name;     // may be null
};

ChosenPath orNowhere(ExchangePath& place, Random& random) {
  static const std::vector<const char*> nowhere = {nullptr, "no/such/folder/file.h5"};
  if (random.chance(10)) {
    return {nullptr, random.oneOf(nowhere)};
  }
  return {&place, place.path.path()};
}

ChosenPath pathForWriting(Caller& caller) {
  return orNowhere(caller.random.chance(60) ? caller.newPath() : caller.anyPath(), caller.random);
}

using Holds = bool (FileModel::*)() const;

/// Most often a path where there is something to read.
ChosenPath pathForReading(Caller& caller, Holds holds) {
  ExchangePath* place = &caller.anyPath();
  for (int attempts = 5; attempts > 0 && !(place->model.*holds)(); --attempts) {
    place = &caller.anyPath();
  }
  return orNowhere(*place, caller.random);
}

const char* shown(const ChosenPath& path) { return path.name == nullptr ? "null" : path.name; }

int written(Caller& caller, const ChosenPath& path, const LiveDocument* input,
            const LiveDocument* output) {
  if (path.place == nullptr) {
    caller.saw("path that cannot be written");
    return 1;
  }
  const int result = path.place->model.write(modelOf(input), modelOf(output));
  caller.saw(result == 0 ? "document written" : "document not written, or not whole");
  return result;
}

bool writeInput(Caller& caller) {
  const ChosenPath path = pathForWriting(caller);
  const LiveDocument* document = caller.documentOrNone();
  caller.log("OrvML_IO_WriteOrvInput", shown(path), document);
  const int result = OrvML_IO_WriteOrvInput(path.name, handleOf(document));
  EXPECT_EQ(result, document == nullptr ? 1 : written(caller, path, document, nullptr));
  return true;
}

bool writeOutput(Caller& caller) {
  const ChosenPath path = pathForWriting(caller);
  const LiveDocument* document = caller.documentOrNone();
  caller.log("OrvML_IO_WriteOrvOutput", shown(path), document);
  const int result = OrvML_IO_WriteOrvOutput(path.name, handleOf(document));
  EXPECT_EQ(result, document == nullptr ? 1 : written(caller, path, nullptr, document));
  return true;
}

bool writeBoth(Caller& caller) {
  const ChosenPath path = pathForWriting(caller);
  const LiveDocument* input = caller.documentOrNone();
  const LiveDocument* output = caller.documentOrNone();
  caller.log("OrvML_IO_WriteOrvInputAndOrvOutput", shown(path), input, output);
  const int result =
      OrvML_IO_WriteOrvInputAndOrvOutput(path.name, handleOf(input), handleOf(output));
  EXPECT_EQ(result, written(caller, path, input, output));
  return true;
}

/// Takes over what a reader handed out, which must be what the model says.
void take(Caller& caller, void* handle, const ReadModel& expected) {
  ASSERT_EQ(handle != nullptr, expected.document.has_value());
  if (!expected.document) {
    caller.saw("no document read");
    return;
  }
  caller.saw(expected.result == 0 ? "document read" : "document read in part");
  caller.add(handle, *expected.document);
}

/// What a reader must answer for a path; nothing is read from one that leads nowhere.
ReadModel readModel(const ChosenPath& path, ReadModel (FileModel::*read)()) {
  if (path.place != nullptr) {
    return (path.place->model.*read)();
  }
  return {path.name == nullptr ? 1 : 0, std::nullopt};
}

template <class Reader>
bool readOne(Caller& caller, const char* function, Reader reader, Holds holds,
             ReadModel (FileModel::*model)()) {
  if (!caller.makeRoom()) {
    return false;
  }
  const ChosenPath path = pathForReading(caller, holds);
  caller.log(function, shown(path), "null");
  void* handle = nullptr;
  const int result = reader(path.name, handle);
  const ReadModel expected = readModel(path, model);
  EXPECT_EQ(result, expected.result);
  take(caller, handle, expected);
  return true;
}

bool readInput(Caller& caller) {
  return readOne(caller, "OrvML_IO_ReadOrvInput", OrvML_IO_ReadOrvInput, &FileModel::holdsInput,
                 &FileModel::readInput);
}

bool readOutput(Caller& caller) {
  return readOne(caller, "OrvML_IO_ReadOrvOutput", OrvML_IO_ReadOrvOutput, &FileModel::holdsOutput,
                 &FileModel::readOutput);
}

/// The output is read only when the input was read whole.
bool readBoth(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  const ChosenPath path = pathForReading(caller, &FileModel::holdsInput);
  caller.log("OrvML_IO_ReadOrvInputAndOrvOutput", shown(path), "null", "null");
  void* input = nullptr;
  void* output = nullptr;
  const int result = OrvML_IO_ReadOrvInputAndOrvOutput(path.name, input, output);
  const ReadModel expectedInput = readModel(path, &FileModel::readInput);
  const ReadModel expectedOutput =
      expectedInput.result == 0 ? readModel(path, &FileModel::readOutput) : ReadModel();
  EXPECT_EQ(result, expectedInput.result == 0 ? expectedOutput.result : expectedInput.result);
  take(caller, input, expectedInput);
  take(caller, output, expectedOutput);
  return true;
}

/// A handle that is not null is no place for a document: readers leave it alone.
bool readIntoUsedHandle(Caller& caller) {
  const char* path = caller.anyPath().path.path();
  const LiveDocument& document = caller.document();
  caller.log("readers into a used handle", path, document);
  void* used = document.handle;
  void* null = nullptr;
  EXPECT_EQ(OrvML_IO_ReadOrvInput(path, used), 1);
  EXPECT_EQ(OrvML_IO_ReadOrvOutput(path, used), 1);
  EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path, used, null), -1);
  EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(path, null, used), -1);
  EXPECT_EQ(used, document.handle);
  EXPECT_EQ(null, nullptr);
  return true;
}

}  // namespace

std::vector<Call> fileCalls() {
  return {{"WriteOrvInput", writeInput},
          {"WriteOrvOutput", writeOutput},
          {"WriteOrvInputAndOrvOutput", writeBoth},
          {"ReadOrvInput", readInput},
          {"ReadOrvOutput", readOutput},
          {"ReadOrvInputAndOrvOutput", readBoth},
          {"readers into a used handle", readIntoUsedHandle}};
}

}  // namespace orvml_io_tests
