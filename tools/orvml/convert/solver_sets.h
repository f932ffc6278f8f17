#pragma once

#include <orvml/view.hpp>

#include "convert/byte_sink.h"
#include "convert/conversion_report.h"
#include "convert/format.h"
#include "convert/solver_mesh.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvml_tool {

/// Numbers in ascending order as runs of consecutive ones.
class NumberRuns {
 public:
  /// Adds the numbers from `first` to `last`, which come after those that are there.
  void add(std::int64_t first, std::int64_t last);
  [[nodiscard]] const std::vector<std::pair<std::int64_t, std::int64_t>>& runs() const noexcept {
    return runs_;
  }

 private:
  std::vector<std::pair<std::int64_t, std::int64_t>> runs_;
};

/// The sets of an .inp file: for each value of integer attributes the nodes or elements that have
/// it. Edges and faces give their nodes as a set too, so that these can be held and loaded.
class SolverSets {
 public:
  SolverSets(const orvml::DocumentView& document, const ExportOptions& options,
             const SolverMesh& mesh, ConversionReport& report);

  /// Whether sets hold an attribute.
  [[nodiscard]] bool keep(orvml::Entity entity, const orvml::Attribute& attribute) const;

  void write(ByteSink& sink);

 private:
  using RunsOfValues = std::map<int, NumberRuns>;

  [[nodiscard]] bool isChosen(orvml::Entity entity, const orvml::Attribute& attribute) const;
  [[nodiscard]] bool isWritten(orvml::Entity container) const;
  [[nodiscard]] RunsOfValues elementsOf(orvml::Entity container, std::span<const int> values) const;
  [[nodiscard]] RunsOfValues nodesOf(orvml::Entity container, std::span<const int> values) const;
  std::string nameOf(orvml::Entity entity, const orvml::Attribute& attribute);

  const orvml::DocumentView& document_;
  const ExportOptions& options_;
  const SolverMesh& mesh_;
  ConversionReport& report_;
  std::set<std::pair<orvml::Entity, std::string>> kept_;
  std::set<std::string, std::less<>> usedNames_;  // in capitals: these are all the same to solvers
};

}  // namespace orvml_tool
