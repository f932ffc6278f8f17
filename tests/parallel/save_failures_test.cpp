#include <orvml/fingerprint.hpp>
#include <orvml/load.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>
#include <orvml/parallel/together.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/calls.h"
#include "support/documents.h"
#include "support/parts.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>

namespace orvml_parallel_tests {

namespace {

using orvml::Entity;
using orvml::Shape;

bool isLastRank() { return rank() == ranks() - 1; }

/// A folder with an old file that has to be there afterwards, and nothing else.
class OldFile {
 public:
  OldFile() {
    if (rank() == 0) {
      orvml::save(path(), withoutMesh());
    }
    MPI_Barrier(MPI_COMM_WORLD);
  }
  OldFile(const OldFile&) = delete;
  OldFile& operator=(const OldFile&) = delete;
  OldFile(OldFile&&) = delete;
  OldFile& operator=(OldFile&&) = delete;
  ~OldFile() {
    const orvml::Output old = withoutMesh();
    const orvml::Output found = orvml::loadOutput(path());
    EXPECT_EQ(orvml::fingerprint(old.view()), orvml::fingerprint(found.view()));
    EXPECT_EQ(1, folder_.numberOfFiles());
    MPI_Barrier(MPI_COMM_WORLD);
  }
  [[nodiscard]] std::filesystem::path path() const { return folder_.path("file.h5"); }

 private:
  SharedFolder folder_;
};

std::string errorOfSaving(const OldFile& old, const orvml::DocumentView& view) {
  return errorOf([&] { orvml::parallel::save(MPI_COMM_WORLD, old.path(), view); });
}

/// A document without a mesh but for its cells of one group, and attributes of them.
orvml::OutputView cellsAlone(Shape shape, std::span<const int> indices,
                             orvml::Attributes attributes) {
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.elements = orvml::CellsView({orvml::CellGroup(shape, 4, indices)}, std::move(attributes));
  return orvml::OutputView(parts);
}

TEST(ParallelSaveFailures, AViewOfAnotherStructureNamesItsRank) {
  if (ranks() == 1) {
    GTEST_SKIP() << "one rank agrees with itself";
  }
  const OldFile old;
  const std::vector<int> indices = {0, 1, 2, 3};
  const Shape shape = isLastRank() ? Shape::quadrilateral : Shape::tetrahedron;

  const std::string error = errorOfSaving(old, cellsAlone(shape, indices, {}));

  EXPECT_NE(std::string::npos, error.find("rank " + std::to_string(ranks() - 1) + " gives another"))
      << error;
}

TEST(ParallelSaveFailures, AnAttributeThatFitsOnlyAsAWholeIsRefused) {
  if (ranks() == 1) {
    GTEST_SKIP() << "one rank has the whole";
  }
  const OldFile old;
  const std::vector<int> indices = {0, 1, 2, 3, 0, 1, 2, 3};
  const std::vector<double> values(rank() == 0 ? 1 : isLastRank() ? 3 : 2);

  const std::string error = errorOfSaving(
      old, cellsAlone(Shape::tetrahedron, indices, orvml::Attributes({{"heat", values}})));

  EXPECT_NE(std::string::npos, error.find("/OrvOutput/Elements/Attributes/heat")) << error;
}

TEST(ParallelSaveFailures, ANameThatNoFileCanHoldIsRefused) {
  const OldFile old;
  const std::vector<int> indices = {0, 1, 2, 3};
  const std::vector<double> values = {1};
  const std::string name(80, 'n');

  const std::string error = errorOfSaving(
      old, cellsAlone(Shape::tetrahedron, indices,
                      orvml::Attributes({{std::string_view(name), std::span(values)}})));

  EXPECT_NE(std::string::npos, error.find("80 bytes, at most 79")) << error;
}

TEST(ParallelSaveFailures, ARankWhoseWriteFailsEndsAll) {
  if (ranks() == 1) {
    GTEST_SKIP() << "the first rank fails before it writes what is shared";
  }
  const OldFile old;
  const orvml::Output box = boxOf(9, 8, 7);
  failTransfers(isLastRank());

  const std::string error = errorOfSaving(old, partOf(box.view(), evenly(ranks()), rank()));

  failTransfers(false);
  EXPECT_NE(std::string::npos, error.find("orvml.file.not-written|/OrvOutput")) << error;
}

TEST(ParallelSaveFailures, TheFirstRankMayBeTheOneWhoseWriteFails) {
  const OldFile old;
  const orvml::Output box = boxOf(9, 8, 7);
  failTransfers(rank() == 0);

  const std::string error = errorOfSaving(old, partOf(box.view(), evenly(ranks()), rank()));

  failTransfers(false);
  EXPECT_NE(std::string::npos, error.find("orvml.file.not-written|")) << error;
}

TEST(ParallelSaveFailures, AFileLargerThanMayBeIsNotBegun) {
  const OldFile old;
  const orvml::Output box = boxOf(9, 8, 7);
  rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {20000, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);

  const std::string error = errorOfSaving(old, partOf(box.view(), evenly(ranks()), rank()));

  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_NE(std::string::npos, error.find("orvml.file.too-large")) << error;
}

TEST(ParallelSaveFailures, ADimensionThatTheFormatDoesNotKnowIsRefused) {
  const OldFile old;
  orvml::DocumentParts parts;
  parts.dimension = 4;

  const std::string error = errorOfSaving(old, orvml::OutputView(parts));

  EXPECT_NE(std::string::npos, error.find("orvml.document.dimension")) << error;
}

TEST(ParallelSaveFailures, AFileSystemThatSetsNoSpaceAsideIsNoHindrance) {
  const SharedFolder folder;
  const orvml::Output box = boxOf(3, 3, 3);
  failReservations(EOPNOTSUPP);

  const std::string error = errorOf([&] {
    orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"),
                          partOf(box.view(), evenly(ranks()), rank()));
  });

