// A pre-processor that lives on has its part meshed again and again, through the same two files.
#include "processes/exchange_folder.h"
#include "processes/other_process.h"

#include <gtest/gtest.h>

#include <memory>

namespace orvml_io_tests {
namespace {

/// The three runs: what is sent, and what comes back. Sizes go up and down, names change.

struct Exchange {
  MeshDocument sent;
  MeshDocument returned;
};

const std::vector<Exchange>& exchanges() {
  static const std::vector<Exchange> three = {{{300, "thickness"}, {700, "quality"}},
                                              {{900, "id"}, {2500, "thickness"}},
                                              {{120, "thickness"}, {400, "id"}}};
  return three;
}

/// Whether the meshing module ends after each run, or is one process that waits for the next.
enum class Module { endsAfterEachRun, livesOn };

class SecondRun : public ::testing::TestWithParam<Module> {
 protected:
  SecondRun() : input_(folder_.path("in.h5")), output_(folder_.path("out.h5")) {
    (void)preprocessor_.write(input_, {1, "id"}, "input");
    (void)preprocessor_.write(output_, {1, "id"});
    listing_ = folder_.listing();
  }

  /// Sends a mesh, has it meshed, and has the result read by the pre-processor and by a viewer.
  void goThrough(const Exchange& exchange) {
    if (module_ == nullptr || GetParam() == Module::endsAfterEachRun) {
      module_ = nullptr;
      module_ = std::make_unique<OtherProcess>();
    }
    EXPECT_EQ(preprocessor_.write(input_, exchange.sent, "input"), "0");
    EXPECT_EQ(module_->read(input_, "input"), wholeDocument(exchange.sent));
    EXPECT_EQ(module_->write(output_, exchange.returned), "0");
    for (const OtherProcess* reader : {&preprocessor_, &viewer_}) {
      EXPECT_EQ(reader->read(output_), wholeDocument(exchange.returned));
      EXPECT_EQ(reader->ask("map " + output_), "mapped");
    }
  }

  ExchangeFolder folder_;
  std::string input_;
  std::string output_;
  OtherProcess preprocessor_;
  OtherProcess viewer_;
  std::unique_ptr<OtherProcess> module_;
  std::vector<std::string> listing_;
};

TEST_P(SecondRun, GivesTheNewContentAndLeavesWhatWasReadBefore) {
  std::string documents;
  std::string mappings;
  for (const Exchange& exchange : exchanges()) {
    goThrough(exchange);

    documents += describe(exchange.returned) + ", ";
    mappings += "mapping unchanged, ";
    EXPECT_EQ(preprocessor_.ask("possessions"), documents + mappings);
    EXPECT_EQ(viewer_.ask("possessions"), documents + mappings);
    EXPECT_EQ(folder_.listing(), listing_);
  }
}

INSTANTIATE_TEST_SUITE_P(Modules, SecondRun,
                         ::testing::Values(Module::endsAfterEachRun, Module::livesOn),
                         [](const ::testing::TestParamInfo<Module>& module) {
                           return module.param == Module::livesOn ? "LivesOn" : "EndsAfterEachRun";
                         });

// Who ends reading gives the file free, and the next run writes it in place, as the first one did.
TEST(SecondRunWithoutReaders, WritesInPlace) {
  const ExchangeFolder folder;
  const std::string path = folder.path("out.h5");
  const OtherProcess writer;
  ASSERT_EQ(writer.write(path, {300, "quality"}), "0");
  const ino_t inode = inodeOf(path);
  {
    const OtherProcess reader;
    ASSERT_EQ(reader.read(path), wholeDocument({300, "quality"}));
  }

  EXPECT_EQ(writer.write(path, {500, "id"}), "0");

  EXPECT_EQ(inodeOf(path), inode);
}

}  // namespace
}  // namespace orvml_io_tests
