// liborvml_io: documents that carry a mesh, its meshing parameters and named attributes between a
// pre-processing application and a meshing module, in memory and in HDF5 exchange files.
//
// Conventions that hold for every function below:
//
//  1. Handles. A document is an opaque `void*`. It comes from a New... function or from a file
//     reader and lives until OrvML_IO_DeleteOrvInputHandle() or OrvML_IO_DeleteOrvOutputHandle()
//     takes it back; both accept either kind of document.
//  2. Results. Status functions return 0 for success and 1 for failure; a function with another
//     result says so. Nothing is ever printed. No exception leaves a function except the platform's
//     out-of-memory exception (std::bad_alloc), after which nothing is leaked.
//  3. Null handles. The handle, string, content and mesh functions accept a null handle: setters do
//     nothing and getters return the neutral value given with each. The parameter and attribute
//     functions and OrvML_IO_DeleteAttributesEntitiesVector() require a valid handle. A null name
//     is never accepted.
//  4. Arrays of the mesh (coordinates, connectivities, type group arrays). Setters adopt the
//     caller's pointers, they copy nothing: the arrays must outlive the document and stay the
//     caller's. A document that was read from a file, or cloned, owns its arrays, and the mesh
//     setters leave such a document as it is. The Delete...Content functions release arrays with
//     `delete[]` whoever made them: a caller who clears a document of its own hands its arrays
//     over, so they must come from `new[]`.
//  5. Vectors (vector parameters, attributes). Setters copy the caller's values. Getters hand out
//     the document's own block, never a copy: the caller must not free it; it is valid until the
//     name is deleted, its store cleared or the document deleted. Replacing a vector under an
//     existing name leaves the old block allocated, because a caller may still hold it; delete the
//     name first to release it. A negative length is taken as 0.
//  6. Strings are byte strings that end with a null byte. The identification strings of a document
//     hold at most 79 bytes; what is longer is cut there. Names of parameters and attributes that
//     go to a file must be shorter than 80 bytes, else writing gives 1.
//  7. Numbers. Node indices in connectivities are 0-based. Lengths have the caller's unit; the
//     library attaches none. Files are written and read alike in every locale.
//  8. Threads. A handle must not be used from two threads at once; distinct handles are
//     independent. The file functions call HDF5, which must be called from one thread at a time
//     unless it was built thread-safe.
#ifndef ORVML_IO_H
#define ORVML_IO_H

#include <stddef.h>  // size_t in the global namespace. NOLINT(modernize-deprecated-headers)

#if defined(__GNUC__)
#define ORVML_IO_EXPORT __attribute__((visibility("default")))
#else
#define ORVML_IO_EXPORT
#endif

/// Shape of the elements of one type group. Stored in files as a 32-bit integer; the numbers are
/// part of the file format. The number of nodes of an element is always given beside its shape, so
/// a quadratic element has the same shape and more nodes.
enum ElemType : int {
  NONE = 0,
  LINEAR = 1,
  TRIANGLE = 2,
  QUADRILATERAL = 3,
  TETRAHEDRA = 4,
  HEXAHEDRA = 5,
  PRISM = 6,
  POINT = 7,
  PYRAMID = 8,
  SPHERE = 9,
  CIRCLE = 10
};

/// Display names of the shapes, indexed by ElemType: "None", "Linear", ... "Circle".
ORVML_IO_EXPORT extern const char* const ElemTypeNames[11];

/// Which mesh container of a document is meant. Any other value names no container.
enum ORVML_TYPE_OF_ENTITY : int {
  ORVML_NODES = 0,
  ORVML_EDGES = 1,
  ORVML_FACES = 2,
  ORVML_ELEMENTS = 3
};

/// Who produced an attribute. User attributes carry the must-be-transmitted flag: the meshing
/// module is expected to send them back. Function attributes (computed ones) do not.
enum ORVML_TYPE_OF_ATTRIBUTE : int { ORVML_USER_ATTRIBUTE = 0, ORVML_FUNCTION_ATTRIBUTE = 1 };

/// Type of the values of an attribute. ORVML_UNKNOWN_VALUE is a query result only.
enum ORVML_TYPE_OF_VALUE : int { ORVML_INT = 0, ORVML_DOUBLE = 1, ORVML_UNKNOWN_VALUE = 2 };

// ------------------------------------------------------------------------------------------------
// Versions
// ------------------------------------------------------------------------------------------------

/// Returns the version of the library, "1.10.0": a constant that the caller must not free.
ORVML_IO_EXPORT const char* OrvML_IO_GetVersion();

/// Returns the version of the file format that is written, "1.4": a constant not to be freed.
ORVML_IO_EXPORT const char* OrvML_IO_GetFormatVersion();

/// Returns the format version that saving a document takes at least.
///
/// @param[in] handle  ignored; may be null
/// @return "1.4" for every document, a constant that the caller must not free
ORVML_IO_EXPORT const char* ORVML_IO_GetMinimumFormatVersionToSave(void* handle);

