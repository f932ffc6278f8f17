#include "convert/solver_sets.h"

#include "console.h"
#include "convert/placed_groups.h"
#include "messages.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <unordered_set>

namespace orvml_tool {

namespace {

using orvml::Attribute;
using orvml::Entity;

/// Attributes with more values than these, such as numbers of nodes, are hardly about sets.
constexpr std::size_t kMostSets = 1000;

constexpr std::array<Entity, 4> kEntities = {Entity::nodes, Entity::edges, Entity::faces,
                                             Entity::elements};

bool hasManyValues(std::span<const int> values) {
  std::unordered_set<int> different;
  return std::any_of(values.begin(), values.end(), [&](int value) {
    different.insert(value);
    return different.size() > kMostSets;
  });
}

/// Set names have 80 characters at most; a value takes up to eleven and a line to part it.
constexpr std::size_t kLongestName = 80 - 12;

std::string setName(std::string_view name) {
  std::string text(name.substr(0, kLongestName));
  std::replace_if(
      text.begin(), text.end(),
      [](unsigned char letter) {
        return letter > 127 || (std::isalnum(letter) == 0 && letter != '_' && letter != '-');
      },
      '_');
  if (text.empty() || std::isalpha(static_cast<unsigned char>(text.front())) == 0) {
    text = ("SET_" + text).substr(0, kLongestName);
  }
  return text;
}

std::string inCapitals(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return text;
}

/// A run of fewer numbers is as short when each is written.
constexpr std::int64_t kShortRun = 3;

bool isLongRun(const std::pair<std::int64_t, std::int64_t>& run) {
  return run.second - run.first >= kShortRun;
}

void writeSetHead(ByteSink& sink, std::string_view keyword, std::string_view name,
                  std::string_view more) {
  sink.write("*");
  sink.write(keyword);
  sink.write(", ");
  sink.write(keyword);
  sink.write("=");
  sink.write(name);
  sink.write(more);
}

/// Numbers of which a line has 16 at most; each line but the last one ends with a comma.
class SetLines {
 public:
  explicit SetLines(ByteSink& sink) : sink_(sink) {}
  void add(std::int64_t number) {
    constexpr int kMost = 16;
    if (count_ > 0) {
      sink_.write(count_ % kMost == 0 ? ",\n" : ", ");
    }
    ++count_;
    sink_.writeText(number);
  }
  void end() {
    if (count_ > 0) {
      sink_.write("\n");
    }
  }

