#pragma once

#include "report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvml_report {

/// How attributes go into a page, whose size their values decide.
class AttributeBudget {
 public:
  explicit AttributeBudget(const ReportLimits& limits) : limits_(limits) {}

  enum class Form { exact, rounded, leftOut };

  /// Chooses the form of the next attribute, and counts it.
  [[nodiscard]] Form formOf(std::size_t values, bool areInts);

  /// Tells of the attributes since the last time.
  void tell(std::vector<std::string>& notes);

 private:
  ReportLimits limits_;
  std::uint64_t bytes_ = 0;
  std::int64_t rounded_ = 0;
  std::int64_t leftOut_ = 0;
};

}  // namespace orvml_report
