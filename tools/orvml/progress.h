#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace orvml_tool {

/// Shows on a terminal what the command is at, and for how long, as long as the object lives. It
/// shows nothing of what is done in half a second, and nothing where standard error is no terminal.
class Progress {
 public:
  /// @param what  such as "checking part.h5"
  explicit Progress(std::string what);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  Progress(Progress&&) = delete;
  Progress& operator=(Progress&&) = delete;
  /// Takes the line away again.
  ~Progress();

  /// Counts what has been read; the number is shown then.
  void addBytes(std::uint64_t bytes) noexcept { bytes_ += bytes; }

 private:
  void showUntilDone();
  [[nodiscard]] std::string line(std::int64_t tenths) const;

  std::string what_;
  std::atomic<std::uint64_t> bytes_ = 0;
  std::mutex mutex_;
  std::condition_variable done_;
  bool isDone_ = false;
  std::thread shower_;
};

}  // namespace orvml_tool
