#pragma once

#include "draft.h"

#include <string>
#include <string_view>

namespace orvml_tool {

/// Makes a document of a text as docs/schema/document.schema.json describes it. Throws Refusal for
/// any other text.
///
/// @param shown  the name of the file, for the messages
[[nodiscard]] Draft draftFromJson(std::string_view text, const std::string& shown);

}  // namespace orvml_tool
