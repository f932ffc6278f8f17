#include "place_marks.h"

#include "drawable_cells.h"

#include <algorithm>
#include <bit>
#include <span>
#include <utility>

namespace orvml_report {

namespace {

using orvml::DocumentView;
using orvml::Entity;

constexpr std::size_t kNoPlace = SIZE_MAX;

/// Something of one of the two documents, known by its key.
template <class Key>
struct Keyed {
  Key key = {};
  std::size_t document = 0;
  std::size_t index = 0;
};

/// Calls with each run of equal keys. Within it those of the first document come first, each
/// document's in the order of their indices.
template <class Key, class Visit>
void forEachRun(std::vector<Keyed<Key>>& items, Visit visit) {
  std::sort(items.begin(), items.end(), [](const Keyed<Key>& a, const Keyed<Key>& b) {
    return a.key != b.key             ? a.key < b.key
           : a.document != b.document ? a.document < b.document
                                      : a.index < b.index;
  });
  for (auto begin = items.begin(); begin != items.end();) {
    const auto end = std::find_if(begin, items.end(),
                                  [&](const Keyed<Key>& other) { return other.key != begin->key; });
    visit(std::span<const Keyed<Key>>(begin, end));
    begin = end;
  }
}

/// Whether what belongs together has the same values.
class ComparedValues {
 public:
  ComparedValues(const orvml::Attributes& first, const orvml::Attributes& second) {
    for (const orvml::Attribute& attribute : first) {
      const orvml::Attribute* other = second.find(attribute.name);
      areOfBoth_ = areOfBoth_ && other != nullptr;
      if (other != nullptr) {
        pairs_.emplace_back(attribute, *other);
      }
    }
    areOfBoth_ = areOfBoth_ && second.size() == pairs_.size();
  }

  [[nodiscard]] bool areSame(std::size_t first, std::size_t second) const {
    return areOfBoth_ && std::all_of(pairs_.begin(), pairs_.end(), [&](const auto& pair) {
             const Value a = valueOf(pair.first, first);
             const Value b = valueOf(pair.second, second);
             return a.isThere == b.isThere &&
                    (a.number == b.number || (a.number != a.number && b.number != b.number));
           });
  }

 private:
  struct Value {
    bool isThere = false;
    double number = 0.0;
  };

  static Value valueOf(const orvml::Attribute& attribute, std::size_t index) {
    return std::visit(
        [&](const auto& values) {
          return index < values.size() ? Value{true, static_cast<double>(values[index])} : Value();
        },
        attribute.values);
  }

  bool areOfBoth_ = true;
  std::vector<std::pair<orvml::Attribute, orvml::Attribute>> pairs_;
};

/// Marks the things of one place: the k-th of one document is the partner of the k-th of the other.
template <class Key, class AreSame>
void markRun(std::span<const Keyed<Key>> run, const AreSame& areSame,
             std::array<std::vector<std::uint8_t>*, 2> marks) {
  const auto second = std::find_if(run.begin(), run.end(),
                                   [](const Keyed<Key>& item) { return item.document == 1; });
  const auto ofFirst = static_cast<std::size_t>(second - run.begin());
  const std::size_t partners = std::min(ofFirst, run.size() - ofFirst);
  for (std::size_t i = 0; i < partners; ++i) {
    const std::size_t a = run[i].index;
    const std::size_t b = run[ofFirst + i].index;
    const auto mark = static_cast<std::uint8_t>(areSame(a, b) ? Mark::same : Mark::otherValues);
    (*marks[0])[a] = mark;
    (*marks[1])[b] = mark;
  }
}

/// The bits of coordinates, of which the two zeros are one.
using PlaceKey = std::array<std::uint64_t, 3>;

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) noexcept {
  // The constants of splitmix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number
  // generators", 2014).
  hash += 0x9e3779b97f4a7c15U + word;
  hash = (hash ^ (hash >> 30U)) * 0xbf58476d1ce4e5b9U;
  hash = (hash ^ (hash >> 27U)) * 0x94d049bb133111ebU;
  return hash ^ (hash >> 31U);
}

/// 128 bits of a cell's shape and places. That two cells have the same by accident is out of the
/// question; who contrives it gets a wrong colour.
using CellKey = std::array<std::uint64_t, 2>;

class Comparison {
 public:
  Comparison(const std::array<const DocumentView*, 2>& documents,
             const std::array<const StoredMesh*, 2>& stored)
      : documents_(documents), stored_(stored) {
    markNodes();
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      markCells(entity);
    }
  }

