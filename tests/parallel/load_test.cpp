#include <orvml/fingerprint.hpp>
#include <orvml/load.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/calls.h"
#include "support/documents.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

namespace orvml_parallel_tests {

namespace {

using orvml::Code;
using orvml::Entity;
using orvml::parallel::Transfer;

/// Writes a file by the first rank alone, and lets the others wait.
void saveAlone(const std::filesystem::path& path, const orvml::Output& document) {
  if (rank() == 0) {
    orvml::save(path, document, {.flush = false});
  }
  MPI_Barrier(MPI_COMM_WORLD);
}

/// What all ranks throw when they load a file.
std::string errorOfAll(const std::filesystem::path& path) {
  return errorOf([&] { (void)orvml::parallel::load(MPI_COMM_WORLD, path); });
}

int keepName(dl_phdr_info* info, std::size_t /*bytes*/, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(info->dlpi_name);
  return 0;
}

TEST(ParallelLibrary, IsTheOnlyOneThatBringsAnHdf5) {
  std::vector<std::string> loaded;
  dl_iterate_phdr(keepName, &loaded);

  const auto numberOf = [&](const std::string& name) {
    return std::count_if(loaded.begin(), loaded.end(), [&](const std::string& path) {
      return path.find(name) != std::string::npos;
    });
  };
  EXPECT_EQ(1, numberOf("liborvml_parallel.so"));
  EXPECT_EQ(1, numberOf("libhdf5_openmpi.so"));
  EXPECT_EQ(1, numberOf("libhdf5"));
  EXPECT_EQ(0, numberOf("liborvml.so"));
  EXPECT_EQ(0, numberOf("liborvml_io.so"));
}

class ParallelLoad : public testing::TestWithParam<NamedDocument> {};

std::string nameOf(const testing::TestParamInfo<NamedDocument>& row) {
  std::string name = row.param.name;
  std::erase(name, ' ');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Documents, ParallelLoad, testing::ValuesIn(documents()), nameOf);

TEST_P(ParallelLoad, SlicesPutTogetherAreTheDocument) {
  const SharedFolder folder;
  const orvml::Output written = GetParam().make();
  saveAlone(folder.path("file.h5"), written);
  for (const Transfer transfer : {Transfer::independent, Transfer::collective}) {
    const orvml::parallel::Slice slice =
        orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"), transfer);

    const orvml::Output whole = assembled(slice);
    EXPECT_EQ(orvml::fingerprint(written.view()), orvml::fingerprint(whole.view()));
  }
}

TEST(ParallelLoadSlices, AreBlocksThatDifferByOneAtMost) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(9, 8, 7));

  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"));

  EXPECT_EQ(720, slice.total(Entity::nodes));
  EXPECT_EQ(504, slice.total(Entity::elements));
  EXPECT_EQ(720LL * rank() / ranks(), slice.nodes().first);
  EXPECT_EQ(slice.nodes().size, slice.view().nodes().size());
  ASSERT_EQ(1U, slice.groups(Entity::elements).size());
  const orvml::parallel::GroupBlock group = slice.groups(Entity::elements)[0];
  EXPECT_EQ(504LL * rank() / ranks(), group.here.first);
  EXPECT_EQ(504LL * (rank() + 1) / ranks() - group.here.first, group.here.size);
}

TEST(ParallelLoadSlices, HaveEachOfTheirValuesFromItsPlaceInTheFile) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), mixedShapes());

  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"));

  // The attribute counts cells from 3000 on, through all groups.
  const orvml::DocumentView view = slice.view();
  std::vector<int> expected;
  int firstOfGroup = 3000;
  for (const auto& group : slice.groups(Entity::elements)) {
    for (std::int64_t i = 0; i < group.here.size; ++i) {
      expected.push_back(firstOfGroup + static_cast<int>(group.here.first + i));
    }
    firstOfGroup += static_cast<int>(group.cells);
  }
  const auto found = view.elements().attributes().at("number").ints();
  EXPECT_EQ(expected, std::vector<int>(found.begin(), found.end()));
}

