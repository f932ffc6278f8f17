// Savers that are killed at any moment: whoever looks afterwards finds the old file or the new one,
// whole.
#include <orvml/orvml.hpp>

#include "cpp_files/sample.h"
#include "faults/finding.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ostream>
#include <random>
#include <thread>

namespace orvml_io_tests {
namespace {

using Microseconds = std::chrono::microseconds;

/// A kind of document to save, so often.
struct Saves {
  const char* name;
  int nodes;  // 0: everything that a document can hold
  int kills;
};

std::ostream& operator<<(std::ostream& stream, const Saves& saves) { return stream << saves.name; }

orvml::Input documentOf(const Saves& saves, const char* tag) {
  return saves.nodes == 0 ? inputWithEverything(tag) : inputOfNodes(saves.nodes, tag);
}

/// A child process that begins to save.
class Saver {
 public:
  Saver(const std::filesystem::path& path, const orvml::Input& document) {
    std::array<int, 2> ends = {-1, -1};
    EXPECT_EQ(::pipe(ends.data()), 0);
    process_ = ::fork();
    if (process_ == 0) {
      (void)!::write(ends[1], "!", 1);
      orvml::save(path, document);
      ::_exit(0);
    }
    (void)::close(ends[1]);
    char begun = 0;
    EXPECT_EQ(::read(ends[0], &begun, 1), 1);
    (void)::close(ends[0]);
  }

  void kill() const { (void)::kill(process_, SIGKILL); }

  /// Returns whether it was killed before it had saved.
  bool wasKilled() const {
    int status = 0;
    EXPECT_EQ(::waitpid(process_, &status, 0), process_);
    return WIFSIGNALED(status);
  }

 private:
  pid_t process_ = -1;
};

/// When the next saver is killed. How long a save takes changes by a factor of ten with what else
/// the machine does, so the window follows: it grows with each saver that was killed and shrinks
/// with each that was done before, which lets about half of them get to the end.
class Moments {
 public:
  explicit Moments(unsigned seed) : random_(seed) {}

  [[nodiscard]] Microseconds next() {
    return Microseconds(
        std::uniform_int_distribution<Microseconds::rep>(0, window_.count())(random_));
  }

  void learn(bool wasKilled) {
    window_ = wasKilled ? window_ + window_ / 4 : window_ - window_ / 5;
    window_ = std::max(window_, Microseconds(10));
  }

  [[nodiscard]] Microseconds window() const noexcept { return window_; }

 private:
  std::mt19937 random_;
  Microseconds window_ = std::chrono::milliseconds(20);
};

/// Expects nothing but the file and hidden ones, and removes those. Returns how many there were.
int removeHidden(const TempFolder& folder) {
  int hidden = 0;
  for (const std::string& name : folder.names()) {
    if (name != "mesh.h5") {
      EXPECT_EQ(name.rfind(".orvml_io-", 0), 0U) << name;
      std::filesystem::remove(folder / name);
      ++hidden;
    }
  }
  return hidden;
}

class KilledSavers : public ::testing::TestWithParam<Saves> {};

TEST_P(KilledSavers, LeaveTheOldFileOrTheNewOneWhole) {
  const unsigned seed = std::random_device()();
  std::cout << "seed " << seed << '\n';
  Moments moments(seed);
  const TempFolder folder;
  const std::filesystem::path path = folder / "mesh.h5";
  const orvml::Input documents[] = {documentOf(GetParam(), "one"), documentOf(GetParam(), "two")};
  const orvml::Digest digests[] = {digestOf(documents[0]), digestOf(documents[1])};
  orvml::save(path, documents[0]);

  std::size_t present = 0;  // which of the two documents is there
  int killed = 0;
  int renewed = 0;
  int hidden = 0;
  // The few kills where each seventh is made go on until one fell between the two files.
  const int kills = GetParam().kills;
  for (int i = 0; i < kills || (hidden == 0 && i < 10 * kills); i += kFailureStep) {
    const Saver saver(path, documents[1 - present]);
    std::this_thread::sleep_for(moments.next());
    saver.kill();
    const bool wasKilled = saver.wasKilled();
    moments.learn(wasKilled);
    killed += wasKilled ? 1 : 0;
    const std::optional<orvml::Digest> found = digestAt(path);
    ASSERT_TRUE(found == digests[0] || found == digests[1]) << "kill " << i << ", seed " << seed;
    const std::size_t now = found == digests[0] ? 0 : 1;
    renewed += now != present ? 1 : 0;
    present = now;
    hidden += removeHidden(folder);
  }

  std::cout << killed << " killed, " << renewed << " times the new file, " << hidden
            << " hidden files, killed within " << moments.window().count() << " us at the end\n";
  EXPECT_GT(killed, 0);
  EXPECT_GT(hidden, 0);
}

INSTANTIATE_TEST_SUITE_P(Documents, KilledSavers,
                         ::testing::Values(Saves{"Small", 0, 300}, Saves{"OfAMegabyte", 20000, 150},
                                           Saves{"OfTenMegabytes", 200000, 50}),
                         RowName());

}  // namespace
}  // namespace orvml_io_tests
