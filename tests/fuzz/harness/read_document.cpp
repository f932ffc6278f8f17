#include "fuzz/harness/read_document.h"

#include "fuzz/harness/finding.h"
#include "fuzz/harness/touch.h"

#include <cstring>

namespace orvml_io_tests {

namespace {

using orvml_io::Elems;
using orvml_io::Nodes;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

void requireVectors(const OML_AttributesVector& vectors) {
  for (const auto& [name, entry] : vectors) {
    require(entry.length >= 0, "the length of a vector is not negative");
    require(entry.data != nullptr, "a vector has a block");
    require(entry.code == 'i' || entry.code == 'd', "a vector holds ints or doubles");
    touchVector(entry);
  }
}

void requireNodes(const Nodes* nodes, int dimension, int status) {
  if (nodes == nullptr) {
    return;
  }
  require(nodes->numberOfNodes > 0, "a node container that was read is not empty");
  require(status != 0 || nodes->coords != nullptr, "nodes that were read have coordinates");
  if (nodes->coords != nullptr) {
    touch(nodes->coords, static_cast<long long>(nodes->numberOfNodes) * dimension);
  }
  requireVectors(nodes->attributes);
}

void requireGroups(const Elems& elems) {
  const int groups = elems.numberOfElementTypes;
  touch(elems.numberOfElementsByType, groups);
  touch(elems.elementTypes, groups);
  touch(elems.numberOfNodesByElement, groups);
  long long cells = 0;
  long long nodes = 0;
  for (int i = 0; i < groups; ++i) {
    require(elems.numberOfElementsByType[i] >= 0, "the number of cells is not negative");
    cells += elems.numberOfElementsByType[i];
    if (elems.numberOfNodesByElement != nullptr) {
      require(elems.numberOfNodesByElement[i] >= 0, "the number of nodes is not negative");
      nodes +=
          static_cast<long long>(elems.numberOfElementsByType[i]) * elems.numberOfNodesByElement[i];
    }
  }
  require(cells == elems.numberOfElements, "the number of cells is the sum over the groups");
  touch(elems.connectivities, nodes);
}

void requireElems(const Elems* elems, int status) {
  if (elems == nullptr) {
    return;
  }
  require(elems->numberOfElements > 0, "an element container that was read is not empty");
  require(elems->numberOfElementTypes > 0, "cells lie in type groups");
  require(elems->numberOfElementsByType != nullptr, "cells are counted by type group");
  const bool isComplete = elems->elementTypes != nullptr &&
                          elems->numberOfNodesByElement != nullptr &&
                          elems->connectivities != nullptr;
  require(status != 0 || isComplete, "a container that was read has all its arrays");
  requireGroups(*elems);
  requireVectors(elems->attributes);
}

template <std::size_t N>
void requireText(const char (&text)[N]) {
  require(std::memchr(text, '\0', N) != nullptr, "an identification string ends in its field");
}

}  // namespace

void requireReadPromises(const ReadResult& result) {
  require(result.status == 0 || result.status == 1, "a reader answers 0 or 1");
  if (result.document.get() == nullptr) {
    return;
  }
  const OrvInputAndOrvOutput& document = *orvml_io::documentOf(result.document.get());
  requireText(document.moduleName);
  requireText(document.moduleFormatVersion);
  requireText(document.ioCreator);
  requireText(document.fileFormatVersion);
  requireNodes(document.nodes, document.meshDimension, result.status);
  for (const Elems* elems : {document.edges, document.faces, document.elements}) {
    requireElems(elems, result.status);
  }
  requireVectors(document.parametersVector);
}

}  // namespace orvml_io_tests
