#pragma once

#include "check/corners.h"
#include "check/shape_facts.h"

#include <vector>

namespace orvml::detail {

/// The shape functions of a quadratic form of a shape, of which it knows the derivatives where the
/// Jacobian is looked at: at every node and in the centre.
class CurvedForm {
 public:
  /// @param nodes  one of the numbers of nodes of the shape
  CurvedForm(const ShapeFacts& facts, int nodes);

  /// How many nodes are looked at; inner ones of two shapes are not.
  [[nodiscard]] int nodes() const noexcept { return nodes_; }

  /// Tells whether the middle nodes are in the middle, so that the corners tell everything.
  [[nodiscard]] bool isStraight(const Vec* x) const noexcept;

  /// The Jacobians of a cell.
  ///
  /// @param inSpace  whether a flat cell lies in space, where it is compared with its mean normal
  [[nodiscard]] Jacobians jacobians(const Vec* x, bool inSpace) const noexcept;

 private:
  [[nodiscard]] Vec derivative(const Vec* x, std::size_t point, int axis) const noexcept;

  const ShapeFacts& facts_;
  int nodes_;
  std::span<const MiddleNode> middles_;
  std::size_t points_ = 0;
  std::vector<double> derivatives_;  // [points x dimension of the shape x nodes]
};

}  // namespace orvml::detail
