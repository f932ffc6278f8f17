// The disk is full, or fails, at every stage of a save: the old file stays as it is, nothing else
// is left, the error says what happened, and the process ends as if nothing had been.
#include <orvml/orvml.hpp>

#include "cpp_files/sample.h"
#include "faults/child.h"
#include "faults/finding.h"
#include "faults/small_disk.h"
#include "faults/transfers.h"
#include "support/open_ids.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <sstream>

namespace orvml_io_tests {
namespace {

constexpr char kNothingLeft[] = "no call is left";

/// What befalls a system call, and what saving says of it.
struct Trouble {
  const char* name;
  SystemCall call;
  Mishap mishap;
  Failing failing;
  orvml::Code code;
};

std::ostream& operator<<(std::ostream& stream, const Trouble& trouble) {
  return stream << trouble.name;
}

/// What is open: nothing that was not before.
std::string openings(const OpenIds& ids, std::ptrdiff_t descriptorsBefore) {
  std::ostringstream text;
  if (!(ids.opened() == IdCounts())) {
    text << ", open in HDF5: " << ids.opened();
  }
  if (openDescriptors() != descriptorsBefore) {
    text << ", open descriptors: " << openDescriptors() - descriptorsBefore;
  }
  return text.str();
}

/// Saves and tells the code of the error, or "saved", and what is open afterwards.
template <class Save>
std::string answerOf(const Save& save) {
  const OpenIds ids;
  const std::ptrdiff_t descriptors = openDescriptors();
  std::string answer = "saved";
  try {
    save();
  } catch (const orvml::Error& error) {
    answer = text(error.code());
  }
  return answer + openings(ids, descriptors);
}

/// Runs work in a process that ends as programs do.
ChildEnd runProgram(const std::function<std::string()>& work) {
  return runInChild(work, Ending::withExitFunctions);
}

class FailedSaves : public ::testing::TestWithParam<Trouble> {
 protected:
  FailedSaves() { orvml::save(path_, old_); }

  /// Saves in a child of its own while the n-th call comes to grief.
  ChildEnd saveDespite(int n) {
    return runProgram([&] {
      const FailingSystemCall failure(GetParam().call, n, GetParam().mishap, GetParam().failing);
      const std::string answer = answerOf([&] { orvml::save(path_, new_); });
      return failure.happened() ? answer : kNothingLeft;
    });
  }

  void expectOldFileAlone() const {
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"mesh.h5"});
    EXPECT_EQ(digestAt(path_), digestOf(old_));
  }

  TempFolder folder_;
  std::filesystem::path path_ = folder_ / "mesh.h5";
  orvml::Input old_ = inputWithEverything("old");
  orvml::Input new_ = inputWithEverything("new");
};

TEST_P(FailedSaves, KeepTheOldFileAndLeaveNothingBehind) {
  int n = 1;
  for (;; n += kFailureStep) {
    SCOPED_TRACE("failure " + std::to_string(n));
    const ChildEnd child = saveDespite(n);
    EXPECT_EQ(child.signal, 0);
    EXPECT_EQ(child.status, 0);
    if (child.text == kNothingLeft) {
      break;
    }
    EXPECT_EQ(child.text, text(GetParam().code));
    expectOldFileAlone();
    if (HasFailure()) {
      return;
    }
  }

  RecordProperty("failures", n - 1);
  EXPECT_GT(n, 1);
  EXPECT_EQ(digestAt(path_), digestOf(new_));
}

INSTANTIATE_TEST_SUITE_P(
    Troubles, FailedSaves,
    ::testing::Values(Trouble{"FullOnceOnWriting", SystemCall::write, Mishap::noSpace,
                              Failing::once, orvml::Code::noSpaceLeft},
                      Trouble{"FullOnWriting", SystemCall::write, Mishap::noSpace,
                              Failing::fromThenOn, orvml::Code::noSpaceLeft},
                      Trouble{"ErrorOnceOnWriting", SystemCall::write, Mishap::inputOutputError,
                              Failing::once, orvml::Code::fileNotWritten},
                      Trouble{"ErrorOnWriting", SystemCall::write, Mishap::inputOutputError,
                              Failing::fromThenOn, orvml::Code::fileNotWritten},
                      Trouble{"FullOnMoving", SystemCall::rename, Mishap::noSpace, Failing::once,
                              orvml::Code::noSpaceLeft},
                      Trouble{"ErrorOnMoving", SystemCall::rename, Mishap::inputOutputError,
                              Failing::once, orvml::Code::fileNotWritten}),
    RowName());

// The second flush is that of the folder, when the new file has taken its place.
class FailedFlushes : public FailedSaves {};

TEST_P(FailedFlushes, OfTheFileKeepTheOldOne) {
  const ChildEnd child = saveDespite(1);

  EXPECT_EQ(child.text, text(GetParam().code));
  EXPECT_EQ(child.status, 0);
  expectOldFileAlone();
}

