#include "fuzz/harness/whole_interface.h"

#include "fuzz/harness/choice.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/touch.h"
#include "model/document.h"
#include "orvml_io.h"
#include "support/document_builder.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace orvml_io_tests {

namespace {

using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

constexpr ORVML_TYPE_OF_ENTITY kKinds[] = {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS};
constexpr ORVML_TYPE_OF_ENTITY kCellKinds[] = {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS};

void readIdentification(void* document) {
  char creator[80] = {};
  require(OrvML_IO_GetOrvMeshLibraryIOCreator(document, creator) == creator,
          "the creator is copied to the caller's buffer");
  require(std::strlen(OrvML_IO_GetOrvMeshLibraryModuleName(document)) < 80,
          "a module name has at most 79 bytes");
  require(std::strlen(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document)) < 80,
          "a module version has at most 79 bytes");
}

void readNodes(void* document) {
  double* coordinates = nullptr;
  require(OrvML_IO_GetNodesCoords(document, coordinates) == 0, "coordinates are handed out");
  if (coordinates != nullptr) {
    touch(coordinates, static_cast<long long>(OrvML_IO_GetNumberOfNodes(document)) *
                           OrvML_IO_GetMeshDimension(document));
  }
}

void readCells(void* document, ORVML_TYPE_OF_ENTITY kind) {
  int* connectivities = nullptr;
  ElemType* shapes = nullptr;
  int* nodes = nullptr;
  int* cells = nullptr;
  require(OrvML_IO_GetGenericElements(document, kind, connectivities) == 0, "cells are handed out");
  require(OrvML_IO_GetGenericElements(document, kind, connectivities, shapes, nodes, cells) == 0,
          "cells are handed out with their groups");
  const int groups = OrvML_IO_GetNumberOfGenericElementTypes(document, kind);
  require(groups >= 0, "the number of groups is known");
  const int shown = groups < 1000 ? groups : 1000;
  for (int i = -1; i <= shown; ++i) {
    const bool isGroup = i >= 0 && i < groups;
    require(OrvML_IO_GetGenericElementType(document, kind, i) ==
                (isGroup && shapes != nullptr ? shapes[i] : NONE),
            "the shape of a group is that of the handed out array");
    require(OrvML_IO_GetNNodeGenericElement(document, kind, i) ==
                (isGroup && nodes != nullptr ? nodes[i] : 0),
            "the number of nodes of a group is that of the handed out array");
  }
}

void readAttribute(void* document, ORVML_TYPE_OF_ENTITY kind, const char* name,
                   const OML_AttributesVector::Entry& entry) {
  int* ints = nullptr;
  double* doubles = nullptr;
  int length = -1;
  require(OrvML_IO_GetAttributesEntitiesVector(document, kind, name, ints, length) == 0 &&
              ints == entry.data && length == entry.length,
          "an attribute is handed out as ints");
  require(OrvML_IO_GetAttributesEntitiesVector(document, kind, name, doubles, length) == 0 &&
              doubles == entry.data && length == entry.length,
          "an attribute is handed out as doubles");
  require(OrvML_IO_GetAttribute(document, name, kind) == entry.data,
          "the block of an attribute is handed out");
  require(OrvML_IO_GetAttributeType(document, name, kind) ==
              (entry.code == 'i' ? ORVML_INT : ORVML_DOUBLE),
          "the type of an attribute is known");
}

void readAttributes(void* document, ORVML_TYPE_OF_ENTITY kind) {
  const OML_AttributesVector* attributes = orvml_io::documentOf(document)->attributesOf(kind);
  const int transmitted = OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document, kind);
  int counted = 0;
  if (attributes != nullptr) {
    for (const auto& [name, entry] : *attributes) {
      readAttribute(document, kind, name.c_str(), entry);
      if (entry.mustBeTransmitted) {
        const char* answer =
            OrvML_IO_GetAttributeNameThatMustBeTransmitted(document, kind, counted++);
        require(answer != nullptr && name == answer, "transmitted attributes come by name");
      }
    }
  }
  require(transmitted == counted, "transmitted attributes are counted");
  require(OrvML_IO_GetAttributeNameThatMustBeTransmitted(document, kind, counted) == nullptr,
          "no index behind the last names an attribute");
}

/// Numbers are compared by their bits: NaN is the same as itself here.
std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

void readParameters(void* document) {
  const OrvInputAndOrvOutput& stored = *orvml_io::documentOf(document);
  for (const auto& [name, value] : stored.parametersScalar) {
    double answer = 0;
    require(OrvML_IO_GetParameter(document, name.c_str(), answer) == 0 &&
                bitsOf(answer) == bitsOf(value),
            "a parameter is found");
    require(OrvML_IO_ParameterExists(document, name.c_str()), "a parameter exists");
  }
  for (const auto& [name, entry] : stored.parametersVector) {
    int* ints = nullptr;
    double* doubles = nullptr;
    int length = -1;
    require(OrvML_IO_GetParameterVector(document, name.c_str(), ints, length) == 0 &&
                OrvML_IO_GetParameterVector(document, name.c_str(), doubles, length) == 0 &&
                ints == entry.data && doubles == entry.data && length == entry.length,
            "a vector parameter is handed out");
  }
  require(OrvML_IO_GetNumberOfParameters(document) == stored.parametersScalar.count() &&
              OrvML_IO_GetNumberOfParametersVector(document) == stored.parametersVector.count(),
          "parameters are counted");
}

