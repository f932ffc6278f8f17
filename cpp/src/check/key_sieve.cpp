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

}  // namespace

/// Where a key is, or where it goes. Keys are hashes, whose first bits are taken.
std::uint64_t* KeyJudge::placeOf(std::uint64_t key) noexcept {
  std::size_t place = key >> shift_;
  while (table_[place] != 0 && table_[place] != key) {
    place = place + 1 == table_.size() ? 0 : place + 1;
  }
  return &table_[place];
}

bool KeyJudge::add(std::uint64_t key) noexcept {
  std::uint64_t* place = placeOf(key);
  const bool was = *place == key;
  *place = key;
  return was;
}

KeyVerdict KeyJudge::judge(const KeyPieces& keys) {
  const std::size_t places = std::bit_ceil(2 * sizeOf(keys) + 2);
  table_.assign(places, 0);
  shift_ = static_cast<unsigned>(std::countl_zero(places) + 1);
  asked_.clear();
  KeyVerdict verdict;
  for (const auto& piece : keys) {
    for (const std::uint64_t key : piece) {
      if ((key & kIsAsked) != 0) {
        asked_.push_back(key);
      } else if (add(key)) {
        return {false, false};
      }
    }
  }
  for (const std::uint64_t key : asked_) {
    if ((key & kIsOtherSide) == 0) {
      verdict.areSound = verdict.areSound && *placeOf(key & ~kMarks) == (key & ~kMarks);
    }
  }
  for (const std::uint64_t key : asked_) {
    if ((key & kIsOtherSide) != 0) {
      verdict.areUnopposed = !add(key & ~kMarks) && verdict.areUnopposed;
    }
  }
  return verdict;
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
  part.next = chunk->keys.data();
  part.end = part.next + kKeysOfChunk;
  part.chunk = chunk;
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
