// A file in which a document was found stays open inside HDF5, on purpose: it can be read again but
// not be written by this process. A file in which none was found is closed.
#include "files/described_document.h"
#include "files/exchange_file_fixture.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

namespace orvml_io_tests {
namespace {

class NothingOpen : public ExchangeFileTest {
 protected:
  /// Reads in every way, and expects that the file can be written afterwards.
  void expectNothingOpenAfterReading() {
    {
      Handle input;
      Handle output;
      const ReadDocument first = readInput(path());
      const ReadDocument second = readOutput(path());
      OrvML_IO_ReadOrvInputAndOrvOutput(path(), input.out(), output.out());
    }
    EXPECT_EQ(opened(), IdCounts{});
    EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), fullDocument().handle()), 0);
  }
};

TEST_F(NothingOpen, OfAFileThatIsNotHdf5) {
  std::ofstream(path()) << "text";

  expectNothingOpenAfterReading();
}

TEST_F(NothingOpen, OfAFileThatDoesNotExist) { expectNothingOpenAfterReading(); }

TEST_F(NothingOpen, OfAnHdf5FileWithoutTheMarker) {
  RawFile file = smallInput();
  file.removeAttribute("/", "FORMAT");
  file.close();

  expectNothingOpenAfterReading();
}

TEST_F(NothingOpen, OfAnHdf5FileWithAnotherMarker) {
  RawFile file = smallInput();
  file.removeAttribute("/", "FORMAT");
  file.textAttribute("/", "FORMAT", "ORVMESHLIBRARY2");
  file.close();

  expectNothingOpenAfterReading();
}

TEST_F(NothingOpen, OfAMarkedFileWithoutDocuments) {
  RawFile::createMarked(path()).close();

  expectNothingOpenAfterReading();
}

TEST_F(NothingOpen, OfAnInputFileWhoseOutputWasAskedFor) {
  smallInput().close();

  const ReadDocument output = readOutput(path());

  EXPECT_EQ(opened(), IdCounts{});
}

TEST_F(NothingOpen, OfAnOutputFileWhoseInputWasAskedFor) {
  smallOutput().close();

  const ReadDocument input = readInput(path());

  EXPECT_EQ(opened(), IdCounts{});
}

TEST_F(NothingOpen, WhenTheHandleIsInUse) {
  smallInput().close();
  const Handle inUse(OrvML_IO_NewOrvInputHandle());
  void* handle = inUse.get();

  EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), handle), 1);

  EXPECT_EQ(opened(), IdCounts{});
}

class FileThatStaysOpen : public ExchangeFileTest {
 protected:
  FileThatStaysOpen() { written(fullDocument()).close(); }
};

TEST_F(FileThatStaysOpen, ReadsAgainAsBefore) {
  const ReadDocument first = readInput(path());
  const ReadDocument second = readInput(path());

  EXPECT_EQ(second.result, 0);
  EXPECT_NE(second.handle(), first.handle());
  EXPECT_EQ(describe(second.handle()), describe(first.handle()));
}

TEST_F(FileThatStaysOpen, CannotBeWrittenByThisProcessAndStaysAsItIs) {
  const std::string before = bytesOf(path());
  const ReadDocument document = readInput(path());
  const BuiltDocument other = documentWithMixedShapes();

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), other.handle()), 1);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), other.handle(), nullptr), 1);

  EXPECT_EQ(bytesOf(path()), before);
}

TEST_F(FileThatStaysOpen, CannotBeWrittenAfterTheDocumentWasDeletedEither) {
  const std::string before = bytesOf(path());
  { const ReadDocument document = readInput(path()); }

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), fullDocument().handle()), 1);

  EXPECT_EQ(bytesOf(path()), before);
}

TEST_F(FileThatStaysOpen, RefusedWritingOpensNothingMore) {
  const ReadDocument document = readInput(path());
  const IdCounts before = opened();

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 1);

  EXPECT_EQ(opened(), before);
}

TEST_F(FileThatStaysOpen, LeavesOtherPathsWritable) {
  const ReadDocument document = readInput(path());
  const TempFile other;

  EXPECT_EQ(OrvML_IO_WriteOrvInput(other.path(), document.handle()), 0);
}

TEST_F(FileThatStaysOpen, MakesItsPathWritableAgainWhenItIsRemoved) {
  const ReadDocument document = readInput(path());
  ASSERT_EQ(std::remove(path()), 0);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 0);
}

TEST_F(FileThatStaysOpen, IsStillReadAfterARefusedWriting) {
  const ReadDocument first = readInput(path());
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), first.handle()), 1);

  const ReadDocument second = readInput(path());

  EXPECT_EQ(describe(second.handle()), describe(first.handle()));
}

/// Closes what is open in a file, as programs may that use HDF5 themselves.
void closeEverythingIn(const char* path) {
  const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
  std::array<hid_t, 8> ids = {};
  ssize_t count = 0;
  while ((count = H5Fget_obj_ids(file, H5F_OBJ_ALL & ~H5F_OBJ_FILE, ids.size(), ids.data())) > 0) {
    const auto found = std::min(static_cast<std::size_t>(count), ids.size());
    std::for_each(ids.begin(), ids.begin() + found, [](hid_t id) { H5Oclose(id); });
  }
  H5Fclose(file);
}

TEST_F(FileThatStaysOpen, IsClosedByACallerWhoClosesWhatWasLeft) {
  const ReadDocument document = readInput(path());

  closeEverythingIn(path());

  EXPECT_EQ(opened(), IdCounts{});
  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document.handle()), 0);
}

/// Holds a file as a program does that has it open in HDF5: locks belong to the descriptor, so
/// this one counts as another program's.
class HeldFile {
 public:
  HeldFile(const char* path, int lock) : descriptor_(::open(path, O_RDONLY | O_CLOEXEC)) {
    EXPECT_EQ(::flock(descriptor_, lock | LOCK_NB), 0) << path;
  }
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  HeldFile(HeldFile&&) = delete;
  HeldFile& operator=(HeldFile&&) = delete;
  ~HeldFile() { ::close(descriptor_); }

 private:
  int descriptor_;
};

class FileOfAnotherProgram : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_F(FileOfAnotherProgram, CannotBeWrittenWhileItIsWrittenThereAndStaysAsItIs) {
  written(fullDocument()).close();
  const std::string before = bytesOf(path());
  {
    const HeldFile held(path(), LOCK_EX);

    EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), documentWithMixedShapes().handle()), 1);
  }

  EXPECT_EQ(bytesOf(path()), before);
  EXPECT_EQ(opened(), IdCounts{});
}

// Programs that map the file keep what they have mapped: tests/processes.
TEST_F(FileOfAnotherProgram, IsReplacedWhileItIsReadThere) {
  written(fullDocument()).close();
  const HeldFile held(path(), LOCK_SH);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), documentWithMixedShapes().handle()), 0);

  EXPECT_EQ(describe(readInput(path()).handle()), describe(documentWithMixedShapes().handle()));
}

TEST_P(FileOfAnotherProgram, IsWrittenWhenItIsHeldNoMore) {
  written(fullDocument()).close();
  { const HeldFile held(path(), GetParam()); }

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), documentWithMixedShapes().handle()), 0);

  EXPECT_EQ(readInput(path()).result, 0);
}

INSTANTIATE_TEST_SUITE_P(ReadersAndWriters, FileOfAnotherProgram,
                         ::testing::Values(LOCK_SH, LOCK_EX));

}  // namespace
}  // namespace orvml_io_tests
