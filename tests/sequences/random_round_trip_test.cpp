// Properties of random documents: what files keep of them, what clones keep of them, and what
// writing leaves alone.
#include "sequences/file_model.h"
#include "sequences/live_document.h"
#include "sequences/random_document.h"
#include "sequences/raw_document.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <memory>

namespace orvml_io_tests {
namespace {

constexpr int kDocuments = 25;

/// A random document in memory of its own, which both go with the source.
class Source {
 public:
  explicit Source(Random& random) : document_(build(randomDocument(random), memory_)) {}
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  Source(Source&&) = delete;
  Source& operator=(Source&&) = delete;
  ~Source() {
    takeLeftovers(document_, memory_);
    OrvML_IO_DeleteOrvInputHandle(document_.handle);
  }

  [[nodiscard]] void* handle() const { return document_.handle; }
  [[nodiscard]] const DocumentModel& model() const { return document_.model; }
  [[nodiscard]] const LiveDocument& document() const { return document_; }

 private:
  CallerMemory memory_;
  LiveDocument document_;
};

/// A file of its own, read and written as the kind of the document asks for.
class ExchangeFile {
 public:
  explicit ExchangeFile(bool holdsInput) : holdsInput_(holdsInput) {}

  [[nodiscard]] const char* group() const { return holdsInput_ ? "/OrvInput" : "/OrvOutput"; }

  void write(void* document) const {
    EXPECT_EQ(holdsInput_ ? OrvML_IO_WriteOrvInput(file_.path(), document)
                          : OrvML_IO_WriteOrvOutput(file_.path(), document),
              0);
  }

  [[nodiscard]] Handle read() const {
    Handle read;
    EXPECT_EQ(holdsInput_ ? OrvML_IO_ReadOrvInput(file_.path(), read.out())
                          : OrvML_IO_ReadOrvOutput(file_.path(), read.out()),
              0);
    return read;
  }

  [[nodiscard]] RawFile raw() const { return RawFile::open(file_.path()); }

 private:
  bool holdsInput_;
  OpenIds ids_;
  TempFile file_;
};

void expectDocument(const Handle& handle, const DocumentModel& model) {
  ASSERT_NE(handle.get(), nullptr);
  LiveDocument document(handle.get(), model, "read");
  noteAddresses(document);
  expectState(document);
}

TEST(RandomRoundTrip, GivesTheDocumentUpToTheStatedLosses) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile file(source.model().isInput);
    file.write(source.handle());

    const Handle read = file.read();

    expectDocument(read, throughAFile(source.model()));
  });
}

TEST(RandomRoundTrip, GivesADocumentThatIsEqualFromBothSides) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile file(source.model().isInput);
    file.write(source.handle());

    const Handle read = file.read();

    EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(source.handle(), read.get()));
    EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(read.get(), source.handle()));
    EXPECT_TRUE(OrvML_IO_OrvOutputsAreEqual(source.handle(), read.get()));
    EXPECT_TRUE(OrvML_IO_OrvOutputsAreEqual(read.get(), source.handle()));
  });
}

TEST(RandomRoundTrip, PutsTheDocumentIntoTheFileAndNothingElse) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile file(source.model().isInput);

    file.write(source.handle());

    const RawFile raw = file.raw();
    expectHolds(raw, file.group(), source.model());
    EXPECT_EQ(raw.members("/"), std::vector<std::string>{file.group() + 1});
  });
}

TEST(RandomRoundTrip, LeavesTheWrittenDocumentAsItWas) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile file(source.model().isInput);
    const TempFile text;

    file.write(source.handle());
    EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(text.path(), source.handle()), 0);

    expectState(source.document());
  });
}

TEST(RandomRoundTrip, WritesWhatWasReadWithTheSameStructure) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile first(source.model().isInput);
    const ExchangeFile second(source.model().isInput);
    const ExchangeFile third(source.model().isInput);

    first.write(source.handle());
    second.write(first.read().get());
    third.write(second.read().get());

    expectHolds(second.raw(), second.group(), throughAFile(source.model()));
    EXPECT_EQ(structureOf(third.raw()), structureOf(second.raw()));
  });
}

TEST(RandomRoundTrip, OfTwoDocumentsGivesBothTheIdentificationOfTheOutput) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source input(random);
    const Source output(random);
    const OpenIds ids;
    const TempFile file;
    EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(file.path(), input.handle(), output.handle()), 0);

    Handle readInput;
    Handle readOutput;
    EXPECT_EQ(OrvML_IO_ReadOrvInputAndOrvOutput(file.path(), readInput.out(), readOutput.out()), 0);

    DocumentModel expectedInput = throughAFile(input.model());
    expectedInput.isInput = true;
    expectedInput.moduleName = output.model().moduleName;
    expectedInput.moduleFormatVersion = output.model().moduleFormatVersion;
    expectedInput.ioCreator = output.model().ioCreator;
    expectDocument(readInput, expectedInput);
    DocumentModel expectedOutput = throughAFile(output.model());
    expectedOutput.isInput = false;
    expectDocument(readOutput, expectedOutput);
  });
}

TEST(RandomClone, HoldsWhatItsSourceHeldAfterTheSourceAndItsArraysAreGone) {
  forEachSeed(kDocuments, [](Random& random) {
    auto source = std::make_unique<Source>(random);
    const DocumentModel expected = cloneOf(source->model(), source->model().isInput);
    const Handle clone(source->model().isInput ? OrvML_IO_NewOrvInputHandle(source->handle())
                                               : OrvML_IO_NewOrvOutputHandle(source->handle()));

    source.reset();

    expectDocument(clone, expected);
  });
}

TEST(RandomClone, IsEqualToItsSourceAndIsWrittenAsTheSame) {
  forEachSeed(kDocuments, [](Random& random) {
    const Source source(random);
    const ExchangeFile file(true);

    const Handle clone(OrvML_IO_NewOrvInputHandle(source.handle()));
    file.write(clone.get());

    EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(source.handle(), clone.get()));
    EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(clone.get(), source.handle()));
    expectHolds(file.raw(), file.group(), source.model());
  });
}

}  // namespace
}  // namespace orvml_io_tests
