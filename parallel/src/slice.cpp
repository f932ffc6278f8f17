#include <orvml/parallel/slice.hpp>

#include "slice_content.h"

#include <utility>

namespace orvml::parallel {

namespace detail {

SliceContent::SliceContent(DocumentOutline outline, int rank, int ranks)
    : parts(std::move(outline)),
      nodes(blockOf(parts.outline().of(Entity::nodes).size, rank, ranks)) {
  for (const Entity entity : kCellEntities) {
    for (GroupOutline& group : parts.of(entity).groups) {
      const std::size_t index = static_cast<std::size_t>(&group - parts.of(entity).groups.data());
      const Range here = blockOf(parts.outline().of(entity).groups[index].cells, rank, ranks);
      groups[static_cast<std::size_t>(entity)].push_back(here);
      group.cells = here.count;
    }
  }
}

}  // namespace detail

Slice::Slice(std::unique_ptr<const detail::SliceContent> content) : content_(std::move(content)) {}

Slice::Slice(Slice&& other) noexcept = default;

Slice& Slice::operator=(Slice&& other) noexcept = default;

Slice::~Slice() = default;

Kind Slice::kind() const noexcept { return content_->parts.outline().kind; }

DocumentView Slice::view() const& { return content_->parts.view(); }

std::int64_t Slice::total(Entity entity) const noexcept {
  return content_->parts.outline().of(entity).size;
}

Block Slice::nodes() const noexcept { return {content_->nodes.first, content_->nodes.count}; }

std::vector<GroupBlock> Slice::groups(Entity entity) const {
  const auto& outlines = content_->parts.outline().of(entity).groups;
  const auto& ranges = content_->groups[static_cast<std::size_t>(entity)];
  std::vector<GroupBlock> blocks;
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    blocks.push_back({static_cast<Shape>(outlines[i].shape),
                      outlines[i].nodesPerCell,
                      outlines[i].cells,
                      {ranges[i].first, ranges[i].count}});
  }
  return blocks;
}

}  // namespace orvml::parallel
