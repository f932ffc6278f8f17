#include "attribute_budget.h"

#include "words.h"

namespace orvml_report {

AttributeBudget::Form AttributeBudget::formOf(std::size_t values, bool areInts) {
  const std::uint64_t exact = values * (areInts ? sizeof(int) : sizeof(double));
  const std::uint64_t rounded = values * sizeof(float);
  const std::uint64_t most = areInts ? limits_.attributeBytes : limits_.exactAttributeBytes;
  if (bytes_ + exact <= most) {
    bytes_ += exact;
    return Form::exact;
  }
  if (!areInts && bytes_ + rounded <= limits_.attributeBytes) {
    bytes_ += rounded;
    ++rounded_;
    return Form::rounded;
  }
  ++leftOut_;
  return Form::leftOut;
}

void AttributeBudget::tell(std::vector<std::string>& notes) {
  if (rounded_ > 0) {
    notes.push_back("The values of " + counted(rounded_, "attribute") +
                    " have 7 digits here, for their number.");
  }
  if (leftOut_ > 0) {
    notes.push_back("The values of " + counted(leftOut_, "attribute") +
                    " are not in the page, for their number.");
  }
  rounded_ = leftOut_ = 0;
}

}  // namespace orvml_report
