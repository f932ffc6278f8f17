#pragma once

#include <orvml/orvml.hpp>

#include "support/raw_file.h"

#include <string>

namespace orvml_io_tests {

/// Makes a file with two tetrahedra on five nodes, three of their faces, attributes of all of them,
/// and parameters of both kinds: sound, and written by raw HDF5 calls.
void makeSmallFile(const char* path);

/// Makes a file of the bytes.
void writeBytes(const char* path, const std::string& bytes);

/// How many nodes or cells the input document of a file has.
int countOf(const char* path, orvml::Entity entity);

/// What a report says, a line for each object: its code, its sentence and its places.
std::string toldOf(const orvml::RescueReport& report);

/// The sentences about what was changed, a line each.
std::string toldOf(const std::vector<orvml::ChangedObject>& changed);

/// The errors that check() has for a file, one in a line; none in a sound one.
std::string errorsOf(const char* path);

}  // namespace orvml_io_tests
