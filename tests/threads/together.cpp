#include "threads/together.h"

#include <future>
#include <thread>
#include <vector>

namespace orvml_io_tests {

void runTogether(int numberOfThreads, const std::function<void(int thread)>& step) {
  std::promise<void> start;
  const std::shared_future<void> started = start.get_future().share();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < numberOfThreads; ++thread) {
    threads.emplace_back([&step, started, thread] {
      started.wait();
      step(thread);
    });
  }
  start.set_value();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace orvml_io_tests