  failReservations(0);
  EXPECT_EQ("no error", error);
}

/// A file system that holds two megabytes, which full_disk.sh makes.
class ParallelSaveOnAFullDisk : public testing::Test {
 protected:
  void SetUp() override {
    const char* folder = std::getenv("ORVML_FULL_DISK");
    if (folder == nullptr) {
      GTEST_SKIP() << "full_disk.sh runs this";
    }
    folder_ = folder;
    if (rank() == 0) {
      orvml::save(path(), withoutMesh());
    }
    MPI_Barrier(MPI_COMM_WORLD);
  }
  [[nodiscard]] std::filesystem::path path() const { return folder_ / "file.h5"; }

  /// What ranks throw who save too much. The old file has to be there afterwards, and nothing else.
  std::string errorOfSavingTooMuch() {
    const orvml::Output box = boxOf(40, 40, 40);
    const std::string error = errorOf([&] {
      orvml::parallel::save(MPI_COMM_WORLD, path(), partOf(box.view(), evenly(ranks()), rank()));
    });
    const orvml::Output old = withoutMesh();
    const orvml::Output found = orvml::loadOutput(path());
    EXPECT_EQ(orvml::fingerprint(old.view()), orvml::fingerprint(found.view()));
    const std::filesystem::directory_iterator files(folder_);
    EXPECT_EQ(1, std::distance(begin(files), end(files)));
    MPI_Barrier(MPI_COMM_WORLD);
    return error;
  }

