// A program outside the tree: writes a document, reads it back, compares.
#include <orvml_io.h>

#include <cstdio>
#include <cstring>

int main() {
  if (std::strcmp(OrvML_IO_GetVersion(), "1.10.0") != 0) {
    return 1;
  }
  double coordinates[] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  int tetrahedron[] = {0, 1, 2, 3};
  void* written = OrvML_IO_NewOrvInputHandleWithVolumeElements(
      "consumer", "1", "consumer", 3, 4, coordinates, 1, tetrahedron, TETRAHEDRA, 4);
  OrvML_IO_SetParameter(written, "size", 0.5);
  void* read = nullptr;
  const bool isSame = OrvML_IO_WriteOrvInput("consumer.h5", written) == 0 &&
                      OrvML_IO_ReadOrvInput("consumer.h5", read) == 0 && read != nullptr &&
                      OrvML_IO_OrvInputsAreEqual(written, read);
  OrvML_IO_DeleteOrvInputHandle(read);
  OrvML_IO_DeleteOrvInputHandle(written);
  std::puts(isSame ? "the document came back" : "the document did not come back");
  return isSame ? 0 : 1;
}
