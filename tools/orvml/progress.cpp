#include "progress.h"

#include "console.h"

#include <chrono>

namespace orvml_tool {

namespace {

constexpr std::chrono::milliseconds kPatience(500);
constexpr std::chrono::milliseconds kPause(100);
constexpr std::string_view kStartOfLine = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string what) : what_(std::move(what)) {
  if (isTerminal(Stream::messages)) {
    shower_ = std::thread([this] { showUntilDone(); });
  }
}

Progress::~Progress() {
  {
    const std::lock_guard lock(mutex_);
    isDone_ = true;
  }
  done_.notify_all();
  if (shower_.joinable()) {
    shower_.join();
  }
}

void Progress::showUntilDone() {
  const auto begin = std::chrono::steady_clock::now();
  std::unique_lock lock(mutex_);
  if (done_.wait_for(lock, kPatience, [this] { return isDone_; })) {
    return;
  }
  do {
    const auto passed = std::chrono::steady_clock::now() - begin;
    printMessage(line(std::chrono::duration_cast<std::chrono::milliseconds>(passed) / kPause));
  } while (!done_.wait_for(lock, kPause, [this] { return isDone_; }));
  printMessage(kStartOfLine);
}

std::string Progress::line(std::int64_t tenths) const {
  const std::uint64_t bytes = bytes_;
  return std::string(kStartOfLine) + what_ + (bytes == 0 ? "" : ", " + shownBytes(bytes)) + ", " +
         shown(tenths / 10) + "." + shown(tenths % 10) + " s";
}

}  // namespace orvml_tool
