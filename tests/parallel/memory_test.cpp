// A rank that lacks memory: whichever allocation fails on one rank, all ranks throw.
#include "support/memory.h"

#include <orvml/parallel/distribute.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/documents.h"
#include "support/parts.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>

#include <optional>

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

  /// Makes a collective call again and again; each time another allocation of the last rank fails.
  template <class Call>
  void failOneAfterTheOther(const Call& call) const {
    int count = 0;
    {
      const FailingAllocation counting;
      call();
      count = counting.count();
    }
    MPI_Bcast(&count, 1, MPI_INT, ranks() - 1, MPI_COMM_WORLD);
    ASSERT_GT(count, 0);
    int failures = 0;
    for (int n = 1; n <= count; ++n) {
      std::optional<FailingAllocation> failing;
      if (rank() == ranks() - 1) {
        failing.emplace(n);
      }
      std::string thrown;
      try {
        call();
      } catch (const std::exception& error) {
        failing.reset();
        thrown = error.what();
      }
      failing.reset();
      // Some do without: what they wanted memory for is only a text of an error, or a buffer.
      failures += thrown.empty() ? 0 : 1;
      expectSameOnAllRanks(thrown);
    }
    EXPECT_GT(failures, count / 2);
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
  const orvml::Output whole = mixedShapes();
  const orvml::DocumentView part = partOf(whole.view(), evenly(ranks()), rank());
  const auto path = folder.path("file.h5");

  failOneAfterTheOther(
      [&] { orvml::parallel::save(MPI_COMM_WORLD, path, part, {.flush = false}); });

  EXPECT_EQ(1, folder.numberOfFiles());
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
  constexpr int kWidest = 1000;
  std::vector<double> values(nodes * kWidest);
  int width = 2;

  // Each call needs more memory than any before it.
  failOneAfterTheOther([&] {
    part.exchangeNodes(std::span(values).first(nodes * static_cast<std::size_t>(width)), width);
    ++width;
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
