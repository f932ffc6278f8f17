#pragma once

#include <orvml/cell_faces.hpp>
#include <orvml/skin.hpp>
#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/format.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace orvml_tool {

/// What a file of a surface gets of a document: its faces, or the skin of its volume elements where
/// it has no faces, or where elements alone are asked for. Quadratic faces are parted into linear
/// ones that have all of their nodes.
class WrittenSurface {
 public:
  struct Content {
    std::string_view format;          ///< as the report calls it
    bool hasQuadrilaterals = true;    ///< else they are parted into triangles
    bool hasNodesWithoutFace = true;  ///< else those are left out
  };

  /// Reports what of the document does not come along. Throws Refusal when there is no face.
  WrittenSurface(const orvml::DocumentView& document, const ExportOptions& options,
                 const Content& content, ConversionReport& report);

  [[nodiscard]] std::int64_t numberOfFaces() const noexcept { return numberOfFaces_; }
  [[nodiscard]] std::int64_t numberOfNodes() const noexcept { return numberOfNodes_; }

  /// The place of a node of the document.
  [[nodiscard]] std::array<double, 3> pointOf(std::size_t node) const noexcept;

  /// Calls `take(point)` for each node that is written.
  template <class Take>
  void forEachNode(const Take& take) const {
    for (std::size_t node = 0; node < isWritten_.size(); ++node) {
      if (isWritten_[node]) {
        take(pointOf(node));
      }
    }
  }

  /// The number of a node among those that are written, 0-based.
  [[nodiscard]] int numberOf(int node) const noexcept {
    return newNumbers_.empty() ? node : newNumbers_[static_cast<std::size_t>(node)];
  }

  /// Calls `take(nodes)` for each face, with three or four nodes of the document.
  template <class Take>
  void forEachFace(const Take& take) const {
    std::array<int, 4> corners = {};
    for (const Patch& patch : patches_) {
      const auto width = static_cast<std::size_t>(patch.form.nodesPerCell);
      for (std::size_t first = 0; first < patch.nodes.size(); first += width) {
        for (const auto& part : orvml::linearPartsOf(patch.form)) {
          for (std::size_t i = 0; i < part.size(); ++i) {
            corners[i] = patch.nodes[first + part[i]];
          }
          takePart(std::span<const int>(corners.data(), part.size()), take);
        }
      }
    }
  }

 private:
  struct Patch {
    orvml::CellForm form;
    std::span<const int> nodes;

    [[nodiscard]] std::int64_t size() const noexcept {
      return static_cast<std::int64_t>(nodes.size()) / form.nodesPerCell;
    }
  };

  template <class Take>
  void takePart(std::span<const int> corners, const Take& take) const {
    if (content_.hasQuadrilaterals || corners.size() == 3) {
      take(corners);
      return;
    }
    // The shorter diagonal lies inside of a quadrilateral whose corner is bent inwards.
    const auto c = [&](std::size_t i) { return corners[i]; };
    const bool isFirst = squaredDistance(c(0), c(2)) <= squaredDistance(c(1), c(3));
    const std::array<int, 6> parted = {c(0), c(1), isFirst ? c(2) : c(3), isFirst ? c(0) : c(1),
                                       c(2), c(3)};
    take(std::span<const int>(parted.data(), 3));
    take(std::span<const int>(parted.data() + 3, 3));
  }

  [[nodiscard]] double squaredDistance(int from, int to) const noexcept;
  void chooseFaces(const ExportOptions& options, ConversionReport& report);
  void addFaces(orvml::Entity container, ConversionReport& report);
  void addSkin(ConversionReport& report);
  void countFaces(orvml::Entity container, ConversionReport& report);
  void chooseNodes(ConversionReport& report);

  const orvml::DocumentView& document_;
  Content content_;
  std::vector<Patch> patches_;
  std::vector<orvml::SkinFaces> skin_;
  bool isSkin_ = false;
  std::int64_t numberOfFaces_ = 0;
  std::int64_t numberOfNodes_ = 0;
  std::vector<bool> isWritten_;
  std::vector<int> newNumbers_;  // empty: as they are
};

/// Floats of 32 bits that stand for coordinates, and what they lose.
class RoundedFloats {
 public:
  /// Throws Refusal for a value beyond the range of floats.
  float of(double value);

  [[nodiscard]] std::int64_t roundedNumbers() const noexcept { return roundedNumbers_; }
  [[nodiscard]] double largestError() const noexcept { return largestError_; }

 private:
  std::int64_t roundedNumbers_ = 0;
  double largestError_ = 0.0;
};

}  // namespace orvml_tool
