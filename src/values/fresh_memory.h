#pragma once

#include <chrono>
#include <cstddef>

namespace orvml_io {

/// What the first touch of a huge page took.
struct TouchTime {
  std::chrono::nanoseconds elapsed{0};    // by a clock that only goes forward
  std::chrono::nanoseconds processor{0};  // of it, what this thread had the processor for
};

/// Decides page by page whether an operation goes on taking its large arrays from huge pages.
///
/// A huge page that is there costs a sixth of the same memory in small pages. A virtual machine
/// whose host takes free memory back has to get it from there first, which costs many times as
/// much, and nothing tells the two apart but the time of the touch. Such memory comes in runs, the
/// warm one usually first: what was quick so far says that it was worth it, not what comes next.
class HugePageTrial {
 public:
  /// Takes what all large arrays of the operation will need together; 0 where that is not known.
  explicit HugePageTrial(std::size_t expectedBytes) noexcept : expectedBytes_(expectedBytes) {}

  /// Starts with the next array of the operation. One that is larger than all were expected to be
  /// gets no huge pages: a file may claim more than it holds, and a read that fails must not have
  /// made the whole of it resident.
  void beginArray(std::size_t bytes) noexcept;

  /// Tells whether the next page of the array should be a huge one.
  [[nodiscard]] bool goesOn() const noexcept { return !isOperationOver_ && !isArrayOver_; }

  /// Learns what the touch of a huge page took. A slow one ends the trial for the whole operation,
  /// because each array would pay for another; one that was slow only because the thread had to
  /// wait for the processor ends it for the array. Both are forgiven when enough quick ones came
  /// right before.
  void learn(const TouchTime& taken) noexcept;

  /// 2 MiB in small pages took 1.1 to 1.6 ms, a huge page 0.2 ms, or 5 to 20 ms when the host had
  /// to give it back (virtual machine of 2 cores, x86-64, Linux 6.18).
  static constexpr std::chrono::nanoseconds kQuickAtMost = std::chrono::microseconds(1500);

  /// So many quick pages in a row have gained what one slow page costs, most often 9 ms.
  static constexpr int kQuickPagesThatForgive = 8;

  /// The first page may be a slow one, and its 9 ms may be no more than a tenth of what the
  /// operation takes with small pages, which is 0.8 ms and more for each MiB that is read.
  static constexpr std::size_t kLeastOperationBytes = std::size_t{128} << 20;

 private:
  std::size_t expectedBytes_;
  int quickPagesInARow_ = 0;
  bool isArrayOver_ = false;
  bool isOperationOver_ = false;
};

/// The large fresh arrays of one operation, all of which are about to be written whole.
///
/// What filling a large new array costs is mostly its page faults. Where the system offers huge
/// pages on request, the aligned inside of a block of several MiB is taken from them and the faults
/// become few, as long as the pages prove to be quick; the rest of the block, small blocks, small
/// operations and systems without such pages are left alone. Blocks are released as they would be
/// without the calls.
class FreshMemory {
 public:
  /// Takes what all large arrays of the operation will need together; nothing for a single array.
  explicit FreshMemory(std::size_t expectedBytes = 0) noexcept : trial_(expectedBytes) {}

  /// Announces a block that nothing has touched yet. Huge pages that it gets are touched here, so
  /// they are resident before the block is written; its values are undefined as before.
  void willBeWrittenWhole(void* block, std::size_t bytes) noexcept;

  /// Does that with another way to touch a huge page, which gets its address and gives a TouchTime.
  template <class Touch>
  void willBeWrittenWhole(void* block, std::size_t bytes, Touch touch) {
    const HugePages inside = hugePagesInside(block, bytes);
    trial_.beginArray(bytes);
    for (std::size_t i = 0; i < inside.count && trial_.goesOn(); ++i) {
      trial_.learn(touch(inside.first + i * kHugePageBytes));
    }
  }

  /// The size of a huge page on x86-64, and on ARM with pages of 4 KiB. Where it is another, what
  /// is asked for gives no huge page.
  static constexpr std::size_t kHugePageBytes = std::size_t{2} << 20;

  /// A block of this size holds a whole huge page wherever it begins; smaller ones are left alone.
  static constexpr std::size_t kLeastBytes = 2 * kHugePageBytes;

 private:
  struct HugePages {
    char* first;
    std::size_t count;
  };
  [[nodiscard]] static HugePages hugePagesInside(void* block, std::size_t bytes) noexcept;

  HugePageTrial trial_;
};

}  // namespace orvml_io
