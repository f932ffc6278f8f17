#include "console.h"
#include "convert/format.h"
#include "surfaces/surface.h"

#include <utility>

namespace orvml_tool {

namespace {

/// A document in space with the surface as its faces: of triangles and quadrilaterals, those that
/// come first are the first group.
Draft draftOfSurface(Surface surface, const ImportOptions& options, ConversionReport& report) {
  for (const auto& [name, count] : surface.passedOver) {
    report.add(orvml::Fate::dropped, name, count,
               "have no place in an exchange file: " + shown(count) + " passed over");
  }
  ForeignMesh mesh;
  mesh.coordinates = std::move(surface.coordinates);
  const auto add = [&mesh](orvml::Shape shape, int width, const std::vector<int>& nodes) {
    mesh.addRun(orvml::Entity::faces, {shape, width},
                nodes.size() / static_cast<std::size_t>(width));
    mesh.nodeIndices.insert(mesh.nodeIndices.end(), nodes.begin(), nodes.end());
  };
  if (surface.beginsWithQuadrilateral) {
    add(orvml::Shape::quadrilateral, 4, surface.quadrilaterals);
  }
  add(orvml::Shape::triangle, 3, surface.triangles);
  if (!surface.beginsWithQuadrilateral) {
    add(orvml::Shape::quadrilateral, 4, surface.quadrilaterals);
  }
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
