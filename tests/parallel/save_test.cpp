#include <orvml/fingerprint.hpp>
#include <orvml/load.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/calls.h"
#include "support/documents.h"
#include "support/objects.h"
#include "support/parts.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>

namespace orvml_parallel_tests {

namespace {

using orvml::Entity;

class ParallelSave : public testing::TestWithParam<NamedDocument> {};

std::string nameOfRow(const testing::TestParamInfo<NamedDocument>& row) {
  std::string name = row.param.name;
  std::erase(name, ' ');
  return name;
}

/// Arrays that HDF5 writes as they are, without a buffer of its own, the last ones of the file too.
orvml::Output largeArrays() {
  orvml::Output document({"M", "1", "C"}, 3);
  document.setNodes(std::vector<double>(60000, 0.5));
  std::vector<double> waves(20000);
  for (std::size_t i = 0; i < waves.size(); ++i) {
    waves[i] = static_cast<double>(i) / 3;
  }
  document.setAttribute(Entity::nodes, "waves", std::move(waves));
  return document;
}

INSTANTIATE_TEST_SUITE_P(Documents, ParallelSave, testing::ValuesIn(documents()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(LargeDocuments, ParallelSave,
                         testing::Values(NamedDocument{"large arrays", largeArrays}), nameOfRow);

TEST_P(ParallelSave, MakesTheFileOfOneProcessObjectByObject) {
  const SharedFolder folder;
  const orvml::Output whole = GetParam().make();
  if (rank() == 0) {
    orvml::save(folder.path("serial.h5"), whole);
  }

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("parallel.h5"),
                        partOf(whole.view(), unevenly(ranks()), rank()));

  if (rank() == 0) {
    EXPECT_EQ(objectsOf(folder.path("serial.h5")), objectsOf(folder.path("parallel.h5")));
  }
}

TEST_P(ParallelSave, KeepsTheFingerprintWhateverTheShares) {
  const SharedFolder folder;
  const orvml::Output whole = GetParam().make();
  for (const std::vector<int>& weights : {evenly(ranks()), unevenly(ranks())}) {
    orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"),
                          partOf(whole.view(), weights, rank()), {.flush = false});

    const orvml::Output read = orvml::loadOutput(folder.path("file.h5"));
    EXPECT_EQ(orvml::fingerprint(whole.view()), orvml::fingerprint(read.view()));
    MPI_Barrier(MPI_COMM_WORLD);
  }
}

TEST_P(ParallelSave, WritesSlicesAsTheyWereLoaded) {
  const SharedFolder folder;
  const orvml::Output whole = GetParam().make();
  if (rank() == 0) {
    orvml::save(folder.path("serial.h5"), whole);
  }
  MPI_Barrier(MPI_COMM_WORLD);
  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("serial.h5"));

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("parallel.h5"), slice.view());

  if (rank() == 0) {
    EXPECT_EQ(objectsOf(folder.path("serial.h5")), objectsOf(folder.path("parallel.h5")));
  }
}

orvml::Input smallInput() {
  orvml::Input input({"M", "2", "C"}, 2);
  input.setNodes(std::vector<double>{0, 1, 2, 3, 4, 5, 6, 7});
  input.setParameter("p", 1);
  return input;
}

TEST(ParallelSaveOfTwo, MakesTheFileOfOneProcess) {
  const SharedFolder folder;
  const orvml::Input input = smallInput();
  const orvml::Output output = mixedShapes();
  if (rank() == 0) {
    orvml::save(folder.path("serial.h5"), input, output);
  }

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("parallel.h5"),
                        partOf(input.view(), evenly(ranks()), rank()),
                        partOf(output.view(), unevenly(ranks()), rank()));

  if (rank() == 0) {
    EXPECT_EQ(objectsOf(folder.path("serial.h5")), objectsOf(folder.path("parallel.h5")));
  }
}

TEST_P(ParallelSave, MakesTheSameFileWithCollectiveCalls) {
  const SharedFolder folder;
  const orvml::Output whole = GetParam().make();
  const orvml::DocumentView part = partOf(whole.view(), unevenly(ranks()), rank());

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("independent.h5"), part);
  orvml::parallel::save(MPI_COMM_WORLD, folder.path("collective.h5"), part, {},
                        orvml::parallel::Transfer::collective);

  if (rank() == 0) {
    EXPECT_EQ(objectsOf(folder.path("independent.h5")), objectsOf(folder.path("collective.h5")));
  }
}

