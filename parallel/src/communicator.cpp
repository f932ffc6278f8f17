#include "communicator.h"

#include <utility>

namespace orvml::parallel::detail {

Communicator::Communicator(MPI_Comm comm) {
  MPI_Comm_dup(comm, &comm_);
  MPI_Comm_rank(comm_, &rank_);
  MPI_Comm_size(comm_, &size_);
}

Communicator::Communicator(Communicator&& other) noexcept
    : comm_(std::exchange(other.comm_, MPI_COMM_NULL)), rank_(other.rank_), size_(other.size_) {}

Communicator& Communicator::operator=(Communicator&& other) noexcept {
  std::swap(comm_, other.comm_);
  std::swap(rank_, other.rank_);
  std::swap(size_, other.size_);
  return *this;
}

void Communicator::free() noexcept {
  int isOver = 0;
  MPI_Finalized(&isOver);
  if (comm_ != MPI_COMM_NULL && isOver == 0) {
    MPI_Comm_free(&comm_);
  }
}

Communicator::~Communicator() { free(); }

void Communicator::broadcast(std::vector<char>& bytes, int from) const {
  std::int64_t count = static_cast<std::int64_t>(bytes.size());
  MPI_Bcast(&count, 1, MPI_INT64_T, from, comm_);
  bytes.resize(static_cast<std::size_t>(count));
  constexpr std::int64_t kMost = std::int64_t{1} << 30;  // MPI counts with ints
  for (std::int64_t sent = 0; sent < count; sent += kMost) {
    const int part = static_cast<int>(count - sent < kMost ? count - sent : kMost);
    MPI_Bcast(bytes.data() + sent, part, MPI_BYTE, from, comm_);
  }
}

int Communicator::least(int value) const {
  int result = value;
  MPI_Allreduce(&value, &result, 1, MPI_INT, MPI_MIN, comm_);
  return result;
}

std::vector<std::int64_t> Communicator::sums(const std::vector<std::int64_t>& values) const {
  std::vector<std::int64_t> result(values.size());
  MPI_Allreduce(values.data(), result.data(), static_cast<int>(values.size()), MPI_INT64_T, MPI_SUM,
                comm_);
  return result;
}

std::vector<std::int64_t> Communicator::sumsBefore(const std::vector<std::int64_t>& values) const {
  std::vector<std::int64_t> result(values.size());
  MPI_Exscan(values.data(), result.data(), static_cast<int>(values.size()), MPI_INT64_T, MPI_SUM,
             comm_);
  if (isFirst()) {
    result.assign(values.size(), 0);  // there the scan leaves what it likes
  }
  return result;
}

std::vector<std::int64_t> Communicator::offsets(std::int64_t count) const {
  std::vector<std::int64_t> result(static_cast<std::size_t>(size_) + 1);
  MPI_Allgather(&count, 1, MPI_INT64_T, result.data() + 1, 1, MPI_INT64_T, comm_);
  for (std::size_t i = 1; i < result.size(); ++i) {
    result[i] += result[i - 1];
  }
  return result;
}

}  // namespace orvml::parallel::detail
