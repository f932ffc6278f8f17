#include "convert/format.h"
#include "surfaces/surface.h"

#include <utility>

namespace orvml_tool {

namespace {

/// A document in space with the surface as its faces.
Draft draftOfSurface(Surface surface, const ImportOptions& options, ConversionReport& report) {
  ForeignMesh mesh;
  mesh.coordinates = std::move(surface.coordinates);
  mesh.addRun(orvml::Entity::faces, {orvml::Shape::triangle, 3}, surface.triangles.size() / 3);
  mesh.addRun(orvml::Entity::faces, {orvml::Shape::quadrilateral, 4},
              surface.quadrilaterals.size() / 4);
  mesh.nodeIndices = std::move(surface.triangles);
  mesh.nodeIndices.insert(mesh.nodeIndices.end(), surface.quadrilaterals.begin(),
                          surface.quadrilaterals.end());
  return draftOf(std::move(mesh), options, report);
}

}  // namespace

Draft readStl(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOfSurface(surfaceFromStl(bytes), options, report);
}

Draft readPly(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOfSurface(surfaceFromPly(bytes), options, report);
}

Draft readObj(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOfSurface(surfaceFromObj(bytes), options, report);
}

Draft readOff(std::string_view bytes, const ImportOptions& options, ConversionReport& report) {
  return draftOfSurface(surfaceFromOff(bytes), options, report);
}

}  // namespace orvml_tool