 private:
  std::filesystem::path folder_;
};

TEST_F(ParallelSaveOnAFullDisk, IsRefusedBeforeRanksWrite) {
  const std::string error = errorOfSavingTooMuch();

  EXPECT_NE(std::string::npos, error.find("orvml.file.no-space")) << error;
}

TEST_F(ParallelSaveOnAFullDisk, EndsAllWhenItShowsWhileRanksWrite) {
  failReservations(EOPNOTSUPP);

  const std::string error = errorOfSavingTooMuch();

  failReservations(0);
  EXPECT_NE(std::string::npos, error.find("orvml.file.not-written")) << error;
}

TEST(ParallelSaveFailures, AFolderThatIsMissingIsNamed) {
  const SharedFolder folder;
  const orvml::Output document = oneCell();
  const orvml::DocumentView part = partOf(document.view(), evenly(ranks()), rank());

  const std::string error =
      errorOf([&] { orvml::parallel::save(MPI_COMM_WORLD, folder.path("none/file.h5"), part); });

  EXPECT_NE(std::string::npos, error.find("orvml.folder.not-found")) << error;
}

/// Values that take no memory, because nobody has to read most of them.
class Unread {
 public:
  explicit Unread(std::size_t bytes)
      : bytes_(bytes),
        address_(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
  Unread(const Unread&) = delete;
  Unread& operator=(const Unread&) = delete;
  Unread(Unread&&) = delete;
  Unread& operator=(Unread&&) = delete;
  ~Unread() { ::munmap(address_, bytes_); }
  void set(std::size_t place, double value) { static_cast<double*>(address_)[place] = value; }
  template <class Value>
  [[nodiscard]] std::span<const Value> values() const {
    return {static_cast<const Value*>(address_), bytes_ / sizeof(Value)};
  }

 private:
  std::size_t bytes_;
  void* address_;
};

/// How many things each rank has when all together have just more than 32 bits count.
std::size_t justTooManyPerRank(std::size_t width) {
  return ((std::size_t{1} << 31U) / static_cast<std::size_t>(ranks()) / width + 1) * width;
}

TEST(ParallelSaveLimits, NodeIndicesAreCountedBeforeAnythingIsWritten) {
  if (ranks() == 1) {
    GTEST_SKIP() << "a view of its own refuses to be made";
  }
  const OldFile old;
  const Unread indices(justTooManyPerRank(4) * sizeof(int));

  const std::string error =
      errorOfSaving(old, cellsAlone(Shape::tetrahedron, indices.values<int>(), {}));

  const std::size_t all = justTooManyPerRank(4) * static_cast<std::size_t>(ranks());
  EXPECT_NE(std::string::npos,
            error.find("/OrvOutput/Elements/connectivities would have " + std::to_string(all) +
                       " node indices, the format counts up to 2147483647"))
      << error;
}

TEST(ParallelSaveLimits, CoordinatesAreCountedBeforeAnythingIsWritten) {
  if (ranks() == 1) {
    GTEST_SKIP() << "a view of its own refuses to be made";
  }
  const OldFile old;
  const Unread coordinates(justTooManyPerRank(3) * sizeof(double));
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = orvml::NodesView(coordinates.values<double>(), 3);

  const std::string error = errorOfSaving(old, orvml::OutputView(parts));

  const std::size_t all = justTooManyPerRank(3) * static_cast<std::size_t>(ranks());
  EXPECT_NE(std::string::npos, error.find("/OrvOutput/Nodes/coordinates would have " +
                                          std::to_string(all) + " coordinates"))
      << error;
}

TEST(ParallelSaveLimits, ValuesOfAnAttributeAreCountedBeforeAnythingIsWritten) {
  if (ranks() == 1) {
    GTEST_SKIP() << "one rank is refused by the limits of one process";
  }
  const OldFile old;
  const Unread values(justTooManyPerRank(1) * sizeof(int));
  const std::vector<int> indices = {0, 1, 2, 3};

  const std::string error =
      errorOfSaving(old, cellsAlone(Shape::tetrahedron, indices,
                                    orvml::Attributes({{"colour", values.values<int>()}})));

  EXPECT_NE(std::string::npos, error.find("/OrvOutput/Elements/Attributes/colour would have "))
      << error;
}

TEST(ParallelSaveLimits, ARankMayHaveMoreThanMpiMovesAtOnce) {
  if (ranks() > 1) {
    GTEST_SKIP() << "one rank has all of it, and needs the memory once";
  }
  const SharedFolder folder;
  constexpr std::size_t kNodes = 90000000;  // 2,160,000,000 bytes
  constexpr std::size_t kValuesPerCall = std::size_t{1} << 27;
  // Where calls begin and end, and the array.
  constexpr std::size_t kTold[] = {0,
                                   kValuesPerCall - 1,
                                   kValuesPerCall,
                                   2 * kValuesPerCall - 1,
                                   2 * kValuesPerCall,
                                   3 * kNodes - 1};
  {
    Unread coordinates(3 * kNodes * sizeof(double));
    for (const std::size_t place : kTold) {
      coordinates.set(place, static_cast<double>(place) + 0.5);
    }
    orvml::DocumentParts parts;
    parts.dimension = 3;
    parts.nodes = orvml::NodesView(coordinates.values<double>(), 3);
    orvml::parallel::save(MPI_COMM_WORLD, folder.path("file.h5"), orvml::OutputView(parts),
                          {.flush = false});
  }

  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("file.h5"));

