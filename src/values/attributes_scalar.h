#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

namespace orvml_io {

/// Named values in ascending byte-wise order of the names; files are written in that order.
template <class T>
class OML_AttributesScalar {
 public:
  using Values = std::map<std::string, T, std::less<>>;

  OML_AttributesScalar() = default;
  /// Appends one value after the other, which is faster than copying the tree: values that follow
  /// each other also lie next to each other then.
  OML_AttributesScalar(const OML_AttributesScalar& other) : values_(other.begin(), other.end()) {}
  OML_AttributesScalar(OML_AttributesScalar&&) noexcept = default;
  OML_AttributesScalar& operator=(const OML_AttributesScalar&) = delete;
  OML_AttributesScalar& operator=(OML_AttributesScalar&&) noexcept = default;
  ~OML_AttributesScalar() = default;

  /// Inserts the name or overwrites its value. Returns 0.
  int Set(const char* name, T value) {
    const std::string_view key(name);
    // Names often come in their order: the end is looked at before the tree is searched.
    const bool isLast = values_.empty() || std::prev(values_.end())->first < key;
    const auto position = isLast ? values_.end() : values_.lower_bound(key);
    if (position != values_.end() && position->first == key) {
      position->second = value;
    } else {
      values_.emplace_hint(position, key, value);
    }
    return 0;
  }

  /// Inserts the names of another store or overwrites their values.
  void SetAll(OML_AttributesScalar&& other) {
    other.values_.merge(values_);
    values_.swap(other.values_);
  }

  /// Returns the value of a name, valid until the store changes; null when the name is absent.
  const T* find(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? nullptr : &found->second;
  }

  /// Removes a name. Returns whether it was there.
  bool Delete(std::string_view name) {
    const auto found = values_.find(name);
    const bool isThere = found != values_.end();
    if (isThere) {
      values_.erase(found);
    }
    return isThere;
  }

  std::size_t count() const noexcept { return values_.size(); }
  void clear() noexcept { values_.clear(); }
  typename Values::const_iterator begin() const noexcept { return values_.begin(); }
  typename Values::const_iterator end() const noexcept { return values_.end(); }

 private:
  Values values_;
};

}  // namespace orvml_io
