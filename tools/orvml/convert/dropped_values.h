#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"

#include <functional>
#include <span>
#include <string_view>

/// What formats without a place for values have to say of a document, and what they cannot take.
namespace orvml_tool {

/// Whether a format has a place for an attribute.
using KeepsAttribute = std::function<bool(orvml::Entity entity, const orvml::Attribute& attribute)>;

/// Reports all values of a document as dropped but the attributes that are kept: its names and
/// versions, its parameters, the attributes of its nodes and of the cells of some containers.
void reportDroppedValues(const orvml::DocumentView& document,
                         std::span<const orvml::Entity> containers, std::string_view format,
                         const KeepsAttribute& keeps, ConversionReport& report);

/// Reports that nodes in the plane get z = 0; nothing for nodes in space.
void reportPaddedNodes(const orvml::DocumentView& document, ConversionReport& report);

/// Reports coordinates that lost digits; nothing when there are none.
void reportRoundedNodes(const orvml::DocumentView& document, std::int64_t coordinates,
                        double largestError, std::string_view why, ConversionReport& report);

/// Throws Refusal for coordinates that are not finite, which other programs stumble over.
void requireFiniteNodes(const orvml::DocumentView& document, std::string_view format);

}  // namespace orvml_tool
