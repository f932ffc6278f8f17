#include "text/mesh_text.h"

#include "model/limits.h"
#include "orvml_io.h"
#include "text/text_writer.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace orvml_io {

namespace {

constexpr int kValuesPerNodeLine = 3;

/// A name outside the table reads as no shape: documents may carry values of later formats.
const char* shapeName(const Elems& elems, int group) noexcept {
  const int shape = elems.elementTypes == nullptr ? NONE : elems.elementTypes[group];
  const bool isNamed = shape >= 0 && static_cast<std::size_t>(shape) < std::size(ElemTypeNames);
  return ElemTypeNames[isNamed ? shape : NONE];
}

int nodesPerElement(const Elems& elems, int group) noexcept {
  return elems.numberOfNodesByElement == nullptr ? 0 : elems.numberOfNodesByElement[group];
}

int elementsOfGroup(const Elems& elems, int group) noexcept {
  return elems.numberOfElementsByType == nullptr ? 0 : elems.numberOfElementsByType[group];
}

/// The 1-based number of a node. Adding in unsigned arithmetic wraps as the format's `%d` shows it.
int nodeNumber(int nodeIndex) noexcept {
  return static_cast<int>(static_cast<unsigned>(nodeIndex) + 1U);
}

/// The rule of the counters is one of 32-bit integers; what outgrows them wraps.
int wrapped(long long value) noexcept { return static_cast<int>(static_cast<unsigned>(value)); }

/// How many of the indices from `start` to `start` + `length` - 1 lie outside of an array.
long long unheldIndices(long long start, long long length, long long held) noexcept {
  const long long first = std::clamp(start, 0LL, held);
  const long long last = std::clamp(start + length, 0LL, held);
  return length - (last - first);
}

void printElementLines(const Elems& elems, int position, int limit, int nodes, std::FILE* stream) {
  const long long held = elems.connectivityLength();
  long long unheldLeft = kUnheldPrintedPerHeld * held + kUnheldPrinted;
  int elementNumber = 1;
  TextWriter writer(stream);
  for (long long start = position; start < limit; start += nodes) {
    unheldLeft -= unheldIndices(start, nodes, held);
    if (unheldLeft < 0) {
      return;
    }
    writer.integer(elementNumber++);
    writer.character(' ');
    for (long long index = start; index < start + nodes; ++index) {
      const bool isHeld = index >= 0 && index < held;
      writer.integer(isHeld ? nodeNumber(elems.connectivities[index]) : 0);
      writer.character(' ');
    }
    writer.character('\n');
  }
}

/// Prints the blocks of one document. The node lines go into the first block alone.
///
/// Contract: write errors of the stream are not looked at, here and below; the export reports only
/// a file that cannot be opened.
class MeshText {
 public:
  MeshText(const OrvInputAndOrvOutput& document, std::FILE* stream)
      : document_(document), stream_(stream) {}

  void printContainer(const Elems* elems) {
    if (elems == nullptr) {
      return;
    }
    int position = 0;
    int count = 0;
    for (int group = 0; group < elems->numberOfElementTypes; ++group) {
      printHeader(*elems, group);
      (void)std::fputs("elements\n", stream_);
      PrintElements(*elems, group, position, count, stream_);
      (void)std::fputs("end elements\n", stream_);
    }
  }

 private:
  void printHeader(const Elems& elems, int group) {
    (void)std::fprintf(stream_, "mesh dimension = %d elemtype %s nNode = %d\ncoordinates\n",
                       document_.meshDimension, shapeName(elems, group),
                       nodesPerElement(elems, group));
    if (!nodesArePrinted_) {
      PrintNodes(*document_.nodes, document_.meshDimension, stream_);
      nodesArePrinted_ = true;
    }
    (void)std::fputs("end coordinates\n", stream_);
  }

  const OrvInputAndOrvOutput& document_;
  std::FILE* stream_;
  bool nodesArePrinted_ = false;
};

/// Contract: the stream of a document without nodes stays open until the process ends; closing it
/// would change the descriptors that the caller's next calls get.
void leaveOpenWithoutNodes(std::FILE* /*stream*/) noexcept {}

}  // namespace

int PrintNodes(const Nodes& nodes, int dimension, std::FILE* stream) {
  if (dimension < 1) {
    return 0;
  }
  const long long held = nodes.heldCoordinates(dimension);
  const long long lines =
      std::min<long long>(nodes.numberOfNodes, held / dimension + kUnheldNodesPrinted);
  TextWriter writer(stream);
  for (int node = 0; node < lines; ++node) {
    std::array<double, kValuesPerNodeLine> values = {};
    for (int column = 0; column < kValuesPerNodeLine; ++column) {
      const long long index = static_cast<long long>(node) * dimension + column;
      if (index < held) {
        values[static_cast<std::size_t>(column)] = nodes.coords[index];
      }
    }
    writer.integer(nodeNumber(node));
    for (const double value : values) {
      writer.character(' ');
      writer.decimal(value);
    }
    writer.character('\n');
  }
  return 0;
}

int PrintElements(const Elems& elems, int group, int& position, int& count, std::FILE* stream) {
  const int nodes = nodesPerElement(elems, group);
  count = wrapped(static_cast<long long>(count) + elementsOfGroup(elems, group));
  const int limit = wrapped(static_cast<long long>(count) * nodes);
  if (nodes > 0 && elems.connectivities != nullptr) {
    printElementLines(elems, position, limit, nodes, stream);
  }
  position = wrapped(static_cast<long long>(position) + count);
  return 0;
}

int WriteMeshText(const char* fileName, const OrvInputAndOrvOutput* document) {
  std::FILE* stream = fileName == nullptr ? nullptr : std::fopen(fileName, "w");
  if (stream == nullptr) {
    return 1;
  }
  if (document == nullptr || document->nodes == nullptr) {
    leaveOpenWithoutNodes(stream);
    return 0;
  }
  MeshText text(*document, stream);
  text.printContainer(document->edges);
  text.printContainer(document->faces);
  text.printContainer(document->elements);
  (void)std::fclose(stream);
  return 0;
}

}  // namespace orvml_io
