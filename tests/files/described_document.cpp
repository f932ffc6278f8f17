#include "files/described_document.h"

#include "model/document.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace orvml_io_tests {

namespace {

using orvml_io::Elems;
using orvml_io::OML_AttributesVector;

/// Enough digits to tell any two doubles apart; the bits where digits cannot.
std::string exact(double value) {
  char text[40];
  if (std::isnan(value)) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    (void)std::snprintf(text, sizeof(text), "nan:%016llx", static_cast<unsigned long long>(bits));
  } else {
    (void)std::snprintf(text, sizeof(text), "%.17g", value);
  }
  return text;
}

std::string exact(int value) { return std::to_string(value); }

template <class T>
void printValues(std::ostream& out, const T* values, long long count) {
  for (long long i = 0; i < count; ++i) {
    out << " " << exact(values[i]);
  }
  out << "\n";
}

void printVectors(std::ostream& out, const char* label, const OML_AttributesVector& vectors) {
  for (const auto& [name, entry] : vectors) {
    out << label << " \"" << name << "\" " << entry.code << " " << entry.length << ":";
    if (entry.code == orvml_io::kIntCode) {
      printValues(out, static_cast<const int*>(entry.data), entry.length);
    } else {
      printValues(out, static_cast<const double*>(entry.data), entry.length);
    }
  }
}

/// A document that was read only in part may lack arrays.
template <class T>
std::string entryOf(const T* values, int index) {
  return values == nullptr ? "none" : std::to_string(static_cast<int>(values[index]));
}

void printNodes(std::ostream& out, const orvml_io::OrvInputAndOrvOutput& document) {
  if (document.nodes == nullptr || document.nodes->numberOfNodes == 0) {
    return;
  }
  out << "nodes " << document.nodes->numberOfNodes << ":";
  printValues(out, document.nodes->coords, document.nodes->heldCoordinates(document.meshDimension));
  printVectors(out, "node attribute", document.nodes->attributes);
}

void printElems(std::ostream& out, const std::string& label, const Elems* elems) {
  if (elems == nullptr || elems->numberOfElements == 0) {
    return;
  }
  out << label << " " << elems->numberOfElements << ":";
  for (int i = 0; i < elems->numberOfElementTypes; ++i) {
    out << " " << entryOf(elems->numberOfElementsByType, i) << " of shape "
        << entryOf(elems->elementTypes, i) << " on " << entryOf(elems->numberOfNodesByElement, i)
        << " nodes;";
  }
  printValues(out, elems->connectivities,
              elems->connectivities == nullptr ? 0 : elems->connectivityLength());
  printVectors(out, (label + " attribute").c_str(), elems->attributes);
}

}  // namespace

std::string describe(void* handle) {
  if (handle == nullptr) {
    return "no document";
  }
  const orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(handle);
  std::ostringstream out;
  out << "module \"" << document.moduleName << "\" version \"" << document.moduleFormatVersion
      << "\" creator \"" << document.ioCreator << "\" dimension " << document.meshDimension << "\n";
  printNodes(out, document);
  printElems(out, "edge", document.edges);
  printElems(out, "face", document.faces);
  printElems(out, "element", document.elements);
  for (const auto& [name, value] : document.parametersScalar) {
    out << "parameter \"" << name << "\" " << exact(value) << "\n";
  }
  printVectors(out, "vector parameter", document.parametersVector);
  return out.str();
}

}  // namespace orvml_io_tests
