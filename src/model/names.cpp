// Shape names of the public interface, and version texts.
#include "model/names.h"

#include "orvml_io.h"

#include <cstdlib>

#if defined(__unix__) || defined(__APPLE__)
#include <locale.h>  // newlocale is POSIX's. NOLINT(modernize-deprecated-headers)
#if defined(__APPLE__)
#include <xlocale.h>
#endif
#endif

static_assert(sizeof(ElemType) == 4 && sizeof(int) == 4,
              "files hold shapes and counts as 32-bit integers");

extern const char* const ElemTypeNames[11] = {
    "None",  "Linear", "Triangle", "Quadrilateral", "Tetrahedra", "Hexahedra",
    "Prism", "Point",  "Pyramid",  "Sphere",        "Circle"};

namespace orvml_io {

#if defined(__unix__) || defined(__APPLE__)

double versionNumber(const char* version) noexcept {
  // Asking for this locale allocates nothing in the usual C libraries.
  const locale_t plain = newlocale(LC_ALL_MASK, "C", locale_t());
  if (plain == locale_t()) {
    return std::strtod(version, nullptr);
  }
  const double number = strtod_l(version, nullptr, plain);
  freelocale(plain);
  return number;
}

#else

double versionNumber(const char* version) noexcept { return std::strtod(version, nullptr); }

#endif

}  // namespace orvml_io
