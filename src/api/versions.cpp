// Exported functions of the versions.
#include "model/names.h"
#include "orvml_io.h"

#include <cstdlib>

const char* OrvML_IO_GetVersion() { return orvml_io::kLibraryVersion; }

const char* OrvML_IO_GetFormatVersion() { return orvml_io::kFormatVersion; }

const char* ORVML_IO_GetMinimumFormatVersionToSave(void* /*handle*/) {
  return orvml_io::kFormatVersion;
}

// Contract: it is `strtod` itself, which goes by the decimal point of the process. The library's
// own decisions about a file do not.
double OrvML_IO_GetFormatVersion_Number(const char* version) {
  return std::strtod(version, nullptr);
}
