#include "check/task_threads.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <vector>

namespace orvml::detail {

void performAll(std::size_t tasks, int threads, const std::function<void(std::size_t)>& perform) {
  constexpr std::size_t kMostThreads = 256;
  std::atomic<std::size_t> next = 0;
  const auto performSome = [&] {
    for (std::size_t task = next++; task < tasks; task = next++) {
      perform(task);
    }
  };
  const auto wanted = std::min<std::size_t>(static_cast<std::size_t>(std::max(threads, 1)), tasks);
  std::vector<std::future<void>> others;
  for (std::size_t i = 1; i < std::min(wanted, kMostThreads); ++i) {
    others.push_back(std::async(std::launch::async, performSome));
  }
  performSome();
  for (auto& other : others) {
    other.get();
  }
}

}  // namespace orvml::detail
