#pragma once

namespace orvml_io::layout {

// Names in an exchange file, in the order of its tree. Sub-paths begin with a slash: they are glued
// to the path of their parent.

inline constexpr char kFormat[] = "FORMAT";
inline constexpr char kFormatMarker[] = "ORVMESHLIBRARY";
inline constexpr char kFormatVersion[] = "ORVMESHLIBRARY_FORMAT_VERSION";
inline constexpr char kIOCreator[] = "ORVML_IO_CREATOR";
inline constexpr char kModuleName[] = "ORVML_MODULE_NAME";
inline constexpr char kModuleFormatVersion[] = "ORVML_MODULE_FORMAT_VERSION";

inline constexpr char kOrvInput[] = "/OrvInput";
inline constexpr char kOrvOutput[] = "/OrvOutput";
inline constexpr char kDimension[] = "/dimension";

inline constexpr char kNodes[] = "/Nodes";
inline constexpr char kCoordinates[] = "/coordinates";
inline constexpr char kNodesCoordinates[] = "/Nodes/coordinates";

inline constexpr char kEdges[] = "/Edges";
inline constexpr char kFaces[] = "/Faces";
inline constexpr char kElements[] = "/Elements";
inline constexpr char kNumberOfElementsByType[] = "/number_of_elements_by_type";
inline constexpr char kElementTypes[] = "/element_types";
inline constexpr char kNumberOfNodesByElement[] = "/number_of_nodes_by_element";
inline constexpr char kConnectivities[] = "/connectivities";

inline constexpr char kAttributes[] = "/Attributes";
inline constexpr char kMustBeTransmitted[] = "MustBeTransmitted";

inline constexpr char kParameters[] = "/parameters";
inline constexpr char kParametersTableTitle[] = "parameters";
inline constexpr char kParameterNameField[] = "name";
inline constexpr char kParameterValueField[] = "value";
inline constexpr char kTableClass[] = "CLASS";
inline constexpr char kTableClassName[] = "TABLE";
inline constexpr char kTableVersion[] = "VERSION";
inline constexpr char kTableVersionText[] = "3.0";
inline constexpr char kTableTitle[] = "TITLE";
inline constexpr char kTableFirstField[] = "FIELD_0_NAME";
inline constexpr char kTableSecondField[] = "FIELD_1_NAME";
inline constexpr char kParametersVector[] = "/ParametersVector";

// The group that shows VTK a document. The writers of documents never make it.
inline constexpr char kVtkHdf[] = "/VTKHDF";
inline constexpr char kLinkedDocument[] = "ORVML_DOCUMENT";

// Positional layouts of formats older than 1.4.
inline constexpr char kGenericMarkers[] = "/GenericMarkers";
inline constexpr char kGenericAttributes[] = "/GenericAttributes";
inline constexpr char kFunctionAttributes[] = "/FunctionAttributes";
inline constexpr char kUserAttributes[] = "/UserAttributes";
inline constexpr char kFunctionMarkers[] = "/FunctionMarkers";
inline constexpr char kUserMarkers[] = "/UserMarkers";
inline constexpr char kMaxId[] = "MAX_ID";

/// The first format that keeps parameters and attributes by name; below, they are positional.
inline constexpr double kFirstNamedFormat = 1.4;

/// Records in a chunk of the parameter table.
inline constexpr unsigned kParametersChunk = 10;

}  // namespace orvml_io::layout
