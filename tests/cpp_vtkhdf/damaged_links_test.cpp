// Damaged and hostile files: whatever stands in one, it is linked so that the group fits itself and
// no index leads out of the points, or it is refused and stays as it is.
//
// HDF5 1.10 falls on some damages of its own structures; a file with such has a process of its own.
#include "cpp_files/sample.h"
#include "cpp_rescue/small_file.h"
#include "cpp_vtkhdf/linked_file.h"
#include "files/exchange_file_fixture.h"
#include "hostile/damages.h"
#include "hostile/isolated.h"
#include "hostile/valid_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

/// Expects of each array of one group that it has as many values as there are points or cells.
void expectLengths(const RawFile& file, const std::string& group, hsize_t length) {
  for (const std::string& name : file.members(group)) {
    EXPECT_EQ(file.shape(group + "/" + name).extents, Extents{length}) << group << "/" << name;
  }
}

/// What VTK relies on when it reads the group.
void expectSoundGroup(const char* path) {
  const RawFile file = RawFile::open(path);
  const int points = file.ints("/VTKHDF/NumberOfPoints").front();
  const int cells = file.ints("/VTKHDF/NumberOfCells").front();
  const std::vector<int> indices = file.ints("/VTKHDF/Connectivity");
  const std::vector<int> offsets = file.ints("/VTKHDF/Offsets");
  EXPECT_EQ(file.shape("/VTKHDF/Points").extents, (Extents{static_cast<hsize_t>(points), 3}));
  EXPECT_EQ(file.shape("/VTKHDF/Types").extents, Extents{static_cast<hsize_t>(cells)});
  EXPECT_EQ(file.shape("/VTKHDF/Connectivity").typeBytes, file.shape("/VTKHDF/Offsets").typeBytes);
  EXPECT_TRUE(std::is_sorted(offsets.begin(), offsets.end()));
  EXPECT_EQ(offsets.size(), static_cast<std::size_t>(cells) + 1);
  EXPECT_EQ(static_cast<std::size_t>(offsets.back()), indices.size());
  EXPECT_TRUE(std::all_of(indices.begin(), indices.end(),
                          [points](int index) { return index >= 0 && index < points; }));
  expectLengths(file, "/VTKHDF/PointData", static_cast<hsize_t>(points));
  expectLengths(file, "/VTKHDF/CellData", static_cast<hsize_t>(cells));
}

/// Links both documents of a file, one after the other. Returns how many could be.
int linkBoth(const char* path) {
  int linked = 0;
  for (const orvml::Kind kind : {orvml::Kind::input, orvml::Kind::output}) {
    const std::string before = bytesOf(path);
    if (codeOfLink(path, {.document = kind, .turnsPrisms = true, .save = {.flush = false}})
            .empty()) {
      ++linked;
      expectSoundGroup(path);
    } else {
      EXPECT_EQ(bytesOf(path), before);
    }
  }
  return linked;
}

void expectEndurance(const char* path, const std::string& trace) {
  const IsolatedRun run = runIsolated([&] { (void)linkBoth(path); });
  EXPECT_NE(run.ending, Ending::failed) << trace << "\n" << run.output;
}

std::vector<std::string> datasetsOf(const char* path) {
  std::vector<std::string> datasets;
  const RawFile file = RawFile::open(path);
  for (const std::string& object : allPaths(file)) {
    if (object.back() != '/') {
      datasets.push_back(object);
    }
  }
  return datasets;
}

/// Each damage falls on every dataset, or on every third one where the sanitizers make it take ten
/// times as long: other ones for other damages.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kDatasetStep = 3;
#else
constexpr std::size_t kDatasetStep = 1;
#endif

class DamagedDatasets : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedDatasets, AreLinkedSoundlyOrRefused) {
  const TempFile original;
  makeCurrentFile(original.path());
  const std::vector<std::string> datasets = datasetsOf(original.path());
  const std::size_t first = std::hash<std::string>()(GetParam().name) % kDatasetStep;
  for (std::size_t i = first; i < datasets.size(); i += kDatasetStep) {
    const std::string& dataset = datasets[i];
    const TempFile temp;
    makeCurrentFile(temp.path());
    {
      RawFile file = RawFile::openForWriting(temp.path());
      GetParam().apply(file, dataset);
    }

    SCOPED_TRACE(dataset);
    (void)linkBoth(temp.path());
  }
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedDatasets, ::testing::ValuesIn(damages()), RowName());

class DamagedFilesLinked : public ::testing::TestWithParam<ValidFile> {};

TEST_P(DamagedFilesLinked, SoundOnesAreLinkedWhatEverTheirFormat) {
  const TempFile temp;
  GetParam().make(temp.path());

  EXPECT_EQ(linkBoth(temp.path()), 2);
}

#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned kFiles = 5;
#else
constexpr unsigned kFiles = 24;
#endif

void expectEnduranceOfFlippedBits(const std::string& bytes) {
  for (unsigned seed = 0; seed < kFiles; ++seed) {
    std::mt19937 random(seed);
    std::string damaged = bytes;
    for (unsigned flips = 1 + random() % 4; flips > 0; --flips) {
      const std::size_t at = random() % damaged.size();
      damaged[at] = static_cast<char>(damaged[at] ^ static_cast<char>(1U << random() % 8));
    }
    const TempFile temp;
    writeBytes(temp.path(), damaged);

    expectEndurance(temp.path(), "seed " + std::to_string(seed));
  }
}

TEST_P(DamagedFilesLinked, FlippedBitsAreEndured) {
  const TempFile original;
  GetParam().make(original.path());
  expectEnduranceOfFlippedBits(bytesOf(original.path()));
}

// The group that is replaced may be damaged, too, and what lies in it belong to the document.
TEST_P(DamagedFilesLinked, FlippedBitsOfLinkedFilesAreEndured) {
  const TempFile original;
  GetParam().make(original.path());
  (void)orvml::linkVtk(original.path());
  expectEnduranceOfFlippedBits(bytesOf(original.path()));
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedFilesLinked, ::testing::ValuesIn(validFiles()), RowName());

// A document that hangs on the group would go with it.
TEST(HostileLinks, DocumentsThatLieInTheGroupAreNotRemovedWithIt) {
  const TempFile temp;
  orvml::save(temp.path(), outputOfAllKinds());
  (void)orvml::linkVtk(temp.path());
  {
    RawFile file = RawFile::openForWriting(temp.path());
    ASSERT_GE(
        H5Lmove(file.id(), "/OrvOutput", file.id(), "/VTKHDF/Moved", H5P_DEFAULT, H5P_DEFAULT), 0);
    ASSERT_GE(H5Lcreate_soft("/VTKHDF/Moved", file.id(), "/OrvOutput", H5P_DEFAULT, H5P_DEFAULT),
              0);
  }
  const std::string before = bytesOf(temp.path());

  EXPECT_THROW((void)orvml::unlinkVtk(temp.path()), orvml::Error);

  EXPECT_EQ(bytesOf(temp.path()), before);
}

}  // namespace
}  // namespace orvml_io_tests
