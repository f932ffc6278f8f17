#include "preprocessor/output_checks.h"

#include "exchange/check.h"
#include "exchange/geometry.h"
#include "exchange/names.h"
#include "exchange/volume_checks.h"
#include "preprocessor/agreement.h"
#include "preprocessor/tolerances.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvml_examples {

namespace {

/// Bit for bit: 0.0 and -0.0 are different here.
template <class T>
bool beginsWith(const std::vector<T>& whole, const std::vector<T>& part) {
  return whole.size() >= part.size() &&
         std::memcmp(whole.data(), part.data(), part.size() * sizeof(T)) == 0;
}

template <class T>
void requireKept(const std::vector<T>& sent, const std::vector<T>& back, const char* name) {
  require(beginsWith(back, sent), std::string(name) + " came back with other values");
  require(std::all_of(back.begin() + static_cast<std::ptrdiff_t>(sent.size()), back.end(),
                      [](const T& value) { return value == T(); }),
          std::string(name) + " has values on nodes that were added");
}

void requireWithin(double measured, double expected, double tolerance, const char* what) {
  require(std::abs(measured - expected) <= tolerance,
          std::string(what) + " is " + std::to_string(measured) + " instead of " +
              std::to_string(expected) + ", tolerance " + std::to_string(tolerance));
}

void requireBoxWithin(const Mesh& mesh, const CadMeasures& cad, double tolerance) {
  const std::vector<double> box = boundingBox(mesh.coordinates);
  for (std::size_t i = 0; i < box.size(); ++i) {
    requireWithin(box[i], cad.boundingBox[i], tolerance, "a side of the bounding box");
  }
}

/// The module measured the same mesh by itself.
void requireSameMeasures(const Document& output, const Mesh& mesh, double volume) {
  require(output.doubleParameter(names::kBoundingBox) == boundingBox(mesh.coordinates),
          "the mesher's bounding box differs");
  require(output.parameter(names::kVolume) == volume, "the mesher's volume differs");
}

}  // namespace

void requireSurfaceKept(const Document& input, const Document& output) {
  const Mesh sent = input.mesh();
  const Mesh back = output.mesh();
  require(output.parameter(names::kSurfaceNodes) == static_cast<double>(sent.numberOfNodes()),
          "the mesher counts other surface nodes than were sent");
  require(beginsWith(back.coordinates, sent.coordinates), "the nodes sent came back changed");
  require(back.edges == sent.edges, "the edges came back changed");
  require(back.faces == sent.faces, "the faces came back changed");
}

void requireUserAttributesKept(const Document& input, const Document& output) {
  for (const AgreedAttribute& agreed : kAttributes) {
    if (agreed.entity == ORVML_ELEMENTS) {
      continue;  // made by the module
    }
    const bool isUsers = agreed.origin == ORVML_USER_ATTRIBUTE;
    require(output.attributeType(agreed.name) == (isUsers ? agreed.valueType : ORVML_UNKNOWN_VALUE),
            std::string(agreed.name) + (isUsers ? " did not come back" : " came back unasked"));
    if (isUsers && agreed.valueType == ORVML_INT) {
      requireKept(input.intAttribute(agreed.name), output.intAttribute(agreed.name), agreed.name);
    } else if (isUsers) {
      requireKept(input.doubleAttribute(agreed.name), output.doubleAttribute(agreed.name),
                  agreed.name);
    }
  }
}

Closeness requireCloseToCad(const Document& input, const Document& output, const CadMeasures& cad) {
  const Mesh mesh = output.mesh();
  const std::vector<double> volumes = requirePositiveElements(mesh);
  requireBoundaryIsFaces(mesh);
  require(output.doubleAttribute(names::kElementsVolumes) == volumes,
          "the mesher's volumes of the elements differ");

  const std::vector<double> errors =
      chordalErrors(mesh, output.intAttribute(names::kFacesSurfaceId));
  const std::vector<double> faceAreas = areas(mesh.coordinates, mesh.faces);
  const Closeness closeness{sum(volumes),
                            volumeTolerance(cad, faceAreas, errors),
                            sum(faceAreas),
                            areaTolerance(cad),
                            *std::max_element(errors.begin(), errors.end()),
                            input.parameter(names::kMaxChordalError)};
  requireSameMeasures(output, mesh, closeness.volume);
  requireWithin(closeness.chordalError, 0.0, closeness.allowedChordalError, "the chordal error");
  requireWithin(closeness.volume, cad.volume, closeness.volumeTolerance, "the volume");
  requireWithin(closeness.volume, enclosedVolume(mesh.coordinates, mesh.faces), 1e-9 * cad.volume,
                "the sum of the elements' volumes");
  requireWithin(closeness.area, cad.area, closeness.areaTolerance, "the area");
  requireBoxWithin(mesh, cad, closeness.allowedChordalError);
  return closeness;
}

}  // namespace orvml_examples
