// Every allocation of the library fails in turn, once and from then on. Either the out-of-memory
// exception comes out, or the result is one of the stated ones; no block is lost, and the next call
// works.
#include "faults/allocations.h"
#include "faults/outcome.h"
#include "files/described_document.h"
#include "hdf5/file_beside.h"
#include "hostile/valid_files.h"
#include "orvml_io.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <stdlib.h>  // mkdtemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

#include <filesystem>
#include <new>
#include <string>
#include <tuple>
#include <typeinfo>

namespace orvml_io_tests {
namespace {

/// What the functions under test work on.
struct Scene {
  Scene() {
    makeCurrentFile(current.path());
    makeLegacyFile(legacy.path(), "1.3");
  }

  Sources sources;
  BuiltDocument other = fullDocument();
  TempFile current;
  TempFile legacy;
};

/// A call of the exported family, which releases what it made. Returns the result of the function.
struct Call {
  const char* name;
  int (*run)(Scene& scene);
  bool allocates = true;

  friend std::ostream& operator<<(std::ostream& stream, const Call& call) {
    return stream << call.name;
  }
};

/// Releases a document whatever happens.
class Released {
 public:
  Released() = default;
  Released(const Released&) = delete;
  Released& operator=(const Released&) = delete;
  Released(Released&&) = delete;
  Released& operator=(Released&&) = delete;
  ~Released() { OrvML_IO_DeleteOrvInputHandle(handle_); }
  void*& out() noexcept { return handle_; }

 private:
  void* handle_ = nullptr;
};

int readCurrent(Scene& scene) {
  Released input;
  return OrvML_IO_ReadOrvInput(scene.current.path(), input.out());
}

int readOutput(Scene& scene) {
  Released output;
  return OrvML_IO_ReadOrvOutput(scene.current.path(), output.out());
}

int readBoth(Scene& scene) {
  Released input;
  Released output;
  return OrvML_IO_ReadOrvInputAndOrvOutput(scene.current.path(), input.out(), output.out());
}

int readLegacy(Scene& scene) {
  Released input;
  return OrvML_IO_ReadOrvInput(scene.legacy.path(), input.out());
}

int write(Scene& scene) {
  const TempFile file;
  return writeBoth(file.path(), scene.sources);
}

int clone(Scene& scene) {
  Released copy;
  copy.out() = OrvML_IO_NewOrvInputHandle(scene.sources.input.handle());
  return 0;
}

int compare(Scene& scene) {
  return OrvML_IO_OrvInputsAreEqual(scene.sources.input.handle(), scene.other.handle()) ? 0 : 1;
}

int print(Scene& scene) {
  const TempFile file;
  return OrvML_IO_WriteMeshInOrvFormat(file.path(), scene.sources.input.handle());
}

int create(Scene& /*scene*/) {
  Released document;
  document.out() = OrvML_IO_NewOrvInputHandle("module", "version", "creator", 3);
  return 0;
}

int setParameters(Scene& /*scene*/) {
  const int ints[] = {1, 2, 3};
  const double doubles[] = {1, 2, 3};
  Released document;
  document.out() = OrvML_IO_NewOrvInputHandle("module", "version", "creator", 3);
  int status = OrvML_IO_SetParameter(document.out(), "a name that is longer than a short one", 1);
  status |= OrvML_IO_SetParameterVector(document.out(), "another name of this length", ints, 3);
  status |= OrvML_IO_SetParameterVector(document.out(), "one more name of some length", doubles, 3);
  return status;
}

const Call kCalls[] = {
    {"ReadInput", readCurrent},      {"ReadOutput", readOutput}, {"ReadBoth", readBoth},
    {"ReadLegacy", readLegacy},      {"Write", write},           {"Clone", clone},
    {"Compare", compare, false},     {"Print", print},           {"Create", create},
    {"SetParameters", setParameters}};

using Row = std::tuple<Call, Failing>;

class OutOfMemory : public ::testing::TestWithParam<Row> {
 protected:
  [[nodiscard]] static Call call() { return std::get<0>(GetParam()); }
  [[nodiscard]] static Failing failing() { return std::get<1>(GetParam()); }

  /// Runs the call while the n-th allocation fails. Returns whether one was left to fail.
  static bool fails(Scene& scene, int n) {
    const FailingAllocations failure(n, failing());
    try {
      result_ = call().run(scene);
    } catch (const std::bad_alloc& error) {
      result_ = typeid(error) == typeid(std::bad_alloc) ? 0 : 2;
    }
    return failure.happened();
  }

  static int result_;
};

int OutOfMemory::result_ = 0;

TEST_P(OutOfMemory, IsReportedOrBorneAndLosesNothing) {
  Scene scene;
  {
    const OpenIds ids;
    ASSERT_EQ(call().run(scene), 0);
  }
  const std::string before = describe(scene.sources.input.handle());
  int n = 1;
  bool hasFailed = true;
  for (; hasFailed; ++n) {
    SCOPED_TRACE("allocation " + std::to_string(n));
    const OpenIds ids;
    const long live = liveBlocks();

    hasFailed = fails(scene, n);

    ASSERT_EQ(liveBlocks(), live);
    ASSERT_TRUE(result_ == 0 || result_ == 1) << result_;
    ASSERT_EQ(call().run(scene), 0) << "the next call";
  }

  EXPECT_EQ(describe(scene.sources.input.handle()), before);
  RecordProperty("failures", n - 2);
  EXPECT_EQ(n > 2, call().allocates);
}

std::string testName(const ::testing::TestParamInfo<Row>& info) {
  return std::string(std::get<0>(info.param).name) +
         (std::get<1>(info.param) == Failing::once ? "Once" : "FromThenOn");
}

/// Nothing is there yet that could remove the file when memory lacks for what is to do so.
TEST(FileBesideOutOfMemory, LeavesNoFileBehind) {
  std::string pattern = testing::TempDir() + "orvml_io_beside_XXXXXX";
  ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
  const std::filesystem::path folder = pattern;
  bool hasFailed = true;
  for (int n = 1; hasFailed; ++n) {
    std::string target = folder / "file.h5";
    const FailingAllocations failing(n);
    try {
      (void)orvml_io::FileBeside::make(std::move(target), 0600);
    } catch (const std::bad_alloc&) {
    }
    hasFailed = failing.happened();
  }

  EXPECT_TRUE(std::filesystem::is_empty(folder));
  std::filesystem::remove_all(folder);
}

INSTANTIATE_TEST_SUITE_P(Calls, OutOfMemory,
                         ::testing::Combine(::testing::ValuesIn(kCalls),
                                            ::testing::Values(Failing::once, Failing::fromThenOn)),
                         testName);

}  // namespace
}  // namespace orvml_io_tests
