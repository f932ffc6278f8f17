// Prints the fingerprints of the documents in files, one line for each part.
#include <orvml/orvml.hpp>

#include <iostream>
#include <utility>

namespace {

void print(const char* group, const orvml::Fingerprint& of) {
  const std::pair<const char*, const orvml::Digest&> parts[] = {
      {"document", of.document},
      {"identification", of.identification},
      {"nodes", of.nodes},
      {"edges", of.edges},
      {"faces", of.faces},
      {"elements", of.elements},
      {"node attributes", of.nodeAttributes},
      {"edge attributes", of.edgeAttributes},
      {"face attributes", of.faceAttributes},
      {"element attributes", of.elementAttributes},
      {"parameters", of.parameters},
      {"vector parameters", of.vectorParameters}};
  for (const auto& [part, digest] : parts) {
    std::cout << group << ' ' << part << ' ' << digest.text() << '\n';
  }
}

void printFile(const char* path) {
  const orvml::Loaded loaded = orvml::load(path);
  if (loaded.input) {
    print("OrvInput", fingerprint(loaded.input->view()));
  }
  if (loaded.output) {
    print("OrvOutput", fingerprint(loaded.output->view()));
  }
}

}  // namespace

int main(int count, char** arguments) {
  try {
    for (int i = 1; i < count; ++i) {
      printFile(arguments[i]);
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
