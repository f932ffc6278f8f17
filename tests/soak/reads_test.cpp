// A read that finds a document keeps groups and datasets of the file open, on purpose. They are all
// that reads leave, and they are the same again for each.
#include "soak/repetitions.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <iostream>

namespace orvml_io_tests {
namespace {

/// What HDF5 keeps for an open group or dataset of these files, at most: for a group 1.10.8 keeps
/// 822 bytes and 1.14.5 keeps 1432.
constexpr long long kMostBytesPerIdentifier = H5_VERSION_GE(1, 14, 0) ? 1536 : 1024;

/// The document, the nodes and three kinds of cells; a probe in each container and one for each of
/// the five attributes and the two vector parameters.
constexpr IdCounts kLeftByAFullDocument = {0, 5, 11, 0, 0};
constexpr IdCounts kLeftByAnEmptyDocument = {0, 1, 0, 0, 0};

void readAndDelete(const TempFile& file) {
  Handle document;
  (void)OrvML_IO_ReadOrvInput(file.path(), document.out());  // a document without nodes gives 1
  ASSERT_NE(document.get(), nullptr);
}

void write(const TempFile& file, const BuiltDocument& document) {
  ASSERT_EQ(OrvML_IO_WriteOrvInput(file.path(), document.handle()), 0);
}

TEST(Reads, OfOneFileAreFlatWhenWhatTheyKeepOpenIsClosed) {
  const int reads = repetitions(20000);
  const TempFile file;
  write(file, fullDocument());

  const ProcessUsage growth = growthOf(reads, [&] {
    readAndDelete(file);
    OpenIds::closeAll();
  });

  printRow("read one file, close what stays open", reads, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

TEST(Reads, OfFilesWithoutADocumentAreFlat) {
  const int reads = repetitions(20000);
  const TempFile file;
  ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(file.path(), nullptr, nullptr), 0);

  const ProcessUsage growth = growthOf(reads, [&] {
    Handle document;
    ASSERT_EQ(OrvML_IO_ReadOrvOutput(file.path(), document.out()), 0);
    ASSERT_EQ(document.get(), nullptr);
  });

  printRow("read a file without a document", reads, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

/// What `count` reads of a file leave, and what closing that leaves.
struct KeptByReads {
  IdCounts ids;
  ProcessUsage firstHalf;
  ProcessUsage secondHalf;
  ProcessUsage afterClosing;
};

KeptByReads keptBy(int count, const TempFile& file) {
  const auto read = [&file](int times) {
    for (int i = 0; i < times; ++i) {
      readAndDelete(file);
    }
  };
  // Once before: HDF5 keeps what it allocates when it meets a kind of object for the first time.
  read(count);
  OpenIds::closeAll();
  H5garbage_collect();

  const OpenIds ids;
  const ProcessUsage before = ProcessUsage::now();
  read(count / 2);
  const ProcessUsage middle = ProcessUsage::now();
  read(count / 2);
  const ProcessUsage after = ProcessUsage::now();
  KeptByReads kept{ids.opened(), middle - before, after - middle, {}};
  OpenIds::closeAll();
  H5garbage_collect();
  kept.afterClosing = ProcessUsage::now() - before;
  return kept;
}

/// A document, and what stays open after each read of it.
struct KeptOpen {
  const char* name;
  BuiltDocument (*document)();
  IdCounts perRead;

  friend std::ostream& operator<<(std::ostream& stream, const KeptOpen& kept) {
    return stream << kept.name;
  }
};

class ReadsKeepOpen : public ::testing::TestWithParam<KeptOpen> {};

INSTANTIATE_TEST_SUITE_P(
    Each, ReadsKeepOpen,
    ::testing::Values(KeptOpen{"EmptyDocument", [] { return BuiltDocument::input(3); },
                               kLeftByAnEmptyDocument},
                      KeptOpen{"FullDocument", fullDocument, kLeftByAFullDocument}),
    ::testing::PrintToStringParamName());

TEST_P(ReadsKeepOpen, TheSameAgainEachTimeAndNothingElse) {
  const IdCounts& perRead = GetParam().perRead;
  const int reads = repetitions(20000);
  const TempFile file;
  write(file, GetParam().document());

  const KeptByReads kept = keptBy(reads, file);

  const long long identifiers = perRead.groups + perRead.datasets;
  const long long bytes = kept.secondHalf.heapBytes / (reads / 2);
  std::cout << "# " << GetParam().name << ": a read keeps " << perRead.groups << " groups and "
            << perRead.datasets << " datasets open: " << bytes << " bytes\n";
  EXPECT_EQ(kept.ids, (IdCounts{0, perRead.groups * reads, perRead.datasets * reads, 0, 0}));
  EXPECT_LE(bytes, identifiers * kMostBytesPerIdentifier);
  EXPECT_LE(kept.secondHalf.heapBytes, kept.firstHalf.heapBytes + kept.firstHalf.heapBytes / 10);
  EXPECT_LE(kept.firstHalf.descriptors, 1) << "the file itself";
  EXPECT_EQ(kept.secondHalf.descriptors, 0);
  EXPECT_LE(kept.afterClosing.heapBytes, kFlatHeapBytes);
  EXPECT_EQ(kept.afterClosing.descriptors, 0);
}

}  // namespace
}  // namespace orvml_io_tests
