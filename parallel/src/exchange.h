#pragma once

#include <orvml/error.hpp>

#include "agreement.h"
#include "communicator.h"

#include <climits>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace orvml::parallel::detail {

/// Values for each rank, or from each: one list for every rank of a communicator.
template <class Value>
using Bins = std::vector<std::vector<Value>>;

/// Messages that are under way. Whatever throws in between waits for them first: MPI must not write
/// into memory that is gone.
class Messages {
 public:
  Messages() = default;
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;
  Messages(Messages&&) = delete;
  Messages& operator=(Messages&&) = delete;
  ~Messages() { wait(); }

  /// Makes room for so many at a time, which is what can fail.
  void reserve(std::size_t most) { requests_.reserve(most); }
  void send(const Communicator& comm, int to, const void* values, std::size_t count,
            MPI_Datatype type) {
    MPI_Isend(values, static_cast<int>(count), type, to, kTag, comm.get(), &add());
  }
  void receive(const Communicator& comm, int from, void* values, std::size_t count,
               MPI_Datatype type) {
    MPI_Irecv(values, static_cast<int>(count), type, from, kTag, comm.get(), &add());
  }
  void wait() noexcept {
    MPI_Waitall(static_cast<int>(requests_.size()), requests_.data(), MPI_STATUSES_IGNORE);
    requests_.clear();
  }

 private:
  static constexpr int kTag = 1;
  MPI_Request& add() { return requests_.emplace_back(MPI_REQUEST_NULL); }

  std::vector<MPI_Request> requests_;
};

/// Throws Code::tooManyValues for more values than go into one message.
inline void requireMessage(std::size_t count) {
  if (count > INT_MAX) {
    throw Error(Code::tooManyValues, std::to_string(count) +
                                         " values from one rank to another are more than 32 bits "
                                         "count");
  }
}

/// Gives every rank its bin, and returns what the others had for this one. Besides the counts there
/// is a message for each pair of ranks that have something to tell. Collective; what fails on one
/// rank is thrown on all.
template <class Value>
Bins<Value> exchangeBins(const Communicator& comm, Bins<Value> bins) {
  std::vector<int> sent;
  std::vector<int> counts;
  Bins<Value> received;
  Messages messages;
  together(comm, [&] {
    for (const std::vector<Value>& bin : bins) {
      requireMessage(bin.size());
      sent.push_back(static_cast<int>(bin.size()));
    }
    counts.resize(bins.size());
    received.resize(bins.size());
    messages.reserve(2 * bins.size());
  });
  MPI_Alltoall(sent.data(), 1, MPI_INT, counts.data(), 1, MPI_INT, comm.get());
  together(comm, [&] {
    for (std::size_t i = 0; i < bins.size(); ++i) {
      received[i].resize(static_cast<std::size_t>(counts[i]));
    }
  });
  for (int i = 0; i < comm.size(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (i == comm.rank()) {
      received[at] = std::move(bins[at]);
      continue;
    }
    if (!received[at].empty()) {
      messages.receive(comm, i, received[at].data(), received[at].size(), mpiType<Value>());
    }
    if (!bins[at].empty()) {
      messages.send(comm, i, bins[at].data(), bins[at].size(), mpiType<Value>());
    }
  }
  messages.wait();
  return received;
}

}  // namespace orvml::parallel::detail
