// The names that the two programs agree upon.
#pragma once

namespace orvml_examples {

inline constexpr char kModuleName[] = "ORVML_OCTREE_MESHER";
inline constexpr char kModuleFormatVersion[] = "1.2";

namespace names {

inline constexpr char kGeneralMeshSize[] = "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE";
inline constexpr char kSizeTransitionFactor[] = "ORVML_OCTREEMESHER_SIZE_TRANSITION_FACTOR";
inline constexpr char kToleranceForGaps[] = "ORVML_OCTREEMESHER_TOLERANCE_FOR_GAPS";
inline constexpr char kQuadraticType[] = "ORVML_OCTREEMESHER_QUADRATIC_TYPE";
inline constexpr char kInputIsWatertight[] = "ORVML_OCTREEMESHER_INPUT_IS_WATERTIGHT";
inline constexpr char kMaxRelativeChordalError[] = "ORVML_OCTREEMESHER_MAX_RELATIVE_CHORDAL_ERROR";
inline constexpr char kMaxChordalError[] = "ORVML_OCTREEMESHER_MAX_CHORDAL_ERROR";
inline constexpr char kPriorizeOuterPart[] = "ORVML_OCTREEMESHER_PRIORIZE_OUTER_PART_WHEN_COLORING";
inline constexpr char kMinCosinusForSharpEdges[] = "ORVML_OCTREEMESHER_MIN_COSINUS_FOR_SHARP_EDGES";
inline constexpr char kOnlyInnerTetrahedra[] = "ORVML_OCTREEMESHER_ONLY_GET_INNER_TETRAHEDRA";
inline constexpr char kDeleteOuterEmbedded[] = "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS";
inline constexpr char kVolumesSizes[] = "ORVML_OCTREEMESHER_VOLUMES_SIZES";

/// A part that is to be swept: along which vector, in how many layers, from which surfaces.
inline constexpr char kSweepLayers[] = "EXAMPLE_SWEEP_LAYERS";
inline constexpr char kSweepVector[] = "EXAMPLE_SWEEP_VECTOR";
inline constexpr char kSweepSources[] = "EXAMPLE_SWEEP_SOURCE_SURFACES";

/// What the mesher measured. The first nodes of its document are the nodes that it was sent.
inline constexpr char kSurfaceNodes[] = "EXAMPLE_NUMBER_OF_SURFACE_NODES";
inline constexpr char kVolume[] = "EXAMPLE_VOLUME";
inline constexpr char kBoundingBox[] = "EXAMPLE_BOUNDING_BOX";
inline constexpr char kElementsByShape[] = "EXAMPLE_NUMBER_OF_ELEMENTS_BY_SHAPE";

inline constexpr char kNodesSizes[] = "ORVML_OCTREEMESHER_NODES_SIZES";
inline constexpr char kNodesTopology[] = "EXAMPLE_NODES_TOPOLOGICAL_DIMENSION";
inline constexpr char kNodesTemperature[] = "EXAMPLE_NODES_TEMPERATURE";
inline constexpr char kEdgesLineId[] = "ORVML_OCTREEMESHER_EDGES_LINE_ID";
inline constexpr char kEdgesSizes[] = "ORVML_OCTREEMESHER_EDGES_SIZES";
inline constexpr char kFacesSurfaceId[] = "ORVML_OCTREEMESHER_FACES_SURFACE_ID";
inline constexpr char kFacesSizes[] = "ORVML_OCTREEMESHER_FACES_SIZES";
inline constexpr char kFacesPressure[] = "EXAMPLE_FACES_PRESSURE";
inline constexpr char kFacesOnPlane[] = "EXAMPLE_FACES_LIE_ON_A_PLANE";
inline constexpr char kElementsColors[] = "ORVML_OCTREEMESHER_ELEMENTS_COLORS";
inline constexpr char kElementsVolumes[] = "EXAMPLE_ELEMENTS_VOLUMES";

}  // namespace names

}  // namespace orvml_examples
