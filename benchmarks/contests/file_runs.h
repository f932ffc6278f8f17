#pragma once

#include "harness/measurement.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace orvml_io_bench {

/// A run that creates a file: where nothing is, and nothing is left.
inline Run creating(const std::string& path, std::function<void()> write) {
  return [path, write](Measurement& measurement) {
    measurement.start();
    write();
    measurement.stop();
    (void)std::remove(path.c_str());
  };
}

/// A run that reads; what it read is kept until the measurement has ended.
template <class Read>
Run reading(Read read) {
  return [read](Measurement& measurement) {
    measurement.start();
    [[maybe_unused]] const auto loaded = read();
    measurement.stop();
  };
}

/// Files that outlive the rounds and go when the last contender that reads them does.
class KeptFiles {
 public:
  explicit KeptFiles(std::string stem) : stem_(std::move(stem)) {}
  KeptFiles(const KeptFiles&) = delete;
  KeptFiles& operator=(const KeptFiles&) = delete;
  KeptFiles(KeptFiles&&) = delete;
  KeptFiles& operator=(KeptFiles&&) = delete;
  ~KeptFiles() {
    for (const std::string& path : paths_) {
      (void)std::remove(path.c_str());
    }
  }

  /// Lets a child process write one more file and returns its path.
  std::string add(const std::function<void(const std::string&)>& write) {
    const std::string path = stem_ + std::to_string(paths_.size());
    paths_.push_back(path);
    preparedInChild([&] { write(path); });
    return path;
  }

 private:
  std::string stem_;
  std::vector<std::string> paths_;
};

}  // namespace orvml_io_bench
