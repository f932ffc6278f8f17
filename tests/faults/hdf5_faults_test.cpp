// Every HDF5 call of the readers and the writers fails in turn, once and from then on. A writer
// either fails or has written everything. A reader either fails or has read everything, except
// where the format takes what cannot be opened for absent: those places are listed in
// incomplete_reads, one list for each series of HDF5, which may only shrink.
#include "faults/child.h"
#include "faults/finding.h"
#include "faults/hdf5_calls.h"
#include "faults/incomplete_reads.h"
#include "faults/outcome.h"
#include "hostile/valid_files.h"
#include "orvml_io.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace orvml_io_tests {
namespace {

/// One way to read a valid file.
struct Reading {
  const char* name;
  const char* version;
  Outcome (*read)(const char* path);

  friend std::ostream& operator<<(std::ostream& stream, const Reading& reading) {
    return stream << reading.name;
  }
};

class FailingReads : public ::testing::TestWithParam<std::tuple<Reading, Failing>> {
 protected:
  FailingReads() {
    ValidFile{reading().name, reading().version}.make(file_.path());
    whole_ = runInChild([this] { return reading().read(file_.path()).documents; }).text;
  }

  [[nodiscard]] static Reading reading() { return std::get<0>(GetParam()); }
  [[nodiscard]] static Failing failing() { return std::get<1>(GetParam()); }
  [[nodiscard]] static std::string rowBeginning() {
    return std::string(reading().name) + " " + nameOf(failing()) + " ";
  }

  [[nodiscard]] Finding readDespite(int n) const {
    Finding finding;
    Outcome outcome;
    {
      const FailingHdf5Call failure(n, failing());
      outcome = reading().read(file_.path());
      finding.function = failure.function();
    }
    finding.status = outcome.status;
    finding.lost = lostParts(whole_, outcome.documents);
    finding.lostAgain = lostParts(whole_, reading().read(file_.path()).documents);
    return finding;
  }

 private:
  TempFile file_;
  std::string whole_;
};

TEST_P(FailingReads, AreReportedExceptWhereAbsenceIsNoFailure) {
  std::set<std::string> rows;
  const int failures = forEachFailure(
      [this](int n) { return readDespite(n); },
      [&rows](const Finding& finding) {
        EXPECT_TRUE(finding.status == 0 || finding.status == 1 || finding.status == -1)
            << finding.function << " " << finding.status;
        EXPECT_EQ(finding.lostAgain, "") << finding.function;
        EXPECT_EQ(finding.lost.find('+'), std::string::npos)
            << finding.function << ": " << finding.lost;
        if (finding.status == 0 && !finding.lost.empty()) {
          rows.insert(rowBeginning() + finding.function + ": " + finding.lost);
        }
      });

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 30);
  expectListed(rows, rowBeginning());
}

const Reading kReadings[] = {{"Input", "1.4", readInput},
                             {"Output", "1.4", readOutput},
                             {"Both", "1.4", readBoth},
                             {"LegacyInput", "1.3", readInput}};

template <class Way>
std::string testName(const ::testing::TestParamInfo<std::tuple<Way, Failing>>& info) {
  return std::string(std::get<0>(info.param).name) +
         (std::get<1>(info.param) == Failing::once ? "Once" : "FromThenOn");
}

INSTANTIATE_TEST_SUITE_P(Readers, FailingReads,
                         ::testing::Combine(::testing::ValuesIn(kReadings),
                                            ::testing::Values(Failing::once, Failing::fromThenOn)),
                         testName<Reading>);

