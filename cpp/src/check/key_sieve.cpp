#include "check/key_sieve.h"

#include <algorithm>
#include <bit>

namespace orvml::detail {

namespace {

std::size_t sizeOf(const KeyPieces& keys) noexcept {
  std::size_t size = 0;
  for (const auto& piece : keys) {
    size += piece.size();
  }
  return size;
}

/// The other side of a thing is there nearly always, and has to have another place.
std::uint64_t withSidesApart(std::uint64_t key) noexcept {
  return key ^ ((0 - (key & kIsOtherSide)) & 0x9e3779b97f4a7c15U);
}

}  // namespace

void KeyJudge::empty(std::size_t keys) { table_.assign(std::bit_ceil(2 * keys + 2), 0); }

/// Where a key is, or where it goes.
std::uint64_t* KeyJudge::placeOf(std::uint64_t key) noexcept {
  const std::size_t last = table_.size() - 1;
  std::size_t place = (withSidesApart(key) >> 2U) & last;
  while (table_[place] != 0 && table_[place] != key) {
    place = (place + 1) & last;
  }
  return &table_[place];
}

bool KeyJudge::areDistinct(const KeyPieces& keys) {
  empty(sizeOf(keys));
  asked_.clear();
  for (const auto& piece : keys) {
    for (const std::uint64_t key : piece) {
      if ((key & kIsAsked) != 0) {
        asked_.push_back(key & ~kIsAsked);
        continue;
      }
      std::uint64_t* place = placeOf(key);
      if (*place == key) {
        return false;
      }
      *place = key;
    }
  }
  return std::all_of(asked_.begin(), asked_.end(),
                     [&](std::uint64_t key) { return *placeOf(key) == key; });
}

bool areBalanced(const KeyPieces& keys) noexcept {
  std::uint64_t sum = 0;
  for (const auto& piece : keys) {
    for (const std::uint64_t key : piece) {
      const std::uint64_t thing = key & ~kIsOtherSide;
      sum += (key & kIsOtherSide) != 0 ? thing : ~thing + 1;
    }
  }
  return sum == 0;
}

KeySieve::KeySieve(std::int64_t low, std::int64_t high, std::size_t most)
    : low_(low),
      high_(high),
      most_(std::max<std::size_t>(most / kKeysOfChunk, 2)),
      end_(static_cast<std::size_t>(high - low + (1 << kBitsOfPart) - 1) >> kBitsOfPart),
      parts_(end_) {}

void KeySieve::extend(std::size_t number) {
  if (held_ >= most_) {
    putOff(most_ / 8);
    if (number >= end_) {
      return;
    }
  }
  Chunk* chunk = newChunk();
  Part& part = parts_[number];
  chunk->before = part.chunk;
  part = {chunk->keys.data(), chunk->keys.data() + kKeysOfChunk, chunk};
}

/// Gives at least so many chunks back, if that is possible while one part is kept.
void KeySieve::putOff(std::size_t least) {
  const std::size_t before = held_;
  while (end_ > begin_ + 1 && before - held_ < least) {
    --end_;
    release(parts_[end_]);
  }
  high_ = std::min(high_, lastOf(end_ - 1) + 1);
}

KeySieve::Chunk* KeySieve::newChunk() {
  constexpr std::size_t kAtOnce = 64;
  if (free_ == nullptr) {
    memory_.push_back(std::make_unique_for_overwrite<Chunk[]>(kAtOnce));
    for (std::size_t i = 0; i < kAtOnce; ++i) {
      memory_.back()[i].before = free_;
      free_ = &memory_.back()[i];
    }
  }
  ++held_;
  Chunk* chunk = free_;
  free_ = chunk->before;
  return chunk;
}

void KeySieve::gather(const Part& part) {
  pieces_.clear();
  const std::uint64_t* end = part.next;
  for (const Chunk* chunk = part.chunk; chunk != nullptr; chunk = chunk->before) {
    pieces_.emplace_back(chunk->keys.data(), end);
    end = chunk->before == nullptr ? nullptr : chunk->before->keys.data() + kKeysOfChunk;
  }
}

void KeySieve::release(Part& part) noexcept {
  while (part.chunk != nullptr) {
    Chunk* before = part.chunk->before;
    part.chunk->before = free_;
    free_ = part.chunk;
    part.chunk = before;
    --held_;
  }
  part = Part();
}

}  // namespace orvml::detail
