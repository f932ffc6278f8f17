#include "support/decimal_comma.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {

bool setLocaleWithComma() {
  // The C library looks for locales where this variable says.
  ::setenv("LOCPATH", ORVML_IO_TESTS_LOCALES, 1);
  if (std::setlocale(LC_ALL, kLocaleWithComma) == nullptr) {
    return false;
  }
  std::array<char, 16> number = {};
  (void)std::snprintf(number.data(), number.size(), "%g", 1.5);
  return std::string(number.data()) == "1,5";
}

DecimalComma::DecimalComma()
    : before_(std::setlocale(LC_ALL, nullptr)), isSet_(setLocaleWithComma()) {}

DecimalComma::~DecimalComma() { (void)std::setlocale(LC_ALL, before_.c_str()); }

}  // namespace orvml_io_tests
