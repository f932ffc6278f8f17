// Many small documents, each in a file of its own.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"

#include <hdf5.h>

#include <sys/resource.h>

#include <memory>

namespace orvml_io_bench {

namespace {

constexpr char kInput[] = "2,000 documents of 200 nodes";
constexpr int kFiles = 2000;

using SharedContent = std::shared_ptr<Content>;
using WriteOne = std::function<void(const std::string& path)>;

std::string pathOf(const std::string& stem, int number) { return stem + std::to_string(number); }

void removeAll(const std::string& stem) {
  for (int i = 0; i < kFiles; ++i) {
    (void)std::remove(pathOf(stem, i).c_str());
  }
}

Run writingEach(const std::string& stem, WriteOne write) {
  return [=](Measurement& measurement) {
    measurement.start();
    for (int i = 0; i < kFiles; ++i) {
      write(pathOf(stem, i));
    }
    measurement.stop();
    removeAll(stem);
  };
}

/// The library keeps every file that it read open by contract, one descriptor each.
void raiseDescriptorLimit() {
  rlimit limit = {};
  (void)::getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  require(::setrlimit(RLIMIT_NOFILE, &limit) == 0, "raising the limit of open files");
}

template <class Read>
Run readingEach(const std::string& stem, Read read) {
  return [=](Measurement& measurement) {
    raiseDescriptorLimit();
    std::vector<decltype(read(stem))> documents;
    documents.reserve(kFiles);
    measurement.start();
    for (int i = 0; i < kFiles; ++i) {
      documents.push_back(read(pathOf(stem, i)));
    }
    measurement.stop();
  };
}

/// Closes what a read leaves open, as a caller may who knows HDF5.
void closeWhatIsOpen() {
  std::vector<hid_t> open(static_cast<std::size_t>(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL)));
  (void)H5Fget_obj_ids(H5F_OBJ_ALL, H5F_OBJ_ALL, open.size(), open.data());
  for (const hid_t id : open) {
    (void)H5Idec_ref(id);
  }
}

/// The files of all numbers, which go when the last contender that reads them does.
std::shared_ptr<const std::string> keptFiles(const std::string& stem, const WriteOne& write) {
  preparedInChild([&] {
    for (int i = 0; i < kFiles; ++i) {
      write(pathOf(stem, i));
    }
  });
  return {new std::string(stem), [](const std::string* kept) {
            removeAll(*kept);
            delete kept;
          }};
}

Contest writeContest(const Options& options) {
  const auto content = std::make_shared<Content>(smallDocument());
  const auto document = std::make_shared<Document>(*content);
  const std::string stem = options.folder + "small_";
  Contest contest(writingEach(stem, [=](const std::string& path) {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  }));
  contest.addGoal("Lite and Table", 0.85, writingEach(stem, [=](const std::string& path) {
                    lite_library::write(path, *content);
                  }));
  contest.add("raw HDF5",
              writingEach(stem, [=](const std::string& path) { raw_hdf5::write(path, *content); }));
  return contest;
}

using Kept = std::shared_ptr<const std::string>;

Kept exchangeFiles(const Options& options, const Content& content) {
  return keptFiles(options.folder + "small_read_",
                   [&](const std::string& path) { lite_library::write(path, content); });
}

Run readingAndLeavingOpen(const Kept& files) {
  return readingEach(*files,
                     [kept = files](const std::string& path) { return Document::read(path); });
}

Run readingAndClosing(const Kept& files) {
  return readingEach(*files, [kept = files](const std::string& path) {
    Document document = Document::read(path);
    closeWhatIsOpen();
    return document;
  });
}

/// What a read leaves open is closed after each file, as the others do with theirs: what it costs
/// to leave it open is measured on its own.
Contest readContest(const Options& options) {
  const auto content = std::make_shared<Content>(smallDocument());
  const Kept files = exchangeFiles(options, *content);
  Contest contest(readingAndClosing(files));
  contest.addGoal("Lite and Table", 0.80, readingEach(*files, [=](const std::string& path) {
                    return lite_library::read(path, *content);
                  }));
  contest.add("raw HDF5", readingEach(*files, [=](const std::string& path) {
                return raw_hdf5::read(path, *content);
              }));
  return contest;
}

Contest keptOpenContest(const Options& options) {
  const Kept files = exchangeFiles(options, smallDocument());
  Contest contest(readingAndLeavingOpen(files));
  contest.add("each file closed by the caller", readingAndClosing(files));
  return contest;
}

}  // namespace

void registerSmallFiles(const Options& options) {
  registerContest("write", kInput, options, [=] { return writeContest(options); });
  registerContest("read", kInput, options, [=] { return readContest(options); });
  registerContest("read, all left open", kInput, options, [=] { return keptOpenContest(options); });
}

}  // namespace orvml_io_bench
