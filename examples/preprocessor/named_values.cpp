#include "preprocessor/named_values.h"

#include "preprocessor/agreement.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace orvml_examples {

namespace {

template <class T>
void printValues(const std::vector<T>& values) {
  for (const T value : values) {
    std::cout << ' ' << value;
  }
  std::cout << '\n';
}

std::ostream& line(const char* label) {
  constexpr int kLongestName = 52;
  return std::cout << "  " << std::left << std::setw(kLongestName) << label;
}

void printParameters(const Document& document) {
  for (const char* name : kScalarParameters) {
    if (document.hasParameter(name)) {
      line(name) << ' ' << document.parameter(name) << '\n';
    }
  }
  for (const AgreedVectorParameter& agreed : kVectorParameters) {
    if (!document.hasVectorParameter(agreed.name)) {
      continue;
    }
    line(agreed.name);
    if (agreed.valueType == ORVML_INT) {
      printValues(document.intParameter(agreed.name));
    } else {
      printValues(document.doubleParameter(agreed.name));
    }
  }
}

template <class T>
void printRange(const char* type, const std::vector<T>& values) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  std::cout << ' ' << values.size() << ' ' << type << " from " << *least << " to " << *most << '\n';
}

void printAttributes(const Document& document) {
  for (const AgreedAttribute& agreed : kAttributes) {
    const ORVML_TYPE_OF_VALUE type = document.attributeType(agreed.name);
    if (type == ORVML_UNKNOWN_VALUE) {
      continue;
    }
    line(agreed.name);
    if (type == ORVML_INT) {
      printRange("ints", document.intAttribute(agreed.name));
    } else {
      printRange("doubles", document.doubleAttribute(agreed.name));
    }
  }
}

}  // namespace

void printNamedValues(const Document& document) {
  printParameters(document);
  printAttributes(document);
}

}  // namespace orvml_examples
