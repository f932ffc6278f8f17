#pragma once

#include <orvml/conversion.hpp>

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace orvml_tool {

struct Change {
  orvml::Fate kind = orvml::Fate::dropped;
  std::string object;  ///< what it is about: a path of the exchange file, or a name in the other
  std::int64_t count = 1;  ///< of cells, values or the like; 1 for a whole object
  std::string sentence;    ///< what became of it and why, beginning with the object
};

/// What a conversion tells when it is done: nothing is lost in silence.
class ConversionReport {
 public:
  /// Once: several files of one document lose the same.
  /// @param what  the rest of the sentence, such as "has no cells of volume, which stl cannot hold"
  void add(orvml::Fate kind, const std::string& object, std::int64_t count,
           const std::string& what);

  [[nodiscard]] const std::vector<Change>& changes() const noexcept { return changes_; }
  /// Whether everything was handed on as it is, up to the order of nodes.
  [[nodiscard]] bool isLossless() const noexcept;

 private:
  std::vector<Change> changes_;
  std::unordered_set<std::string> told_;  // the sentences of the changes
};

}  // namespace orvml_tool
