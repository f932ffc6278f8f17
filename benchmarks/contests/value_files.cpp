// Files of many named values: scalar parameters, vector parameters, attribute vectors.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/exchange_files.h"

#include <memory>

namespace orvml_io_bench {

namespace {

using SharedContent = std::shared_ptr<Content>;

Contest writeContest(const Options& options, const SharedContent& content, double atMost) {
  const std::string path = options.folder + "values";
  const auto document = std::make_shared<Document>(*content);
  Contest contest(creating(path, [=] {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  }));
  contest.addGoal("raw HDF5", atMost, creating(path, [=] { raw_hdf5::write(path, *content); }));
  contest.add("Lite and Table", creating(path, [=] { lite_library::write(path, *content); }));
  return contest;
}

Contest readContest(const Options& options, const SharedContent& content, double atMost) {
  const auto files = std::make_shared<KeptFiles>(options.folder + "values_read_");
  const std::string path =
      files->add([&](const std::string& name) { lite_library::write(name, *content); });
  Contest contest(reading([=, kept = files] { return Document::read(path); }));
  contest.addGoal("raw HDF5", atMost, reading([=] { return raw_hdf5::read(path, *content); }));
  contest.add("raw HDF5, vectors left open",
              reading([=] { return raw_hdf5::readLeavingOpen(path, *content); }));
  contest.add("Lite and Table", reading([=] { return lite_library::read(path, *content); }));
  return contest;
}

struct Values {
  const char* name;
  Content (*make)();
  double writeAtMost;
  double readAtMost;
};

const Values kValues[] = {
    {"100,000 scalars", [] { return scalarParameters(100000); }, 1.25, 1.35},
    {"10,000 vectors of 3", [] { return vectorParameters(10000); }, 1.20, 1.15},
    {"1,000 attributes of 1,000", [] { return nodeAttributes(1000, 1000); }, 1.25, 1.15},
    {"10,000 attributes of 1,000", [] { return nodeAttributes(10000, 1000); }, 1.25, 1.15},
};

}  // namespace

void registerValueFiles(const Options& options) {
  for (const Values& values : kValues) {
    registerContest("write", values.name, options, [=] {
      return writeContest(options, std::make_shared<Content>(values.make()), values.writeAtMost);
    });
    registerContest("read", values.name, options, [=] {
      return readContest(options, std::make_shared<Content>(values.make()), values.readAtMost);
    });
  }
}

}  // namespace orvml_io_bench
