// The C++ layer beside the flat functions, beside plain pages and plain HDF5, and against fixed
// times.
#include <orvml/orvml.hpp>

#include "contests/contests.h"
#include "contests/file_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"

#include <hdf5.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <memory>
#include <numeric>

namespace orvml_io_bench {

namespace {

constexpr int kLarge = 2000000;
constexpr int kLargest = 10000000;
constexpr int kNumberOfSmallFiles = 2000;
constexpr double kSameAsFlat = 1.02;
constexpr double kWithinTheLimit = 1.00;

using Files = std::shared_ptr<KeptFiles>;

/// A file of a mesh, written by the library.
Files fileOf(const Options& options, int nodes, std::string& path) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "layer_");
  path = files->add([=](const std::string& name) {
    Content content = tetrahedralMesh(nodes);
    const Document document(content);
    require(OrvML_IO_WriteOrvInput(name.c_str(), document.handle()) == 0, "writing a file");
  });
  return files;
}

/// A fixed time to stay below, as a contender.
Run fixedTime(double seconds) {
  return [seconds](Measurement& measurement) {
    Sample sample;
    sample.seconds = seconds;
    measurement.take(sample);
  };
}

/// A run in a process whose HDF5 has been used before, and whose file is in the system's memory.
template <class Operation>
Run secondTime(const Files& files, Operation operation) {
  return [files, operation](Measurement& measurement) {
    { [[maybe_unused]] const auto first = operation(); }
    reading(operation)(measurement);
  };
}

Run warmFor(int nodes, Run run) {
  return withWarmMemory(tetrahedralMesh(nodes).meshBytes(), std::move(run));
}

Contest loadContest(const Options& options) {
  std::string path;
  const Files files = fileOf(options, kLarge, path);
  Contest contest(warmFor(kLarge, reading([=, kept = files] { return orvml::load(path); })));
  contest.addGoal("the flat reader", kSameAsFlat,
                  warmFor(kLarge, reading([=] { return Document::read(path); })));
  return contest;
}

Contest threadsContest(const Options& options) {
  constexpr double kThreeQuarters = 0.75;
  std::string path;
  const Files files = fileOf(options, kLargest, path);
  const auto loadWith = [=](int threads) {
    orvml::LoadOptions load;
    load.threads = threads;
    return warmFor(kLargest, reading([=, kept = files] { return orvml::load(path, load); }));
  };
  Contest contest(loadWith(2));
  contest.addGoal("one thread", kThreeQuarters, loadWith(1));
  contest.addGoal("the flat reader", kThreeQuarters,
                  warmFor(kLargest, reading([=] { return Document::read(path); })));
  return contest;
}

Contest oneThreadContest(const Options& options) {
  std::string path;
  const Files files = fileOf(options, kLargest, path);
  Contest contest(warmFor(kLargest, reading([=, kept = files] { return orvml::load(path); })));
  contest.addGoal("the flat reader", kSameAsFlat,
                  warmFor(kLargest, reading([=] { return Document::read(path); })));
  return contest;
}

Contest saveContest(const Options& options) {
  const std::string path = options.folder + "saved";
  const auto content = std::make_shared<Content>(tetrahedralMesh(kLarge));
  const auto document = std::make_shared<Document>(*content);
  orvml::SaveOptions save;
  save.flush = false;
  Contest contest([=, kept = content](Measurement& measurement) {
    void* handle = OrvML_IO_NewOrvInputHandle(document->handle());
    const orvml::Input input = orvml::adoptInput(handle);
    creating(path, [&] { orvml::save(path, input, save); })(measurement);
  });
  contest.addGoal("the flat writer", kSameAsFlat, [=, kept = content](Measurement& measurement) {
    const Document copy(OrvML_IO_NewOrvInputHandle(document->handle()));
    creating(path, [&] {
      require(OrvML_IO_WriteOrvInput(path.c_str(), copy.handle()) == 0, "writing a file");
    })(measurement);
  });
  return contest;
}

Contest mapContest(const Options& options) {
  constexpr double kMilliseconds = 5e-3;
  std::string path;
  const Files files = fileOf(options, kLargest, path);
  Contest contest(secondTime(files, [=] { return orvml::MappedFile(path); }));
  contest.addGoal("5 ms", kWithinTheLimit, fixedTime(kMilliseconds));
  return contest;
}

Contest describeContest(const Options& options) {
  constexpr double kMilliseconds = 5e-3;
  std::string path;
  const Files files = fileOf(options, kLargest, path);
  Contest contest(secondTime(files, [=] { return orvml::describe(path); }));
  contest.addGoal("5 ms", kWithinTheLimit, fixedTime(kMilliseconds));
  return contest;
}

double sumOf(std::span<const double> values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

/// Adds all coordinates up, in pages that nobody has touched in this process.
Run summing(const Files& files, std::function<std::span<const double>()> map) {
  return [files, map](Measurement& measurement) {
    const std::span<const double> coordinates = map();
    measurement.start();
    const double sum = sumOf(coordinates);
    measurement.stop();
    require(std::isfinite(sum), "adding coordinates up");
  };
}

/// The pages of a part of a file, without the library.
std::span<const double> plainPages(const std::string& path, std::size_t offset,
                                   std::size_t values) {
  struct stat status = {};
  const int file = ::open(path.c_str(), O_RDONLY);
  require(file >= 0 && ::fstat(file, &status) == 0, "opening a file");
  const auto bytes = static_cast<std::size_t>(status.st_size);
  void* pages = ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, file, 0);
  require(pages != MAP_FAILED, "mapping a file");
  ::close(file);
  const char* begin = static_cast<const char*>(pages) + offset;
  return {static_cast<const double*>(static_cast<const void*>(begin)), values};
}