// A text whose kind cannot be found out is not taken for one of fixed length: of a text of variable
// length a file holds a pointer, which is no text.
TEST(FailingReadsOfVariableLengthTexts, GiveTheTextOrNone) {
  const TempFile file;
  makeCurrentFile(file.path());
  {
    RawFile raw = RawFile::openForWriting(file.path());
    const char* name = "variable";
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, H5T_VARIABLE);
    raw.removeAttribute("/", "ORVML_MODULE_NAME");
    raw.attribute("/", "ORVML_MODULE_NAME", type, {}, &name);
    H5Tclose(type);
  }

  const auto readDespite = [&file](int n) {
    const FailingHdf5Call failure(n, Failing::once);
    void* input = nullptr;
    Finding finding;
    finding.status = OrvML_IO_ReadOrvInput(file.path(), input);
    finding.function = failure.function();
    finding.lost = input == nullptr ? "" : OrvML_IO_GetOrvMeshLibraryModuleName(input);
    OrvML_IO_DeleteOrvInputHandle(input);
    return finding;
  };
  const int failures = forEachFailure(readDespite, [](const Finding& finding) {
    EXPECT_TRUE(finding.lost.empty() || finding.lost == "variable")
        << finding.function << " gives " << ::testing::PrintToString(finding.lost);
  });

  EXPECT_GT(failures, 30);
}

/// One way to write documents, and to read them back.
struct Writing {
  const char* name;
  int (*write)(const char* path, const Sources& sources);
  Outcome (*read)(const char* path);

  friend std::ostream& operator<<(std::ostream& stream, const Writing& writing) {
    return stream << writing.name;
  }
};

class FailingWrites : public ::testing::TestWithParam<std::tuple<Writing, Failing>> {
 protected:
  FailingWrites() {
    whole_ = runInChild([this] {
               const TempFile file;
               (void)writing().write(file.path(), sources_);
               return writing().read(file.path()).documents;
             }).text;
  }

  [[nodiscard]] static Writing writing() { return std::get<0>(GetParam()); }
  [[nodiscard]] static Failing failing() { return std::get<1>(GetParam()); }

  [[nodiscard]] Finding writeDespite(int n) const {
    const TempFile file;
    Finding finding;
    {
      const FailingHdf5Call failure(n, failing());
      finding.status = writing().write(file.path(), sources_);
      finding.function = failure.function();
    }
    if (finding.status == 0) {
      finding.lost = lostIn(file);
    }
    const TempFile another;
    finding.lostAgain =
        writing().write(another.path(), sources_) == 0 ? lostIn(another) : "the second result";
    return finding;
  }

  /// Fails the n-th call of writing and reading together.
  [[nodiscard]] Finding writeAndReadDespite(int n) const {
    const TempFile file;
    Finding finding;
    Outcome outcome;
    {
      const FailingHdf5Call failure(n, failing());
      finding.status = writing().write(file.path(), sources_);
      outcome = writing().read(file.path());
      finding.function = failure.function();
    }
    finding.lost = lostParts(whole_, outcome.documents);
    finding.status = finding.status == 0 ? outcome.status : finding.status;
    return finding;
  }

 private:
  [[nodiscard]] std::string lostIn(const TempFile& file) const {
    return lostParts(whole_, writing().read(file.path()).documents);
  }

  Sources sources_;
  std::string whole_;
};

TEST_P(FailingWrites, AreReportedOrTheFileIsComplete) {
  const int failures = forEachFailure([this](int n) { return writeDespite(n); },
                                      [](const Finding& finding) {
                                        EXPECT_EQ(finding.lost, "") << finding.function;
                                        EXPECT_EQ(finding.lostAgain, "") << finding.function;
                                      });

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 30);
}

// What a reader may lose without telling is listed for the readers alone; here it counts that
// neither function does harm, and that nothing is made up.
TEST_P(FailingWrites, FollowedByReadingInventNothing) {
  const int failures = forEachFailure([this](int n) { return writeAndReadDespite(n); },
                                      [](const Finding& finding) {
                                        EXPECT_EQ(finding.lost.find('+'), std::string::npos)
                                            << finding.function << ": " << finding.lost;
                                      });

  RecordProperty("failures", failures);
  EXPECT_GT(failures, 30);
}

const Writing kWritings[] = {{"Input", writeInput, readInput},
                             {"Output", writeOutput, readOutput},
                             {"Both", writeBoth, readBoth}};

INSTANTIATE_TEST_SUITE_P(Writers, FailingWrites,
                         ::testing::Combine(::testing::ValuesIn(kWritings),
                                            ::testing::Values(Failing::once, Failing::fromThenOn)),
                         testName<Writing>);

}  // namespace
}  // namespace orvml_io_tests