TEST(ParallelLoadOfFiles, ReadsBothDocumentsOfAFile) {
  const SharedFolder folder;
  orvml::Input input({"M", "2", "C"}, 2);
  input.setNodes(std::vector<double>{0, 1, 2, 3});
  input.setParameter("p", 1);
  if (rank() == 0) {
    orvml::save(folder.path("file.h5"), input, boxOf(2, 2, 2));
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const auto loaded = orvml::parallel::load(MPI_COMM_WORLD, folder.path("file.h5"));

  ASSERT_TRUE(loaded.input && loaded.output);
  EXPECT_EQ(2, loaded.input->total(Entity::nodes));
  EXPECT_EQ(1.0, loaded.input->view().parameters().at("p"));
  EXPECT_EQ(8, loaded.output->total(Entity::elements));
}

TEST(ParallelLoadOfFiles, ReadsTheMeshOfAnInput) {
  const SharedFolder folder;
  orvml::Input input({"M", "2", "C"}, 2);
  input.setNodes(std::vector<double>{0, 1, 2, 3, 4, 5});
  input.setCells(Entity::faces, orvml::Shape::triangle, 3, std::vector<int>{0, 1, 2, 2, 1, 0});
  input.setAttribute(Entity::faces, "colour", std::vector<int>{5, 6});
  if (rank() == 0) {
    orvml::save(folder.path("file.h5"), input);
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const auto slice = orvml::parallel::loadInput(MPI_COMM_WORLD, folder.path("file.h5"));

  EXPECT_EQ(orvml::Kind::input, slice.kind());
  const auto colours = slice.view().faces().attributes().at("colour").ints();
  EXPECT_EQ((std::vector<int>{5, 6}), gathered(std::vector(colours.begin(), colours.end())));
  const auto indices = slice.view().faces().groups()[0].nodeIndices();
  EXPECT_EQ((std::vector<int>{0, 1, 2, 2, 1, 0}),
            gathered(std::vector(indices.begin(), indices.end())));
}

/// Stores an array of a document anew, in another way.
void restore(const std::filesystem::path& path, const char* name, hid_t type,
             const std::vector<hsize_t>& extents, hsize_t chunk) {
  if (rank() == 0) {
    const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    const hid_t old = H5Dopen2(file, name, H5P_DEFAULT);
    std::vector<int> values(static_cast<std::size_t>(H5Dget_storage_size(old) / sizeof(int)));
    H5Dread(old, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    H5Dclose(old);
    H5Ldelete(file, name, H5P_DEFAULT);
    const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
    const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
    if (chunk > 0) {
      std::vector<hsize_t> chunks(extents.size(), 1);
      chunks[0] = chunk;
      H5Pset_chunk(creation, static_cast<int>(chunks.size()), chunks.data());
      H5Pset_deflate(creation, 6);
    }
    const hid_t made = H5Dcreate2(file, name, type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
    H5Dwrite(made, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    H5Dclose(made);
    H5Pclose(creation);
    H5Sclose(space);
    H5Fclose(file);
  }
  MPI_Barrier(MPI_COMM_WORLD);
}

TEST(ParallelLoadOfFiles, TakesArraysOfOtherRanksTypesAndLayouts) {
  const SharedFolder folder;
  const orvml::Output written = boxOf(5, 4, 3);
  saveAlone(folder.path("file.h5"), written);
  restore(folder.path("file.h5"), "/OrvOutput/Elements/connectivities", H5T_STD_I64BE, {60, 2, 4},
          0);
  restore(folder.path("file.h5"), "/OrvOutput/Elements/Attributes/number", H5T_STD_I16LE, {60, 1},
          7);

  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"));

  const orvml::Output whole = assembled(slice);
  EXPECT_EQ(orvml::fingerprint(written.view()).elements, orvml::fingerprint(whole.view()).elements);
  // The flag went with the old dataset.
  const orvml::Output read = orvml::loadOutput(folder.path("file.h5"));
  EXPECT_EQ(orvml::fingerprint(read.view()), orvml::fingerprint(whole.view()));
}

TEST(ParallelLoadOfFiles, DealsOutAnAttributeOfAnotherLengthInBlocks) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(5, 4, 3));
  restore(folder.path("file.h5"), "/OrvOutput/Nodes/Attributes/number", H5T_NATIVE_INT, {60}, 0);

  std::vector<int> mine;
  try {
    const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"));
    const auto values = slice.view().nodes().attributes().at("number").ints();
    mine.assign(values.begin(), values.end());
  } catch (const orvml::Error& error) {
    ADD_FAILURE() << error.what();
  }

  std::vector<int> expected(60);
  for (int i = 0; i < 60; ++i) {
    expected[static_cast<std::size_t>(i)] = i;
  }
  EXPECT_EQ(expected, gathered(mine));
}

TEST(ParallelLoadErrors, AreTheSameOnAllRanks) {
  const SharedFolder folder;
  if (rank() == 0) {
    std::ofstream(folder.path("text.h5")) << "no HDF5";
    std::filesystem::create_directory(folder.path("folder.h5"));
  }
  MPI_Barrier(MPI_COMM_WORLD);

  EXPECT_NE(std::string::npos, errorOfAll(folder.path("none.h5")).find("orvml.file.not-found"));
  EXPECT_NE(std::string::npos, errorOfAll(folder.path("text.h5")).find("orvml.file.not-hdf5"));
  EXPECT_NE(std::string::npos, errorOfAll(folder.path("folder.h5")).find("orvml.file.directory"));
}

TEST(ParallelLoadErrors, OfOneRankEndAll) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(9, 8, 7));

  std::string error;
  if (ranks() > 1) {
    failTransfers(rank() == ranks() - 1);
    error = errorOfAll(folder.path("file.h5"));
    failTransfers(false);
    EXPECT_NE(std::string::npos, error.find("orvml.object.unreadable|/OrvOutput/Nodes")) << error;
  }
}

TEST(ParallelLoadErrors, NameTheObjectThatIsNotAsItShouldBe) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(5, 4, 3));
  if (rank() == 0) {
    const hid_t file = H5Fopen(folder.path("file.h5").c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    H5Ldelete(file, "/OrvOutput/Elements/connectivities", H5P_DEFAULT);
    H5Fclose(file);
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const std::string error = errorOfAll(folder.path("file.h5"));

  EXPECT_NE(std::string::npos,
            error.find("orvml.object.missing|/OrvOutput/Elements/connectivities"))
      << error;
}

TEST(ParallelLoadErrors, ComeForAnArrayThatIsTooShort) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(5, 4, 3));
  restore(folder.path("file.h5"), "/OrvOutput/Elements/connectivities", H5T_NATIVE_INT, {59, 8}, 0);

  const std::string error = errorOfAll(folder.path("file.h5"));

  EXPECT_NE(std::string::npos,
            error.find("orvml.values.too-few|/OrvOutput/Elements/connectivities"))
      << error;
}

