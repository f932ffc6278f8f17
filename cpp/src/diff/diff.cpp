#include <orvml/diff.hpp>

#include "diff/compared_values.h"
#include "diff/mesh_match.h"
#include "hdf5/layout.h"
#include "lent_document.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;
using detail::EntityMatch;
using detail::MeshMatch;
using detail::ValueDifference;

constexpr char kCoordinatesName[] = "coordinates";

std::string shown(double value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(17);
  text << value;
  return text.str();
}

std::string plural(std::int64_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

const char* groupOf(Entity entity) noexcept {
  switch (entity) {
    case Entity::edges:
      return layout::kEdges;
    case Entity::faces:
      return layout::kFaces;
    case Entity::elements:
      return layout::kElements;
    default:
      return layout::kNodes;
  }
}

const char* typeOf(const Attribute& vector) noexcept {
  return vector.holdsInts() ? "ints" : "doubles";
}

void requireTolerance(double value) {
  if (!(value >= 0.0) || std::isinf(value)) {
    throw std::invalid_argument("a tolerance has to be a number that is not negative");
  }
}

void requireTolerances(const DiffOptions& options) {
  requireTolerance(options.tolerance.absolute);
  requireTolerance(options.tolerance.relative);
  for (const auto& [name, tolerance] : options.toleranceOf) {
    requireTolerance(tolerance.absolute);
    requireTolerance(tolerance.relative);
  }
  requireTolerance(options.matchWithin.value_or(0.0));
}

/// Walks two documents side by side and notes what differs.
class Comparison {
 public:
  Comparison(const DocumentView& first, const DocumentView& second, const DiffOptions& options)
      : first_(first), second_(second), options_(options) {
    if (options.matchWithin) {
      match_ = detail::matchMeshes(first, second, *options.matchWithin);
    }
  }

  DiffReport run() {
    compareIdentification();
    compareNodes();
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      compareCells(entity);
    }
    compareParameters();
    compareVectors(first_.vectorParameters(), second_.vectorParameters(), layout::kParametersVector,
                   nullptr);
    if (match_) {
      report_.match = MatchReport{match_->nodes.counts, match_->edges.counts, match_->faces.counts,
                                  match_->elements.counts};
    }
    return std::move(report_);
  }

 private:
  void add(Change change, std::string object, std::string sentence) {
    report_.differences.push_back({change, std::move(object), std::move(sentence), 0, -1, -1, 0.0});
  }

  void addValues(std::string object, std::size_t compared, const ValueDifference& found) {
    if (found.count == 0) {
      return;
    }
    std::string sentence = std::to_string(found.count) + " of " +
                           plural(static_cast<std::int64_t>(compared), "value") +
                           (found.count == 1 ? " differs" : " differ") + ", at most by " +
                           shown(found.largest) + " at " + std::to_string(found.worst);
    report_.differences.push_back({Change::values, std::move(object), std::move(sentence),
                                   found.count, found.first, found.worst, found.largest});
  }

  [[nodiscard]] const Tolerance& toleranceOf(std::string_view name) const {
    const auto own = options_.toleranceOf.find(name);
    return own == options_.toleranceOf.end() ? options_.tolerance : own->second;
  }

  void compareText(const char* object, std::string_view first, std::string_view second) {
    if (first != second) {
      add(Change::text, object,
          "is \"" + std::string(first) + "\" in the first, \"" + std::string(second) +
              "\" in the second");
    }
  }

  void compareIdentification() {
    const auto kindOf = [](const DocumentView& document) {
      return document.kind() == Kind::input ? "input" : "output";
    };
    compareText("kind", kindOf(first_), kindOf(second_));
    const Identification& a = first_.identification();
    const Identification& b = second_.identification();
    compareText(layout::kModuleName, a.moduleName, b.moduleName);
    compareText(layout::kModuleFormatVersion, a.moduleFormatVersion, b.moduleFormatVersion);
    compareText(layout::kIOCreator, a.creator, b.creator);
    if (first_.dimension() != second_.dimension()) {
      add(Change::number, layout::kDimension,
          "is " + std::to_string(first_.dimension()) + " in the first, " +
              std::to_string(second_.dimension()) + " in the second");
    }
  }

  /// Tells of two numbers that differ; returns whether they are the same.
  bool areSameSize(const std::string& object, std::size_t first, std::size_t second,
                   const char* what) {
    if (first != second) {
      add(Change::size, object,
          plural(static_cast<std::int64_t>(first), what) + " in the first, " +
              std::to_string(second) + " in the second");
    }
    return first == second;
  }

  /// Tells of nodes or cells without a counterpart; returns whether there are none.
  bool areMatched(const std::string& object, const MatchedEntity& counts, const char* what) {
    if (counts.onlyInFirst != 0) {
      add(Change::onlyInFirst, object, plural(counts.onlyInFirst, what) + " without a counterpart");
    }
    if (counts.onlyInSecond != 0) {
      add(Change::onlyInSecond, object,
          plural(counts.onlyInSecond, what) + " without a counterpart");
    }
    return counts.onlyInFirst == 0 && counts.onlyInSecond == 0;
  }

  void compareNodes() {
    const NodesView& a = first_.nodes();
    const NodesView& b = second_.nodes();
    if (match_) {
      areMatched(layout::kNodes, match_->nodes.counts, "node");
    } else if (areSameSize(layout::kNodes, static_cast<std::size_t>(a.size()),
                           static_cast<std::size_t>(b.size()), "node") &&
               areSameSize(layout::kNodesCoordinates, a.coordinates().size(),
                           b.coordinates().size(), "coordinate")) {
      addValues(
          layout::kNodesCoordinates, a.coordinates().size(),
          detail::compareValues(a.coordinates(), b.coordinates(), toleranceOf(kCoordinatesName)));
    }
    compareAttributes(Entity::nodes);
  }

  void compareCells(Entity entity) {
    if (match_) {
      areMatched(groupOf(entity), match_->of(entity).counts, "cell");
    } else {
      compareGroups(entity);
    }
    compareAttributes(entity);
  }

  /// Node indices are compared where they mean the same cells.
  void compareGroups(Entity entity) {
    const std::string object = groupOf(entity);
    const CellsView& a = first_.cells(entity);
    const CellsView& b = second_.cells(entity);
    const auto sizes = [](const CellsView& cells) {
      return static_cast<std::size_t>(cells.size());
    };
    if (!areSameSize(object, sizes(a), sizes(b), "cell") || a.size() == 0) {
      return;  // groups without cells are nothing: files do not keep them
    }
    const auto describes = [](const CellGroup& group) {
      return std::array{static_cast<int>(group.shape()), group.nodesPerCell(), group.size(),
                        static_cast<int>(group.nodeIndices().size())};
    };
    const bool areSame = std::equal(
        a.groups().begin(), a.groups().end(), b.groups().begin(), b.groups().end(),
        [&](const CellGroup& x, const CellGroup& y) { return describes(x) == describes(y); });
    if (!areSame) {
      add(Change::groups, object + layout::kElementTypes,
          "the groups of cells have other shapes, sizes or orders");
      return;
    }
    compareNodeIndices(object + layout::kConnectivities, a, b);
  }

  void compareNodeIndices(const std::string& object, const CellsView& a, const CellsView& b) {
    ValueDifference all;
    std::int64_t begin = 0;
    for (std::size_t i = 0; i < a.groups().size(); ++i) {
      const ValueDifference found =
          detail::compareValues(a.groups()[i].nodeIndices(), b.groups()[i].nodeIndices(), {});
      if (found.count > 0) {
        all.first = all.count == 0 ? begin + found.first : all.first;
        if (all.worst < 0 || found.largest > all.largest) {
          all.worst = begin + found.worst;
          all.largest = found.largest;
        }
        all.count += found.count;
      }
      begin += static_cast<std::int64_t>(a.groups()[i].nodeIndices().size());
    }
    addValues(object, static_cast<std::size_t>(begin), all);
  }

  void compareAttributes(Entity entity) {
    compareVectors(first_.attributes(entity), second_.attributes(entity),
                   std::string(groupOf(entity)) + layout::kAttributes,
                   match_ ? &match_->of(entity) : nullptr);
  }

  /// @param match  of the nodes or cells that the vectors belong to; none for the vectors of the
  ///   whole document and where values of one position belong together
  void compareVectors(const Attributes& first, const Attributes& second, const std::string& group,
                      const EntityMatch* match) {
    forEachName(first, second, group,
                [&](const std::string& object, const Attribute& a, const Attribute& b) {
                  compareVector(object, a, b, match);
                });
  }

  void compareVector(const std::string& object, const Attribute& a, const Attribute& b,
                     const EntityMatch* match) {
    if (a.mustBeTransmitted != b.mustBeTransmitted) {
      add(Change::flag, object,
          std::string("must be transmitted in the ") + (a.mustBeTransmitted ? "first" : "second") +
              " alone");
    }
    if (a.holdsInts() != b.holdsInts()) {
      add(Change::type, object,
          std::string("holds ") + typeOf(a) + " in the first, " + typeOf(b) + " in the second");
      return;
    }
    // A vector of another length has no value for each node or cell: it is compared as it stands.
    const bool isMatched = match != nullptr && hasValueForEach(*match, a, b);
    if (!isMatched && !areSameSize(object, a.size(), b.size(), "value")) {
      return;
    }
    std::visit(
        [&](auto values) {
          const auto others = std::get<decltype(values)>(b.values);
          const Tolerance& tolerance = toleranceOf(a.name);
          addValues(object, values.size(),
                    isMatched ? detail::compareValues(values, others, tolerance, match->numbering)
                              : detail::compareValues(values, others, tolerance));
        },
        a.values);
  }

  static bool hasValueForEach(const EntityMatch& match, const Attribute& a, const Attribute& b) {
    const std::int64_t sizeOfSecond = match.counts.matched + match.counts.onlyInSecond;
    return a.size() == match.numbering.size() && b.size() == static_cast<std::size_t>(sizeOfSecond);
  }

  void compareParameters() {
    forEachName(first_.parameters(), second_.parameters(), layout::kParameters,
                [&](const std::string& object, const Parameter& a, const Parameter& b) {
                  const double distance =
                      detail::distanceBeyond(a.value, b.value, toleranceOf(a.name));
                  if (distance >= 0.0) {
                    report_.differences.push_back({Change::values, object,
                                                   "is " + shown(a.value) + " in the first, " +
                                                       shown(b.value) + " in the second",
                                                   1, 0, 0, distance});
                  }
                });
  }

  /// Walks two lists of ascending names: tells of entries of one of them, and calls with those of
  /// both.
  template <class List, class Compare>
  void forEachName(const List& first, const List& second, const std::string& group,
                   Compare compare) {
    auto a = first.begin();
    auto b = second.begin();
    const auto objectOf = [&](const auto& entry) { return group + "/" + std::string(entry.name); };
    while (a != first.end() || b != second.end()) {
      if (b == second.end() || (a != first.end() && a->name < b->name)) {
        add(Change::onlyInFirst, objectOf(*a), "is in the first alone");
        ++a;
      } else if (a == first.end() || b->name < a->name) {
        add(Change::onlyInSecond, objectOf(*b), "is in the second alone");
        ++b;
      } else {
        compare(objectOf(*a), *a, *b);
        ++a;
        ++b;
      }
    }
  }

  const DocumentView& first_;
  const DocumentView& second_;
  const DiffOptions& options_;
  std::optional<MeshMatch> match_;
  DiffReport report_;
};

std::optional<bool> compareByContract(const DocumentView& first, const DocumentView& second) {
  if (first.kind() != second.kind()) {
    return std::nullopt;
  }
  try {
    const detail::LentDocument a(first);
    const detail::LentDocument b(second);
    return orvml_io::OrvInputAndOrvOutput::AreEqual(&a.core(), &b.core());
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace

std::string_view text(Change change) noexcept {
  constexpr std::array<std::string_view, 9> kTexts = {"only-in-first", "only-in-second", "text",
                                                      "number",        "size",           "type",
                                                      "groups",        "values",         "flag"};
  return kTexts[static_cast<std::size_t>(change)];
}

DiffReport diff(const DocumentView& first, const DocumentView& second, const DiffOptions& options) {
  requireTolerances(options);
  DiffReport report = Comparison(first, second, options).run();
  report.areEqualByContract = compareByContract(first, second);
  return report;
}

}  // namespace orvml
