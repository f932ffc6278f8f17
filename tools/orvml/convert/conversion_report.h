#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvml_tool {

/// What a conversion does to what it cannot hand on as it is.
enum class ChangeKind {
  dropped,       ///< it is not in the new file
  renamed,       ///< it has another name there
  split,         ///< it is several things there
  padded,        ///< values were added that nobody gave
  approximated,  ///< values are near the old ones, or a cell stands for another one
  turned         ///< nodes come in another order, and mean the same; nothing is lost by that
};

/// "dropped" and so on.
[[nodiscard]] std::string name(ChangeKind kind);

struct Change {
  ChangeKind kind = ChangeKind::dropped;
  std::string object;  ///< what it is about: a path of the exchange file, or a name in the other
  std::int64_t count = 1;  ///< of cells, values or the like; 1 for a whole object
  std::string sentence;    ///< what became of it and why, beginning with the object
};

/// What a conversion tells when it is done: nothing is lost in silence.
class ConversionReport {
 public:
  /// @param what  the rest of the sentence, such as "has no cells of volume, which stl cannot hold"
  void add(ChangeKind kind, const std::string& object, std::int64_t count, const std::string& what);

  [[nodiscard]] const std::vector<Change>& changes() const noexcept { return changes_; }
  /// Whether everything was handed on as it is, up to the order of nodes.
  [[nodiscard]] bool isLossless() const noexcept;

 private:
  std::vector<Change> changes_;
};

}  // namespace orvml_tool
