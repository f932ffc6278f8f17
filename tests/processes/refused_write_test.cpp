// A write that is not done leaves the file that was there, byte for byte, and nothing beside it.
#include "processes/exchange_folder.h"
#include "processes/other_process.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace orvml_io_tests {
namespace {

const MeshDocument kStored = {800, "quality"};
const MeshDocument kReplacement = {2000, "id"};

class RefusedWrite : public ::testing::Test {
 protected:
  RefusedWrite() : path_(folder_.path("out.h5")) {
    EXPECT_EQ(writer_.write(path_, kStored), "0");
    before_ = bytesIn(path_);
    listing_ = folder_.listing();
  }

  void expectNothingChanged() {
    EXPECT_EQ(bytesIn(path_), before_);
    EXPECT_EQ(folder_.listing(), listing_);
  }

  ExchangeFolder folder_;
  std::string path_;
  OtherProcess reader_;
  OtherProcess writer_;
  std::string before_;
  std::vector<std::string> listing_;
};

TEST_F(RefusedWrite, OfAProcessThatHasReadTheFileItself) {
  ASSERT_EQ(writer_.read(path_), wholeDocument(kStored));

  EXPECT_EQ(writer_.write(path_, kReplacement), "1");

  expectNothingChanged();
}

TEST_F(RefusedWrite, OfAProcessThatHasReadTheFileItselfBesideOthers) {
  ASSERT_EQ(reader_.read(path_), wholeDocument(kStored));
  ASSERT_EQ(writer_.read(path_), wholeDocument(kStored));

  EXPECT_EQ(writer_.write(path_, kReplacement), "1");

  expectNothingChanged();
}

TEST_F(RefusedWrite, OfAFileThatAnotherProcessWrites) {
  {
    const OtherProcess holder;
    ASSERT_EQ(holder.ask("hold " + path_), "held");
    before_ = bytesIn(path_);

    EXPECT_EQ(writer_.write(path_, kReplacement), "1");

    expectNothingChanged();
  }
  EXPECT_EQ(writer_.write(path_, kReplacement), "0") << "when it is held no more";
}

TEST_F(RefusedWrite, OfAFileThatIsNoHdf5FileAndThatAnotherProcessWrites) {
  path_ = folder_.path("notes");
  std::ofstream(path_) << "these are no documents" << std::flush;
  before_ = bytesIn(path_);
  listing_ = folder_.listing();
  ASSERT_EQ(reader_.ask("lock " + path_ + " exclusive"), "locked");

  EXPECT_EQ(writer_.write(path_, kReplacement), "1");

  expectNothingChanged();
}

/// A writer that may write the file, and reads no other one's mind: folders decide what it can do.
class RefusedWriteOfAnOrdinaryUser : public RefusedWrite {
 protected:
  void readAndBecomeOrdinary(mode_t permissionsOfFolder) {
    ASSERT_EQ(::chmod(path_.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), permissionsOfFolder), 0);
    ASSERT_EQ(reader_.read(path_), wholeDocument(kStored));
    ASSERT_EQ(reader_.ask("map " + path_), "mapped");
    ASSERT_EQ(writer_.ask("ordinary"), "ordinary");
  }
};

TEST_F(RefusedWriteOfAnOrdinaryUser, ForWantOfPermissionToMakeAFileBesideIt) {
  readAndBecomeOrdinary(0555);

  EXPECT_EQ(writer_.write(path_, kReplacement), "1");

  expectNothingChanged();
  EXPECT_EQ(reader_.ask("possessions"), describe(kStored) + ", mapping unchanged, ");
}

// In a folder like the system's for temporary files, everybody may make files, and nobody may take
// another one's away.
TEST_F(RefusedWriteOfAnOrdinaryUser, ForWantOfPermissionToTakeThePlaceOfAnothersFile) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "the file has to be another user's";
  }
  readAndBecomeOrdinary(01777);

  EXPECT_EQ(writer_.write(path_, kReplacement), "1");

  expectNothingChanged();
  EXPECT_EQ(reader_.ask("possessions"), describe(kStored) + ", mapping unchanged, ");
}

// Ever more room: at first the document does not fit, and at the end it does.
TEST_F(RefusedWrite, ForWantOfRoomUntilTheDocumentFits) {
  ASSERT_EQ(reader_.read(path_), wholeDocument(kStored));
  ASSERT_EQ(reader_.ask("map " + path_), "mapped");
  int refused = 0;
  bool hasFitted = false;
  for (int bytes = 512; bytes < 1000 * 1000 && !hasFitted; bytes += bytes / 4) {
    SCOPED_TRACE(std::to_string(bytes) + " bytes");
    const OtherProcess writer;
    ASSERT_EQ(writer.ask("limit " + std::to_string(bytes)), "limited");
    hasFitted = writer.write(path_, kReplacement) == "0";
    if (!hasFitted) {
      ++refused;
      expectNothingChanged();
    }
  }

  EXPECT_GT(refused, 3);
  ASSERT_TRUE(hasFitted);
  EXPECT_EQ(reader_.ask("possessions"), describe(kStored) + ", mapping unchanged, ");
  EXPECT_EQ(reader_.read(path_), wholeDocument(kReplacement));
  EXPECT_EQ(folder_.listing(), listing_);
}

// A writer that is killed cannot remove what it made; nobody else is disturbed by it.
TEST_F(RefusedWrite, OfAProcessThatIsKilledLeavesTheOldFileAndOneOfAHiddenName) {
  ASSERT_EQ(reader_.read(path_), wholeDocument(kStored));
  ASSERT_EQ(reader_.ask("map " + path_), "mapped");
  ASSERT_EQ(writer_.ask("fatal-limit 8192"), "limited");

  EXPECT_EQ(writer_.ask("child exec " + path_ + " " + commandToWrite(path_, kReplacement)), "");

  EXPECT_EQ(bytesIn(path_), before_);
  const std::vector<std::string> left = folder_.listing();
  ASSERT_EQ(left.size(), listing_.size() + 1);
  EXPECT_EQ(left[0].find(folder_.path(".orvml_io-")), 0U) << left[0];
  ASSERT_EQ(writer_.ask("fatal-limit 0"), "limited");
  EXPECT_EQ(writer_.write(path_, kReplacement), "0");
  EXPECT_EQ(reader_.ask("possessions"), describe(kStored) + ", mapping unchanged, ");
  EXPECT_EQ(reader_.read(path_), wholeDocument(kReplacement));
}

TEST_F(RefusedWrite, ForWantOfRoomIsDoneByTheSameProcessOnceThereIsSome) {
  ASSERT_EQ(reader_.read(path_), wholeDocument(kStored));
  ASSERT_EQ(writer_.ask("limit 8192"), "limited");
  ASSERT_NE(writer_.write(path_, kReplacement), "0");
  expectNothingChanged();
  ASSERT_EQ(writer_.ask("limit 0"), "limited");

  EXPECT_EQ(writer_.write(path_, kReplacement), "0");

  EXPECT_EQ(reader_.read(path_), wholeDocument(kReplacement));
  EXPECT_EQ(folder_.listing(), listing_);
}

}  // namespace
}  // namespace orvml_io_tests