/// The rule of the text export may ask for many more lines than a mesh has cells. Only a text that
/// is written in no time is asked for.
bool hasShortText(const OrvInputAndOrvOutput& document) {
  constexpr long long kMostLines = 10000;
  long long lines = document.nodes == nullptr ? 0 : document.nodes->numberOfNodes;
  for (const orvml_io::Elems* elems : {document.edges, document.faces, document.elements}) {
    long long cells = 0;
    for (int i = 0; elems != nullptr && i < elems->numberOfElementTypes; ++i) {
      const bool isCounted =
          elems->numberOfElementsByType != nullptr && elems->numberOfNodesByElement != nullptr;
      cells += isCounted ? elems->numberOfElementsByType[i] : 0;
      const long long nodes = isCounted ? elems->numberOfNodesByElement[i] : 0;
      lines += 1 + cells * (nodes + 1);
    }
  }
  return lines <= kMostLines;
}

void exportText(void* document) {
  const OrvInputAndOrvOutput& stored = *orvml_io::documentOf(document);
  // Without nodes the stream stays open by contract; a long campaign would run out of them.
  if (stored.nodes != nullptr && hasShortText(stored)) {
    require(OrvML_IO_WriteMeshInOrvFormat("/dev/null", document) == 0, "a mesh prints as text");
  }
}

void requireRefusedMesh(void* document) {
  const int nodes = OrvML_IO_GetNumberOfNodes(document);
  const double coordinates[] = {1, 2, 3};
  OrvML_IO_SetNodesCoords(document, nodes == 1 ? 2 : 1, coordinates);
  require(OrvML_IO_GetNumberOfNodes(document) == nodes,
          "the mesh of a document that owns its arrays cannot be set");
}

void changeAttributes(void* document, ORVML_TYPE_OF_ENTITY kind) {
  constexpr int kMostEntities = 1000;
  constexpr char kName[] = "of the fuzzer";
  const std::vector<double> values(kMostEntities);
  const bool hasStore = orvml_io::documentOf(document)->attributesOf(kind) != nullptr;
  const int count = kind == ORVML_NODES ? OrvML_IO_GetNumberOfNodes(document)
                                        : OrvML_IO_GetNumberOfGenericElements(document, kind);
  if (count <= kMostEntities) {
    require((OrvML_IO_CreateAttribute(document, kName, kind, ORVML_USER_ATTRIBUTE, ORVML_INT) !=
             nullptr) == hasStore,
            "an attribute is created where there is a container");
    OrvML_IO_DeleteAttribute(document, kName, kind);
    require(OrvML_IO_SetAttribute(document, kName, values.data(), kind, ORVML_FUNCTION_ATTRIBUTE,
                                  ORVML_DOUBLE) == (hasStore ? 0 : 1),
            "an attribute is set where there is a container");
  }
  require(OrvML_IO_DeleteAttributesEntitiesVector(document, kind, kName) == 0,
          "deleting an attribute gives 0");
}

void changeParameters(void* document) {
  const int ints[] = {1, 2};
  OrvML_IO_SetParameter(document, "of the fuzzer", 7);
  require(OrvML_IO_ParameterExists(document, "of the fuzzer"), "a parameter that was set exists");
  OrvML_IO_DeleteParameterVector(document, "of the fuzzer");
  OrvML_IO_SetParameterVector(document, "of the fuzzer", ints, 2);
  require(OrvML_IO_DeleteParameterVector(document, "of the fuzzer") == 0,
          "deleting a vector parameter gives 0");
}

using WayToChange = void (*)(void*& document);

constexpr WayToChange kWaysToChange[] = {
    [](void*& /*document*/) {},
    [](void*& document) { OrvML_IO_DeleteOrvInputContent(document); },
    [](void*& document) { OrvML_IO_DeleteOrvOutputContent(document); },
    [](void*& document) { OrvML_IO_DeleteNodesContent(document); },
    [](void*& document) { OrvML_IO_DeleteEdgesContent(document); },
    [](void*& document) { OrvML_IO_DeleteFacesContent(document); },
    [](void*& document) { OrvML_IO_DeleteElementsContent(document); },
    [](void*& document) { OrvML_IO_DeleteNodes(document); },
    [](void*& document) { OrvML_IO_DeleteEdges(document); },
    [](void*& document) { OrvML_IO_DeleteFaces(document); },
    [](void*& document) { OrvML_IO_DeleteElements(document); },
    [](void*& document) { OrvML_IO_DeleteParametersContent(document); },
    [](void*& document) { OrvML_IO_DeleteAttributesEntitiesVector(document, ORVML_NODES); },
    [](void*& document) { OrvML_IO_DeleteAttributesEntitiesVector(document, ORVML_FACES); },
    [](void*& document) { OrvML_IO_SetNumberOfNodes(document, 1000); },
    [](void*& document) { OrvML_IO_SetMeshDimension(document, 7); },
};

}  // namespace

void useWithoutChange(void* document) {
  readIdentification(document);
  readNodes(document);
  for (const ORVML_TYPE_OF_ENTITY kind : kCellKinds) {
    readCells(document, kind);
  }
  for (const ORVML_TYPE_OF_ENTITY kind : kKinds) {
    readAttributes(document, kind);
  }
  readParameters(document);
  exportText(document);
}

void requireEqual(void* first, void* second) {
  require(OrvML_IO_OrvInputsAreEqual(first, second), "the first document equals the second");
  require(OrvML_IO_OrvOutputsAreEqual(second, first), "the second document equals the first");
}

void useWithChange(void*& document, unsigned choice) {
  requireRefusedMesh(document);
  for (const ORVML_TYPE_OF_ENTITY kind : kKinds) {
    changeAttributes(document, kind);
  }
  changeParameters(document);
  chosen(choice, kWaysToChange)(document);
  const Handle clone(OrvML_IO_NewOrvInputHandle(document));
  exportText(document);
  exportText(clone.get());
  (void)OrvML_IO_OrvInputsAreEqual(document, clone.get());
}

}  // namespace orvml_io_tests
