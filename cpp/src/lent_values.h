#pragma once

#include <orvml/view.hpp>

#include "model/document.h"

namespace orvml::detail {

/// Makes the values of a vector an entry of a store, which borrows them. An entry of that name is
/// released first.
void lend(const Attribute& vector, orvml_io::OML_AttributesVector& store);

/// Throws as requireIdentification() does, before anything is changed. The texts may be those of
/// the document itself.
void setIdentification(const Identification& identification,
                       orvml_io::OrvInputAndOrvOutput& document);

}  // namespace orvml::detail
