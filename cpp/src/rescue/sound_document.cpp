#include "rescue/sound_document.h"

#include "check/finding_list.h"
#include "check/shape_facts.h"
#include "hdf5/layout.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <span>
#include <utility>

namespace orvml::detail {

namespace {

namespace layout = orvml_io::layout;

CheckReport checkOf(const RescuedDocument& document) {
  CheckOptions options;
  options.coincidenceTolerance = -1;  // never an error
  options.places = std::numeric_limits<int>::max();
  return document.kind == Kind::input ? check(InputView(document.view()), options)
                                      : check(OutputView(document.view()), options);
}

/// What is looked for at once. What follows may come from what comes before: a cell with a wrong
/// index may be inside out, or share faces that are those of others.
using Stage = std::initializer_list<CheckCode>;
constexpr Stage kStages[] = {
    {CheckCode::coordinateNotFinite},
    {CheckCode::indexOutOfRange},
    {CheckCode::repeatedNode},
    {CheckCode::zeroSizeCell, CheckCode::invertedCell, CheckCode::foldedCell},
    {CheckCode::duplicateCell},
    {CheckCode::faceSharedByMany}};

/// Those that every document has to go through; the others are for unsound cells.
constexpr std::size_t kStagesOfIndices = 2;

class SoundDocument {
 public:
  SoundDocument(RescuedDocument& document, const RescueOptions& options, Losses& losses)
      : document_(document), options_(options), losses_(losses) {}

  void make() {
    dropUnknownForms();
    dropCellsWithoutNodes();
    const std::size_t stages = options_.dropUnsoundCells ? std::size(kStages) : kStagesOfIndices;
    while (dropWorst(std::span(kStages).first(stages))) {
    }
  }

 private:
  void dropUnknownForms();
  void dropCellsWithoutNodes();
  bool dropWorst(std::span<const Stage> stages);
  void drop(const CheckFinding& finding);
  void dropNodes(const CheckFinding& finding, std::vector<bool> isDropped);
  void dropMarked(Entity entity, LostObject lost, const std::vector<bool>& isDropped);

  /// The number of nodes or cells that are marked, and the first few, as the file counts them.
  void tellMarked(Entity entity, const std::vector<bool>& isDropped, LostObject& lost) const;
  void tellAttributesOf(Entity entity);
  [[nodiscard]] std::vector<bool> cellsOfGroup(Entity entity, std::size_t number) const;

