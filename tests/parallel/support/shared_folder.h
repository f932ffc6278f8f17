#pragma once

#include <filesystem>
#include <string>

namespace orvml_parallel_tests {

int rank();
int ranks();

/// A folder that all ranks see, made by the first and removed by it at the end. Collective.
class SharedFolder {
 public:
  SharedFolder();
  SharedFolder(const SharedFolder&) = delete;
  SharedFolder& operator=(const SharedFolder&) = delete;
  SharedFolder(SharedFolder&&) = delete;
  SharedFolder& operator=(SharedFolder&&) = delete;
  ~SharedFolder();

  [[nodiscard]] std::filesystem::path path(const std::string& name) const { return folder_ / name; }
  /// How many files lie in it, hidden ones too.
  [[nodiscard]] int numberOfFiles() const;

 private:
  std::filesystem::path folder_;
};

}  // namespace orvml_parallel_tests
