#pragma once

#include "model/document.h"

#include <cstdio>

namespace orvml_io {

/// Prints the mesh of a document to a text file, which is created or replaced. Returns 1 when the
/// file cannot be opened, else 0; a null document and one without nodes leave the file empty.
[[nodiscard]] int WriteMeshText(const char* fileName, const OrvInputAndOrvOutput* document);

/// Prints one line per node: its 1-based number and three values, whatever the dimension. Returns
/// 0.
///
/// Contract: in a mesh of dimension 2 the third value is the first coordinate of the next node, as
/// readers of this text expect three columns. Values behind the end of the array print as 0.
int PrintNodes(const Nodes& nodes, int dimension, std::FILE* stream);

/// Prints one line per element of a type group: its number in the group and its 1-based node
/// numbers. Returns 0.
///
/// Contract: `position` and `count` start at 0 in each container and are advanced by each group's
/// call. The position advances by the running number of elements, not by elements times nodes, so
/// that with several groups other lines than the group's own are printed; the rule decides which
/// lines a file holds and is kept, in the 32-bit arithmetic it is stated in. Node numbers behind
/// the end of the connectivities print as 0; without connectivities there are no lines, and none
/// beyond the limit of such numbers that model/limits.h sets.
int PrintElements(const Elems& elems, int group, int& position, int& count, std::FILE* stream);

}  // namespace orvml_io
