// Hands a document of the flat interface to the C++ layer and prints what comes of it.
#include <orvml/interop.hpp>

#include "orvml_io.h"

#include <cstdio>

int main() {
  void* handle = OrvML_IO_NewOrvInputHandle("module", "1", "creator", 3);
  try {
    const orvml::Input input = orvml::adoptInput(handle);
    std::printf("adopted, dimension %d\n", input.dimension());
  } catch (const orvml::Error& error) {
    std::printf("%s: %s\n", orvml::text(error.code()).data(), error.what());
    OrvML_IO_DeleteOrvInputHandle(handle);
  }
}
