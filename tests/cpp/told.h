#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace orvml_io_tests {

/// What a caller hears of a failure, and what the process printed meanwhile.
struct Told {
  std::string code = "nothing was thrown";
  std::string sentence;
  std::string object;
  std::string file;
  std::string what;
  std::string hdf5Reason;
  std::string printed;
};

/// Runs a piece of work that should throw an error of the C++ layer.
Told toldBy(const std::function<void()>& work);

/// Does so in a child process, after a preparation that must not touch this one: it gives up
/// rights, or mounts a file system. The preparation tells whether it could.
Told toldInChild(const std::function<bool()>& prepare, const std::function<void()>& work);

/// Another process that has a file open in HDF5, to be written, while this object lives.
class WritingProcess {
 public:
  explicit WritingProcess(const std::string& path);
  WritingProcess(const WritingProcess&) = delete;
  WritingProcess& operator=(const WritingProcess&) = delete;
  WritingProcess(WritingProcess&&) = delete;
  WritingProcess& operator=(WritingProcess&&) = delete;
  ~WritingProcess();

 private:
  int toOther_ = -1;
  int process_ = -1;
};

}  // namespace orvml_io_tests
