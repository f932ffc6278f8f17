#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace orvml::detail {

/// Names in one group of arrays. Those of an exchange file may come twice there, or stand for a
/// path.
class ArrayNames {
 public:
  /// Returns the name, or one like it that can be had and is free; it is taken from now on.
  [[nodiscard]] std::string take(std::string_view wanted);

 private:
  std::unordered_map<std::string, int> taken_;  // how often each was wanted
};

}  // namespace orvml::detail
