#include "preprocessor/input_document.h"

#include "exchange/geometry.h"
#include "exchange/names.h"
#include "preprocessor/tolerances.h"

#include <algorithm>
#include <cmath>

namespace orvml_examples {

namespace {

constexpr char kCreator[] = "orvml_io example preprocessor";

/// Cosine of the angle between two faces below which their common side is a sharp edge: 40 degrees.
constexpr double kMinCosinusForSharpEdges = 0.7660444431189780;

/// Nodes nearer to each other than this, in millimetres, are one node.
constexpr double kToleranceForGaps = 1e-6;

/// The inside may be meshed a little finer than the surface.
constexpr double kVolumeSizeOverSurfaceSize = 0.9;

void setParameters(const Part& part, const CadModel& model, const MeshSizes& sizes,
                   Document& document) {
  document.setParameter(names::kGeneralMeshSize, sizes.size);
  document.setParameter(names::kSizeTransitionFactor, 1.3);
  document.setParameter(names::kToleranceForGaps, kToleranceForGaps);
  document.setParameter(names::kQuadraticType, 0);
  document.setParameter(names::kInputIsWatertight, 1);
  document.setParameter(names::kMaxRelativeChordalError, 0.05);
  document.setParameter(names::kMaxChordalError, allowedChordalError(part, sizes));
  document.setParameter(names::kPriorizeOuterPart, 0);
  document.setParameter(names::kMinCosinusForSharpEdges, kMinCosinusForSharpEdges);
  document.setParameter(names::kOnlyInnerTetrahedra, 1);
  document.setParameter(names::kDeleteOuterEmbedded, 0);
  document.setParameter(
      names::kVolumesSizes,
      std::vector<double>(model.volumes.size(), kVolumeSizeOverSurfaceSize * sizes.size));
  if (model.sweep) {
    const auto& vector = model.sweep->vector;
    document.setParameter(names::kSweepVector, std::vector<double>(vector.begin(), vector.end()));
    document.setParameter(names::kSweepLayers, model.sweep->layers);
    document.setParameter(names::kSweepSources, model.sweep->sourceSurfaces);
  }
}

/// Mean length of the sides of each face, and of the sides that meet at each node.
struct MeanSides {
  std::vector<double> ofFaces;
  std::vector<double> atNodes;
};

MeanSides meanSides(const Mesh& mesh) {
  MeanSides mean;
  mean.atNodes.resize(static_cast<std::size_t>(mesh.numberOfNodes()));
  std::vector<int> sidesAtNode(mean.atNodes.size());
  mesh.faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    double perimeter = 0.0;
    for (std::size_t corner = 0; corner < nodes.size(); ++corner) {
      const int next = nodes[(corner + 1) % nodes.size()];
      const double length =
          distance(pointAt(mesh.coordinates, nodes[corner]), pointAt(mesh.coordinates, next));
      perimeter += length;
      // Each side of a closed surface is seen twice, once from either of its nodes.
      mean.atNodes[static_cast<std::size_t>(next)] += length;
      ++sidesAtNode[static_cast<std::size_t>(next)];
    }
    mean.ofFaces.push_back(perimeter / static_cast<double>(nodes.size()));
  });
  for (std::size_t node = 0; node < mean.atNodes.size(); ++node) {
    mean.atNodes[node] /= sidesAtNode[node];
  }
  return mean;
}

/// In kelvin: warm around the axis, cooler towards the rim.
std::vector<double> temperatures(const Mesh& mesh) {
  std::vector<double> values;
  for (int node = 0; node < mesh.numberOfNodes(); ++node) {
    const Point point = pointAt(mesh.coordinates, node);
    values.push_back(293.15 + 80 * std::exp(-std::hypot(point[0], point[1]) / 25) + point[2] / 3);
  }
  return values;
}

/// In newtons per square millimetre: growing with the depth below the highest node of the face.
std::vector<double> pressures(const Mesh& mesh, double top) {
  std::vector<double> values;
  mesh.faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    double highest = pointAt(mesh.coordinates, nodes[0])[2];
    for (const int node : nodes) {
      highest = std::max(highest, pointAt(mesh.coordinates, node)[2]);
    }
    values.push_back(0.1 + (top - highest) / 7);
  });
  return values;
}

void setAttributes(const CadMeasures& cad, const SurfaceMesh& surface, Document& document) {
  const Mesh& mesh = surface.mesh;
  const MeanSides mean = meanSides(mesh);
  document.setAttribute(names::kNodesSizes, mean.atNodes);
  document.setAttribute(names::kNodesTopology, surface.topologicalDimensions);
  document.setAttribute(names::kNodesTemperature, temperatures(mesh));
  document.setAttribute(names::kEdgesLineId, surface.lineIds);
  document.setAttribute(names::kEdgesSizes, lengths(mesh.coordinates, mesh.edges));
  document.setAttribute(names::kFacesSurfaceId, surface.surfaceIds);
  document.setAttribute(names::kFacesSizes, mean.ofFaces);
  document.setAttribute(names::kFacesPressure, pressures(mesh, cad.boundingBox[5]));
  std::vector<int> onPlane;
  for (const int id : surface.surfaceIds) {
    onPlane.push_back(cad.isPlane(id) ? 1 : 0);
  }
  document.setAttribute(names::kFacesOnPlane, onPlane);
}

}  // namespace

Document makeInputDocument(const Part& part, const CadModel& model, const CadMeasures& cad,
                           const MeshSizes& sizes, const SurfaceMesh& surface) {
  Document document = Document::newInput({kModuleName, kModuleFormatVersion, kCreator});
  document.setMesh(surface.mesh);
  setParameters(part, model, sizes, document);
  setAttributes(cad, surface, document);
  return document;
}

}  // namespace orvml_examples
