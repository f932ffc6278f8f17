#pragma once

#include "convert/conversion_report.h"
#include "convert/foreign_mesh.h"
#include "convert/msh_bytes.h"
#include "convert/tag_index.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace orvml_tool {

/// The values of nodes and elements in a file of Gmsh. Their sections are noted as they come, and
/// read when all tags are known.
class MshData {
 public:
  /// Notes a section whose name was just read, and goes behind it.
  void note(MshBytes& bytes, std::string_view section);

  /// The arrays of nodes or cells: one for each component and time step.
  ///
  /// @param tags  of the nodes, or of the cells that were kept
  [[nodiscard]] std::vector<ForeignArray> arraysOf(std::string_view section, MshBytes& bytes,
                                                   const TagIndex& tags, ConversionReport& report);

  /// How many sections have another time than 0, which no array keeps.
  [[nodiscard]] std::int64_t numberOfTimes() const noexcept { return numberOfTimes_; }

 private:
  struct Section {
    std::string_view section;
    std::string name;
    int step = 0;
    std::size_t components = 0;
    std::size_t entries = 0;
    std::size_t position = 0;  // of the first entry
  };
  struct Field;

  [[nodiscard]] std::vector<Field> fieldsOf(std::string_view section, std::size_t size,
                                            const MshBytes& bytes);
  static void read(const Section& section, MshBytes& bytes, const TagIndex& tags, Field& field);
  using Steps = std::map<std::string, std::set<int>>;  // by name
  [[nodiscard]] static Steps stepsOf(const std::vector<Field>& fields, ConversionReport& report);
  static void report(const Field& field, ConversionReport& report);

  std::vector<Section> sections_;
  std::size_t valuesBytes_ = 0;  // of all arrays so far
  std::int64_t numberOfTimes_ = 0;
};

}  // namespace orvml_tool
