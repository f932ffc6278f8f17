#include "mesher/output_document.h"

#include "exchange/check.h"
#include "exchange/geometry.h"
#include "exchange/names.h"
#include "exchange/volume_checks.h"
#include "mesher/view_mesh.h"

#include <cstring>
#include <utility>

namespace orvml_examples {

namespace {

constexpr char kCreator[] = "orvml_io example mesher";

int countOf(orvml::Entity entity, const orvml::Output& output) {
  return entity == orvml::Entity::nodes ? output.nodes().size() : output.cells(entity).size();
}

void sendBack(orvml::Entity entity, const orvml::Attribute& attribute, orvml::Output& output) {
  const auto count = static_cast<std::size_t>(countOf(entity, output));
  const auto send = [&](const auto values) {
    std::vector copied(values.begin(), values.end());
    copied.resize(count);
    output.setAttribute(entity, attribute.name, std::move(copied), orvml::Transmission::mandatory);
  };
  std::visit(send, attribute.values);
}

void sendWhatMustBeTransmitted(const orvml::InputView& input, orvml::Output& output) {
  for (const auto entity : {orvml::Entity::nodes, orvml::Entity::edges, orvml::Entity::faces}) {
    for (const orvml::Attribute& attribute : input.attributes(entity)) {
      if (attribute.mustBeTransmitted) {
        sendBack(entity, attribute, output);
      }
    }
  }
}

void setMeasures(const Mesh& mesh, int surfaceNodes, const std::vector<double>& volumes,
                 orvml::Output& output) {
  output.setParameter(names::kSurfaceNodes, surfaceNodes);
  output.setParameter(names::kVolume, sum(volumes));
  output.setVectorParameter(names::kBoundingBox, boundingBox(mesh.coordinates));
  std::vector<int> byShape(std::size(ElemTypeNames), 0);
  for (std::size_t group = 0; group < mesh.elements.shapes.size(); ++group) {
    byShape[static_cast<std::size_t>(mesh.elements.shapes[group])] +=
        mesh.elements.cellsPerGroup[group];
  }
  output.setVectorParameter(names::kElementsByShape, std::move(byShape));
}

}  // namespace

orvml::Output makeOutputDocument(const orvml::InputView& input, Filling filling) {
  Mesh mesh = meshOf(input);
  const int surfaceNodes = mesh.numberOfNodes();
  require(filling.coordinates.size() >= mesh.coordinates.size() &&
              std::memcmp(filling.coordinates.data(), mesh.coordinates.data(),
                          mesh.coordinates.size() * sizeof(double)) == 0,
          "a node of the surface was moved");
  mesh.coordinates = std::move(filling.coordinates);
  mesh.elements = std::move(filling.elements);
  std::vector<double> volumes = requirePositiveElements(mesh);
  requireBoundaryIsFaces(mesh);

  const orvml::Identification& received = input.identification();
  orvml::Output output({received.moduleName, received.moduleFormatVersion, kCreator},
                       Mesh::kDimension);
  setMeasures(mesh, surfaceNodes, volumes, output);
  setMesh(std::move(mesh), output);
  sendWhatMustBeTransmitted(input, output);
  output.setAttribute(orvml::Entity::elements, names::kElementsColors, std::move(filling.colors));
  output.setAttribute(orvml::Entity::elements, names::kElementsVolumes, std::move(volumes));
  return output;
}

}  // namespace orvml_examples
