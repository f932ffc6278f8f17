#include "harness/contest.h"

#include <algorithm>

namespace orvml_io_bench {

namespace {

template <class Value>
double medianOver(const Contest::Contender& contender, Value value) {
  std::vector<double> values;
  for (const Sample& sample : contender.samples) {
    values.push_back(value(sample));
  }
  return medianOf(std::move(values));
}

}  // namespace

void Contest::playRound() {
  for (std::size_t i = 0; i < contenders_.size(); ++i) {
    Contender& contender = contenders_[(i + rounds_) % contenders_.size()];
    contender.samples.push_back(measuredInChild(contender.run));
  }
  ++rounds_;
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double medianSeconds(const Contest::Contender& contender) {
  return medianOver(contender, [](const Sample& sample) { return sample.seconds; });
}

double medianMegabytes(const Contest::Contender& contender) {
  return medianOver(contender, [](const Sample& sample) { return sample.grownMegabytes; });
}

double medianRatio(const Contest& contest, const Contest::Contender& contender) {
  const std::vector<Sample>& library = contest.contenders().front().samples;
  std::vector<double> ratios;
  for (std::size_t round = 0; round < library.size(); ++round) {
    ratios.push_back(library[round].seconds / contender.samples[round].seconds);
  }
  return medianOf(std::move(ratios));
}

}  // namespace orvml_io_bench
