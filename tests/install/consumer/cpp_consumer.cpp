// A program outside the tree that uses the C++ layer, and with it the flat interface: writes a
// document, loads it back, compares.
#include <orvml/orvml.hpp>

#include <orvml_io.h>

#include <cstdio>
#include <utility>
#include <vector>

namespace {

orvml::Input madeDocument() {
  orvml::Input input({"consumer", "1", "consumer"}, 3);
  input.setNodes(std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  input.setCells(orvml::Entity::elements, orvml::Shape::tetrahedron, 4,
                 std::vector<int>{0, 1, 2, 3});
  input.setParameter("size", 0.5);
  return input;
}

/// Reads with threads, which a static library has to bring.
bool isSame(const orvml::Input& written) {
  orvml::Input read = orvml::loadInput("cpp_consumer.h5", {.threads = 2});
  const orvml::MappedFile mapped("cpp_consumer.h5");
  return orvml::fingerprint(read.view()) == orvml::fingerprint(written.view()) &&
         orvml::fingerprint(mapped.input()) == orvml::fingerprint(written.view()) &&
         orvml::describe("cpp_consumer.h5").input->nodes.size == 4 &&
         OrvML_IO_GetNumberOfNodes(orvml::handle(read)) == 4;
}

bool saysWhatIsMissing() {
  try {
    (void)orvml::load("there is no such file.h5");
  } catch (const orvml::Error& error) {
    return error.code() == orvml::Code::fileNotFound;
  }
  return false;
}

}  // namespace

int main() {
  const orvml::Input written = madeDocument();
  orvml::save("cpp_consumer.h5", written);
  const bool passed = orvml::version() == "1.10.0" && isSame(written) && saysWhatIsMissing();
  std::puts(passed ? "the document came back in C++" : "the document did not come back in C++");
  return passed ? 0 : 1;
}
