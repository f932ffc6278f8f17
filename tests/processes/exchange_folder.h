#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace orvml_io_tests {

/// A new folder for the files of one exchange; it goes with everything in it.
class ExchangeFolder {
 public:
  ExchangeFolder();
  ExchangeFolder(const ExchangeFolder&) = delete;
  ExchangeFolder& operator=(const ExchangeFolder&) = delete;
  ExchangeFolder(ExchangeFolder&&) = delete;
  ExchangeFolder& operator=(ExchangeFolder&&) = delete;
  ~ExchangeFolder();

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }
  /// The names of everything in it, hidden files too.
  [[nodiscard]] std::vector<std::string> listing() const;

 private:
  std::string path_;
};

std::string bytesIn(const std::string& path);
ino_t inodeOf(const std::string& path);
mode_t permissionsOf(const std::string& path);
gid_t groupOf(const std::string& path);

}  // namespace orvml_io_tests
