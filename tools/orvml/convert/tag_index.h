#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace orvml_tool {

/// Finds the place of each tag among tags that were given one after the other. It takes memory by
/// their number, and not by the greatest one.
class TagIndex {
 public:
  static constexpr std::size_t kNone = SIZE_MAX;

  void add(std::uint64_t tag);
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  /// Whether they are 1, 2, 3 and so on.
  [[nodiscard]] bool areNumbersFromOne() const noexcept {
    return size_ == 0 || (isConsecutive_ && first_ == 1);
  }

  /// Has to be called once all are given. Throws FormatError when a tag is there twice.
  ///
  /// @param what  what has the tags, such as "the node"
  void finish(const char* what);

  /// The place of a tag, 0-based; kNone when there is no such tag.
  [[nodiscard]] std::size_t placeOf(std::uint64_t tag) const noexcept {
    if (isConsecutive_) {
      return tag - first_ < size_ ? tag - first_ : kNone;
    }
    if (!table_.empty()) {
      return tag - first_ < table_.size() ? place(table_[tag - first_]) : kNone;
    }
    return searched(tag);
  }

 private:
  static constexpr std::uint32_t kEmpty = UINT32_MAX;
  static std::size_t place(std::uint32_t entry) noexcept {
    return entry == kEmpty ? kNone : std::size_t{entry};
  }
  void fillTable(const char* what, std::uint64_t range);
  void sort(const char* what);
  [[nodiscard]] std::size_t searched(std::uint64_t tag) const noexcept;

  std::uint64_t first_ = 0;  // the tag of the first one; with a table, the least tag
  std::size_t size_ = 0;
  bool isConsecutive_ = true;
  std::vector<std::uint64_t> tags_;   // as given; empty while they are consecutive
  std::vector<std::uint32_t> table_;  // place by tag, where tags leave few gaps
  std::vector<std::pair<std::uint64_t, std::uint32_t>>
      sorted_;  // tag and place, where they leave many
};

}  // namespace orvml_tool
