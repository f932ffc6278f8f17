// Copies of documents from whatever a caller may hold. Built as it stands it must compile; with the
// name of one of the lines below defined it must not.
#include "orvml_io.h"

namespace {

struct Other {};

void* copiesOf(void* handle, void* const fixedHandle) {
  char text[] = "module";
  Other other;
  (void)text;
  (void)other;
#if defined(INPUT_FROM_TEXT)
  return OrvML_IO_NewOrvInputHandle(text);
#elif defined(OUTPUT_FROM_TEXT)
  return OrvML_IO_NewOrvOutputHandle(text);
#elif defined(INPUT_FROM_OBJECT)
  return OrvML_IO_NewOrvInputHandle(&other);
#elif defined(OUTPUT_FROM_OBJECT)
  return OrvML_IO_NewOrvOutputHandle(&other);
#elif defined(INPUT_FROM_ADDRESS_OF_HANDLE)
  return OrvML_IO_NewOrvInputHandle(&handle);
#elif defined(OUTPUT_FROM_ADDRESS_OF_HANDLE)
  return OrvML_IO_NewOrvOutputHandle(&handle);
#else
  (void)OrvML_IO_NewOrvInputHandle(handle);
  (void)OrvML_IO_NewOrvOutputHandle(handle);
  (void)OrvML_IO_NewOrvInputHandle(nullptr);
  (void)OrvML_IO_NewOrvOutputHandle(nullptr);
  (void)OrvML_IO_NewOrvInputHandle(fixedHandle);
  return OrvML_IO_NewOrvOutputHandle(fixedHandle);
#endif
}

}  // namespace

int main() { return copiesOf(nullptr, nullptr) == nullptr ? 0 : 1; }
