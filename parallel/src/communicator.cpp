#include "communicator.h"

#include <algorithm>
#include <exception>
#include <new>
#include <numeric>
#include <utility>

namespace orvml::parallel::detail {

Communicator::Communicator(MPI_Comm comm) {
  MPI_Comm_dup(comm, &comm_);
  // The caller's may return what fails, which a rank alone could not mend.
  MPI_Comm_set_errhandler(comm_, MPI_ERRORS_ARE_FATAL);
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

void Communicator::broadcast(std::vector<char>& bytes) const {
  std::int64_t count = static_cast<std::int64_t>(bytes.size());
  MPI_Bcast(&count, 1, MPI_INT64_T, 0, comm_);
  int hasRoom = 1;
  try {
    bytes.resize(static_cast<std::size_t>(count));
  } catch (const std::exception&) {
    hasRoom = 0;
  }
  if (least(hasRoom) == 0) {
    throw std::bad_alloc();
  }
  constexpr std::int64_t kMost = std::int64_t{1} << 30;  // MPI counts with ints
  for (std::int64_t sent = 0; sent < count; sent += kMost) {
    const auto part = static_cast<int>(std::min(count - sent, kMost));
    MPI_Bcast(bytes.data() + sent, part, MPI_BYTE, 0, comm_);
  }
}

int Communicator::least(int value) const noexcept {
  MPI_Allreduce(MPI_IN_PLACE, &value, 1, MPI_INT, MPI_MIN, comm_);
  return value;
}

std::int64_t Communicator::sum(std::int64_t value) const noexcept {
  addUp({&value, 1});
  return value;
}

void Communicator::addUp(std::span<std::int64_t> values) const noexcept {
  MPI_Allreduce(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_INT64_T, MPI_SUM,
                comm_);
}

void Communicator::greatest(std::span<std::int64_t> values) const noexcept {
  MPI_Allreduce(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_INT64_T, MPI_MAX,
                comm_);
}

void Communicator::addUpBefore(std::span<std::int64_t> values) const noexcept {
  MPI_Exscan(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_INT64_T, MPI_SUM,
             comm_);
  if (isFirst()) {
    std::fill(values.begin(), values.end(), 0);  // there the scan leaves what it likes
  }
}

void Communicator::listOffsets(std::int64_t count, std::span<std::int64_t> offsets) const noexcept {
  offsets.front() = 0;
  MPI_Allgather(&count, 1, MPI_INT64_T, offsets.data() + 1, 1, MPI_INT64_T, comm_);
  std::partial_sum(offsets.begin(), offsets.end(), offsets.begin());
}

}  // namespace orvml::parallel::detail
