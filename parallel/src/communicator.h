#pragma once

#include <mpi.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace orvml::parallel::detail {

/// The ranks that work together, under a communicator of their own: messages of the library and of
/// its callers never meet. Made, and freed by the last copy, on all ranks alike.
class Communicator {
 public:
  /// Collective.
  explicit Communicator(MPI_Comm comm);
  Communicator(Communicator&& other) noexcept;
  Communicator& operator=(Communicator&& other) noexcept;
  Communicator(const Communicator&) = delete;
  Communicator& operator=(const Communicator&) = delete;
  ~Communicator();

  [[nodiscard]] MPI_Comm get() const noexcept { return comm_; }
  [[nodiscard]] int rank() const noexcept { return rank_; }
  [[nodiscard]] int size() const noexcept { return size_; }
  [[nodiscard]] bool isFirst() const noexcept { return rank_ == 0; }

  // All of these are collective.

  /// Gives every rank the bytes of the first. A lack of memory on one rank is thrown on all.
  void broadcast(std::vector<char>& bytes) const;
  [[nodiscard]] int least(int value) const noexcept;
  [[nodiscard]] std::int64_t sum(std::int64_t value) const noexcept;
  /// Adds numbers up over the ranks, element by element, in place.
  void addUp(std::span<std::int64_t> values) const noexcept;
  /// The greatest number of any rank, element by element, in place.
  void greatest(std::span<std::int64_t> values) const noexcept;
  /// Adds up those of the ranks before this one, in place.
  void addUpBefore(std::span<std::int64_t> values) const noexcept;
  /// Where the values of each rank begin when they lie one after the other: a number for each rank
  /// and the total, which `offsets` has room for.
  void listOffsets(std::int64_t count, std::span<std::int64_t> offsets) const noexcept;

 private:
  void free() noexcept;

  MPI_Comm comm_ = MPI_COMM_NULL;
  int rank_ = 0;
  int size_ = 0;
};

/// How MPI calls a type of values.
template <class Value>
[[nodiscard]] MPI_Datatype mpiType() noexcept {
  static_assert(std::is_same_v<Value, int> || std::is_same_v<Value, double> ||
                std::is_same_v<Value, std::int64_t> || std::is_same_v<Value, std::uint64_t>);
  if constexpr (std::is_same_v<Value, int>) {
    return MPI_INT;
  } else if constexpr (std::is_same_v<Value, double>) {
    return MPI_DOUBLE;
  } else if constexpr (std::is_same_v<Value, std::int64_t>) {
    return MPI_INT64_T;
  } else {
    return MPI_UINT64_T;
  }
}

}  // namespace orvml::parallel::detail