 private:
  ByteSink& sink_;
  int count_ = 0;
};

/// @param keyword  NSET or ELSET
void writeSet(ByteSink& sink, std::string_view keyword, std::string_view name,
              const NumberRuns& numbers) {
  const auto& runs = numbers.runs();
  if (std::any_of(runs.begin(), runs.end(), isLongRun)) {
    writeSetHead(sink, keyword, name, ", GENERATE\n");
    for (const auto& run : runs) {
      if (isLongRun(run)) {
        sink.writeText(run.first);
        sink.write(", ");
        sink.writeText(run.second);
        sink.write(", 1\n");
      }
    }
  }
  if (std::all_of(runs.begin(), runs.end(), isLongRun)) {
    return;
  }
  writeSetHead(sink, keyword, name, "\n");
  SetLines lines(sink);
  for (const auto& run : runs) {
    for (std::int64_t number = run.first; !isLongRun(run) && number <= run.second; ++number) {
      lines.add(number);
    }
  }
  lines.end();
}

void writeSets(ByteSink& sink, std::string_view keyword, const std::string& name,
               const std::map<int, NumberRuns>& sets) {
  for (const auto& [value, numbers] : sets) {
    writeSet(sink, keyword, name + "_" + std::to_string(value), numbers);
  }
}

}  // namespace

void NumberRuns::add(std::int64_t first, std::int64_t last) {
  if (!runs_.empty() && runs_.back().second + 1 == first) {
    runs_.back().second = last;
  } else {
    runs_.emplace_back(first, last);
  }
}

SolverSets::SolverSets(const orvml::DocumentView& document, const ExportOptions& options,
                       const SolverMesh& mesh, ConversionReport& report)
    : document_(document),
      options_(options),
      mesh_(mesh),
      report_(report),
      usedNames_({"ALL_NODES", "EDGES", "FACES", "ELEMENTS"}) {
  for (const Entity entity : kEntities) {
    for (const Attribute& attribute : document.attributes(entity)) {
      if (isChosen(entity, attribute)) {
        kept_.emplace(entity, std::string(attribute.name));
      }
    }
  }
  if (kept_.empty() && !options.entityAttribute.empty()) {
    throw Refusal("there is no attribute '" + printable(options.entityAttribute) +
                      "' of integers that sets could be made of",
                  "see which attributes there are with orvml info");
  }
}

bool SolverSets::isWritten(Entity container) const {
  const auto& written = options_.containers;
  return std::find(written.begin(), written.end(), container) != written.end();
}

/// Elements that are not written cannot be in a set.
bool SolverSets::isChosen(Entity entity, const Attribute& attribute) const {
  if (!attribute.holdsInts() || (entity == Entity::elements && !isWritten(entity))) {
    return false;
  }
  return options_.entityAttribute.empty() ? !hasManyValues(attribute.ints())
                                          : attribute.name == options_.entityAttribute;
}

bool SolverSets::keep(Entity entity, const Attribute& attribute) const {
  return kept_.count({entity, std::string(attribute.name)}) > 0;
}

SolverSets::RunsOfValues SolverSets::elementsOf(Entity container,
                                                std::span<const int> values) const {
  RunsOfValues runs;
  for (const SolverMesh::Group& group : mesh_.groups()) {
    const auto cells = group.placed.container == container ? group.placed.group.size() : 0;
    std::int64_t number = group.firstNumber;
    for (int cell = 0; cell < cells; ++cell, number += group.elementsPerCell()) {
      runs[values[group.placed.first + static_cast<std::size_t>(cell)]].add(
          number, number + group.elementsPerCell() - 1);
    }
  }
  return runs;
}

SolverSets::RunsOfValues SolverSets::nodesOf(Entity container, std::span<const int> values) const {
  std::vector<std::pair<int, int>> nodes;  // with their value first
  std::size_t cell = 0;
  for (const orvml::CellGroup& group : document_.cells(container).groups()) {
    for (int i = 0; i < group.size(); ++i, ++cell) {
      for (const int node : group.nodesPerCell() > 0 ? group[i] : std::span<const int>()) {
        nodes.emplace_back(values[cell], node);
      }
    }
  }
  std::sort(nodes.begin(), nodes.end());
  nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
  RunsOfValues runs;
  for (const auto& [value, node] : nodes) {
    runs[value].add(std::int64_t{node} + 1, std::int64_t{node} + 1);
  }
  return runs;
}

std::string SolverSets::nameOf(Entity entity, const Attribute& attribute) {
  const std::string wanted = setName(attribute.name);
  std::string free = wanted;
  for (int number = 2; !usedNames_.insert(inCapitals(free)).second; ++number) {
    const std::string suffix = "-" + std::to_string(number);
    free = wanted.substr(0, kLongestName - suffix.size()) + suffix;
  }
  if (free != attribute.name) {
    report_.add(orvml::Fate::renamed, attributePath(document_, entity, attribute.name), 1,
                "becomes sets whose names begin with " + free +
                    ", for which inp has the letters and the place");
  }
  return free;
}

void SolverSets::write(ByteSink& sink) {
  for (const auto& [entity, attributeName] : kept_) {
    const Attribute& attribute = document_.attributes(entity).at(attributeName);
    const std::string name = nameOf(entity, attribute);
    const auto values = attribute.ints();
    if (entity == Entity::nodes) {
      RunsOfValues runs;
      for (std::size_t node = 0; node < values.size(); ++node) {
        const auto number = static_cast<std::int64_t>(node) + 1;
        runs[values[node]].add(number, number);
      }
      writeSets(sink, "NSET", name, runs);
      continue;
    }
    if (isWritten(entity)) {
      writeSets(sink, "ELSET", name, elementsOf(entity, values));
    }
    if (entity != Entity::elements) {
      writeSets(sink, "NSET", name, nodesOf(entity, values));
    }
  }
}

}  // namespace orvml_tool
