// Stands in for a flat library of another version: the loader finds its function first.
#include "orvml_io.h"

const char* OrvML_IO_GetVersion() { return "9.9.9"; }
