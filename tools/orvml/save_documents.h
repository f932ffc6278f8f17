#pragma once

#include <orvml/patch.hpp>
#include <orvml/save.hpp>

#include <filesystem>

namespace orvml_tool {

/// Saves one document or both. Throws what save() does, and Error with Code::noDocument for none.
void saveDocuments(const std::filesystem::path& path, const orvml::Exchange& documents);

}  // namespace orvml_tool
