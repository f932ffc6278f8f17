#pragma once

#include <orvml/check.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvml::detail {

/// How many there are of something, and where the first few are.
class Places {
 public:
  Places(PlaceKind kind, int most)
      : kind_(kind), most_(static_cast<std::size_t>(std::max(most, 0))) {}

  void add(std::int64_t index) {
    ++count_;
    if (first_.size() < most_) {
      first_.push_back({kind_, index});
    }
  }
  /// Adds places that come after all of these.
  void append(const Places& later) {
    count_ += later.count_;
    const std::size_t more = std::min(later.first_.size(), most_ - first_.size());
    first_.insert(first_.end(), later.first_.begin(),
                  later.first_.begin() + static_cast<std::ptrdiff_t>(more));
  }
  /// Counts without saying where.
  void count(std::int64_t more) noexcept { count_ += more; }
  /// Says where, of what has been counted.
  void tell(std::int64_t index) { first_.push_back({kind_, index}); }

  [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
  [[nodiscard]] std::int64_t size() const noexcept { return count_; }
  [[nodiscard]] PlaceKind kind() const noexcept { return kind_; }

  /// The places in ascending order, each once.
  [[nodiscard]] std::vector<CheckPlace> take() {
    std::sort(first_.begin(), first_.end(),
              [](const CheckPlace& a, const CheckPlace& b) { return a.index < b.index; });
    first_.erase(std::unique(first_.begin(), first_.end()), first_.end());
    first_.resize(std::min(first_.size(), most_));
    return std::move(first_);
  }

 private:
  PlaceKind kind_;
  std::size_t most_;
  std::int64_t count_ = 0;
  std::vector<CheckPlace> first_;
};

/// The place kind of the cells or nodes of an entity.
[[nodiscard]] PlaceKind placeKindOf(Entity entity) noexcept;

/// "1 face", "3 faces".
[[nodiscard]] std::string countText(std::int64_t count, std::string_view one,
                                    std::string_view several);
[[nodiscard]] std::string countText(std::int64_t count, PlaceKind kind);

/// The name of a group, an array or an attribute in a file: "/OrvInput", "/OrvInput/Faces".
[[nodiscard]] std::string objectOf(Kind kind);
[[nodiscard]] std::string objectOf(Kind kind, Entity entity);

/// Collects findings.
class FindingList {
 public:
  explicit FindingList(const CheckOptions& options) : mostPlaces_(options.places) {}

  [[nodiscard]] Places places(PlaceKind kind) const { return Places(kind, mostPlaces_); }
  [[nodiscard]] int mostPlaces() const noexcept { return mostPlaces_; }

  /// Adds a finding about a whole object.
  ///
  /// @param sentence  what follows the object in the sentence
  void add(const CheckRule& rule, std::string object, const std::string& sentence);

  /// Adds a finding about parts of an object, unless there are none.
  void add(const CheckRule& rule, std::string object, Places places, const std::string& sentence);

  /// Adds what was found elsewhere.
  void append(std::vector<CheckFinding> findings);

  /// Adds a finding whose sentence has the object already.
  void addAsTold(const CheckRule& rule, std::string object, std::string sentence);

  [[nodiscard]] bool holds(std::string_view code, std::string_view object) const noexcept;
  [[nodiscard]] std::vector<CheckFinding> take() noexcept { return std::move(findings_); }

 private:
  int mostPlaces_;
  std::vector<CheckFinding> findings_;
};

}  // namespace orvml::detail
