#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace orvml::parallel {

namespace detail {
class SliceContent;
}

/// Consecutive things of a whole: those from `first` to before `first + size`.
struct Block {
  std::int64_t first = 0;
  std::int64_t size = 0;
};

/// A type group of the whole document, and the block of its cells that a slice has.
struct GroupBlock {
  Shape shape = Shape::none;
  int nodesPerCell = 0;
  std::int64_t cells = 0;  ///< of the whole group
  Block here;
};

/// What one rank has of a document: a block of its nodes, a block of each of its type groups, and
/// their attributes. Texts, parameters and vector parameters are whole on every rank.
///
/// Nodes are dealt out in blocks, and so are the cells of each group, whose sizes differ by one at
/// most; blocks ascend with the ranks. An attribute with another number of values than there are
/// nodes or cells is dealt out in blocks of its own. Slices are moved, and own what they hold.
class ORVML_EXPORT Slice {
 public:
  explicit Slice(std::unique_ptr<const detail::SliceContent> content);
  Slice(Slice&& other) noexcept;
  Slice& operator=(Slice&& other) noexcept;
  Slice(const Slice&) = delete;
  Slice& operator=(const Slice&) = delete;
  ~Slice();

  [[nodiscard]] Kind kind() const noexcept;

  /// A view of the slice, valid as long as it is. Its node indices are those of the whole document,
  /// and so they lead beyond its nodes; every group of the whole is there, some of them without
  /// cells.
  [[nodiscard]] DocumentView view() const&;
  DocumentView view() const&& = delete;

  /// Nodes, or cells of one kind, of the whole document.
  [[nodiscard]] std::int64_t total(Entity entity) const noexcept;
  /// Which nodes of the whole are here.
  [[nodiscard]] Block nodes() const noexcept;
  /// Which cells of the whole are here, group by group; none for nodes.
  [[nodiscard]] std::vector<GroupBlock> groups(Entity entity) const;

 private:
  std::unique_ptr<const detail::SliceContent> content_;
};

}  // namespace orvml::parallel
