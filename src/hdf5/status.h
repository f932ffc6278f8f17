#pragma once

namespace orvml_io {

inline constexpr int kOk = 0;
inline constexpr int kFailed = 1;

/// Combines steps that all run, whatever the ones before them gave. Where the first failure ends
/// the work, the code returns early instead.
class AnyFailure {
 public:
  void add(int status) noexcept { failed_ = failed_ || status != kOk; }
  [[nodiscard]] int status() const noexcept { return failed_ ? kFailed : kOk; }

 private:
  bool failed_ = false;
};

}  // namespace orvml_io
