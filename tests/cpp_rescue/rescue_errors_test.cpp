// When nothing is written, and why; and what a rescue leaves alone.
#include "cpp/errors.h"
#include "cpp_rescue/small_file.h"
#include "files/exchange_file_fixture.h"
#include "support/captured_output.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Code;

/// A file of which nothing can be saved.
struct HopelessRow {
  const char* name;
  void (*make)(const char* path);
  Code code;
  std::string sentence;

  friend std::ostream& operator<<(std::ostream& stream, const HopelessRow& row) {
    return stream << row.name;
  }
};

const HopelessRow kHopelessFiles[] = {
    {"NoFile", [](const char*) {}, Code::fileNotFound, "there is no such file"},
    {"Empty", [](const char* path) { writeBytes(path, ""); }, Code::fileEmpty, "is empty"},
    {"Text", [](const char* path) { writeBytes(path, "solid part\n"); }, Code::fileNotHdf5,
     "is not an HDF5 file"},
    {"ItsFirstBytes",
     [](const char* path) {
       makeSmallFile(path);
       writeBytes(path, bytesOf(path).substr(0, 60));
     },
     Code::fileCutOff, "is an HDF5 file whose end is missing"},
    {"AnotherHdf5File",
     [](const char* path) {
       RawFile file = RawFile::create(path);
       file.group("/Mesh");
     },
     Code::fileNotExchange,
     "is an HDF5 file without the marker and the documents of exchange files"},
    {"NoDocument", [](const char* path) { RawFile::createMarked(path).group("/Mesh"); },
     Code::rescueNothingLeft,
     "holds nothing that can be saved: /Mesh does not belong to the format"},
    {"ADocumentWithoutAnything",
     [](const char* path) {
       RawFile file = RawFile::createMarked(path);
       file.documentGroup("/OrvInput", 3);
       file.group("/OrvInput/Nodes");
     },
     Code::rescueNothingLeft,
     "holds nothing that can be saved: /OrvInput/Nodes/coordinates is missing"}};

class HopelessFiles : public ::testing::TestWithParam<HopelessRow> {
 protected:
  HopelessFiles() { GetParam().make(damaged_.path()); }
  TempFile damaged_;
  TempFile sound_;
};

TEST_P(HopelessFiles, AreRefused) {
  const orvml::Error error = errorOf([&] { (void)orvml::rescue(damaged_.path(), sound_.path()); });

  EXPECT_EQ(text(error.code()), text(GetParam().code));
  EXPECT_EQ(error.sentence(), GetParam().sentence);
  EXPECT_EQ(error.file(), damaged_.path());
}

TEST_P(HopelessFiles, LeaveWhatStandsAtTheOtherPath) {
  writeBytes(sound_.path(), "a file of before");

  (void)errorOf([&] { (void)orvml::rescue(damaged_.path(), sound_.path()); });

  EXPECT_EQ(bytesOf(sound_.path()), "a file of before");
}

TEST_P(HopelessFiles, AreRefusedInTheSameWordsWithoutAProcessOfTheirOwn) {
  const orvml::Error error = errorOf(
      [&] { (void)orvml::rescue(damaged_.path(), sound_.path(), {.inOwnProcess = false}); });

  EXPECT_EQ(text(error.code()), text(GetParam().code));
  EXPECT_EQ(error.sentence(), GetParam().sentence);
  EXPECT_EQ(error.file(), damaged_.path());
}

INSTANTIATE_TEST_SUITE_P(Rescue, HopelessFiles, ::testing::ValuesIn(kHopelessFiles), RowName());

class RescuedFiles : public ::testing::Test {
 protected:
  RescuedFiles() { makeSmallFile(damaged_.path()); }
  TempFile damaged_;
  TempFile sound_;
};

TEST_F(RescuedFiles, AreNotWrittenOntoThemselves) {
  const std::string before = bytesOf(damaged_.path());

  const orvml::Error error =
      errorOf([&] { (void)orvml::rescue(damaged_.path(), damaged_.path()); });

  EXPECT_EQ(text(error.code()), "orvml.rescue.same-file");
  EXPECT_EQ(error.sentence(), "is the file that is read");
  EXPECT_EQ(bytesOf(damaged_.path()), before);
}

TEST_F(RescuedFiles, AreNotWrittenOntoThemselvesByAnotherName) {
  std::filesystem::create_symlink(damaged_.path(), sound_.path());

  EXPECT_EQ(codeOf([&] { (void)orvml::rescue(damaged_.path(), sound_.path()); }),
            text(Code::rescueSameFile));
  EXPECT_EQ(codeOf([&] { (void)orvml::upgrade(damaged_.path(), sound_.path()); }),
            text(Code::rescueSameFile));
}

TEST_F(RescuedFiles, StayAsTheyAre) {
  const std::string before = bytesOf(damaged_.path());

  (void)orvml::rescue(damaged_.path(), sound_.path());

  EXPECT_EQ(bytesOf(damaged_.path()), before);
}

TEST_F(RescuedFiles, NeedAFolderForTheNewFile) {
  const std::string nowhere = std::string(sound_.path()) + ".missing/sound.h5";

  const orvml::Error error = errorOf([&] { (void)orvml::rescue(damaged_.path(), nowhere); });

  EXPECT_EQ(text(error.code()), text(Code::folderNotFound));
  EXPECT_EQ(error.file(), nowhere);
}

TEST_F(RescuedFiles, AreReportedAlikeWithoutAProcessOfTheirOwn) {
  RawFile file = RawFile::openForWriting(damaged_.path());
  replaceInts(file, "/OrvInput/Elements/connectivities", {0, 1, 2, -3, 1, 2, 3, 4});
  file.removeAttribute("/", "FORMAT");
  file.close();

  const orvml::RescueReport apart = orvml::rescue(damaged_.path(), sound_.path());
  const orvml::RescueReport here =
      orvml::rescue(damaged_.path(), sound_.path(), {.inOwnProcess = false});

  EXPECT_EQ(toldOf(apart), toldOf(here));
  EXPECT_NE(toldOf(apart), "");
  EXPECT_EQ(toldOf(apart.changed), toldOf(here.changed));
  EXPECT_NE(toldOf(apart.changed), "");
}

}  // namespace
}  // namespace orvml_io_tests