/// Turns a version text into the number that versions are compared by.
///
/// @param[in] version  text; not null
/// @return what `strtod` reads from the start of the text: 1.4 for "1.4", 1.1 for "1.10.0" (the
///         number ends at the second point), 0 for a text that begins with no number
/// @note Format decisions compare this number with 1.4, so it is never a component-wise comparison.
ORVML_IO_EXPORT double OrvML_IO_GetFormatVersion_Number(const char* version);

// ------------------------------------------------------------------------------------------------
// Creating and deleting documents
// ------------------------------------------------------------------------------------------------

/// Creates an empty input document of dimension 0.
///
/// @return a new handle, never null; release it with OrvML_IO_DeleteOrvInputHandle()
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandle();

/// Creates an empty input document with its identification.
///
/// @param[in] moduleName           name of the meshing module; null gives an empty text
/// @param[in] moduleFormatVersion  version of the module's parameters; null gives an empty text
/// @param[in] ioCreator            name of the creating program; null gives an empty text
/// @param[in] meshDimension        coordinates per node, 2 or 3; stored without a test
/// @return a new handle, never null; release it with OrvML_IO_DeleteOrvInputHandle()
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandle(const char* moduleName,
                                                 const char* moduleFormatVersion,
                                                 const char* ioCreator, int meshDimension);

/// Does the same with dimension 0.
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandle(const char* moduleName,
                                                 const char* moduleFormatVersion,
                                                 const char* ioCreator);

/// Creates an empty output document of dimension 0.
///
/// @return a new handle, never null; release it with OrvML_IO_DeleteOrvOutputHandle()
ORVML_IO_EXPORT void* OrvML_IO_NewOrvOutputHandle();

/// Creates an input document that is a deep copy of another.
///
/// @param[in] source  document to copy; null gives null
/// @return a new handle; release it with OrvML_IO_DeleteOrvInputHandle()
/// @note The copy owns every array it holds: it stays valid after the source and the source's
///       arrays are gone, and the mesh setters leave it as it is. It keeps the callbacks of an
///       input document.
/// @note A source without scalar parameters gives a copy without any parameters, vector parameters
///       included. The attributes of a node container without nodes are not copied.
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandle(void* source);

/// Refuses a pointer to anything else, such as a text, which would be taken for a handle without
/// this overload.
template <class T>
void* OrvML_IO_NewOrvInputHandle(T* notAHandle) = delete;

/// Creates an output document that is a deep copy of another; everything else is as for the input.
///
/// @param[in] source  document to copy; null gives null
/// @return a new handle; release it with OrvML_IO_DeleteOrvOutputHandle()
ORVML_IO_EXPORT void* OrvML_IO_NewOrvOutputHandle(void* source);

/// Refuses a pointer to anything else, as for the input.
template <class T>
void* OrvML_IO_NewOrvOutputHandle(T* notAHandle) = delete;

/// Creates an input document with its identification and node coordinates.
///
/// The first four parameters are those of OrvML_IO_NewOrvInputHandle().
///
/// @param[in] numberOfNodes  number of nodes
/// @param[in] coords         `[numberOfNodes x meshDimension]`, row-major; adopted, not copied
/// @return a new handle, never null
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandleWithNodes(const char* moduleName,
                                                          const char* moduleFormatVersion,
                                                          const char* ioCreator, int meshDimension,
                                                          int numberOfNodes, const double* coords);

/// Creates an input document with its identification, node coordinates and faces of one shape.
///
/// The first six parameters are those of OrvML_IO_NewOrvInputHandleWithNodes().
///
/// @param[in] numberOfFaces         number of faces
/// @param[in] connectivities        `[numberOfFaces x numberOfNodesByElement]`, 0-based node
///                                  indices, face after face; adopted, not copied; null sets none
/// @param[in] elementType           shape of all faces
/// @param[in] numberOfNodesByElement  nodes of each face
/// @return a new handle, never null
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandleWithFaces(
    const char* moduleName, const char* moduleFormatVersion, const char* ioCreator,
    int meshDimension, int numberOfNodes, const double* coords, int numberOfFaces,
    int* connectivities, ElemType elementType, int numberOfNodesByElement);

/// Does the same with volume elements instead of faces; here the coordinates are not const.
ORVML_IO_EXPORT void* OrvML_IO_NewOrvInputHandleWithVolumeElements(
    const char* moduleName, const char* moduleFormatVersion, const char* ioCreator,
    int meshDimension, int numberOfNodes, double* coords, int numberOfElements, int* connectivities,
    ElemType elementType, int numberOfNodesByElement);

/// Deletes a document and sets the caller's handle to null.
///
/// A document that was read from a file releases all it holds. Of a document made by a constructor
/// the mesh arrays stay the caller's and untouched, and so do the blocks of its attributes: they
/// stay allocated and readable, because the caller may hold them (release them first with
/// OrvML_IO_DeleteAttributesEntitiesVector()). The same holds for the type group arrays of one
/// entry that the library made for a single-shape setter, which a caller may have given to another
/// document: who wants them back asks a four-output getter such as OrvML_IO_GetFaces() for them
/// first and releases each with `delete[]` afterwards. Vector parameters are always released.
///
/// @param[in,out] handle  input or output document; null is left alone
ORVML_IO_EXPORT void OrvML_IO_DeleteOrvInputHandle(void*& handle);

