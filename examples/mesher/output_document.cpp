#include "mesher/output_document.h"

#include "exchange/check.h"
#include "exchange/geometry.h"
#include "exchange/names.h"
#include "exchange/volume_checks.h"

#include <cstring>
#include <utility>

namespace orvml_examples {

namespace {

constexpr char kCreator[] = "orvml_io example mesher";

template <class T>
void sendBack(const char* name, std::vector<T> values, int count, Document& output) {
  values.resize(static_cast<std::size_t>(count));
  output.setAttribute(name, values);
}

void sendUserAttributesBack(const Document& input, Document& output) {
  for (const AgreedAttribute& agreed : kAttributes) {
    if (agreed.origin != ORVML_USER_ATTRIBUTE) {
      continue;
    }
    const int count = output.numberOf(agreed.entity);
    if (agreed.valueType == ORVML_INT) {
      sendBack(agreed.name, input.intAttribute(agreed.name), count, output);
    } else {
      sendBack(agreed.name, input.doubleAttribute(agreed.name), count, output);
    }
  }
}

void setMeasures(const Mesh& mesh, int surfaceNodes, const std::vector<double>& volumes,
                 Document& output) {
  output.setParameter(names::kSurfaceNodes, surfaceNodes);
  output.setParameter(names::kVolume, sum(volumes));
  output.setParameter(names::kBoundingBox, boundingBox(mesh.coordinates));
  std::vector<int> byShape(std::size(ElemTypeNames), 0);
  for (std::size_t group = 0; group < mesh.elements.shapes.size(); ++group) {
    byShape[static_cast<std::size_t>(mesh.elements.shapes[group])] +=
        mesh.elements.cellsPerGroup[group];
  }
  output.setParameter(names::kElementsByShape, byShape);
}

}  // namespace

Document makeOutputDocument(const Document& input, Filling filling) {
  Mesh mesh = input.mesh();
  const int surfaceNodes = mesh.numberOfNodes();
  require(filling.coordinates.size() >= mesh.coordinates.size() &&
              std::memcmp(filling.coordinates.data(), mesh.coordinates.data(),
                          mesh.coordinates.size() * sizeof(double)) == 0,
          "a node of the surface was moved");
  mesh.coordinates = std::move(filling.coordinates);
  mesh.elements = std::move(filling.elements);
  const std::vector<double> volumes = requirePositiveElements(mesh);
  requireBoundaryIsFaces(mesh);

  const Identification received = input.identification();
  Document output =
      Document::newOutput({received.moduleName, received.moduleFormatVersion, kCreator});
  output.setMesh(mesh);
  setMeasures(mesh, surfaceNodes, volumes, output);
  sendUserAttributesBack(input, output);
  output.setAttribute(names::kElementsColors, filling.colors);
  output.setAttribute(names::kElementsVolumes, volumes);
  return output;
}

}  // namespace orvml_examples