  [[nodiscard]] std::array<PlaceMarks, 2> take() { return std::move(marks_); }

 private:
  [[nodiscard]] std::array<std::vector<std::uint8_t>*, 2> marksOf(Entity entity) {
    const auto at = static_cast<std::size_t>(entity);
    return {&marks_[0].of[at], &marks_[1].of[at]};
  }

  void markNodes() {
    std::vector<Keyed<PlaceKey>> items;
    for (std::size_t document = 0; document < 2; ++document) {
      const orvml::NodesView& nodes = documents_[document]->nodes();
      const NodePlaces places(nodes);
      // Nodes of which the number alone is known are none that could be marked.
      const int count = nodes.coordinates().empty() ? 0 : nodes.size();
      const auto size = static_cast<std::size_t>(count);
      marks_[document].of[0].assign(size, static_cast<std::uint8_t>(Mark::onlyHere));
      places_[document].assign(size, kNoPlace);
      for (int node = 0; node < count; ++node) {
        const Point point = places[node];
        PlaceKey key;
        std::transform(point.begin(), point.end(), key.begin(),
                       [](double value) { return std::bit_cast<std::uint64_t>(value + 0.0); });
        items.push_back({key, document, static_cast<std::size_t>(node)});
      }
    }
    const ComparedValues values(documents_[0]->nodes().attributes(),
                                documents_[1]->nodes().attributes());
    std::size_t place = 0;
    forEachRun(items, [&](std::span<const Keyed<PlaceKey>> run) {
      markRun(
          run, [&](std::size_t a, std::size_t b) { return values.areSame(a, b); },
          marksOf(Entity::nodes));
      for (const Keyed<PlaceKey>& node : run) {
        places_[node.document][node.index] = place;
      }
      ++place;
    });
  }

  void markCells(Entity entity) {
    std::vector<Keyed<CellKey>> items;
    std::array<std::vector<int>, 2> numbers;  // in the documents
    for (std::size_t document = 0; document < 2; ++document) {
      collectCells(document, stored_[document]->of(entity), items, numbers[document]);
      marksOf(entity)[document]->assign(numbers[document].size(),
                                        static_cast<std::uint8_t>(Mark::onlyHere));
    }
    const ComparedValues values(documents_[0]->attributes(entity),
                                documents_[1]->attributes(entity));
    const auto areSame = [&](std::size_t a, std::size_t b) {
      return values.areSame(static_cast<std::size_t>(numbers[0][a]),
                            static_cast<std::size_t>(numbers[1][b]));
    };
    forEachRun(items, [&](std::span<const Keyed<CellKey>> run) {
      markRun(run, areSame, marksOf(entity));
    });
  }

  void collectCells(std::size_t document, const StoredCells& cells,
                    std::vector<Keyed<CellKey>>& items, std::vector<int>& numbers) const {
    std::vector<std::size_t> places;
    for (const StoredGroup& group : cells.groups()) {
      for (int cell = 0; cell < group.cells.size(); ++cell) {
        if (takePlaces(document, group.cells[cell], places)) {
          items.push_back({keyOf(group.cells.shape(), places), document, numbers.size()});
        }
        numbers.push_back(group.firstNumber + cell);
      }
    }
  }

  /// The places of the nodes of a cell, each once; false where there is no such node.
  [[nodiscard]] bool takePlaces(std::size_t document, std::span<const int> cell,
                                std::vector<std::size_t>& places) const {
    const std::vector<std::size_t>& all = places_[document];
    places.clear();
    for (const int node : cell) {
      if (node < 0 || static_cast<std::size_t>(node) >= all.size()) {
        return false;
      }
      places.push_back(all[static_cast<std::size_t>(node)]);
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    return true;
  }

  static CellKey keyOf(orvml::Shape shape, const std::vector<std::size_t>& places) noexcept {
    const auto seed = static_cast<std::uint64_t>(shape);
    CellKey key = {mixed(seed, 1), mixed(seed, 2)};
    for (const std::size_t place : places) {
      key = {mixed(key[0], place), mixed(key[1], place)};
    }
    return key;
  }

  std::array<const DocumentView*, 2> documents_;
  std::array<const StoredMesh*, 2> stored_;
  std::array<PlaceMarks, 2> marks_;
  std::array<std::vector<std::size_t>, 2> places_;  // of nodes: equal ones have one number
};

}  // namespace

std::array<PlaceMarks, 2> placeMarksOf(const std::array<const DocumentView*, 2>& documents,
                                       const std::array<const StoredMesh*, 2>& stored) {
  return Comparison(documents, stored).take();
}

}  // namespace orvml_report
