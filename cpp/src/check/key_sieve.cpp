#include "check/key_sieve.h"

#include <algorithm>

namespace orvml::detail {

namespace {

std::size_t sizeOf(const KeyPieces& keys) noexcept {
  std::size_t size = 0;
  for (const auto& piece : keys) {
    size += piece.size();
  }
  return size;
}

/// Scatters the two sides of a thing, of which there are both nearly always.
std::uint64_t apart(std::uint64_t key) noexcept {
  return key ^ ((0 - (key & kIsOtherSide)) & 0x9e3779b97f4a7c15U);
}

/// Adds a key to a list where it counts, without a branch that nobody can foresee.
void addIf(bool counts, std::uint64_t key, std::vector<std::uint64_t>& list, std::size_t& size) {
  list[size] = key;
  size += counts ? 1 : 0;
}

}  // namespace

void KeyJudge::findRepeated(const KeyPieces& keys) {
  // 1.6 keys of a hundred meet the bit of another one.
  met_.empty(32 * sizeOf(keys));
  asked_.clear();
  std::size_t found = 0;
  for (const auto& piece : keys) {
    repeated_.resize(found + piece.size());
    for (const std::uint64_t key : piece) {
      if ((key & kIsAsked) != 0) {
        asked_.push_back(key & ~kIsAsked);
      } else {
        addIf(met_.add(apart(key)), key, repeated_, found);
      }
    }
  }
  repeated_.resize(found);
}

void KeyJudge::gatherCandidates(const KeyPieces& keys) {
  wanted_.empty(32 * (repeated_.size() + asked_.size()));
  for (const auto* wanted : {&repeated_, &asked_}) {
    for (const std::uint64_t key : *wanted) {
      (void)wanted_.add(apart(key));
    }
  }
  std::size_t found = 0;
  for (const auto& piece : keys) {
    candidates_.resize(found + piece.size());
    for (const std::uint64_t key : piece) {
      addIf((key & kIsAsked) == 0 && wanted_.holds(apart(key)), key, candidates_, found);
    }
  }
  candidates_.resize(found);
  std::sort(candidates_.begin(), candidates_.end());
}

bool KeyJudge::areDistinct(const KeyPieces& keys) {
  findRepeated(keys);
  if (repeated_.empty() && asked_.empty()) {
    return true;
  }
  gatherCandidates(keys);
  return std::adjacent_find(candidates_.begin(), candidates_.end()) == candidates_.end() &&
         std::all_of(asked_.begin(), asked_.end(), [&](std::uint64_t key) {
           return std::binary_search(candidates_.begin(), candidates_.end(), key);
         });
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