/// Does the same as OrvML_IO_DeleteOrvInputHandle(); either accepts either kind of document.
ORVML_IO_EXPORT void OrvML_IO_DeleteOrvOutputHandle(void*& handle);

// ------------------------------------------------------------------------------------------------
// Identification, dimension, counts
// ------------------------------------------------------------------------------------------------

/// Sets the name of the meshing module that the document is meant for. The text comes first.
///
/// @param[in] moduleName  text, cut at 79 bytes; null clears the name
/// @param[in] handle      document; null: nothing happens
ORVML_IO_EXPORT void OrvML_IO_SetOrvMeshLibraryModuleName(const char* moduleName, void* handle);

/// Sets the version of the module's parameters; the rules are those of the module name.
ORVML_IO_EXPORT void OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(const char* moduleFormatVersion,
                                                                   void* handle);

/// Sets the name of the creating program.
///
/// @param[in] ioCreator  text, cut at 79 bytes; null keeps the old name, unlike the other setters
/// @param[in] handle     document; null: nothing happens
ORVML_IO_EXPORT void OrvML_IO_SetOrvMeshLibraryIOCreator(const char* ioCreator, void* handle);

/// Returns the document's own buffer with the module name, valid while the document lives: a later
/// set changes the text behind the same pointer. Null for a null handle. Not to be freed.
ORVML_IO_EXPORT const char* OrvML_IO_GetOrvMeshLibraryModuleName(void* handle);

/// Returns the document's own buffer with the module format version, under the same rules.
ORVML_IO_EXPORT const char* OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(void* handle);

/// Copies the name of the creating program into the caller's buffer.
///
/// @param[in]  handle     document; null leaves the buffer untouched
/// @param[out] ioCreator  buffer of at least 80 bytes
/// @return the buffer
ORVML_IO_EXPORT char* OrvML_IO_GetOrvMeshLibraryIOCreator(void* handle, char* ioCreator);

/// Returns the number of coordinates per node; -1 for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetMeshDimension(void* handle);

/// Stores the number of coordinates per node, without a test; null handle: nothing happens.
ORVML_IO_EXPORT void OrvML_IO_SetMeshDimension(void* handle, int meshDimension);

/// Returns the number of scalar parameters; 0 for a null handle.
ORVML_IO_EXPORT size_t OrvML_IO_GetNumberOfParameters(void* handle);

/// Returns the number of vector parameters; 0 for a null handle.
ORVML_IO_EXPORT size_t OrvML_IO_GetNumberOfParametersVector(void* handle);

// ------------------------------------------------------------------------------------------------
// Callback slots of input documents. The library keeps the pointers and hands them out; it neither
// calls them nor writes them to files. An output document has no slots: setters do nothing and
// getters leave their outputs untouched there, as for a null handle.
// ------------------------------------------------------------------------------------------------

/// Stores the status callback and its companion pointer.
ORVML_IO_EXPORT void OrvML_IO_SetCallbackStatus(void*& handle, void* first, void* second);

/// Hands out the status callback and its companion pointer; both null when never set.
ORVML_IO_EXPORT void OrvML_IO_GetCallbackStatus(void* const& handle, void*& first, void*& second);

/// Stores the error callback and its companion pointer.
ORVML_IO_EXPORT void OrvML_IO_SetCallbackError(void*& handle, void* first, void* second);

/// Hands out the error callback and its companion pointer; both null when never set.
ORVML_IO_EXPORT void OrvML_IO_GetCallbackError(void* const& handle, void*& first, void*& second);

// ------------------------------------------------------------------------------------------------
// Clearing content. Arrays are released with `delete[]` and vectors with `free`, whoever made them
// (convention 4). Null handles and missing containers: nothing happens.
// ------------------------------------------------------------------------------------------------

/// Empties every container, the scalar and the vector parameters. The (empty) containers, the
/// strings, the dimension and the callbacks stay; the handle is not changed.
ORVML_IO_EXPORT void OrvML_IO_DeleteOrvInputContent(void*& handle);

/// Does the same as OrvML_IO_DeleteOrvInputContent(), with the handle by value.
ORVML_IO_EXPORT void OrvML_IO_DeleteOrvOutputContent(void* handle);

/// Removes all scalar and vector parameters.
ORVML_IO_EXPORT void OrvML_IO_DeleteParametersContent(void* handle);

/// Releases the coordinates and all node attributes; the container stays with 0 nodes.
ORVML_IO_EXPORT void OrvML_IO_DeleteNodesContent(void*& handle);

/// Releases the connectivities and all attributes of the volume elements; the container stays with
/// 0 elements. Type group arrays that the library made are released too and the number of types
/// becomes 0; type group arrays of the caller stay in place and their number is still answered.
ORVML_IO_EXPORT void OrvML_IO_DeleteElementsContent(void*& handle);

/// Does the same for the faces.
ORVML_IO_EXPORT void OrvML_IO_DeleteFacesContent(void*& handle);

/// Does the same for the edges.
ORVML_IO_EXPORT void OrvML_IO_DeleteEdgesContent(void*& handle);