TEST_P(FailedFlushes, OfTheFolderAreNoFailure) {
  const ChildEnd child = runProgram([&] {
    const FailingSystemCall failure(SystemCall::flush, 2, GetParam().mishap);
    return answerOf([&] { orvml::save(path_, new_); });
  });

  EXPECT_EQ(child.text, "saved");
  EXPECT_EQ(digestAt(path_), digestOf(new_));
}

INSTANTIATE_TEST_SUITE_P(Troubles, FailedFlushes,
                         ::testing::Values(Trouble{"Full", SystemCall::flush, Mishap::noSpace,
                                                   Failing::fromThenOn, orvml::Code::noSpaceLeft},
                                           Trouble{"Error", SystemCall::flush,
                                                   Mishap::inputOutputError, Failing::fromThenOn,
                                                   orvml::Code::fileNotWritten}),
                         RowName());

// What the system interrupts, or does by halves, is nobody's failure.
class BearableSaves : public FailedSaves {};

TEST_P(BearableSaves, PutTheWholeNewFileThere) {
  std::string answer;
  for (int n = 1; answer != kNothingLeft; n += kFailureStep) {
    SCOPED_TRACE("trouble " + std::to_string(n));
    orvml::save(path_, old_);
    answer = saveDespite(n).text;
    ASSERT_TRUE(answer == "saved" || answer == kNothingLeft) << answer;
    ASSERT_EQ(digestAt(path_), digestOf(new_));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Troubles, BearableSaves,
    ::testing::Values(
        Trouble{"InterruptedOnce", SystemCall::write, Mishap::interruption, Failing::once, {}},
        Trouble{"Halves", SystemCall::write, Mishap::half, Failing::fromThenOn, {}}),
    RowName());

// A process that is killed at every single write, or before the move, leaves the old file.
class KilledSaves : public FailedSaves {};

TEST_P(KilledSaves, LeaveTheOldFileAndAtMostAHiddenOne) {
  int kills = 0;
  for (int n = 1;; n += kFailureStep) {
    SCOPED_TRACE("call " + std::to_string(n));
    const ChildEnd child = saveDespite(n);
    if (child.signal != SIGKILL) {
      EXPECT_EQ(child.text, kNothingLeft);
      break;
    }
    ++kills;
    ASSERT_EQ(digestAt(path_), digestOf(old_));
    for (const std::string& name : folder_.names()) {
      ASSERT_TRUE(name == "mesh.h5" || name.rfind(".orvml_io-", 0) == 0) << name;
    }
  }

  EXPECT_GT(kills, 0);
  EXPECT_EQ(digestAt(path_), digestOf(new_));
}

INSTANTIATE_TEST_SUITE_P(
    Kills, KilledSaves,
    ::testing::Values(
        Trouble{"BeforeAWrite", SystemCall::write, Mishap::killBefore, Failing::once, {}},
        Trouble{"InsideAWrite", SystemCall::write, Mishap::killInside, Failing::once, {}},
        Trouble{"BeforeTheMove", SystemCall::rename, Mishap::killBefore, Failing::once, {}}),
    RowName());

/// Saves to a disk of so many bytes beside an old file. The answer tells what was left there.
std::string answerOnDisk(std::size_t bytes, const orvml::Input& old, const orvml::Input& made) {
  const SmallDisk disk(bytes);
  if (!disk.isMounted()) {
    return "not mounted";
  }
  const std::filesystem::path path = disk.path("mesh.h5");
  std::string answer = answerOf([&] { orvml::save(path, old); });
  if (answer == "saved") {
    answer = answerOf([&] { orvml::save(path, made); });
    answer += digestAt(path) == digestOf(answer == "saved" ? made : old) ? ", whole" : ", damaged";
  }
  const auto left = std::distance(std::filesystem::directory_iterator(disk.folder()),
                                  std::filesystem::directory_iterator());
  return answer + ", files: " + std::to_string(left);
}

// A disk of ever more pages: at first not even the old file fits, then that alone, then both.
TEST(SavesOnAFullDisk, KeepTheOldFileUntilBothFit) {
  constexpr std::size_t kPage = 4096;
  const orvml::Input old = inputWithEverything("old");
  const orvml::Input made = inputWithEverything("new");
  std::vector<std::string> answers;
  for (std::size_t pages = 1; pages < 100; ++pages) {
    const ChildEnd child = runProgram([&] { return answerOnDisk(pages * kPage, old, made); });
    if (child.text == "not mounted") {
      GTEST_SKIP() << "this user may not mount file systems";
    }
    ASSERT_EQ(child.signal, 0) << pages;
    ASSERT_EQ(child.status, 0) << pages << ": " << child.text;
    if (answers.empty() || answers.back() != child.text) {
      answers.push_back(child.text);
    }
  }

  EXPECT_EQ(answers, (std::vector<std::string>{"orvml.file.no-space, files: 0",
                                               "orvml.file.no-space, whole, files: 1",
                                               "saved, whole, files: 1"}));
}

}  // namespace
}  // namespace orvml_io_tests
