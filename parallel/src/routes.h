#pragma once

#include "communicator.h"
#include "exchange.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// The things that go to one rank, or come from it, by their places in a list, in an order that
/// both know.
struct Lane {
  int rank = 0;
  std::vector<int> places;
};

/// Which things of a list go to which places of other lists, on which ranks: known once, and used
/// for every array of values that they have.
struct Routes {
  std::vector<Lane> out;  ///< places in the list that values are taken from
  std::vector<Lane> in;   ///< places in the list that they are put into

  /// The way back.
  [[nodiscard]] Routes reversed() const { return {in, out}; }
};

/// A block of values as MPI counts it, so that 32 bits count the blocks alone.
class BlockType {
 public:
  BlockType(MPI_Datatype value, int width) {
    MPI_Type_contiguous(width, value, &type_);
    MPI_Type_commit(&type_);
  }
  BlockType(const BlockType&) = delete;
  BlockType& operator=(const BlockType&) = delete;
  BlockType(BlockType&&) = delete;
  BlockType& operator=(BlockType&&) = delete;
  ~BlockType() { MPI_Type_free(&type_); }
  [[nodiscard]] MPI_Datatype get() const noexcept { return type_; }

 private:
  MPI_Datatype type_ = MPI_DATATYPE_NULL;
};

/// The memory that one transport of values needs. Making it is what can fail.
template <class Value>
class Cargo {
 public:
  Cargo(const Routes& routes, int width) : width_(static_cast<std::size_t>(width)) {
    make(routes.out, out_);
    make(routes.in, in_);
    messages_ = routes.out.size() + routes.in.size();
  }

  /// Carries `width` values of each thing. Collective.
  void carry(const Communicator& comm, const Routes& routes, std::span<const Value> from,
             std::span<Value> to) {
    const BlockType block(mpiType<Value>(), static_cast<int>(width_));
    Messages messages(messages_);
    for (std::size_t i = 0; i < routes.in.size(); ++i) {
      if (routes.in[i].rank != comm.rank()) {
        messages.receive(comm, routes.in[i].rank, in_[i].data(), routes.in[i].places.size(),
                         block.get());
      }
    }
    for (std::size_t i = 0; i < routes.out.size(); ++i) {
      load(routes.out[i].places, from, out_[i]);
      if (routes.out[i].rank != comm.rank()) {
        messages.send(comm, routes.out[i].rank, out_[i].data(), routes.out[i].places.size(),
                      block.get());
      }
    }
    messages.wait();
    for (std::size_t i = 0; i < routes.in.size(); ++i) {
      unload(routes.in[i].places, routes.in[i].rank == comm.rank() ? ownOf(routes, comm) : in_[i],
             to);
    }
  }

 private:
  void make(const std::vector<Lane>& lanes, std::vector<std::vector<Value>>& buffers) {
    for (const Lane& lane : lanes) {
      buffers.emplace_back(lane.places.size() * width_);
    }
  }

  /// What this rank has for itself.
  const std::vector<Value>& ownOf(const Routes& routes, const Communicator& comm) const {
    const auto own = std::find_if(routes.out.begin(), routes.out.end(),
                                  [&](const Lane& lane) { return lane.rank == comm.rank(); });
    return out_[static_cast<std::size_t>(own - routes.out.begin())];
  }

  void load(const std::vector<int>& places, std::span<const Value> from,
            std::vector<Value>& buffer) const {
    for (std::size_t i = 0; i < places.size(); ++i) {
      const auto values = from.subspan(static_cast<std::size_t>(places[i]) * width_, width_);
      std::copy(values.begin(), values.end(),
                buffer.begin() + static_cast<std::ptrdiff_t>(i * width_));
    }
  }

  void unload(const std::vector<int>& places, const std::vector<Value>& buffer,
              std::span<Value> to) const {
    for (std::size_t i = 0; i < places.size(); ++i) {
      const auto first = buffer.begin() + static_cast<std::ptrdiff_t>(i * width_);
      std::copy(
          first, first + static_cast<std::ptrdiff_t>(width_),
          to.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(places[i]) * width_));
    }
  }

  std::size_t width_;
  std::size_t messages_ = 0;
  std::vector<std::vector<Value>> out_;
  std::vector<std::vector<Value>> in_;
};

/// Carries values from one list to another. Collective; a lack of memory on one rank is thrown on
/// all.
template <class Value>
void carry(const Communicator& comm, const Routes& routes, std::span<const Value> from,
           std::span<Value> to, int width = 1) {
  std::optional<Cargo<Value>> cargo;
  together(comm, [&] { cargo.emplace(routes, width); });
  cargo->carry(comm, routes, from, to);
}

/// The routes of single values, for things that have several each.
///
/// @param fromStarts  where the values of each thing begin in the list that they are taken from
/// @param toStarts    the same of the other list; both have one more, where the last ones end
[[nodiscard]] Routes routesOfValues(const Routes& routes, std::span<const std::int64_t> fromStarts,
                                    std::span<const std::int64_t> toStarts);

/// Lanes of what is not empty in bins of places.
[[nodiscard]] std::vector<Lane> lanesOf(Bins<int> bins);

/// Which rank has a thing of the whole, when the ranks have them one after the other.
[[nodiscard]] int homeOf(std::span<const std::int64_t> offsets, std::int64_t number) noexcept;

/// The routes from slices to lists of things that ranks want, by their numbers in the whole.
/// Collective.
///
/// @param offsets  where the things of each rank begin
/// @param wanted   numbers in the whole, any that there are
[[nodiscard]] Routes routesToWanted(const Communicator& comm, std::span<const std::int64_t> offsets,
                                    std::span<const int> wanted);

}  // namespace orvml::parallel::detail