/// Removes the node container. Of a document read from a file everything in it is released; of a
/// document made by a constructor the coordinates stay the caller's and attribute blocks stay
/// allocated.
ORVML_IO_EXPORT void OrvML_IO_DeleteNodes(void* handle);

/// Removes the volume elements under the rules of OrvML_IO_DeleteNodes(). The one-entry type group
/// arrays that a single-shape setter made are released.
ORVML_IO_EXPORT void OrvML_IO_DeleteElements(void* handle);

/// Removes the faces under the rules of OrvML_IO_DeleteNodes(). Unlike for volume elements, the
/// one-entry type group arrays of a single-shape setter stay allocated in a document made by a
/// constructor: pointers to them that were handed out stay valid.
ORVML_IO_EXPORT void OrvML_IO_DeleteFaces(void* handle);

/// Removes the edges under the rules of OrvML_IO_DeleteFaces().
ORVML_IO_EXPORT void OrvML_IO_DeleteEdges(void* handle);

/// Releases all attributes of one kind of entity; the container stays.
///
/// @param[in] handle  document; not null
/// @param[in] entity  kind of entity
/// @return 0 always, also for a missing container and an unknown kind
ORVML_IO_EXPORT int OrvML_IO_DeleteAttributesEntitiesVector(void* handle,
                                                            ORVML_TYPE_OF_ENTITY entity);

// ------------------------------------------------------------------------------------------------
// Nodes
// ------------------------------------------------------------------------------------------------

/// Gives the document its node coordinates. Does nothing on a document that owns its arrays.
///
/// @param[in] handle         document; null: nothing happens
/// @param[in] numberOfNodes  number of nodes; stored without a test
/// @param[in] coords         `[numberOfNodes x meshDimension]`, row-major; adopted, not copied: it
///                           is handed out by OrvML_IO_GetNodesCoords() as an array to be changed
ORVML_IO_EXPORT void OrvML_IO_SetNodesCoords(void* handle, int numberOfNodes, const double* coords);

/// Hands out the coordinates.
///
/// @param[in]  handle  document
/// @param[out] coords  `[numberOfNodes x meshDimension]`, row-major, the document's own array; null
///                     when there are no nodes and for a null handle
/// @return 0, also without nodes; 1 for a null handle
ORVML_IO_EXPORT int OrvML_IO_GetNodesCoords(void* handle, double*& coords);

/// Changes the number of nodes when the document has a node container, also on documents that own
/// their arrays; otherwise, and for a null handle, nothing happens.
ORVML_IO_EXPORT void OrvML_IO_SetNumberOfNodes(void* handle, int numberOfNodes);

/// Returns the number of nodes; 0 without nodes and for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfNodes(void* handle);

// ------------------------------------------------------------------------------------------------
// Edges, faces, volume elements. The cells of a container lie in type groups: group after group,
// all cells of a group having one shape and one number of nodes. The Generic functions take the
// kind of entity (ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS); the others fix it by their name.
//
// Getters leave their outputs untouched when the container is missing, so initialise them.
// ------------------------------------------------------------------------------------------------

/// Hands out the connectivities of one kind.
///
/// @param[in]  handle          document
/// @param[in]  entity          kind of entity
/// @param[out] connectivities  the document's own array of 0-based node indices, group after group
/// @return 0, also for a missing container and a null handle (output untouched); -1 for an unknown
///         kind (output untouched)
ORVML_IO_EXPORT int OrvML_IO_GetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                int*& connectivities);

/// Hands out the connectivities and the type groups of one kind.
///
/// @param[in]  handle                  document
/// @param[in]  entity                  kind of entity
/// @param[out] connectivities          0-based node indices, group after group
/// @param[out] elementTypes            `[number of types]` shape of each group
/// @param[out] numberOfNodesByElement  `[number of types]` nodes of each cell of the group
/// @param[out] numberOfElementsByType  `[number of types]` cells in the group
/// @return as for the form with one output
ORVML_IO_EXPORT int OrvML_IO_GetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                int*& connectivities, ElemType*& elementTypes,
                                                int*& numberOfNodesByElement,
                                                int*& numberOfElementsByType);

/// OrvML_IO_GetGenericElements() for the edges.
ORVML_IO_EXPORT int OrvML_IO_GetEdges(void* handle, int*& connectivities);
/// OrvML_IO_GetGenericElements() with type groups for the edges.
ORVML_IO_EXPORT int OrvML_IO_GetEdges(void* handle, int*& connectivities, ElemType*& elementTypes,
                                      int*& numberOfNodesByElement, int*& numberOfElementsByType);
/// OrvML_IO_GetGenericElements() for the faces.
ORVML_IO_EXPORT int OrvML_IO_GetFaces(void* handle, int*& connectivities);
/// OrvML_IO_GetGenericElements() with type groups for the faces.
ORVML_IO_EXPORT int OrvML_IO_GetFaces(void* handle, int*& connectivities, ElemType*& elementTypes,
                                      int*& numberOfNodesByElement, int*& numberOfElementsByType);
