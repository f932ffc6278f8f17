// Writes documents that the input describes, reads them back, compares, clones and writes them
// again, beside a model of what a file keeps.
#include "cpp_files/reading_through_cpp.h"
#include "fuzz/documents/document_from_bytes.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "fuzz/harness/hdf5_in_memory.h"
#include "fuzz/harness/read_document.h"
#include "hdf5/layout.h"
#include "sequences/equality_model.h"
#include "sequences/file_model.h"
#include "sequences/live_document.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5_hl.h>

namespace orvml_io_tests {
namespace {

/// A document that was read or cloned: what it must hold, and the handle.
struct Copy {
  DocumentModel model;
  Handle handle;
};

/// The exported functions for documents of one role.
struct Role {
  bool isInput;
  int (*write)(const char* fileName, void* handle);
  int (*read)(const char* fileName, void*& handle);
  bool (*areEqual)(void* first, void* second);
};

constexpr Role kInput = {true, OrvML_IO_WriteOrvInput, OrvML_IO_ReadOrvInput,
                         OrvML_IO_OrvInputsAreEqual};
constexpr Role kOutput = {false, OrvML_IO_WriteOrvOutput, OrvML_IO_ReadOrvOutput,
                          OrvML_IO_OrvOutputsAreEqual};

void expectHolds(void* handle, const DocumentModel& model) {
  LiveDocument document(handle, model, "copy");
  noteAddresses(document);
  expectState(document);
}

void expectComparison(const Role& role, void* first, const DocumentModel& firstModel, void* second,
                      const DocumentModel& secondModel) {
  EXPECT_EQ(role.areEqual(first, second), areEqual(&firstModel, &secondModel));
  EXPECT_EQ(role.areEqual(second, first), areEqual(&secondModel, &firstModel));
}

/// Readers know an old spelling of one module name, which the model of files leaves aside.
void replaceOldSpelling(DocumentModel& model) {
  if (model.moduleName == "OrvML_OCTREE_MESHER") {
    model.moduleName = "ORVML_OCTREE_MESHER";
  }
}

/// Reads the document of a role and expects what the model of the file answers.
std::optional<Copy> read(const Role& role, const char* path, FileModel& file) {
  const ReadModel expected = role.isInput ? file.readInput() : file.readOutput();
  Copy copy;
  EXPECT_EQ(role.read(path, copy.handle.out()), expected.result);
  EXPECT_EQ(copy.handle.get() != nullptr, expected.document.has_value());
  if (copy.handle.get() == nullptr || !expected.document) {
    return std::nullopt;
  }
  copy.model = *expected.document;
  replaceOldSpelling(copy.model);
  expectHolds(copy.handle.get(), copy.model);
  return copy;
}

/// Reads the one document of a file through the C++ layer, too.
void readThroughCpp(const Role& role, const char* path, int status, bool hasDocument) {
  Readings flat;
  (role.isInput ? flat.input : flat.output) = {status, hasDocument, {}};
  readInEveryWayOfCpp(path, flat);
}

/// Writes a document, reads it back and compares both.
std::optional<Copy> throughItsFile(const Role& role, void* handle, const DocumentModel& model) {
  const OpenIds ids;
  const TempFile path;
  FileModel file;
  const int expected = role.isInput ? file.write(&model, nullptr) : file.write(nullptr, &model);
  EXPECT_EQ(role.write(path.path(), handle), expected);
  std::optional<Copy> copy = read(role, path.path(), file);
  if (copy) {
    expectComparison(role, handle, model, copy->handle.get(), copy->model);
  }
  const ReadModel flat = role.isInput ? file.readInput() : file.readOutput();
  readThroughCpp(role, path.path(), flat.result, flat.document.has_value());
  return copy;
}

Copy cloneOf(const Role& role, void* handle, const DocumentModel& model) {
  return {cloneOf(model, role.isInput), Handle(role.isInput ? OrvML_IO_NewOrvInputHandle(handle)
                                                            : OrvML_IO_NewOrvOutputHandle(handle))};
}

/// The clone of what was read outlives it and is written like any other document.
void useCopy(const Role& role, std::optional<Copy> copy) {
  if (!copy) {
    return;
  }
  const Copy clone = cloneOf(role, copy->handle.get(), copy->model);
  expectComparison(role, clone.handle.get(), clone.model, copy->handle.get(), copy->model);
  copy.reset();
  expectHolds(clone.handle.get(), clone.model);
  (void)throughItsFile(role, clone.handle.get(), clone.model);
}

void useBoth(const LiveDocument& input, const LiveDocument& output) {
  const OpenIds ids;
  const TempFile path;
  FileModel file;
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path.path(), input.handle, output.handle),
            file.write(&input.model, &output.model));
  (void)read(kInput, path.path(), file);
  (void)read(kOutput, path.path(), file);
}

/// The positional layout loses names, so only the sizes of the mesh are compared.
void usePositionalLayout(const LiveDocument& document) {
  constexpr char kVersion[] = "1.3";
  const MemoryFile file;
  const orvml_io::OrvInputAndOrvOutput& stored = *orvml_io::documentOf(document.handle);
  const int written = stored.WriteCommonPart(file.id(), orvml_io::layout::kOrvInput, kVersion);
  H5LTset_attribute_string(file.id(), "/", orvml_io::layout::kFormatVersion, kVersion);
  const ReadResult result = readDocument<orvml_io::OrvInput>(file.id());
  requireReadPromises(result);
  if (written != 0 || result.document.get() == nullptr) {
    return;
  }
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(result.document.get()),
            OrvML_IO_GetNumberOfNodes(document.handle));
  for (const auto& [kind, cells] : document.model.cells) {
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(result.document.get(), kind),
              cells.cellsInGroups());
  }
}

/// A document of the caller, deleted in the end as a caller deletes it.
class CallersDocument {
 public:
  CallersDocument(const DocumentModel& model, CallerMemory& memory)
      : memory_(memory), document_(build(model, memory)) {}
  CallersDocument(const CallersDocument&) = delete;
  CallersDocument& operator=(const CallersDocument&) = delete;
  CallersDocument(CallersDocument&&) = delete;
  CallersDocument& operator=(CallersDocument&&) = delete;
  ~CallersDocument() {
    expectState(document_);  // whatever happened, it was only read
    takeLeftovers(document_, memory_);
    OrvML_IO_DeleteOrvInputHandle(document_.handle);
  }

  [[nodiscard]] const LiveDocument& live() const noexcept { return document_; }

 private:
  CallerMemory& memory_;
  LiveDocument document_;
};

void run(ByteSource bytes) {
  const unsigned use = bytes.choice(4);
  CallerMemory memory;
  DocumentModel first = documentFrom(bytes);
  const Role& role = use % 2 == 0 ? kInput : kOutput;
  first.isInput = role.isInput;
  const CallersDocument document(first, memory);
  useCopy(role, throughItsFile(role, document.live().handle, first));
  if (use >= 2) {
    const CallersDocument second(documentFrom(bytes), memory);
    useBoth(document.live(), second.live());
    usePositionalLayout(document.live());
  }
  memory.expectUntouched();
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvml_io_tests::run(orvml_io_tests::ByteSource(data, size));
  orvml_io_tests::require(!::testing::Test::HasFailure(), "documents do what their model says");
  return 0;
}
