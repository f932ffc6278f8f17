#pragma once

#include <cstddef>
#include <vector>

namespace orvml_io_tests {

/// Returns `count` values for a dataset of a type class: the normal ones, repeated as often as
/// needed. The lower half of the choice puts a special value among them (0 puts none), the upper
/// half says where: 0 for the first, 15 for all, any other number for that position.
std::vector<double> doublesOf(unsigned choice, const std::vector<double>& normal,
                              std::size_t count);
std::vector<long long> integersOf(unsigned choice, const std::vector<double>& normal,
                                  std::size_t count);

}  // namespace orvml_io_tests