/// OrvML_IO_GetGenericElements() for the volume elements.
ORVML_IO_EXPORT int OrvML_IO_GetElements(void* handle, int*& connectivities);
/// OrvML_IO_GetGenericElements() with type groups for the volume elements.
ORVML_IO_EXPORT int OrvML_IO_GetElements(void* handle, int*& connectivities,
                                         ElemType*& elementTypes, int*& numberOfNodesByElement,
                                         int*& numberOfElementsByType);

/// Returns the number of cells of one kind; 0 for a missing container; -1 for an unknown kind and
/// for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity);
/// Returns the number of edges; 0 for a missing container and for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfEdges(void* handle);
/// Returns the number of faces; 0 for a missing container and for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfFaces(void* handle);
/// Returns the number of volume elements; 0 for a missing container and for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfElements(void* handle);

/// Returns the number of type groups of one kind; 0 for a missing container; -1 for an unknown kind
/// and for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfGenericElementTypes(void* handle,
                                                            ORVML_TYPE_OF_ENTITY entity);
/// Returns the number of type groups of the edges; 0 for a missing container, -1 for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfElementTypesInEdges(void* handle);
/// Returns the number of type groups of the faces; 0 for a missing container, -1 for a null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfElementTypesInFaces(void* handle);
/// Returns the number of type groups of the volume elements; 0 for a missing container, -1 for a
/// null handle.
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfElementTypesInElements(void* handle);

/// Returns the number of nodes of each cell of a type group.
///
/// @param[in] handle     document
/// @param[in] entity     kind of entity
/// @param[in] typeIndex  0-based index of the group
/// @return the number; 0 for an unknown kind, a missing container and an index that names no group;
///         -1 for a null handle
ORVML_IO_EXPORT int OrvML_IO_GetNNodeGenericElement(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                    int typeIndex);

/// Returns the shape of the cells of a type group; NONE (0) for an unknown kind, a missing
/// container, an index that names no group, and a null handle.
ORVML_IO_EXPORT ElemType OrvML_IO_GetGenericElementType(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                        int typeIndex);

/// Gives the document the cells of one kind in type groups. Does nothing on a document that owns
/// its arrays, for an unknown kind and for a null handle.
///
/// All arrays are adopted, not copied and not compared with each other.
///
/// @param[in] handle                  document
/// @param[in] entity                  kind of entity; here it comes right after the handle
/// @param[in] numberOfElements        number of cells, the sum of numberOfElementsByType
/// @param[in] connectivities          `[sum of numberOfElementsByType x numberOfNodesByElement]`
///                                    0-based node indices, group after group; null empties an
///                                    existing container, releasing nothing, and creates none
/// @param[in] numberOfElementTypes    number of type groups
/// @param[in] elementTypes            `[numberOfElementTypes]` shape of each group
/// @param[in] numberOfNodesByElement  `[numberOfElementTypes]` nodes of each cell of the group
/// @param[in] numberOfElementsByType  `[numberOfElementTypes]` cells in the group
ORVML_IO_EXPORT void OrvML_IO_SetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                 int numberOfElements, int* connectivities,
                                                 int numberOfElementTypes, ElemType* elementTypes,
                                                 int* numberOfNodesByElement,
                                                 int* numberOfElementsByType);
/// OrvML_IO_SetGenericElements() for the edges.
ORVML_IO_EXPORT void OrvML_IO_SetEdges(void* handle, int numberOfElements, int* connectivities,
                                       int numberOfElementTypes, ElemType* elementTypes,
                                       int* numberOfNodesByElement, int* numberOfElementsByType);
/// OrvML_IO_SetGenericElements() for the faces.
ORVML_IO_EXPORT void OrvML_IO_SetFaces(void* handle, int numberOfElements, int* connectivities,
                                       int numberOfElementTypes, ElemType* elementTypes,
                                       int* numberOfNodesByElement, int* numberOfElementsByType);
/// OrvML_IO_SetGenericElements() for the volume elements.
ORVML_IO_EXPORT void OrvML_IO_SetElements(void* handle, int numberOfElements, int* connectivities,
                                          int numberOfElementTypes, ElemType* elementTypes,
                                          int* numberOfNodesByElement, int* numberOfElementsByType);

/// Gives the document cells of one kind and of a single shape: one type group, whose three
/// one-entry arrays the library makes. Otherwise as the form with type groups.
///
/// @param[in] handle                  document
/// @param[in] entity                  kind of entity
/// @param[in] numberOfElements        number of cells
/// @param[in] connectivities          `[numberOfElements x numberOfNodesByElement]` 0-based node
///                                    indices, cell after cell; null empties an existing container
/// @param[in] elementType             shape of all cells
/// @param[in] numberOfNodesByElement  nodes of each cell
/// @note The library makes group arrays of one entry. Setting the kind again leaves the earlier
///       ones allocated, because a getter may have handed them out.
ORVML_IO_EXPORT void OrvML_IO_SetGenericElements(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                 int numberOfElements, int* connectivities,
                                                 ElemType elementType, int numberOfNodesByElement);
/// OrvML_IO_SetGenericElements() with a single shape for the edges.
ORVML_IO_EXPORT void OrvML_IO_SetEdges(void* handle, int numberOfElements, int* connectivities,
                                       ElemType elementType, int numberOfNodesByElement);
