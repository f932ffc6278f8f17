#pragma once

#include "sequences/document_model.h"
#include "sequences/random.h"

namespace orvml_io_tests {

/// Cells in type groups: any shapes and numbers of nodes, groups without cells, or no group at all.
/// It has no connectivities yet.
CellsModel randomGroups(Random& random);

/// A document that a file must keep: any shapes, groups without cells, vectors without values, any
/// numbers, names of 1 to 79 bytes that may be no ASCII, identification strings of all lengths. It
/// always has nodes and a scalar parameter, without which a reader answers 1.
DocumentModel randomDocument(Random& random);

}  // namespace orvml_io_tests
