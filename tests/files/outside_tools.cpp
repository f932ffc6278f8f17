#include "files/outside_tools.h"

#include "files/exchange_file_fixture.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace orvml_io_tests {

namespace {

/// Paths and options of the tests hold no quotes.
std::string quoted(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& word : command) {
    line += "'" + word + "' ";
  }
  return line;
}

}  // namespace

std::string outputOf(const std::vector<std::string>& command) {
  const std::string line = quoted(command);
  std::FILE* pipe = ::popen(line.c_str(), "r");
  EXPECT_NE(pipe, nullptr) << line;
  std::string output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
    output.push_back(static_cast<char>(c));
  }
  EXPECT_EQ(::pclose(pipe), 0) << line << "\n" << output;
  return output;
}

std::string h5dump(const char* path, const std::vector<std::string>& options) {
  std::vector<std::string> command = {ORVML_IO_TESTS_H5DUMP};
  command.insert(command.end(), options.begin(), options.end());
  command.emplace_back(path);
  const std::string output = outputOf(command);
  return output.substr(output.find('\n') + 1);
}

std::string runScript(const std::string& script, const std::vector<std::string>& arguments) {
  std::vector<std::string> command = {ORVML_IO_TESTS_PYTHON,
                                      std::string(ORVML_IO_TESTS_FILES_FOLDER) + "/" + script};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return outputOf(command);
}

std::string textOf(const std::string& fileName) {
  return bytesOf((std::string(ORVML_IO_TESTS_FILES_FOLDER) + "/" + fileName).c_str());
}

}  // namespace orvml_io_tests