/// OrvML_IO_SetGenericElements() with a single shape for the faces.
ORVML_IO_EXPORT void OrvML_IO_SetFaces(void* handle, int numberOfElements, int* connectivities,
                                       ElemType elementType, int numberOfNodesByElement);
/// OrvML_IO_SetGenericElements() with a single shape for the volume elements.
ORVML_IO_EXPORT void OrvML_IO_SetElements(void* handle, int numberOfElements, int* connectivities,
                                          ElemType elementType, int numberOfNodesByElement);

// ------------------------------------------------------------------------------------------------
// Parameters. Scalar and vector parameters have separate name spaces. Names are compared byte by
// byte. The handle must not be null.
// ------------------------------------------------------------------------------------------------

/// Sets a scalar parameter to an integer, which is stored as the double of the same value.
///
/// @return 0 always; an existing name gets the new value
ORVML_IO_EXPORT int OrvML_IO_SetParameter(void* handle, const char* name, int value);

/// Sets a scalar parameter.
///
/// @return 0 always; an existing name gets the new value
ORVML_IO_EXPORT int OrvML_IO_SetParameter(void* handle, const char* name, double value);

/// Looks up a scalar parameter.
///
/// @param[in]  handle  document; not null
/// @param[in]  name    exact name
/// @param[out] value   the value; untouched when the name is absent
/// @return 0 when found, 1 when absent
ORVML_IO_EXPORT int OrvML_IO_GetParameter(void* handle, const char* name, double& value);

/// Tells whether a scalar parameter of that name exists; vector parameters are not consulted.
ORVML_IO_EXPORT bool OrvML_IO_ParameterExists(void* handle, const char* name);

/// Sets a vector parameter of integers; the values are copied.
///
/// @param[in] handle  document; not null
/// @param[in] name    name; an existing one is replaced (convention 5 tells what becomes of its
///                    block)
/// @param[in] values  `[n]`
/// @param[in] n       number of values
/// @return 0 always
ORVML_IO_EXPORT int OrvML_IO_SetParameterVector(void* handle, const char* name, const int* values,
                                                int n);

/// Does the same with doubles.
ORVML_IO_EXPORT int OrvML_IO_SetParameterVector(void* handle, const char* name,
                                                const double* values, int n);

/// Hands out a vector parameter of integers.
///
/// @param[in]  handle  document; not null
/// @param[in]  name    exact name
/// @param[out] values  `[n]` the document's own block (convention 5); null when absent
/// @param[out] n       number of values; 0 when absent
/// @return 0 when found, 1 when absent
/// @note The type is not tested: a parameter of doubles asked for as integers hands out its block
///       all the same. The caller knows what was stored.
ORVML_IO_EXPORT int OrvML_IO_GetParameterVector(void* handle, const char* name, int*& values,
                                                int& n);

/// Does the same with doubles.
ORVML_IO_EXPORT int OrvML_IO_GetParameterVector(void* handle, const char* name, double*& values,
                                                int& n);

/// Removes a vector parameter and releases its block.
///
/// @return 0 always, also for an absent name
ORVML_IO_EXPORT int OrvML_IO_DeleteParameterVector(void* handle, const char* name);

// ------------------------------------------------------------------------------------------------
// Attributes: named vectors on the nodes, edges, faces or volume elements. They live in the
// container of their kind and exist only while it exists. The handle must not be null.
// ------------------------------------------------------------------------------------------------

/// Creates an attribute of zeros, to be filled in place.
///
/// @param[in] handle             document; not null
/// @param[in] entity             kind of entity
/// @param[in] valueType          ORVML_INT or ORVML_DOUBLE
/// @param[in] name               name; an existing one is replaced
/// @param[in] n                  number of values; not compared with the number of entities
/// @param[in] mustBeTransmitted  whether the meshing module must send the attribute back
/// @return the document's own block of n ints or doubles (convention 5); null when the container is
///         missing or a kind or type is unknown, and then nothing is created
ORVML_IO_EXPORT void* OrvML_IO_CreateAttributesEntitiesVector(void* handle,
                                                              ORVML_TYPE_OF_ENTITY entity,
                                                              ORVML_TYPE_OF_VALUE valueType,
                                                              const char* name, int n,
                                                              bool mustBeTransmitted);

/// Creates an attribute of zeros with one value per entity of the kind, as counted now.
///
/// @param[in] handle         document; not null
/// @param[in] name           name; an existing one is replaced
/// @param[in] entity         kind of entity
/// @param[in] attributeType  ORVML_USER_ATTRIBUTE sets the must-be-transmitted flag, any other
///                           value does not
/// @param[in] valueType      ORVML_INT or ORVML_DOUBLE
/// @return as for OrvML_IO_CreateAttributesEntitiesVector()
ORVML_IO_EXPORT void* OrvML_IO_CreateAttribute(void* handle, const char* name,
                                               ORVML_TYPE_OF_ENTITY entity,
                                               ORVML_TYPE_OF_ATTRIBUTE attributeType,
                                               ORVML_TYPE_OF_VALUE valueType);

