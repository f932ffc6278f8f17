#include "faults/incomplete_reads.h"

#include "faults/finding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

namespace orvml_io_tests {

namespace {

using Rows = std::set<std::string>;

Rows listedRows(const std::string& beginning) {
  std::ifstream in(ORVML_IO_TESTS_INCOMPLETE_READS);
  EXPECT_TRUE(in.is_open()) << "there is no " << ORVML_IO_TESTS_INCOMPLETE_READS
                            << "; the target record_incomplete_reads makes it";
  Rows rows;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(beginning, 0) == 0) {
      rows.insert(line);
    }
  }
  return rows;
}

std::vector<std::string> difference(const Rows& rows, const Rows& others) {
  std::vector<std::string> left;
  std::set_difference(rows.begin(), rows.end(), others.begin(), others.end(),
                      std::back_inserter(left));
  return left;
}

}  // namespace

void expectListed(const std::set<std::string>& found, const std::string& beginning) {
  if (const char* record = std::getenv("ORVML_IO_RECORD_INCOMPLETE_READS"); record != nullptr) {
    EXPECT_EQ(kFailureStep, 1) << "some failures are not tried";
    std::ofstream out(record, std::ios::app);
    std::copy(found.begin(), found.end(), std::ostream_iterator<std::string>(out, "\n"));
    EXPECT_TRUE(out.flush());
    return;
  }
  const Rows listed = listedRows(beginning);
  for (const std::string& row : difference(found, listed)) {
    ADD_FAILURE() << "not in the list: " << row;
  }
  if (kFailureStep > 1) {
    return;  // what was not tried cannot be missed
  }
  for (const std::string& row : difference(listed, found)) {
    ADD_FAILURE() << "to be taken out of the list: " << row;
  }
}

}  // namespace orvml_io_tests
