#pragma once

#include <string>

namespace orvml_io_tests {

/// The name of a locale with a decimal comma. The build makes it, whichever ones the system has.
inline constexpr char kLocaleWithComma[] = "de_DE.UTF-8";

/// Sets every category of the locale, as toolkits for graphical programs do when they start. Tells
/// whether numbers are printed with a comma then.
[[nodiscard]] bool setLocaleWithComma();

/// Sets the locale of the process to one with a decimal comma while it lives.
class DecimalComma {
 public:
  DecimalComma();
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;
  DecimalComma(DecimalComma&&) = delete;
  DecimalComma& operator=(DecimalComma&&) = delete;
  ~DecimalComma();

  [[nodiscard]] bool isSet() const noexcept { return isSet_; }

 private:
  std::string before_;
  bool isSet_;
};

}  // namespace orvml_io_tests
