#pragma once

#include <ostream>

namespace orvml_io_tests {

/// How long something fails.
enum class Failing { once, fromThenOn };

inline const char* nameOf(Failing failing) {
  return failing == Failing::once ? "once" : "from-then-on";
}

inline std::ostream& operator<<(std::ostream& stream, Failing failing) {
  return stream << nameOf(failing);
}

/// A counter of events that decides which of them fail.
class FailurePlan {
 public:
  /// The n-th event is to fail, counted from 1; none for 0.
  void begin(int n, Failing failing) noexcept { *this = FailurePlan{n, failing, 0, true}; }
  void end() noexcept { active_ = false; }

  /// Counts an event and tells whether it has to fail.
  bool mustFail() noexcept {
    if (!active_) {
      return false;
    }
    ++events_;
    return n_ > 0 && (failing_ == Failing::once ? events_ == n_ : events_ >= n_);
  }

  [[nodiscard]] bool isActive() const noexcept { return active_; }
  [[nodiscard]] int events() const noexcept { return events_; }
  [[nodiscard]] bool hasFailed() const noexcept { return n_ > 0 && events_ >= n_; }

  constexpr FailurePlan() = default;

 private:
  constexpr FailurePlan(int n, Failing failing, int events, bool active)
      : n_(n), failing_(failing), events_(events), active_(active) {}

  int n_ = 0;
  Failing failing_ = Failing::once;
  int events_ = 0;
  bool active_ = false;
};

}  // namespace orvml_io_tests
