// A program with its own classes under the names that the library uses inside.
#include <orvml_io.h>

#include <cstdio>

class Nodes {
 public:
  Nodes() : count_(4) {}
  int count() const { return count_; }

 private:
  int count_;
};

class Elems {
 public:
  ~Elems() { std::puts("the program's own Elems"); }
};

int main() {
  const Nodes nodes;
  const Elems elems;
  void* document = OrvML_IO_NewOrvInputHandle("program", "1", "program");
  OrvML_IO_SetParameter(document, "count", nodes.count());
  double count = 0;
  const int result = OrvML_IO_GetParameter(document, "count", count);
  OrvML_IO_DeleteOrvInputHandle(document);
  return result == 0 && count == nodes.count() ? 0 : 1;
}
