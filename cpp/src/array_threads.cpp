#include "array_threads.h"

#include "positioned_io.h"
#include "stored_values.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <thread>
#include <vector>

namespace orvml::detail {

namespace {

using orvml_io::FreshMemory;

/// What a thread reads at once; below it another thread costs more than it gains.
constexpr std::size_t kPieceBytes = 2 * FreshMemory::kHugePageBytes;

constexpr int kMostThreads = 256;

/// Pieces of an array that several threads take, one after the other.
class Pieces {
 public:
  Pieces(int descriptor, const StoredValues& stored, char* values) noexcept
      : descriptor_(descriptor),
        stored_(stored),
        values_(values),
        lead_(reinterpret_cast<std::uintptr_t>(values) % FreshMemory::kHugePageBytes) {}

  void readSome(FreshMemory& memory) noexcept {
    for (;;) {
      // Counted from the huge page that the array begins in, so that each has one reader.
      const std::uint64_t piece = next_.fetch_add(kPieceBytes);
      const std::uint64_t begin = piece > lead_ ? piece - lead_ : 0;
      if (begin >= stored_.bytes || hasFailed_) {
        return;
      }
      const std::uint64_t end = std::min(piece + kPieceBytes - lead_, stored_.bytes);
      const auto bytes = static_cast<std::size_t>(end - begin);
      memory.willBeWrittenWhole(values_ + begin, bytes);
      if (moveAll(::pread, descriptor_, values_ + begin, bytes, stored_.offset + begin) != 0) {
        hasFailed_ = true;
      }
    }
  }

  [[nodiscard]] bool areRead() const noexcept { return !hasFailed_; }

 private:
  int descriptor_;
  StoredValues stored_;
  char* values_;
  std::uint64_t lead_;
  std::atomic<std::uint64_t> next_ = 0;
  std::atomic<bool> hasFailed_ = false;
};

}  // namespace

ArrayThreads::ArrayThreads(int descriptor, int threads)
    : descriptor_(descriptor),
      freshMemory_(static_cast<std::size_t>(std::min(threads, kMostThreads)),
                   FreshMemory(static_cast<std::size_t>(lengthOf(descriptor)))) {}

const void* ArrayThreads::lend(const orvml_io::WantedArray& /*wanted*/) { return nullptr; }

bool ArrayThreads::read(const orvml_io::WantedArray& wanted, void* values) {
  const StoredValues stored = storedValuesOf(wanted, lengthOf(descriptor_));
  if (!stored.arePlain() || stored.bytes < 2 * kPieceBytes) {
    return false;
  }
  Pieces pieces(descriptor_, stored, static_cast<char*>(values));
  const std::uint64_t mostUseful = stored.bytes / kPieceBytes;
  const auto helpers =
      static_cast<std::size_t>(std::min<std::uint64_t>(freshMemory_.size(), mostUseful) - 1);
  std::vector<std::jthread> others;
  others.reserve(helpers);
  try {
    for (std::size_t i = 1; i <= helpers; ++i) {
      others.emplace_back([&pieces, &memory = freshMemory_[i]] { pieces.readSome(memory); });
    }
  } catch (const std::system_error&) {
    // Those that could be started, and this one, do it all.
  }
  pieces.readSome(freshMemory_.front());
  others.clear();
  return pieces.areRead();
}

}  // namespace orvml::detail
