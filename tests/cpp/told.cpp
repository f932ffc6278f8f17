#include "cpp/told.h"

#include <orvml/error.hpp>

#include "files/child_process.h"
#include "support/captured_output.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace orvml_io_tests {

namespace {

/// The texts of what was told, in the order in which they pass from one process to another.
std::array<std::string*, 7> textsOf(Told& told) {
  return {&told.code, &told.sentence,   &told.object, &told.file,
          &told.what, &told.hdf5Reason, &told.printed};
}

void send(Told told, std::FILE* file) {
  for (const std::string* text : textsOf(told)) {
    (void)std::fwrite(text->c_str(), 1, text->size() + 1, file);
  }
  (void)std::fflush(file);
}

Told receive(std::FILE* file) {
  Told told;
  std::rewind(file);
  for (std::string* text : textsOf(told)) {
    text->clear();
    for (int c = std::fgetc(file); c != '\0' && c != EOF; c = std::fgetc(file)) {
      text->push_back(static_cast<char>(c));
    }
  }
  return told;
}

}  // namespace

Told toldBy(const std::function<void()>& work) {
  Told told;
  CapturedOutput output;
  try {
    work();
  } catch (const orvml::Error& error) {
    told = {std::string(orvml::text(error.code())),
            error.sentence(),
            error.object(),
            error.file().string(),
            error.what(),
            error.hdf5Reason(),
            ""};
  }
  told.printed = output.stop();
  return told;
}

Told toldInChild(const std::function<bool()>& prepare, const std::function<void()>& work) {
  std::FILE* file = std::tmpfile();
  const int result = resultInChild([&] {
    if (!prepare()) {
      return 1;
    }
    send(toldBy(work), file);
    return 0;
  });
  EXPECT_EQ(result, 0) << "the child could not be prepared";
  Told told = receive(file);
  (void)std::fclose(file);
  return told;
}

WritingProcess::WritingProcess(const std::string& path) {
  std::array<int, 2> toOther = {-1, -1};
  std::array<int, 2> toUs = {-1, -1};
  EXPECT_EQ(::pipe(toOther.data()), 0);
  EXPECT_EQ(::pipe(toUs.data()), 0);
  process_ = ::fork();
  if (process_ == 0) {
    (void)::close(toOther[1]);
    char word = H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT) >= 0 ? 'y' : 'n';
    const bool isTold = ::write(toUs[1], &word, 1) == 1;
    // Nothing comes: the end of the file is the sign.
    ::_exit(isTold && ::read(toOther[0], &word, 1) == 0 ? 0 : 1);
  }
  char word = 0;
  EXPECT_EQ(::read(toUs[0], &word, 1), 1);
  EXPECT_EQ(word, 'y') << "the other process cannot open " << path;
  for (const int end : {toOther[0], toUs[0], toUs[1]}) {
    (void)::close(end);
  }
  toOther_ = toOther[1];
}

WritingProcess::~WritingProcess() {
  (void)::close(toOther_);
  (void)::waitpid(process_, nullptr, 0);
}

}  // namespace orvml_io_tests
