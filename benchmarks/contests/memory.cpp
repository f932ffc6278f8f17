// Deep copy and equality of a large mesh.
#include "contests/contests.h"
#include "inputs/document.h"
#include "orvml_io.h"

#include <cmath>
#include <cstring>
#include <memory>

namespace orvml_io_bench {

namespace {

constexpr int kNodes = 2000000;
constexpr char kInput[] = "2 M nodes, tets";

/// Every large array of a content, as the two calls that a contender gives for it.
template <class Doubles, class Ints>
void forEachArray(const Content& content, Doubles doubles, Ints ints) {
  doubles(content.coordinates);
  doubles(content.nodeAttributes[0].doubles);
  ints(content.cells.connectivities);
  ints(content.cells.attributes[0].ints);
}

template <class T>
std::unique_ptr<T[]> copiedOneByOne(const std::vector<T>& values) {
  std::unique_ptr<T[]> copy(new T[values.size()]);
  for (std::size_t i = 0; i < values.size(); ++i) {
    copy[i] = values[i];
  }
  return copy;
}

template <class T>
std::unique_ptr<T[]> copiedByMemcpy(const std::vector<T>& values) {
  std::unique_ptr<T[]> copy(new T[values.size()]);
  std::memcpy(copy.get(), values.data(), values.size() * sizeof(T));
  return copy;
}

/// Copies every array; the copies live until the measurement has ended.
template <class CopyOne>
Run copying(const std::shared_ptr<Content>& content, CopyOne copyOne) {
  return withWarmMemory(content->meshBytes(), [=](Measurement& measurement) {
    std::vector<std::unique_ptr<double[]>> doubles;
    std::vector<std::unique_ptr<int[]>> ints;
    measurement.start();
    forEachArray(
        *content, [&](const std::vector<double>& values) { doubles.push_back(copyOne(values)); },
        [&](const std::vector<int>& values) { ints.push_back(copyOne(values)); });
    measurement.stop();
  });
}

Contest copyContest() {
  const auto content = std::make_shared<Content>(tetrahedralMesh(kNodes));
  const auto document = std::make_shared<Document>(*content);
  Contest contest(withWarmMemory(content->meshBytes(), [=](Measurement& measurement) {
    measurement.start();
    const Document copy(OrvML_IO_NewOrvInputHandle(document->handle()));
    measurement.stop();
  }));
  contest.addGoal("allocating and copying, element by element", 0.70,
                  copying(content, [](const auto& values) { return copiedOneByOne(values); }));
  contest.add("memcpy into fresh arrays",
              copying(content, [](const auto& values) { return copiedByMemcpy(values); }));
  return contest;
}

/// One pass over both sides without a branch, which the compiler turns into vector instructions.
bool isClose(const std::vector<double>& a, const std::vector<double>& b) {
  constexpr double kTolerance = 1e-15;
  long long different = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    different |= std::fabs(a[i] - b[i]) > kTolerance ? 1LL : 0LL;
  }
  return different == 0;
}

bool isSame(const std::vector<int>& a, const std::vector<int>& b) {
  int different = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    different |= a[i] ^ b[i];
  }
  return different == 0;
}

bool isEqual(const Content& a, const Content& b) {
  return isClose(a.coordinates, b.coordinates) &&
         isClose(a.nodeAttributes[0].doubles, b.nodeAttributes[0].doubles) &&
         isSame(a.cells.connectivities, b.cells.connectivities) &&
         isSame(a.cells.attributes[0].ints, b.cells.attributes[0].ints);
}

/// Both sides are touched before, as their documents have been.
Contest equalityContest() {
  const auto first = std::make_shared<Content>(tetrahedralMesh(kNodes));
  const auto second = std::make_shared<Content>(*first);
  const auto one = std::make_shared<Document>(*first);
  const auto other = std::make_shared<Document>(*second);
  Contest contest([=](Measurement& measurement) {
    measurement.start();
    const bool areEqual = OrvML_IO_OrvInputsAreEqual(one->handle(), other->handle());
    measurement.stop();
    require(areEqual, "comparing");
  });
  contest.addGoal("one vectorised pass", 1.25, [=](Measurement& measurement) {
    measurement.start();
    const bool areEqual = isEqual(*first, *second);
    measurement.stop();
    require(areEqual, "comparing");
  });
  return contest;
}

}  // namespace

void registerMemory(const Options& options) {
  registerContest("deep copy", kInput, options, copyContest);
  registerContest("equality", kInput, options, equalityContest);
}

}  // namespace orvml_io_bench
