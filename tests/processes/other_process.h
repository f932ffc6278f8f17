#pragma once

#include "processes/mesh_document.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace orvml_io_tests {

/// A program of its own that does what it is asked; participant.cpp has its commands. It lives as
/// long as this object.
class OtherProcess {
 public:
  /// @param environment  settings that the program has besides those of this process, as "A=b"
  explicit OtherProcess(const std::vector<std::string>& environment = {});
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  OtherProcess(OtherProcess&&) = delete;
  OtherProcess& operator=(OtherProcess&&) = delete;
  ~OtherProcess();

  /// Sends a command and waits for its answer; a program that fell answers "fell".
  [[nodiscard]] std::string ask(const std::string& command) const;

  // What programs of an exchange do.
  [[nodiscard]] std::string write(const std::string& path, const MeshDocument& document,
                                  const char* kind = "output") const;
  [[nodiscard]] std::string read(const std::string& path, const char* kind = "output") const;

 private:
  pid_t process_ = -1;
  int toProcess_ = -1;
  int fromProcess_ = -1;
};

/// The command that writes a document.
std::string commandToWrite(const std::string& path, const MeshDocument& document,
                           const char* kind = "output");

/// The answer of who read such a document.
std::string wholeDocument(const MeshDocument& document);

}  // namespace orvml_io_tests
