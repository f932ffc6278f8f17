#pragma once

#include <orvml/view.hpp>

#include "model/document.h"

namespace orvml::detail {

/// The core's name of an entity.
[[nodiscard]] ORVML_TYPE_OF_ENTITY coreEntity(Entity entity) noexcept;

// Views of the parts of a document of the core. What such a document only claims, such as nodes
// without coordinates and groups without node indices, is never shown as there.
[[nodiscard]] Identification identificationOf(const orvml_io::OrvInputAndOrvOutput& document);
[[nodiscard]] NodesView nodesOf(const orvml_io::OrvInputAndOrvOutput& document);
[[nodiscard]] CellsView cellsOf(const orvml_io::OrvInputAndOrvOutput& document, Entity entity);
[[nodiscard]] Attributes attributesOf(const orvml_io::OML_AttributesVector& store);
[[nodiscard]] Parameters parametersOf(const orvml_io::OrvInputAndOrvOutput& document);
[[nodiscard]] DocumentParts partsOf(const orvml_io::OrvInputAndOrvOutput& document);

}  // namespace orvml::detail
