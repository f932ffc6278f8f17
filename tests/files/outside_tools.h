#pragma once

#include <string>
#include <vector>

namespace orvml_io_tests {

/// Runs a program, which must succeed, and returns what it printed.
std::string outputOf(const std::vector<std::string>& command);

/// What h5dump prints of a file or of one object in it, without the line that holds the path.
std::string h5dump(const char* path, const std::vector<std::string>& options = {});

/// Runs one of the Python scripts of this folder, which use h5py alone, and returns its output.
std::string runScript(const std::string& script, const std::vector<std::string>& arguments);

/// The text of a file of this folder.
std::string textOf(const std::string& fileName);

}  // namespace orvml_io_tests
