// A rank that lacks memory: whichever allocation fails on one rank, all ranks throw.
#include "support/memory.h"

#include <orvml/fingerprint.hpp>
#include <orvml/load.hpp>
#include <orvml/parallel/distribute.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/documents.h"
#include "support/parts.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <utility>

namespace orvml_parallel_tests {

namespace {

using orvml::Entity;
using orvml::parallel::Method;
using orvml::parallel::Part;

class RankWithoutMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (ranks() != 2 && ranks() != 3) {
      GTEST_SKIP() << "two and three ranks show it";
    }
  }

  /// Makes a collective call again and again; each time another allocation of one rank fails, of
  /// the first rank and then of the last.
  ///
  /// @param call       makes the same each time
  /// @param afterCall  is told whether it has thrown
  template <class Call>
  void failOneAfterTheOther(
      const Call& call, const std::function<void(bool hasThrown)>& afterCall = [](bool) {}) const {
    for (const int failingRank : {0, ranks() - 1}) {
      int failures = 0;
      const int count = allocationsOf(failingRank, call);
      afterCall(false);
      ASSERT_GT(count, 0);
      for (int n = 1; n <= count; ++n) {
        const std::string thrown = thrownBy(call, rank() == failingRank ? n : 0);
        expectSameOnAllRanks(thrown);
        failures += thrown.empty() ? 0 : 1;
        afterCall(!thrown.empty());
      }
      // Some do without: what they want memory for is only a text of an error, or a buffer.
      EXPECT_GT(failures, count / 2);
    }
  }

 private:
  template <class Call>
  static int allocationsOf(int countingRank, const Call& call) {
    int count = 0;
    {
      const FailingAllocation counting;
      call();
      count = counting.count();
    }
    MPI_Bcast(&count, 1, MPI_INT, countingRank, MPI_COMM_WORLD);
    return count;
  }

  /// @param n  the allocation of this rank that fails, none for 0
  template <class Call>
  static std::string thrownBy(const Call& call, int n) {
    std::optional<FailingAllocation> failing(std::in_place, n);
    try {
      call();
    } catch (const std::exception& error) {
      failing.reset();
      return error.what();
    }
    return "";
  }
};

TEST_F(RankWithoutMemory, EndsALoadOnAll) {
  const SharedFolder folder;
  if (rank() == 0) {
    orvml::save(folder.path("file.h5"), mixedShapes(), {.flush = false});
  }
  MPI_Barrier(MPI_COMM_WORLD);

  const auto path = folder.path("file.h5");
  failOneAfterTheOther([&] { (void)orvml::parallel::loadOutput(MPI_COMM_WORLD, path); });
}

TEST_F(RankWithoutMemory, EndsASaveOnAllAndLeavesTheOldFile) {
  const SharedFolder folder;
  const orvml::Output old = withoutMesh();
  const orvml::Fingerprint fingerprint = orvml::fingerprint(old.view());
  const orvml::Output whole = mixedShapes();
  const orvml::DocumentView part = partOf(whole.view(), evenly(ranks()), rank());
  const auto path = folder.path("file.h5");
  const auto restore = [&] {
    MPI_Barrier(MPI_COMM_WORLD);
    if (rank() == 0) {
      orvml::save(path, old, {.flush = false});
    }
    MPI_Barrier(MPI_COMM_WORLD);
  };
  restore();

  failOneAfterTheOther([&] { orvml::parallel::save(MPI_COMM_WORLD, path, part, {.flush = false}); },
                       [&](bool hasThrown) {
                         EXPECT_EQ(1, folder.numberOfFiles());
                         const orvml::Output found = orvml::loadOutput(path);
                         EXPECT_EQ(hasThrown, orvml::fingerprint(found.view()) == fingerprint);
                         restore();
                       });
}

TEST_F(RankWithoutMemory, EndsADistributionOnAll) {
  const orvml::Output whole = mixedShapes();
  const orvml::DocumentView slice = partOf(whole.view(), evenly(ranks()), rank());
  for (const Method method : {Method::block, Method::coordinates, Method::graph}) {
    failOneAfterTheOther([&] {
      (void)orvml::parallel::distribute(MPI_COMM_WORLD, slice, {method, true});
    });
  }
}

TEST_F(RankWithoutMemory, EndsAnExchangeOfManyValuesOnAll) {
  const orvml::Output whole = mixedShapes();
  const Part part = orvml::parallel::distribute(
      MPI_COMM_WORLD, partOf(whole.view(), evenly(ranks()), rank()), {Method::block, true});
  const std::size_t nodes = part.globalNumbers(Entity::nodes).size();
  constexpr int kWidest = 1 << 17;
  std::vector<double> values(nodes * kWidest);
  int width = 1;

  // Each call needs more memory than any before it has set aside.
  failOneAfterTheOther([&] {
    width *= 2;
    part.exchangeNodes(std::span(values).first(nodes * static_cast<std::size_t>(width)), width);
  });
}

TEST_F(RankWithoutMemory, EndsTheWayBackToSlicesOnAll) {
  const orvml::Output whole = mixedShapes();
  const Part part = orvml::parallel::distribute(
      MPI_COMM_WORLD, partOf(whole.view(), evenly(ranks()), rank()), {Method::block, true});
  const std::vector<double> values(part.globalNumbers(Entity::nodes).size());

  failOneAfterTheOther([&] { (void)part.toSlice(Entity::nodes, std::span<const double>(values)); });
}

}  // namespace

}  // namespace orvml_parallel_tests
