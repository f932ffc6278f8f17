#pragma once

#include "sequences/document_model.h"

#include <string>

namespace orvml_io_tests {

/// The display name of a shape; that of no shape for a number that is none.
std::string nameOfShape(ElemType shape);

/// The text that the mesh of a document must be exported as; null stands for a null handle.
std::string textOf(const DocumentModel* document);

}  // namespace orvml_io_tests
