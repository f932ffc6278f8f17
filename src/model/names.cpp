// Shape names and version texts of the public interface.
#include "orvml_io.h"

#include <cstdlib>

static_assert(sizeof(ElemType) == 4 && sizeof(int) == 4,
              "files hold shapes and counts as 32-bit integers");

extern const char* const ElemTypeNames[11] = {
    "None",  "Linear", "Triangle", "Quadrilateral", "Tetrahedra", "Hexahedra",
    "Prism", "Point",  "Pyramid",  "Sphere",        "Circle"};

const char* OrvML_IO_GetVersion() { return "1.10.0"; }

const char* OrvML_IO_GetFormatVersion() { return "1.4"; }

const char* ORVML_IO_GetMinimumFormatVersionToSave(void* /*handle*/) {
  return OrvML_IO_GetFormatVersion();
}

double OrvML_IO_GetFormatVersion_Number(const char* version) {
  return std::strtod(version, nullptr);
}
