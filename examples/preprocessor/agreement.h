// What the two programs agree upon beside the names. The flat interface can list neither the names
// in a document nor the types of vector parameters, and its readers do not bring the
// must-be-transmitted flags back, so a program that uses it has to know the names, the types and
// which attributes are the user's.
#pragma once

#include "exchange/names.h"
#include "orvml_io.h"

namespace orvml_examples {

inline constexpr const char* kScalarParameters[] = {names::kGeneralMeshSize,
                                                    names::kSizeTransitionFactor,
                                                    names::kToleranceForGaps,
                                                    names::kQuadraticType,
                                                    names::kInputIsWatertight,
                                                    names::kMaxRelativeChordalError,
                                                    names::kMaxChordalError,
                                                    names::kPriorizeOuterPart,
                                                    names::kMinCosinusForSharpEdges,
                                                    names::kOnlyInnerTetrahedra,
                                                    names::kDeleteOuterEmbedded,
                                                    names::kSweepLayers,
                                                    names::kSurfaceNodes,
                                                    names::kVolume};

struct AgreedVectorParameter {
  const char* name;
  ORVML_TYPE_OF_VALUE valueType;
};

inline constexpr AgreedVectorParameter kVectorParameters[] = {{names::kVolumesSizes, ORVML_DOUBLE},
                                                              {names::kSweepVector, ORVML_DOUBLE},
                                                              {names::kSweepSources, ORVML_INT},
                                                              {names::kBoundingBox, ORVML_DOUBLE},
                                                              {names::kElementsByShape, ORVML_INT}};

struct AgreedAttribute {
  ORVML_TYPE_OF_ENTITY entity;
  const char* name;
  ORVML_TYPE_OF_ATTRIBUTE origin;
  ORVML_TYPE_OF_VALUE valueType;
};

inline constexpr AgreedAttribute kAttributes[] = {
    {ORVML_NODES, names::kNodesSizes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE},
    {ORVML_NODES, names::kNodesTopology, ORVML_USER_ATTRIBUTE, ORVML_INT},
    {ORVML_NODES, names::kNodesTemperature, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE},
    {ORVML_EDGES, names::kEdgesLineId, ORVML_USER_ATTRIBUTE, ORVML_INT},
    {ORVML_EDGES, names::kEdgesSizes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE},
    {ORVML_FACES, names::kFacesSurfaceId, ORVML_USER_ATTRIBUTE, ORVML_INT},
    {ORVML_FACES, names::kFacesSizes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE},
    {ORVML_FACES, names::kFacesPressure, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE},
    {ORVML_FACES, names::kFacesOnPlane, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT},
    {ORVML_ELEMENTS, names::kElementsColors, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT},
    {ORVML_ELEMENTS, names::kElementsVolumes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE}};

}  // namespace orvml_examples