TEST(ParallelLoadErrors, NameTheRankThatDoesNotSeeTheFile) {
  if (ranks() == 1) {
    GTEST_SKIP() << "the only rank looks for the file first";
  }
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), oneCell());
  const auto path = folder.path(rank() == ranks() - 1 ? "elsewhere/file.h5" : "file.h5");

  const std::string error = errorOfAll(path);

  EXPECT_NE(std::string::npos, error.find("orvml.file.unreachable")) << error;
  EXPECT_NE(std::string::npos, error.find("rank " + std::to_string(ranks() - 1))) << error;
}

TEST(ParallelLoadErrors, TellOfAFileThatIsReplacedMeanwhile) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), oneCell());
  saveAlone(folder.path("new.h5"), boxOf(2, 2, 2));
  if (rank() == 0) {
    beforeNextOpen([&] { std::filesystem::rename(folder.path("new.h5"), folder.path("file.h5")); });
  }

  const std::string error = errorOfAll(folder.path("file.h5"));

  EXPECT_NE(std::string::npos, error.find("was replaced while it was being read")) << error;
}

TEST(ParallelLoadErrors, TellOfAFileThatIsBeingWritten) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), oneCell());
  const int writer = rank() == 0 ? ::open(folder.path("file.h5").c_str(), O_RDWR) : -1;
  if (rank() == 0) {
    EXPECT_EQ(0, ::flock(writer, LOCK_EX));
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const std::string error = errorOfAll(folder.path("file.h5"));

  EXPECT_NE(std::string::npos, error.find("orvml.file.held-for-writing")) << error;
  if (rank() == 0) {
    ::close(writer);
  }
}

