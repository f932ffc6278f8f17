// Exported functions that compare documents.
#include "model/document.h"
#include "orvml_io.h"

using orvml_io::documentOf;
using orvml_io::OrvInputAndOrvOutput;

bool OrvML_IO_OrvInputsAreEqual(void* first, void* second) {
  return OrvInputAndOrvOutput::AreEqual(documentOf(first), documentOf(second));
}

bool OrvML_IO_OrvOutputsAreEqual(void* first, void* second) {
  return OrvInputAndOrvOutput::AreEqual(documentOf(first), documentOf(second));
}
