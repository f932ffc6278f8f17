#pragma once

#include <orvml/orvml.hpp>

#include "cpp_check/meshes.h"
#include "support/raw_file.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// Two tetrahedra with four of their faces and two of their edges on five nodes; attributes that
/// all kinds of cells have, that some have, and that differ in type.
orvml::Output outputOfAllKinds();

/// What became of each object, a line each: the fate and the sentence.
std::string toldOf(const orvml::VtkLinkReport& report);

/// Whether two paths of a file lead to one object.
bool areOneObject(const RawFile& file, const std::string& first, const std::string& second);

/// Whether a dataset shows others and holds nothing of its own.
bool isVirtual(const RawFile& file, const std::string& dataset);

/// The code of what linkVtk() throws; empty when it does not.
std::string codeOfLink(const std::filesystem::path& path,
                       const orvml::VtkLinkOptions& options = {});

}  // namespace orvml_io_tests
