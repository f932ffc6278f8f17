// Exchange files that different threads write and read. HDF5 must be called from one thread at a
// time unless it was built thread-safe, so the caller locks around the functions of files, and
// around nothing else.
#include "files/described_document.h"
#include "fuzz/harness/whole_interface.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"
#include "threads/together.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <deque>
#include <mutex>
#include <string>

namespace orvml_io_tests {
namespace {

constexpr int kFilesPerThread = 4;

BuiltDocument exchangedDocument(int thread) {
  BuiltDocument document = fullDocument();
  document.scalar("thread", thread);
  return document;
}

class ExchangeFiles : public ::testing::TestWithParam<int> {
 protected:
  [[nodiscard]] int threads() const { return GetParam(); }
  [[nodiscard]] const char* path(int thread, int file) const {
    return files_[static_cast<std::size_t>(thread * kFilesPerThread + file)].path();
  }

  const OpenIds ids_;
  const std::deque<TempFile> files_{static_cast<std::size_t>(GetParam() * kFilesPerThread)};
};

INSTANTIATE_TEST_SUITE_P(Threads, ExchangeFiles, ::testing::Values(2, 3, 8),
                         ::testing::PrintToStringParamName());

/// Writes a document and reads it back in all ways, each call under a lock.
template <class Mutex>
void exchange(const BuiltDocument& document, const char* path, Mutex& mutex) {
  const auto locked = [&mutex](auto call) {
    const std::lock_guard<Mutex> lock(mutex);
    return call();
  };
  void* source = document.handle();
  Handle input;
  Handle output;
  Handle again;
  EXPECT_EQ(locked([&] { return OrvML_IO_WriteOrvInputAndOrvOutput(path, source, source); }), 0);
  EXPECT_EQ(
      locked([&] { return OrvML_IO_ReadOrvInputAndOrvOutput(path, input.out(), output.out()); }),
      0);
  EXPECT_EQ(locked([&] { return OrvML_IO_ReadOrvInput(path, again.out()); }), 0);
  ASSERT_NE(again.get(), nullptr);

  for (void* read : {input.get(), output.get(), again.get()}) {
    useWithoutChange(read);
    requireEqual(source, read);
    EXPECT_EQ(describe(read), describe(source));
  }
}

TEST_P(ExchangeFiles, AreWrittenAndReadUnderTheLockOfTheCaller) {
  std::mutex mutex;

  runTogether(threads(), [&](int thread) {
    const BuiltDocument document = exchangedDocument(thread);
    for (int file = 0; file < kFilesPerThread; ++file) {
      exchange(document, path(thread, file), mutex);
    }
  });
}

TEST_P(ExchangeFiles, DoNotDisturbDocumentsInMemory) {
  std::mutex mutex;

  runTogether(threads(), [&](int thread) {
    const BuiltDocument document = exchangedDocument(thread);
    for (int file = 0; file < kFilesPerThread; ++file) {
      if (thread == 0) {
        exchange(document, path(thread, file), mutex);
      } else {
        Handle clone(OrvML_IO_NewOrvInputHandle(document.handle()));
        useWithoutChange(clone.get());
        useWithChange(clone.out(), static_cast<unsigned>(file));
      }
    }
  });
}

struct NoMutex {
  void lock() {}
  void unlock() {}
};

TEST_P(ExchangeFiles, NeedNoLockWhereHdf5IsThreadSafe) {
  hbool_t isThreadSafe = false;
  ASSERT_GE(H5is_library_threadsafe(&isThreadSafe), 0);
  if (!isThreadSafe) {
    GTEST_SKIP() << "this HDF5 must be called from one thread at a time";
  }

  runTogether(threads(), [&](int thread) {
    const BuiltDocument document = exchangedDocument(thread);
    NoMutex none;
    for (int file = 0; file < kFilesPerThread; ++file) {
      exchange(document, path(thread, file), none);
    }
  });
}

}  // namespace
}  // namespace orvml_io_tests
