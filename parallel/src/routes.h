#pragma once

#include "communicator.h"
#include "exchange.h"

#include <cstddef>
#include <cstdint>
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

/// The values that a thing has, as MPI counts them, so that 32 bits count the things alone.
class BlockType {
 public:
  template <class Value>
  [[nodiscard]] static BlockType of(int width) {
    return {mpiType<Value>(), sizeof(Value), width};
  }
  BlockType(const BlockType&) = delete;
  BlockType& operator=(const BlockType&) = delete;
  BlockType(BlockType&&) = delete;
  BlockType& operator=(BlockType&&) = delete;
  ~BlockType() { MPI_Type_free(&type_); }
  [[nodiscard]] MPI_Datatype get() const noexcept { return type_; }
  [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

 private:
  BlockType(MPI_Datatype value, std::size_t valueBytes, int width)
      : bytes_(valueBytes * static_cast<std::size_t>(width)) {
    MPI_Type_contiguous(width, value, &type_);
    MPI_Type_commit(&type_);
  }

  std::size_t bytes_;
  MPI_Datatype type_ = MPI_DATATYPE_NULL;
};

/// The memory that transports along some routes need. Making it is what can fail.
class Cargo {
 public:
  /// Makes room for blocks of so many bytes; when that fails, the room that there was is there.
  void makeRoom(const Routes& routes, std::size_t blockBytes);

  /// Carries a block of each thing from one list of blocks to another, which may be the same.
  /// Collective, but for ranks with no route to each other.
  ///
  /// @param routes  those that room was made for
  /// @param block   of at most as many bytes
  void carry(const Communicator& comm, const Routes& routes, const BlockType& block,
             const void* from, void* to) noexcept;

 private:
  using Buffers = std::vector<std::vector<char>>;

  Buffers out_;
  Buffers in_;
  Messages messages_;
};

/// Carries `width` values of each thing from one list to another. Collective; a lack of memory on
/// one rank is thrown on all.
template <class Value>
void carry(const Communicator& comm, const Routes& routes, std::span<const Value> from,
           std::span<Value> to, int width = 1) {
  const BlockType block = BlockType::of<Value>(width);
  Cargo cargo;
  together(comm, [&] { cargo.makeRoom(routes, block.bytes()); });
  cargo.carry(comm, routes, block, from.data(), to.data());
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