/// Sets an attribute of integers; the values are copied.
///
/// @param[in] handle             document; not null
/// @param[in] entity             kind of entity
/// @param[in] name               name; an existing one is replaced
/// @param[in] values             `[n]`
/// @param[in] n                  number of values; not compared with the number of entities
/// @param[in] mustBeTransmitted  whether the meshing module must send the attribute back
/// @return 0; 1 when the container is missing or the kind is unknown
ORVML_IO_EXPORT int OrvML_IO_SetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                         const char* name, const int* values, int n,
                                                         bool mustBeTransmitted);

/// Does the same with doubles.
ORVML_IO_EXPORT int OrvML_IO_SetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                         const char* name, const double* values,
                                                         int n, bool mustBeTransmitted);

/// Sets an attribute with one value per entity of the kind, as counted now; the values are copied.
///
/// @param[in] handle         document; not null
/// @param[in] name           name; an existing one is replaced
/// @param[in] values         `[number of entities]` ints or doubles, as valueType says
/// @param[in] entity         kind of entity
/// @param[in] attributeType  as for OrvML_IO_CreateAttribute()
/// @param[in] valueType      ORVML_INT or ORVML_DOUBLE
/// @return 0; 1 when the container is missing or a kind or type is unknown
ORVML_IO_EXPORT int OrvML_IO_SetAttribute(void* handle, const char* name, const void* values,
                                          ORVML_TYPE_OF_ENTITY entity,
                                          ORVML_TYPE_OF_ATTRIBUTE attributeType,
                                          ORVML_TYPE_OF_VALUE valueType);

/// Hands out an attribute of integers.
///
/// @param[in]  handle  document; not null
/// @param[in]  entity  kind of entity
/// @param[in]  name    exact name
/// @param[out] values  `[n]` the document's own block (convention 5); null when the name is absent;
///                     untouched when the container is missing or the kind unknown
/// @param[out] n       number of values; 0 when the name is absent; untouched as above
/// @return 0 when found, else 1
/// @note The type is not tested: OrvML_IO_GetAttributeType() tells it.
ORVML_IO_EXPORT int OrvML_IO_GetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                         const char* name, int*& values, int& n);

/// Does the same with doubles.
ORVML_IO_EXPORT int OrvML_IO_GetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                                         const char* name, double*& values, int& n);

/// Hands out the block of an attribute of either type; null when there is none.
ORVML_IO_EXPORT void* OrvML_IO_GetAttribute(void* handle, const char* name,
                                            ORVML_TYPE_OF_ENTITY entity);

/// Returns the type of the values of an attribute; ORVML_UNKNOWN_VALUE when there is none.
ORVML_IO_EXPORT ORVML_TYPE_OF_VALUE OrvML_IO_GetAttributeType(void* handle, const char* name,
                                                              ORVML_TYPE_OF_ENTITY entity);

/// Removes an attribute and releases its block.
///
/// @return 0 always, also for an absent name, a missing container and an unknown kind
ORVML_IO_EXPORT int OrvML_IO_DeleteAttributesEntitiesVector(void* handle,
                                                            ORVML_TYPE_OF_ENTITY entity,
                                                            const char* name);

/// Does the same, with the name before the kind.
ORVML_IO_EXPORT int OrvML_IO_DeleteAttribute(void* handle, const char* name,
                                             ORVML_TYPE_OF_ENTITY entity);

/// Returns the number of attributes of a kind whose must-be-transmitted flag is set; 0 when there
/// is no container. Files of this library do not bring the flag back: after a read the answer is 0
/// (files of formats older than 1.4 excepted, whose user attributes get the flag).
ORVML_IO_EXPORT int OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(
    void* handle, ORVML_TYPE_OF_ENTITY entity);

/// Returns the name of the index-th (0-based, in ascending byte order of the names) attribute whose
/// must-be-transmitted flag is set: the document's own text, valid while the attribute exists. Null
/// when the index names none.
ORVML_IO_EXPORT const char* OrvML_IO_GetAttributeNameThatMustBeTransmitted(
    void* handle, ORVML_TYPE_OF_ENTITY entity, int index);

// ------------------------------------------------------------------------------------------------
// Exchange files (HDF5)
// ------------------------------------------------------------------------------------------------

/// Writes an input document to a new exchange file, replacing an existing file. The document is not
/// changed.
///
/// A file that other processes read, but not this one, is replaced by a new one of its name once
/// that is whole: they keep what they have read and find the new content at their next read.
/// Anything but 0 then leaves the old file there.
///
/// @param[in] fileName     path of the file; null gives 1
/// @param[in] inputHandle  input document; null gives 1
/// @return 0 when written; 1 when the file cannot be created (also when this process still has it
///         open, see the readers, or another one writes it) or a step failed, what was written
///         before then stays in the file; a negative number when only closing the file failed
ORVML_IO_EXPORT int OrvML_IO_WriteOrvInput(const char* fileName, void* inputHandle);

/// Writes an output document; everything else is as for OrvML_IO_WriteOrvInput().
ORVML_IO_EXPORT int OrvML_IO_WriteOrvOutput(const char* fileName, void* outputHandle);

