// check() and diff() of meshes without a fault beside load() of the same file. What they grow by is
// the memory that is theirs alone: the pages of the file belong to the system.
#include <orvml/orvml.hpp>

#include "contests/contests.h"
#include "contests/file_runs.h"
#include "harness/fresh_program.h"
#include "inputs/sound_meshes.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <thread>

namespace orvml_io_bench {

namespace {

constexpr int kLarge = 2000000;
constexpr int kLargest = 10000000;

using Files = std::shared_ptr<KeptFiles>;

/// The resident memory of this process that no file backs.
double anonymousMegabytes() {
  std::ifstream statm("/proc/self/statm");
  long size = 0;
  long resident = 0;
  long shared = 0;
  statm >> size >> resident >> shared;
  require(resident > 0, "reading /proc/self/statm");
  constexpr double kMegabyte = 1024.0 * 1024.0;
  return static_cast<double>(resident - shared) * static_cast<double>(::sysconf(_SC_PAGESIZE)) /
         kMegabyte;
}

/// Looks every few milliseconds at how much memory there is.
class PeakWatch {
 public:
  PeakWatch() : atStart_(anonymousMegabytes()), watcher_([this] { watch(); }) {}
  PeakWatch(const PeakWatch&) = delete;
  PeakWatch& operator=(const PeakWatch&) = delete;
  ~PeakWatch() { end(); }

  /// Ends the watch and returns by how much it grew at most.
  double end() {
    hasEnded_ = true;
    if (watcher_.joinable()) {
      watcher_.join();
    }
    return peak_ - atStart_;
  }

 private:
  void watch() {
    constexpr std::chrono::milliseconds kPause(2);
    while (!hasEnded_) {
      peak_ = std::max(peak_, anonymousMegabytes());
      std::this_thread::sleep_for(kPause);
    }
  }

  std::atomic<bool> hasEnded_ = false;
  double atStart_;
  double peak_ = atStart_;
  std::thread watcher_;
};

/// A run that maps files and looks at them.
template <class Look>
Run looking(Look look) {
  return [look](Measurement& measurement) {
    PeakWatch watch;
    measurement.start();
    [[maybe_unused]] const auto found = look();
    measurement.stop();
    Sample sample = measurement.sample();
    sample.grownMegabytes = watch.end();
    measurement.take(sample);
  };
}

Files fileOf(const Options& options, SoundMesh mesh, int mostNodes, std::string& path) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "checked_");
  path = files->add([=](const std::string& name) { writeSoundMesh(name, mesh, mostNodes); });
  return files;
}

Run loading(const Files& files, const std::string& path, int mostNodes) {
  constexpr std::size_t kBytesPerNode = 150;  // as much as the meshes of tetrahedra have
  return withWarmMemory(static_cast<std::size_t>(mostNodes) * kBytesPerNode,
                        reading([files, path] { return orvml::load(path); }));
}

Run checking(const Files& files, const std::string& path, int threads) {
  return looking([files, path, threads] {
    orvml::CheckOptions options;
    options.threads = threads;
    auto report = orvml::check(std::filesystem::path(path), options);
    require(report.findings.empty(), "checking a mesh without a fault");
    return report;
  });
}

/// Adds up where the nodes of all elements are. No check of places can do with less.
double sumOfPlaces(const orvml::DocumentView& document) {
  const std::span<const double> coordinates = document.nodes().coordinates();
  double sum = 0.0;
  for (const orvml::CellGroup& group : document.elements().groups()) {
    for (const int node : group.nodeIndices()) {
      const double* place = &coordinates[3 * static_cast<std::size_t>(node)];
      sum += place[0] + place[1] + place[2];
    }
  }
  return sum;
}

Run gathering(const Files& files, const std::string& path) {
  return looking([files, path] {
    const orvml::MappedFile file(path);
    const double sum = sumOfPlaces(file.input());
    require(std::isfinite(sum), "adding places up");
    return sum;
  });
}

/// @param atMost  times the time of loading, 0 for no goal
Contest checkContest(const Options& options, SoundMesh mesh, int mostNodes, double atMost) {
  std::string path;
  const Files files = fileOf(options, mesh, mostNodes, path);
  Contest contest(checking(files, path, 2));
  if (atMost > 0) {
    contest.addGoal("load", atMost, loading(files, path, mostNodes));
  } else {
    contest.add("load", loading(files, path, mostNodes));
  }
  contest.add("one thread", checking(files, path, 1));
  contest.add("adding up the places of all cells", gathering(files, path));
  return contest;
}

Contest diffContest(const Options& options, SoundMesh mesh, int mostNodes) {
  constexpr double kTimesLoad = 2.5;
  std::string path;
  const Files files = fileOf(options, mesh, mostNodes, path);
  const std::string other =
      files->add([=](const std::string& name) { writeSoundMesh(name, mesh, mostNodes); });
  Contest contest(looking([files, path, other] {
    const orvml::MappedFile first(path);
    const orvml::MappedFile second(other);
    auto report = orvml::diff(first.input(), second.input());
    require(report.areSame() && report.areEqualByContract == true, "comparing equal files");
    return report;
  }));
  contest.addGoal("load", kTimesLoad, loading(files, path, mostNodes));
  return contest;
}

constexpr char kLoad[] = "load by the layer";
constexpr char kCheck[] = "check by the layer";
constexpr double kCheckTimesLoad = 3.0;

/// As a user meets both: in a program that has just been started, whose memory is fresh.
Contest freshContest(const Options& options, SoundMesh mesh, int mostNodes) {
  std::string path;
  const Files files = fileOf(options, mesh, mostNodes, path);
  const Run checked = startedAfresh(kCheck, path, options.pause);
  Contest contest([files, checked](Measurement& measurement) { checked(measurement); });
  contest.addGoal("load", kCheckTimesLoad, startedAfresh(kLoad, path, options.pause));
  return contest;
}

void registerMesh(const Options& options, SoundMesh mesh, int mostNodes, const std::string& name) {
  registerContest("check, 2 threads", name, options,
                  [=] { return checkContest(options, mesh, mostNodes, kCheckTimesLoad); });
  registerContest("check, 2 threads, fresh process", name, options,
                  [=] { return freshContest(options, mesh, mostNodes); });
  registerContest("diff", name, options, [=] { return diffContest(options, mesh, mostNodes); });
}

}  // namespace

Tasks tasksOfChecks() {
  return {{kLoad,
           [](const std::string& path, Measurement& measurement) {
             reading([&] { return orvml::load(path); })(measurement);
           }},
          {kCheck, [](const std::string& path, Measurement& measurement) {
             checking(nullptr, path, 2)(measurement);
           }}};
}

void registerChecks(const Options& options) {
  registerMesh(options, SoundMesh::tetrahedra, kLarge, "2 M nodes, block of tets");
  registerMesh(options, SoundMesh::mixed, kLarge, "2 M nodes, block of hexahedra and prisms");
  if (options.quick) {
    return;
  }
  registerContest("check, 2 threads", "2 M nodes, block of tets in random order", options, [=] {
    constexpr double kNoGoal = 0;
    return checkContest(options, SoundMesh::shuffledTetrahedra, kLarge, kNoGoal);
  });
  registerMesh(options, SoundMesh::tetrahedra, kLargest, "10 M nodes, block of tets");
  registerMesh(options, SoundMesh::mixed, kLargest, "10 M nodes, block of hexahedra and prisms");
}

}  // namespace orvml_io_bench