TEST(ParallelLoadErrors, ComeForACountThatNothingIsStoredFor) {
  const SharedFolder folder;
  saveAlone(folder.path("file.h5"), boxOf(2, 2, 2));
  if (rank() == 0) {
    const hid_t file = H5Fopen(folder.path("file.h5").c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    H5Ldelete(file, "/OrvOutput/Nodes/coordinates", H5P_DEFAULT);
    const hsize_t extents[] = {600000000, 3};
    const hid_t space = H5Screate_simple(2, extents, nullptr);
    H5Dclose(H5Dcreate2(file, "/OrvOutput/Nodes/coordinates", H5T_NATIVE_DOUBLE, space, H5P_DEFAULT,
                        H5P_DEFAULT, H5P_DEFAULT));
    H5Sclose(space);
    H5Fclose(file);
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const std::string error = errorOfAll(folder.path("file.h5"));

  EXPECT_NE(std::string::npos, error.find("orvml.values.out-of-proportion|/OrvOutput/Nodes"))
      << error;
}

/// What a load of a box asks of MPI on this rank.
Calls callsOfLoading(const SharedFolder& folder, int x, int y, int z) {
  const auto path = folder.path("box" + std::to_string(x) + ".h5");
  saveAlone(path, boxOf(x, y, z));
  const Calls before = callsSoFar();
  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, path);
  return callsSoFar() - before;
}

TEST(ParallelLoadCounts, EachRankReadsItsShareAndTheFirstTheDescription) {
  const SharedFolder folder;
  const Calls calls = callsOfLoading(folder, 30, 30, 30);

  constexpr double kNodes = 31. * 31 * 31;
  constexpr double kElements = 27000;
  constexpr double kOthers = 900 + 30;  // faces and edges
  const double bytes = kNodes * (3 * 8 + 12) + kElements * (8 * 4 + 12) +
                       kOthers * (4 * 4 + 12);  // each with an int and a double beside it
  // The first rank reads what describes the objects, twice: by itself and for all.
  const double description = rank() == 0 ? 50000 : 0;
  constexpr double kRounding = 500;   // blocks differ by one
  constexpr double kCounting = 2000;  // what it takes to ask the system
  EXPECT_LE(static_cast<double>(calls.bytesRead), bytes / ranks() + kRounding + description);
  EXPECT_LE(static_cast<double>(calls.bytesFromSystem),
            1.1 * bytes / ranks() + 2 * description + kCounting);
  EXPECT_GE(static_cast<double>(calls.bytesRead), bytes / ranks() - kRounding);
}

TEST(ParallelLoadCounts, CollectiveCallsDoNotGrowWithTheMesh) {
  const SharedFolder folder;
  const Calls small = callsOfLoading(folder, 8, 8, 8);
  const Calls large = callsOfLoading(folder, 40, 40, 40);

  EXPECT_GT(small.collectives, 0);
  EXPECT_EQ(small.collectives, large.collectives);
}

}  // namespace

}  // namespace orvml_parallel_tests