  RescuedDocument& document_;
  const RescueOptions& options_;
  Losses& losses_;
};

Entity entityOf(PlaceKind kind) noexcept {
  switch (kind) {
    case PlaceKind::edge:
      return Entity::edges;
    case PlaceKind::face:
      return Entity::faces;
    case PlaceKind::element:
      return Entity::elements;
    default:
      return Entity::nodes;
  }
}

/// Says why a group of cells cannot be one; empty when it can.
std::pair<CheckCode, std::string> flawOf(const RescuedGroup& group, Entity entity, int dimension) {
  const ShapeFacts* facts = factsOf(group.shape);
  const std::string shape(name(group.shape));
  if (facts != nullptr && !belongsTo(*facts, entity, dimension)) {
    return {CheckCode::misplacedShape, "of the shape " + shape + ", which does not belong there"};
  }
  if (facts != nullptr && !hasNodeCount(*facts, group.nodesPerCell)) {
    return {CheckCode::wrongNodeCount, "of the shape " + shape + " with " +
                                           countText(group.nodesPerCell, "node", "nodes") +
                                           " each, for which there is no order"};
  }
  return {CheckCode::unknownShape, {}};
}

void SoundDocument::tellMarked(Entity entity, const std::vector<bool>& isDropped,
                               LostObject& lost) const {
  lost.count = std::count(isDropped.begin(), isDropped.end(), true);
  lost.places.clear();
  for (std::size_t i = 0;
       i < isDropped.size() && static_cast<int>(lost.places.size()) < options_.places; ++i) {
    if (isDropped[i]) {
      lost.places.push_back(
          {placeKindOf(entity), document_.numberOf(entity, static_cast<std::int64_t>(i))});
    }
  }
}

/// Attributes of which no value is left.
void SoundDocument::tellAttributesOf(Entity entity) {
  const std::string object = objectOf(document_.kind, entity);
  for (const RescuedVector& attribute : document_.part(entity).attributes) {
    losses_.add(Code::dependsOnLost, object + layout::kAttributes + "/" + attribute.name,
                "belongs to " + std::string(name(placeKindOf(entity))) + "s of which none is left");
  }
}

std::vector<bool> SoundDocument::cellsOfGroup(Entity entity, std::size_t number) const {
  std::vector<bool> marked(static_cast<std::size_t>(document_.size(entity)));
  std::ptrdiff_t first = 0;
  for (std::size_t i = 0; i < number; ++i) {
    first += document_.part(entity).groups[i].cells;
  }
  std::fill_n(marked.begin() + first, document_.part(entity).groups[number].cells, true);
  return marked;
}

void SoundDocument::dropMarked(Entity entity, LostObject lost, const std::vector<bool>& isDropped) {
  tellMarked(entity, isDropped, lost);
  if (lost.count == 0) {
    return;
  }
  const bool areAll = lost.count == document_.size(entity);
  losses_.addAsTold(std::move(lost));
  if (areAll) {
    tellAttributesOf(entity);
    document_.dropAll(entity);
  } else {
    document_.drop(entity, isDropped);
  }
}

void SoundDocument::dropUnknownForms() {
  for (const Entity entity : kKindsOfCells) {
    for (std::size_t number = 0; number < document_.part(entity).groups.size(); ++number) {
      const RescuedGroup& group = document_.part(entity).groups[number];
      const auto [code, why] = flawOf(group, entity, document_.dimension);
      if (!why.empty() && group.cells > 0) {
        const std::string object = objectOf(document_.kind, entity);
        std::string sentence = object + " has " + countText(group.cells, "cell", "cells");
        sentence.append(" in its group ").append(std::to_string(number)).append(" ").append(why);
        dropMarked(entity, {text(code), object, {}, 1, sentence}, cellsOfGroup(entity, number));
      }
    }
  }
}

/// Without any node there is no cell, and one reason for all of them.
void SoundDocument::dropCellsWithoutNodes() {
  if (document_.size(Entity::nodes) > 0) {
    return;
  }
  const bool areLost = losses_.holdsAnyOf(objectOf(document_.kind, Entity::nodes));
  for (const Entity entity : kKindsOfCells) {
    const std::string object = objectOf(document_.kind, entity);
    const std::int64_t cells = document_.size(entity);
    const std::string what = object + " has " + countText(cells, placeKindOf(entity));
    dropMarked(entity,
               {areLost ? text(Code::dependsOnLost) : text(CheckCode::indexOutOfRange),
                object,
                {},
                1,
                what + (areLost ? ", whose nodes are lost" : ", and there are no nodes")},
               std::vector<bool>(static_cast<std::size_t>(cells), true));
  }
}

/// Drops what belongs to the first stage that anything is found of. Returns false when nothing is.
bool SoundDocument::dropWorst(std::span<const Stage> stages) {
  const CheckReport report = checkOf(document_);
  for (const Stage& stage : stages) {
    bool isAnyFound = false;
    for (const CheckFinding& finding : report.findings) {
      const bool isOfStage = std::any_of(
          stage.begin(), stage.end(), [&](CheckCode code) { return finding.code == text(code); });
      // Indices of findings count what was there when they were made: one of each kind at a time.
      if (isOfStage && !finding.places.empty() && !isAnyFound) {
        drop(finding);
        isAnyFound = true;
      }
    }
    if (isAnyFound) {
      return true;
    }
  }
  return false;
}

void SoundDocument::drop(const CheckFinding& finding) {
  const Entity entity = entityOf(finding.places.front().kind);
  std::vector<bool> isDropped(static_cast<std::size_t>(document_.size(entity)));
  for (const CheckPlace& place : finding.places) {
    isDropped[static_cast<std::size_t>(place.index)] = true;
  }
  if (entity == Entity::nodes) {
    return dropNodes(finding, std::move(isDropped));
  }
  dropMarked(entity, {finding.code, finding.object, {}, 1, finding.sentence}, isDropped);
}

/// Cells that name one of the nodes go first.
void SoundDocument::dropNodes(const CheckFinding& finding, std::vector<bool> isDropped) {
  for (const Entity entity : kKindsOfCells) {
    std::vector<bool> isCellDropped(static_cast<std::size_t>(document_.size(entity)));
    std::size_t cell = 0;
    for (const RescuedGroup& group : document_.part(entity).groups) {
      const auto width = static_cast<std::size_t>(group.nodesPerCell);
      for (std::size_t i = 0; i < static_cast<std::size_t>(group.cells); ++i, ++cell) {
        const std::span<const int> nodes = std::span(group.nodeIndices).subspan(i * width, width);
        isCellDropped[cell] = std::any_of(nodes.begin(), nodes.end(), [&](int node) {
          return node >= 0 && static_cast<std::size_t>(node) < isDropped.size() &&
                 isDropped[static_cast<std::size_t>(node)];
        });
      }
    }
    const auto dropped = std::count(isCellDropped.begin(), isCellDropped.end(), true);
    const std::string object = objectOf(document_.kind, entity);
    dropMarked(entity,
               {text(Code::dependsOnLost),
                object,
                {},
                1,
                object + " has " + countText(dropped, placeKindOf(entity)) +
                    " with nodes that are left out"},
               isCellDropped);
  }
  const std::string object = finding.object;
  const std::int64_t nodes = document_.size(Entity::nodes);
  dropMarked(Entity::nodes, {finding.code, object, {}, 1, finding.sentence}, isDropped);
  const std::int64_t left = document_.size(Entity::nodes);
  if (left > 0 && left < nodes) {
    losses_.addChange(object, "has nodes that are numbered anew, " + std::to_string(left) + " of " +
                                  std::to_string(nodes));
  }
}

}  // namespace

void makeSound(RescuedDocument& document, const RescueOptions& options, Losses& losses) {
  SoundDocument(document, options, losses).make();
}

}  // namespace orvml::detail