std::size_t offsetOfCoordinates(const std::string& path) {
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  const hid_t dataset = H5Dopen2(file, "/OrvInput/Nodes/coordinates", H5P_DEFAULT);
  const haddr_t offset = H5Dget_offset(dataset);
  require(offset != HADDR_UNDEF, "finding the coordinates");
  H5Dclose(dataset);
  H5Fclose(file);
  return offset;
}

Contest sumContest(const Options& options) {
  constexpr double kSame = 1.05;
  std::string path;
  const Files files = fileOf(options, kLargest, path);
  Contest contest(summing(files, [=] {
    static const orvml::MappedFile file(path);
    return file.input().nodes().coordinates();
  }));
  contest.addGoal("plain pages", kSame, summing(files, [=] {
                    const std::size_t values = std::size_t{kLargest} * Content::kDimension;
                    return plainPages(path, offsetOfCoordinates(path), values);
                  }));
  return contest;
}

herr_t addDataset(hid_t /*file*/, const char* name, const H5O_info_t* info, void* names) {
  if (info->type == H5O_TYPE_DATASET) {
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  }
  return 0;
}

std::vector<std::string> datasetsOf(const std::string& path) {
  std::vector<std::string> names;
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  require(H5Ovisit(file, H5_INDEX_NAME, H5_ITER_NATIVE, addDataset, &names) >= 0, "a visit");
  H5Fclose(file);
  return names;
}

/// Asks HDF5 for the type and the extents of datasets whose names are known: no description can do
/// with less.
void askFor(const std::vector<std::string>& datasets, hid_t file) {
  for (const std::string& name : datasets) {
    const hid_t dataset = H5Dopen2(file, name.c_str(), H5P_DEFAULT);
    const hid_t space = H5Dget_space(dataset);
    const hid_t type = H5Dget_type(dataset);
    require(space >= 0 && type >= 0, "asking for a dataset");
    H5Tclose(type);
    H5Sclose(space);
    H5Dclose(dataset);
  }
}

/// Opens each file, and asks for datasets in it.
Run openingEach(const Files& files, const std::shared_ptr<std::vector<std::string>>& paths,
                const std::vector<std::string>& datasets) {
  return secondTime(files, [=] {
    int opened = 0;
    for (const std::string& path : *paths) {
      const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
      askFor(datasets, file);
      opened += H5Fclose(file) >= 0 ? 1 : 0;
    }
    return opened;
  });
}

Contest smallFilesContest(const Options& options) {
  constexpr double kThreeTimes = 3.0;
  const auto files = std::make_shared<KeptFiles>(options.folder + "layer_small_");
  const auto paths = std::make_shared<std::vector<std::string>>();
  for (int i = 0; i < kNumberOfSmallFiles; ++i) {
    paths->push_back(files->add([](const std::string& path) {
      Content content = smallDocument();
      const Document document(content);
      require(OrvML_IO_WriteOrvInput(path.c_str(), document.handle()) == 0, "writing a file");
    }));
  }
  Contest contest(secondTime(files, [paths] {
    std::vector<orvml::Description> descriptions;
    for (const std::string& path : *paths) {
      descriptions.push_back(orvml::describe(path));
    }
    return descriptions;
  }));
  contest.addGoal("opening each with HDF5", kThreeTimes, openingEach(files, paths, {}));
  contest.add("opening each and its datasets with HDF5",
              openingEach(files, paths, datasetsOf(paths->front())));
  return contest;
}

Contest fingerprintContest(const Options& options) {
  constexpr double kBytesPerSecond = 1e9;
  std::string path;
  const Files files = fileOf(options, kLarge, path);
  const auto document = std::make_shared<orvml::Loaded>(orvml::load(path));
  Contest contest(
      secondTime(files, [document] { return orvml::fingerprint(document->input->view()); }));
  const auto bytes = static_cast<double>(tetrahedralMesh(kLarge).meshBytes());
  contest.addGoal("1 GB a second", kWithinTheLimit, fixedTime(bytes / kBytesPerSecond));
  return contest;
}

}  // namespace

void registerCppLayer(const Options& options) {
  registerContest("load", "2 M nodes, tets", options, [=] { return loadContest(options); });
  registerContest("save, not flushed", "2 M nodes, tets", options,
                  [=] { return saveContest(options); });
  registerContest("fingerprint", "2 M nodes, tets", options,
                  [=] { return fingerprintContest(options); });
  registerContest("describe each", "2,000 documents of 200 nodes", options,
                  [=] { return smallFilesContest(options); });
  if (options.quick) {
    return;
  }
  registerContest("load, 2 threads", "10 M nodes, tets", options,
                  [=] { return threadsContest(options); });
  registerContest("load", "10 M nodes, tets", options, [=] { return oneThreadContest(options); });
  registerContest("map", "10 M nodes, tets", options, [=] { return mapContest(options); });
  registerContest("describe", "10 M nodes, tets", options,
                  [=] { return describeContest(options); });
  registerContest("add mapped coordinates up", "10 M nodes, tets", options,
                  [=] { return sumContest(options); });
}

}  // namespace orvml_io_bench
