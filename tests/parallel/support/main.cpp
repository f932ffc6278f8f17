#include <gtest/gtest.h>

#include <mpi.h>

#include <cstdio>

namespace {

/// Only the first rank tells what goes well; what fails is told by whoever sees it.
class FailuresAlone : public testing::EmptyTestEventListener {
 public:
  explicit FailuresAlone(int rank) : rank_(rank) {}
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) {
      std::printf("rank %d, %s:%d: %s\n", rank_,
                  result.file_name() == nullptr ? "" : result.file_name(), result.line_number(),
                  result.message());
    }
  }

 private:
  int rank_;
};

}  // namespace

int main(int argc, char** argv) {
  int provided = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_MULTIPLE, &provided);
  testing::InitGoogleTest(&argc, argv);
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  if (rank != 0) {
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    listeners.Append(new FailuresAlone(rank));
  }
  int mine = RUN_ALL_TESTS();
  int any = mine;
  MPI_Allreduce(&mine, &any, 1, MPI_INT, MPI_MAX, MPI_COMM_WORLD);
  MPI_Finalize();
  return any;
}
