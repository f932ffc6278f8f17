#pragma once

namespace orvml_io {

// What the library knows of the one meshing module there was before format 1.4.

inline constexpr char kOctreeMesher[] = "ORVML_OCTREE_MESHER";
inline constexpr char kVolumesSizes[] = "ORVML_OCTREEMESHER_VOLUMES_SIZES";
inline constexpr char kDeleteOuterEmbedded[] = "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS";

}  // namespace orvml_io
