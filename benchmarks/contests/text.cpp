// A mesh printed as text.
#include "contests/contests.h"
#include "contests/file_runs.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/plain_text.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>

namespace orvml_io_bench {

namespace {

constexpr int kNodes = 2000000;

using Print = std::function<void(const std::string& path)>;

/// The figures are those of the same text.
void requireSameText(const std::string& folder, const Print& one, const Print& other) {
  const std::string paths[] = {folder + "text_1", folder + "text_2"};
  one(paths[0]);
  other(paths[1]);
  std::ifstream first(paths[0]);
  std::ifstream second(paths[1]);
  using Bytes = std::istreambuf_iterator<char>;
  require(std::equal(Bytes(first), Bytes(), Bytes(second), Bytes()), "printing the same text");
  (void)std::remove(paths[0].c_str());
  (void)std::remove(paths[1].c_str());
}

Contest textContest(const Options& options, const std::shared_ptr<Content>& content) {
  const std::string path = options.folder + "text";
  const auto document = std::make_shared<Document>(*content);
  const Print library = [=](const std::string& name) {
    require(OrvML_IO_WriteMeshInOrvFormat(name.c_str(), document->handle()) == 0, "printing");
  };
  const Print buffer = [=](const std::string& name) {
    plain_text::printFromOneBuffer(name, *content);
  };
  const Print fprintf = [=](const std::string& name) {
    plain_text::printWithFprintf(name, *content);
  };
  requireSameText(options.folder, library, buffer);
  requireSameText(options.folder, library, fprintf);
  Contest contest(creating(path, [=] { library(path); }));
  contest.addGoal("one buffer, exact", 1.5, creating(path, [=] { buffer(path); }));
  contest.addGoal("fprintf", 0.25, creating(path, [=] { fprintf(path); }));
  return contest;
}

}  // namespace

void registerText(const Options& options) {
  registerContest("text export", "2 M nodes, tets", options, [=] {
    return textContest(options, std::make_shared<Content>(tetrahedralMesh(kNodes)));
  });
  registerContest("text export", "2 M nodes, mixed surface", options, [=] {
    return textContest(options, std::make_shared<Content>(mixedSurface(kNodes)));
  });
}

}  // namespace orvml_io_bench