/// Writes an input and an output document to one new exchange file.
///
/// @param[in] fileName      path of the file; null gives 1
/// @param[in] inputHandle   input document, written first; null writes none
/// @param[in] outputHandle  output document; null writes none; not written when the input failed
/// @return as for OrvML_IO_WriteOrvInput()
/// @note The module name, its version and the creator stand once in a file: both documents read
///       back with those of the output, which is written last.
ORVML_IO_EXPORT int OrvML_IO_WriteOrvInputAndOrvOutput(const char* fileName, void* inputHandle,
                                                       void* outputHandle);

/// Reads the input document of an exchange file.
///
/// @param[in]     fileName     path of the file; null gives 1
/// @param[in,out] inputHandle  must be null on entry, else 1 and it is untouched; on return null or
///                             a new document that the caller deletes with
///                             OrvML_IO_DeleteOrvInputHandle()
/// @return 0 when read, and also when the file cannot be opened or is not an exchange file (the
///         handle stays null: test the handle); 1 when the file holds no input document or one
///         whose dimension is not 2 or 3 (the handle stays null), and when a step or closing the
///         file failed (the handle then holds what was read)
/// @note A document without nodes, or without scalar parameters, counts as partly read: 1 with a
///       valid handle.
/// @note Once a document was found, HDF5 keeps the file open: reading it again works, writing to
///       that path in this process gives 1.
/// @note Everything is read from that one file: an external link, external raw storage or a
///       virtual dataset counts as an object that failed to read.
ORVML_IO_EXPORT int OrvML_IO_ReadOrvInput(const char* fileName, void*& inputHandle);

/// Reads the output document of an exchange file.
///
/// @param[in]     fileName      path of the file; null gives 1
/// @param[in,out] outputHandle  as for OrvML_IO_ReadOrvInput()
/// @return as for OrvML_IO_ReadOrvInput(), except that a file without an output document gives 0
///         with a null handle, and that a negative number is returned when only closing the file
///         failed
ORVML_IO_EXPORT int OrvML_IO_ReadOrvOutput(const char* fileName, void*& outputHandle);

/// Reads the input and then the output document of an exchange file.
///
/// @param[in]     fileName      path of the file; null gives 1
/// @param[in,out] inputHandle   must be null on entry, else -1; on return as for
///                              OrvML_IO_ReadOrvInput()
/// @param[in,out] outputHandle  must be null on entry, else -1; on return as for
///                              OrvML_IO_ReadOrvOutput()
/// @return 0 with both handles null when the file cannot be opened or is not an exchange file;
///         otherwise the input's result when it is not 0, and then the output is not read;
///         otherwise the output's; a negative number when only closing the file failed
ORVML_IO_EXPORT int OrvML_IO_ReadOrvInputAndOrvOutput(const char* fileName, void*& inputHandle,
                                                      void*& outputHandle);

// ------------------------------------------------------------------------------------------------
// Comparing documents
// ------------------------------------------------------------------------------------------------

/// Tells whether two documents hold the same mesh, attributes and scalar parameters, typically a
/// document and the one read back from its file.
///
/// Numbers of nodes, type groups in their order, connectivities and int attributes must be the
/// same. Two doubles are different when they are more than 1e-15 apart, in the caller's unit, so
/// NaN equals everything. A missing container equals an empty one.
///
/// @param[in] first   document, or null
/// @param[in] second  document, or null; null equals null and a document of dimension 0, no other
/// @return true when they are equal
/// @note Not symmetric: attributes are looked up in `second` for each of `first`, and attributes
///       that only `second` has are not looked at. A scalar parameter that `second` lacks reads as
///       0 there; the numbers of scalar parameters must be the same.
/// @note Never compared: identification, versions, vector parameters, transmission flags,
///       callbacks. An attribute is compared in the type it has in `first`.
ORVML_IO_EXPORT bool OrvML_IO_OrvInputsAreEqual(void* first, void* second);

/// Does the same for output documents.
ORVML_IO_EXPORT bool OrvML_IO_OrvOutputsAreEqual(void* first, void* second);

// ------------------------------------------------------------------------------------------------
// Text export
// ------------------------------------------------------------------------------------------------

/// Prints the mesh of a document as text, one block per type group: edges, faces, volume elements.
///
/// A block is a header line, the node lines (in the first block only) and one line per element with
/// 1-based node numbers. Numbers are what `printf` makes of `%d` and `%f`, with the decimal point
/// of the process's locale.
///
/// @param[in] fileName  path of the file, created or truncated; null gives 1
/// @param[in] handle    document; null counts as a document without nodes
/// @return 1 when the file cannot be opened, else 0; write errors are not reported
/// @note Three values are printed per node whatever the dimension. In a container with several type
///       groups the lines of the second and later blocks start at the sum of the running element
///       counts, not at the group's own connectivities: export such meshes for viewing alone. What
///       would lie behind the end of an array prints as 0, and a shape without a name as "None".
/// @note A document without nodes gives an empty file, and its stream stays open in the process.
ORVML_IO_EXPORT int OrvML_IO_WriteMeshInOrvFormat(const char* fileName, void* handle);

#endif  // ORVML_IO_H
