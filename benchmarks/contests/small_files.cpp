// Many small documents, each in a file of its own.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "contests/peer_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"

#include <hdf5.h>

#include <sys/resource.h>

#include <memory>

namespace orvml_io_bench {

namespace {

using SharedContent = std::shared_ptr<const Content>;
using WriteOne = std::function<void(const std::string& path)>;

/// Files of the same stem, counted from 0.
struct Files {
  std::string stem;
  int count;

  [[nodiscard]] std::string path(int number) const { return stem + std::to_string(number); }
  void removeAll() const {
    for (int i = 0; i < count; ++i) {
      (void)std::remove(path(i).c_str());
    }
  }
};

Run writingEach(const Files& files, const WriteOne& write) {
  return [=](Measurement& measurement) {
    measurement.start();
    for (int i = 0; i < files.count; ++i) {
      write(files.path(i));
    }
    measurement.stop();
    files.removeAll();
  };
}

/// Files that go when the last contender that reads them does.
using Kept = std::shared_ptr<const Files>;

Kept keptFiles(const Files& files, const WriteOne& write) {
  preparedInChild([&] {
    for (int i = 0; i < files.count; ++i) {
      write(files.path(i));
    }
  });
  return {new Files(files), [](const Files* kept) {
            kept->removeAll();
            delete kept;
          }};
}

/// The library keeps every file that it read open by contract, one descriptor each.
void raiseDescriptorLimit() {
  rlimit limit = {};
  (void)::getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  require(::setrlimit(RLIMIT_NOFILE, &limit) == 0, "raising the limit of open files");
}

template <class Read>
Run readingEach(const Kept& files, Read read) {
  return [=](Measurement& measurement) {
    raiseDescriptorLimit();
    std::vector<decltype(read(files->stem))> documents;
    documents.reserve(static_cast<std::size_t>(files->count));
    measurement.start();
    for (int i = 0; i < files->count; ++i) {
      documents.push_back(read(files->path(i)));
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

Run libraryWriting(const Files& files, const std::shared_ptr<Content>& content) {
  const auto document = std::make_shared<Document>(*content);
  return writingEach(files, [=, kept = content](const std::string& path) {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  });
}

Run libraryReadingAndLeavingOpen(const Kept& files) {
  return readingEach(files, [](const std::string& path) { return Document::read(path); });
}

/// What a read leaves open is closed after each file, as the others do with theirs: what it costs
/// to leave it open is measured on its own.
Run libraryReadingAndClosing(const Kept& files) {
  return readingEach(files, [](const std::string& path) {
    Document document = Document::read(path);
    closeWhatIsOpen();
    return document;
  });
}

Kept exchangeFiles(const Files& files, const SharedContent& content) {
  return keptFiles(files, [&](const std::string& path) { lite_library::write(path, *content); });
}

Contest writeContest(const Files& files) {
  const auto content = std::make_shared<Content>(smallDocument());
  Contest contest(libraryWriting(files, content));
  contest.addGoal("Lite and Table", 0.85, writingEach(files, [=](const std::string& path) {
                    lite_library::write(path, *content);
                  }));
  contest.add("raw HDF5", writingEach(files, [=](const std::string& path) {
                raw_hdf5::write(path, *content);
              }));
  return contest;
}

Contest readContest(const Files& files) {
  const auto content = std::make_shared<const Content>(smallDocument());
  const Kept kept = exchangeFiles(files, content);
  Contest contest(libraryReadingAndClosing(kept));
  contest.addGoal("Lite and Table", 0.80, readingEach(kept, [=](const std::string& path) {
                    return lite_library::read(path, *content);
                  }));
  contest.add("raw HDF5", readingEach(kept, [=](const std::string& path) {
                return raw_hdf5::read(path, *content);
              }));
  return contest;
}

Contest keptOpenContest(const Files& files) {
  const Kept kept = exchangeFiles(files, std::make_shared<const Content>(smallDocument()));
  Contest contest(libraryReadingAndLeavingOpen(kept));
  contest.add("each file closed by the caller", libraryReadingAndClosing(kept));
  return contest;
}

Contest writeBesidePeers(const Files& files) {
  const auto content = std::make_shared<Content>(smallDocument());
  const auto mesh = std::make_shared<const PeerMesh>(*content);
  Contest contest(libraryWriting(files, content));
  for (const Peer& peer : peers()) {
    addPeer(contest, peer, kAhead,
            writingEach(files,
                        [=, write = peer.write](const std::string& path) { write(path, *mesh); }));
  }
  return contest;
}

Run peerReading(const Files& files, const Peer& peer, const PeerMesh& mesh) {
  const Kept kept = keptFiles({files.stem + peer.name, files.count},
                              [&](const std::string& path) { peer.write(path, mesh); });
  preparedInChild([&] {
    require(peer.read(kept->path(0)).checksum() == mesh.checksum(), "another format read back");
  });
  return readingEach(kept, peer.read);
}

Contest readBesidePeers(const Files& files) {
  const auto content = std::make_shared<const Content>(smallDocument());
  const PeerMesh mesh(*content);
  Contest contest(libraryReadingAndClosing(exchangeFiles(files, content)));
  for (const Peer& peer : peers()) {
    addPeer(contest, peer, kAhead, peerReading(files, peer, mesh));
  }
  return contest;
}

}  // namespace

void registerSmallFiles(const Options& options) {
  const Files many{options.folder + "small_", 2000};
  const Files few{options.folder + "small_", 200};  // for those that take ten times as long
  const std::string ofMany = "2,000 documents of 200 nodes";
  const std::string ofFew = "200 documents of 200 nodes";
  registerContest("write", ofMany, options, [=] { return writeContest(many); });
  registerContest("read", ofMany, options, [=] { return readContest(many); });
  registerContest("read, all left open", ofMany, options, [=] { return keptOpenContest(many); });
  if (!peers().empty()) {
    registerContest("write", ofFew, options, [=] { return writeBesidePeers(few); });
    registerContest("read", ofFew, options, [=] { return readBesidePeers(few); });
  }
}

}  // namespace orvml_io_bench
