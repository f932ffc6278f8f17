// Exported function of the text export.
#include "text/mesh_text.h"

#include "orvml_io.h"

int OrvML_IO_WriteMeshInOrvFormat(const char* fileName, void* handle) {
  return orvml_io::WriteMeshText(fileName, orvml_io::documentOf(handle));
}
