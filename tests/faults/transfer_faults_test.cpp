// Every transfer to and from the disk comes to grief in turn. A writer reports each write that
// failed; what the system only interrupts or does by halves is nobody's failure.
#include "faults/finding.h"
#include "faults/incomplete_reads.h"
#include "faults/outcome.h"
#include "faults/small_disk.h"
#include "faults/transfers.h"
#include "hostile/bytes.h"
#include "hostile/valid_files.h"
#include "support/temp_file.h"

#include <fstream>

namespace orvml_io_tests {
namespace {

/// What befalls a system call, and for how long.
struct Trouble {
  const char* name;
  SystemCall call;
  Mishap mishap;
  Failing failing;

  friend std::ostream& operator<<(std::ostream& stream, const Trouble& trouble) {
    return stream << trouble.name;
  }
};

std::string testName(const ::testing::TestParamInfo<Trouble>& info) { return info.param.name; }

class TransferTest : public ::testing::TestWithParam<Trouble> {
 protected:
  TransferTest() {
    const TempFile file;
    EXPECT_EQ(writeBoth(file.path(), sources_), 0);
    whole_ = readBoth(file.path()).documents;
  }

  /// Does something while the n-th call comes to grief.
  template <class Work>
  static Finding despite(int n, const Work& work) {
    Finding finding;
    const FailingSystemCall failure(GetParam().call, n, GetParam().mishap, GetParam().failing);
    finding.status = work();
    finding.function = failure.happened() ? GetParam().name : "";
    return finding;
  }

  [[nodiscard]] Finding writeDespite(int n) const {
    const TempFile file;
    Finding finding = despite(n, [&] { return writeBoth(file.path(), sources_); });
    finding.lost = finding.status == 0 ? lostIn(file) : "";
    const TempFile another;
    finding.lostAgain =
        writeBoth(another.path(), sources_) == 0 ? lostIn(another) : "the second result";
    return finding;
  }

  [[nodiscard]] Finding readDespite(int n, const TempFile& file) const {
    Outcome outcome;
    Finding finding = despite(n, [&] {
      outcome = readBoth(file.path());
      return outcome.status;
    });
    finding.lost = lostParts(whole_, outcome.documents);
    finding.lostAgain = lostIn(file);
    return finding;
  }

  [[nodiscard]] const Sources& sources() const { return sources_; }

 private:
  [[nodiscard]] std::string lostIn(const TempFile& file) const {
    return lostParts(whole_, readBoth(file.path()).documents);
  }

  Sources sources_;
  std::string whole_;
};

class FailedWrites : public TransferTest {};

TEST_P(FailedWrites, AreReported) {
  const int failures = forEachFailure([this](int n) { return writeDespite(n); },
                                      [](const Finding& finding) {
                                        EXPECT_NE(finding.status, 0);
                                        EXPECT_EQ(finding.lostAgain, "");
                                      });

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Troubles, FailedWrites,
    ::testing::Values(
        Trouble{"WriteErrorOnce", SystemCall::write, Mishap::inputOutputError, Failing::once},
        Trouble{"WriteErrors", SystemCall::write, Mishap::inputOutputError, Failing::fromThenOn},
        Trouble{"NoSpaceOnce", SystemCall::write, Mishap::noSpace, Failing::once},
        Trouble{"NoSpace", SystemCall::write, Mishap::noSpace, Failing::fromThenOn},
        Trouble{"LockErrors", SystemCall::lock, Mishap::inputOutputError, Failing::fromThenOn},
        Trouble{"NoLocks", SystemCall::lock, Mishap::noSpace, Failing::fromThenOn}),
    testName);

/// What the system may do to a transfer without having failed.
auto bearableTroublesOf(SystemCall call) {
  return ::testing::Values(Trouble{"InterruptedOnce", call, Mishap::interruption, Failing::once},
                           Trouble{"HalfOnce", call, Mishap::half, Failing::once},
                           Trouble{"Halves", call, Mishap::half, Failing::fromThenOn});
}

void expectNothingLost(const Finding& finding) {
  EXPECT_EQ(finding.status, 0);
  EXPECT_EQ(finding.lost, "");
}

class BearableWrites : public TransferTest {};

TEST_P(BearableWrites, WriteTheWholeFile) {
  const int failures = forEachFailure([this](int n) { return writeDespite(n); }, expectNothingLost);

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 10);
}

INSTANTIATE_TEST_SUITE_P(Troubles, BearableWrites, bearableTroublesOf(SystemCall::write), testName);

class FailedReads : public TransferTest {};

TEST_P(FailedReads, AreReportedExceptWhereAbsenceIsNoFailure) {
  const TempFile file;
  ASSERT_EQ(writeBoth(file.path(), sources()), 0);
  const std::string beginning = std::string("transfers ") + GetParam().name + ": ";
  std::set<std::string> rows;

  const int failures = forEachFailure(
      [this, &file](int n) { return readDespite(n, file); },
      [&rows, &beginning](const Finding& finding) {
        EXPECT_TRUE(finding.status == 0 || finding.status == 1 || finding.status == -1);
        EXPECT_EQ(finding.lost.find('+'), std::string::npos) << finding.lost;
        if (finding.status == 0 && !finding.lost.empty()) {
          rows.insert(beginning + finding.lost);
        }
      });

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 0);
  expectListed(rows, beginning);
}

