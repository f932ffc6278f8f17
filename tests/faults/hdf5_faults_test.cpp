// Every HDF5 call of the readers and the writers fails in turn, once and from then on. A writer
// either fails or has written everything. A reader either fails or has read everything, except
// where the format takes what cannot be opened for absent: those places are listed in
// incomplete_reads.txt, which may only shrink.
#include "faults/child.h"
#include "faults/hdf5_calls.h"
#include "faults/outcome.h"
#include "hostile/valid_files.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <tuple>

namespace orvml_io_tests {
namespace {

/// What a call of an exported function gave: its result, and the documents that came with it.
struct Outcome {
  int status = 0;
  std::string documents;
};

Outcome readInput(const char* path) {
  void* input = nullptr;
  const int status = OrvML_IO_ReadOrvInput(path, input);
  return {status, describeAndDelete(input)};
}

Outcome readOutput(const char* path) {
  void* output = nullptr;
  const int status = OrvML_IO_ReadOrvOutput(path, output);
  return {status, describeAndDelete(output)};
}

std::string beginEachLine(const std::string& beginning, const std::string& text) {
  std::istringstream in(text);
  std::string result;
  for (std::string line; std::getline(in, line);) {
    result += beginning + line + "\n";
  }
  return result;
}

Outcome readBoth(const char* path) {
  void* input = nullptr;
  void* output = nullptr;
  const int status = OrvML_IO_ReadOrvInputAndOrvOutput(path, input, output);
  const std::string ofInput = describeAndDelete(input);
  return {status,
          beginEachLine("input ", ofInput) + beginEachLine("output ", describeAndDelete(output))};
}

/// The documents that writers write.
struct Sources {
  BuiltDocument input = fullDocument();
  BuiltDocument output = documentWithMixedShapes();
};

int writeInput(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvInput(path, sources.input.handle());
}

int writeOutput(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvOutput(path, sources.input.handle());
}

int writeBoth(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvInputAndOrvOutput(path, sources.input.handle(), sources.output.handle());
}

/// What a child found after its n-th HDF5 call had failed.
struct Finding {
  std::string function;   // whose call failed; empty behind the last call
  int status = 0;         // the result of the exported function
  std::string lost;       // what was missing afterwards
  std::string lostAgain;  // what was missing when the same was done once more without failures
};

std::string textOf(const Finding& finding) {
  std::ostringstream out;
  out << finding.function << "\n"
      << finding.status << "\n"
      << finding.lost << "\n"
      << finding.lostAgain << "\n";
  return out.str();
}

Finding findingIn(const std::string& text) {
  std::istringstream in(text);
  Finding finding;
  std::string status;
  std::getline(in, finding.function);
  std::getline(in, status);
  std::getline(in, finding.lost);
  std::getline(in, finding.lostAgain);
  finding.status = std::atoi(status.c_str());
  return finding;
}

/// When HDF5's printing cannot be suspended, it prints.
bool isPrintingSwitch(const std::string& function) { return function.rfind("H5E", 0) == 0; }

/// Runs the work of one failure in a child. Whatever the child prints besides, and an end by a
/// signal, is a test failure.
Finding findInChild(const std::function<Finding()>& work) {
  const ChildEnd end = runInChild([&work] { return "\n=\n" + textOf(work()); });
  const std::size_t answer = end.text.rfind("\n=\n");
  EXPECT_EQ(end.signal, 0) << end.text;
  if (answer == std::string::npos) {
    ADD_FAILURE() << "no answer: " << end.text;
    return {};
  }
  const Finding finding = findingIn(end.text.substr(answer + 3));
  if (!isPrintingSwitch(finding.function)) {
    EXPECT_EQ(end.text.substr(0, answer), "") << finding.function;
  }
  return finding;
}

/// Finds what follows from the failure of each call in turn, up to the last one.
template <class Work, class Check>
void forEachCall(const Work& work, const Check& check) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    const Finding finding = findInChild([&work, n] { return work(n); });
    if (finding.function.empty()) {
      EXPECT_GT(n, 50) << "a document takes many calls";
      return;
    }
    check(finding);
    if (::testing::Test::HasFailure()) {
      return;
    }
  }
}

/// One way to read a valid file.
struct Reading {
  const char* name;
  const char* version;
  Outcome (*read)(const char* path);

  friend std::ostream& operator<<(std::ostream& stream, const Reading& reading) {
    return stream << reading.name;
  }
};

using Rows = std::set<std::string>;

/// The committed rows that begin with this text.
Rows listedRows(const std::string& beginning) {
  std::ifstream in(ORVML_IO_TESTS_INCOMPLETE_READS);
  EXPECT_TRUE(in.is_open());
  Rows rows;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(beginning, 0) == 0) {
      rows.insert(line);
    }
  }
  return rows;
}

Rows without(Rows rows, const Rows& others) {
  for (const std::string& row : others) {
    rows.erase(row);
  }
  return rows;
}

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
    finding.lost = joined(lostParts(whole_, outcome.documents), ", ");
    finding.lostAgain = joined(lostParts(whole_, reading().read(file_.path()).documents), ", ");
    return finding;
  }

 private:
  TempFile file_;
  std::string whole_;
};

TEST_P(FailingReads, AreReportedExceptWhereAbsenceIsNoFailure) {
  Rows rows;
  forEachCall([this](int n) { return readDespite(n); },
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

  EXPECT_EQ(joined(without(rows, listedRows(rowBeginning())), "\n"), "") << "not listed";
  EXPECT_EQ(joined(without(listedRows(rowBeginning()), rows), "\n"), "") << "to be taken out";
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
    finding.lost = joined(lostParts(whole_, outcome.documents), ", ");
    finding.status = finding.status == 0 ? outcome.status : finding.status;
    return finding;
  }

 private:
  [[nodiscard]] std::string lostIn(const TempFile& file) const {
    return joined(lostParts(whole_, writing().read(file.path()).documents), ", ");
  }

  Sources sources_;
  std::string whole_;
};

TEST_P(FailingWrites, AreReportedOrTheFileIsComplete) {
  forEachCall([this](int n) { return writeDespite(n); },
              [](const Finding& finding) {
                EXPECT_EQ(finding.lost, "") << finding.function;
                EXPECT_EQ(finding.lostAgain, "") << finding.function;
              });
}

// What a reader may lose without telling is listed for the readers alone; here it counts that
// neither function does harm, and that nothing is made up.
TEST_P(FailingWrites, FollowedByReadingInventNothing) {
  forEachCall([this](int n) { return writeAndReadDespite(n); },
              [](const Finding& finding) {
                EXPECT_EQ(finding.lost.find('+'), std::string::npos)
                    << finding.function << ": " << finding.lost;
              });
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