TEST(ParallelSaveInPlace, FollowsASymbolicLink) {
  const SharedFolder folder;
  if (rank() == 0) {
    orvml::save(folder.path("file.h5"), withoutMesh());
    std::filesystem::create_symlink("file.h5", folder.path("link.h5"));
  }
  MPI_Barrier(MPI_COMM_WORLD);
  const orvml::Output box = boxOf(3, 3, 3);

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("link.h5"),
                        partOf(box.view(), evenly(ranks()), rank()));

  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.h5")));
  const orvml::Output read = orvml::loadOutput(folder.path("file.h5"));
  EXPECT_EQ(orvml::fingerprint(box.view()), orvml::fingerprint(read.view()));
  EXPECT_EQ(2, folder.numberOfFiles());
}

TEST(ParallelSaveOfTwo, TakesAnInputAndAnOutput) {
  const SharedFolder folder;
  const orvml::Output output = oneCell();
  const orvml::DocumentView part = partOf(output.view(), evenly(ranks()), rank());

  const std::string error =
      errorOf([&] { orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"), part, part); });

  EXPECT_NE(std::string::npos, error.find("wrong-kind")) << error;
}

TEST(ParallelSaveOfSlices, KeepsAnAttributeOfAnotherLength) {
  const SharedFolder folder;
  const orvml::Output output = mixedShapes();
  const std::vector<int> more = {rank(), rank() + 1, rank() + 2, 7, 8};
  const orvml::DocumentView part = partOf(output.view(), evenly(ranks()), rank());

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"),
                        withAttribute(part, Entity::elements, {"more", more}));

  const orvml::Output read = orvml::loadOutput(folder.path("file.h5"));
  const auto found = read.attributes(Entity::elements).at("more").ints();
  EXPECT_EQ(gathered(more), std::vector<int>(found.begin(), found.end()));
}

TEST(ParallelSaveInPlace, KeepsThePermissionsOfTheOldFile) {
  const SharedFolder folder;
  const orvml::Output output = oneCell();
  if (rank() == 0) {
    orvml::save(folder.path("file.h5"), withoutMesh());
    ::chmod(folder.path("file.h5").c_str(), 0640);
  }
  MPI_Barrier(MPI_COMM_WORLD);

  orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"),
                        partOf(output.view(), evenly(ranks()), rank()));

  struct stat status = {};
  ASSERT_EQ(0, ::stat(folder.path("file.h5").c_str(), &status));
  EXPECT_EQ(0640U, status.st_mode & 0777U);
  EXPECT_EQ(1, folder.numberOfFiles());
}

/// What saving a box asks of MPI on this rank.
Calls callsOfSaving(const SharedFolder& folder, int size) {
  const orvml::Output box = boxOf(size, size, size);
  const orvml::DocumentView part = partOf(box.view(), evenly(ranks()), rank());
  const Calls before = callsSoFar();
  orvml::parallel::save(MPI_COMM_WORLD, folder.path("box.h5"), part, {.flush = false});
  return callsSoFar() - before;
}

TEST(ParallelSaveCounts, EachRankWritesItsShare) {
  const SharedFolder folder;
  const Calls calls = callsOfSaving(folder, 30);

  const double bytes = 31. * 31 * 31 * (3 * 8 + 12) + 27000 * (8 * 4 + 12.) + 900 * (4 * 4 + 12.) +
                       30 * (2 * 4 + 12.);
  EXPECT_LE(static_cast<double>(calls.bytesWritten), 1.1 * bytes / ranks() + 1000);
}

TEST(ParallelSaveCounts, CollectiveCallsDoNotGrowWithTheMesh) {
  const SharedFolder folder;
  const Calls small = callsOfSaving(folder, 8);
  const Calls large = callsOfSaving(folder, 40);

  EXPECT_GT(small.collectives, 0);
  EXPECT_EQ(small.collectives, large.collectives);
}

}  // namespace

}  // namespace orvml_parallel_tests
