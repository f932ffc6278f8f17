#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace orvml_tool {

/// A file that is written, most often an exchange file: named on the command line, where "-" is
/// standard output.
///
/// Ctrl-C leaves the old file or the new one, and nothing beside it. While there is such an object,
/// SIGINT, SIGTERM and SIGHUP are answered by a thread that removes what was begun; so it has to be
/// made before other threads are.
class OutputFile {
 public:
  /// @param content  what terminals do not show, for the message that refuses them
  explicit OutputFile(std::string name, const std::string& content = "exchange files");

  /// Has the file written by `save`, which is given the path to write to,
  /// and hands it on.
  void write(const std::function<void(const std::filesystem::path& path)>& save) const;

 private:
  std::string name_;
};

}  // namespace orvml_tool
