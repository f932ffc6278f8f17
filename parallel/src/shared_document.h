#pragma once

#include <orvml/view.hpp>

#include "array_parts.h"
#include "communicator.h"
#include "outline.h"
#include "stand_in.h"

#include <filesystem>
#include <vector>

namespace orvml::parallel::detail {

/// A document of which every rank has a part to write: what the whole is like, and where the part
/// of this rank belongs in it.
class SharedDocument {
 public:
  /// Collective. Throws on every rank when the parts do not belong together, and when the whole is
  /// more than the format can count. Keeps the view.
  SharedDocument(const Communicator& comm, const DocumentView& view);

  [[nodiscard]] Kind kind() const noexcept { return view_.kind(); }

  [[nodiscard]] const DocumentView& view() const noexcept { return view_; }
  [[nodiscard]] const DocumentOutline& here() const noexcept { return here_; }
  [[nodiscard]] const DocumentOutline& before() const noexcept { return before_; }
  [[nodiscard]] const DocumentOutline& whole() const noexcept { return whole_; }

  /// The bytes of the largest array that ranks share.
  [[nodiscard]] std::size_t largestArrayBytes() const noexcept;

  /// A view of the whole whose shared arrays all lie in the same place; borrows from both. It has
  /// the texts and parameters of this rank.
  [[nodiscard]] DocumentView wholeView(const orvml::detail::StandIn& values) const;

  /// What this rank writes; borrows from the view, and from this object.
  [[nodiscard]] std::vector<ArrayPart<const void*>> parts();

 private:
  void addNodes(std::vector<ArrayPart<const void*>>& parts) const;
  void addCells(Entity entity, std::vector<ArrayPart<const void*>>& parts);
  void addAttributes(Entity entity, std::vector<ArrayPart<const void*>>& parts) const;
  [[nodiscard]] std::vector<Range> rangesOfCells(Entity entity, bool areIndices) const;

  DocumentView view_;
  DocumentOutline here_;
  DocumentOutline before_;  // on the ranks before this one
  DocumentOutline whole_;
  std::array<std::vector<int>, 4> joined_;  // node indices of groups that lie apart in the view
};

}  // namespace orvml::parallel::detail
