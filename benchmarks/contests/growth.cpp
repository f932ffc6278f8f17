// Twice the input takes at most 2.2 times the time: each contest sets the library on an input
// against the library on half of it.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"

#include <memory>

namespace orvml_io_bench {

namespace {

constexpr double kAtMost = 2.2;

using MakeContent = std::function<Content(int count)>;

Run writing(const std::string& folder, const MakeContent& make, int count) {
  const auto content = std::make_shared<Content>(make(count));
  const auto document = std::make_shared<Document>(*content);
  const std::string path = folder + "growth";
  return creating(path, [=, kept = content] {
    require(OrvML_IO_WriteOrvInput(path.c_str(), document->handle()) == 0, "writing a file");
  });
}

Run readingBack(const std::string& folder, const MakeContent& make, int count) {
  Content content = make(count);
  const Document document(content);
  const auto files = std::make_shared<KeptFiles>(folder + "growth_" + std::to_string(count) + "_");
  const std::string path = files->add([&](const std::string& name) {
    require(OrvML_IO_WriteOrvInput(name.c_str(), document.handle()) == 0, "writing a file");
  });
  return reading([=, kept = files] { return Document::read(path); });
}

using MakeRun = Run (*)(const std::string& folder, const MakeContent& make, int count);

struct Subject {
  const char* name;
  Content (*make)(int count);
  int count;
};
const Subject kSubjects[] = {
    {"1 M nodes, tets", [](int count) { return tetrahedralMesh(count); }, 1000000},
    {"100,000 scalars", [](int count) { return scalarParameters(count); }, 100000},
    {"100,000 vectors of 3", [](int count) { return vectorParameters(count); }, 100000},
    {"100,000 attributes of 3", [](int count) { return nodeAttributes(count, 3); }, 100000},
};

void registerSubject(const std::string& operation, const Subject& subject, const Options& options,
                     MakeRun makeRun) {
  const std::string folder = options.folder;
  registerContest(operation, subject.name, options, [=] {
    Contest contest(makeRun(folder, subject.make, subject.count));
    contest.addGoal("half of it", kAtMost, makeRun(folder, subject.make, subject.count / 2));
    return contest;
  });
}

}  // namespace

void registerGrowth(const Options& options) {
  for (const Subject& subject : kSubjects) {
    if (!options.quick) {
      registerSubject("growth of write", subject, options, writing);
      registerSubject("growth of read", subject, options, readingBack);
    }
  }
}

}  // namespace orvml_io_bench