INSTANTIATE_TEST_SUITE_P(Troubles, FailedReads,
                         ::testing::Values(Trouble{"ReadErrorOnce", SystemCall::read,
                                                   Mishap::inputOutputError, Failing::once},
                                           Trouble{"ReadErrors", SystemCall::read,
                                                   Mishap::inputOutputError, Failing::fromThenOn},
                                           Trouble{"LockErrorOnReading", SystemCall::lock,
                                                   Mishap::inputOutputError, Failing::once}),
                         testName);

class BearableReads : public TransferTest {};

TEST_P(BearableReads, ReadTheWholeFile) {
  const TempFile file;
  ASSERT_EQ(writeBoth(file.path(), sources()), 0);

  const int failures =
      forEachFailure([this, &file](int n) { return readDespite(n, file); }, expectNothingLost);

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 10);
}

INSTANTIATE_TEST_SUITE_P(Troubles, BearableReads, bearableTroublesOf(SystemCall::read), testName);

// HDF5 cuts a file to no bytes before it asks for the lock. When the lock cannot be had for
// whatever reason, the writer fails before that.
TEST(FailedLocks, LeaveTheOldContent) {
  const TempFile file;
  const Sources sources;
  ASSERT_EQ(writeInput(file.path(), sources), 0);
  const Bytes before = bytesOf(file.path());

  const Finding finding = findInChild([&] {
    const FailingSystemCall failure(SystemCall::lock, 1, Mishap::inputOutputError,
                                    Failing::fromThenOn);
    return Finding{"flock", writeBoth(file.path(), sources), "", ""};
  });

  EXPECT_EQ(finding.status, 1);
  EXPECT_EQ(bytesOf(file.path()), before);
}

// HDF5 does without locks where the system has none, and so does the look before it: whatever
// stands at the path is replaced.
TEST(MissingLocks, KeepNobodyFromWriting) {
  const TempFile file;
  const Sources sources;
  std::ofstream(file.path()) << "no HDF5 file";

  const Finding finding = findInChild([&] {
    const FailingSystemCall failure(SystemCall::lock, 1, Mishap::noSuchCall, Failing::fromThenOn);
    return Finding{"flock", writeBoth(file.path(), sources), "", ""};
  });

  EXPECT_EQ(finding.status, 0);
}

// A disk of ever more pages: on the first ones a document does not fit, and on the last one it
// does.
TEST(FullDisks, AreReportedUntilTheDocumentFits) {
  constexpr std::size_t kPage = 4096;
  const Sources sources;
  bool hasFitted = false;
  for (std::size_t pages = 1; pages < 40 && !hasFitted; ++pages) {
    SCOPED_TRACE(std::to_string(pages) + " pages");
    const Finding finding = findInChild([&] {
      const SmallDisk disk(pages * kPage);
      if (!disk.isMounted()) {
        return Finding{"mount", 99, "", ""};
      }
      const std::string path = disk.path("f.h5");
      const int status = writeBoth(path.c_str(), sources);
      return Finding{"", status, status == 0 ? readBoth(path.c_str()).documents : "", ""};
    });
    if (finding.status == 99) {
      GTEST_SKIP() << "this user may not mount file systems";
    }
    hasFitted = finding.status == 0;
    EXPECT_EQ(hasFitted, !finding.lost.empty());
  }

  EXPECT_TRUE(hasFitted);
}

}  // namespace
}  // namespace orvml_io_tests
