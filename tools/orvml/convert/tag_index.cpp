#include "convert/tag_index.h"

#include "convert/format_error.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace orvml_tool {

namespace {

[[noreturn]] void refuseTwice(const char* what, std::uint64_t tag) {
  throw FormatError(std::string(what) + " " + std::to_string(tag) + " is there twice");
}

}  // namespace

void TagIndex::add(std::uint64_t tag) {
  if (size_ == 0) {
    first_ = tag;
  }
  if (isConsecutive_ && tag != first_ + size_) {
    isConsecutive_ = false;
    tags_.resize(size_);
    std::iota(tags_.begin(), tags_.end(), first_);
  }
  if (!isConsecutive_) {
    tags_.push_back(tag);
  }
  ++size_;
}

void TagIndex::finish(const char* what) {
  if (size_ > INT32_MAX) {
    throw FormatError("there are more of them than an exchange file can count: " +
                      std::to_string(size_));
  }
  if (isConsecutive_) {
    return;
  }
  constexpr std::uint64_t kMostGaps = 4;  // for each tag
  const auto [least, greatest] = std::minmax_element(tags_.begin(), tags_.end());
  first_ = *least;
  if (*greatest - *least < kMostGaps * size_) {
    fillTable(what, *greatest - *least + 1);
  } else {
    sort(what);
  }
  tags_ = {};
}

void TagIndex::fillTable(const char* what, std::uint64_t range) {
  table_.assign(range, kEmpty);
  for (std::size_t i = 0; i < tags_.size(); ++i) {
    std::uint32_t& entry = table_[tags_[i] - first_];
    if (entry != kEmpty) {
      refuseTwice(what, tags_[i]);
    }
    entry = static_cast<std::uint32_t>(i);
  }
}

void TagIndex::sort(const char* what) {
  sorted_.reserve(tags_.size());
  for (std::size_t i = 0; i < tags_.size(); ++i) {
    sorted_.emplace_back(tags_[i], static_cast<std::uint32_t>(i));
  }
  std::sort(sorted_.begin(), sorted_.end());
  const auto twice =
      std::adjacent_find(sorted_.begin(), sorted_.end(),
                         [](const auto& a, const auto& b) { return a.first == b.first; });
  if (twice != sorted_.end()) {
    refuseTwice(what, twice->first);
  }
}

std::size_t TagIndex::searched(std::uint64_t tag) const noexcept {
  const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), std::pair(tag, 0U));
  return found != sorted_.end() && found->first == tag ? std::size_t{found->second} : kNone;
}

}  // namespace orvml_tool