  EXPECT_EQ(std::int64_t{kNodes}, slice.total(Entity::nodes));
  const orvml::DocumentView view = slice.view();
  for (const std::size_t place : kTold) {
    EXPECT_EQ(static_cast<double>(place) + 0.5, view.nodes().coordinates()[place]);
  }
}

TEST(ParallelTogether, ThrowsTheErrorOfOneRankOnAll) {
  const std::string error = errorOf([] {
    orvml::parallel::together(MPI_COMM_WORLD, [] {
      if (isLastRank()) {
        throw orvml::Error(orvml::Code::fileDamaged, "is broken", {"a.h5", "/x", "why"});
      }
    });
  });

  EXPECT_EQ("orvml.file.damaged|/x|a.h5: is broken", error);
}

TEST(ParallelTogether, KeepsTheLackOfMemoryAndTheTextOfOtherExceptions) {
  EXPECT_EQ("no memory", errorOf([] {
              orvml::parallel::together(MPI_COMM_WORLD, [] {
                if (isLastRank()) {
                  throw std::bad_alloc();
                }
              });
            }));
  EXPECT_EQ("diverged", errorOf([] {
              orvml::parallel::together(MPI_COMM_WORLD, [] {
                if (isLastRank()) {
                  throw std::domain_error("diverged");
                }
              });
            }));
}

TEST(ParallelTogether, KeepsWhatIsAWrongArgument) {
  EXPECT_THROW(orvml::parallel::together(MPI_COMM_WORLD,
                                         [] {
                                           if (isLastRank()) {
                                             throw std::invalid_argument("3 are not 4");
                                           }
                                         }),
               std::invalid_argument);
}

TEST(ParallelTogether, CutsATextThatIsLongerThanAMessage) {
  std::size_t length = 0;
  try {
    orvml::parallel::together(MPI_COMM_WORLD,
                              [] { throw std::runtime_error(std::string(10000, 'x')); });
  } catch (const std::runtime_error& error) {
    length = std::string(error.what()).size();
  }

  EXPECT_EQ(8192U, length);
}

TEST(ParallelTogether, CostsOneReduction) {
  const Calls before = callsSoFar();
  orvml::parallel::together(MPI_COMM_WORLD, [] {});
  const Calls calls = callsSoFar() - before;

  EXPECT_EQ(1, calls.collectives);
  EXPECT_EQ(0, calls.messages);
}

TEST(ParallelTogether, ThrowsWhenTheCallersCommunicatorReturnsAFailure) {
  MPI_Comm returning = MPI_COMM_NULL;
  MPI_Comm_dup(MPI_COMM_WORLD, &returning);
  MPI_Comm_set_errhandler(returning, MPI_ERRORS_RETURN);
  failReductions(true);

  EXPECT_THROW(orvml::parallel::together(returning, [] {}), std::runtime_error);

  failReductions(false);
  MPI_Comm_free(&returning);
}

TEST(ParallelTogether, OfSeveralFailuresThatOfTheLowestRankIsThrown) {
  const std::string error = errorOf([] {
    orvml::parallel::together(MPI_COMM_WORLD,
                              [] { throw std::runtime_error("rank " + std::to_string(rank())); });
  });

  EXPECT_EQ("rank 0", error);
}

}  // namespace

}  // namespace orvml_parallel_tests
