#pragma once

#include "json.h"
#include "report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvml_io_tests {

using orvml_report::Json;

/// What a browser finds in a page, unpacked by its description alone.
class DecodedPage {
 public:
  /// Throws std::runtime_error when the page has no data, or such that cannot be unpacked.
  explicit DecodedPage(const std::string& html);

  [[nodiscard]] const Json& report() const noexcept { return report_; }
  [[nodiscard]] const Json& document(std::size_t index = 0) const {
    return report_.at("documents").at(index);
  }
  [[nodiscard]] const Json& nodes(std::size_t document = 0) const {
    return this->document(document).at("mesh").at("nodes");
  }
  /// The cells of a kind; null where the page has none.
  [[nodiscard]] Json cells(const std::string& entity, std::size_t document = 0) const;

  /// The values of an array, whatever its type is.
  [[nodiscard]] std::vector<double> values(const Json& array) const;
  /// Those of 0, 1, 2, ... when there is no array.
  [[nodiscard]] std::vector<double> numbers(const Json& array, std::size_t count) const;
  /// The values of a field of some nodes or cells.
  [[nodiscard]] std::vector<double> field(const Json& carriers, const std::string& name) const;
  /// The node indices of all groups, one after the other.
  [[nodiscard]] std::vector<double> indices(const Json& cells) const;

 private:
  [[nodiscard]] std::vector<std::uint64_t> words(const Json& array, std::size_t bytes) const;
  [[nodiscard]] std::vector<std::uint32_t> integers(const Json& array) const;

  Json report_;
  std::vector<std::uint8_t> bytes_;
};

/// The page of one document, unpacked.
[[nodiscard]] DecodedPage decoded(const orvml::DocumentView& view,
                                  const orvml_report::ReportLimits& limits = {});

/// All notes of a document, one a line.
[[nodiscard]] std::string notesOf(const Json& document);

}  // namespace orvml_io_tests
