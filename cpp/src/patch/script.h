#pragma once

#include "patch/items.h"
#include "values/blocks.h"

#include <deque>
#include <span>
#include <variant>
#include <vector>

namespace orvml::detail {

/// What is done to an item. The numbers lie in files.
enum class Operation : int {
  remove = 0,
  replace = 1,  ///< by an array of its own
  edit = 2,     ///< values at places of the array that is there, and its flag
  endOfOperations = 3
};

/// One step of a patch.
struct Step {
  ItemKey key;
  Operation operation = Operation::remove;
  bool mustBeTransmitted = false;
  int length = 0;  ///< of the whole array afterwards

  std::span<const int> places;  ///< of an edit, ascending
  std::variant<std::span<const int>, std::span<const double>> values;
};

/// Arrays that steps or changed items refer to.
struct OwnedArrays {
  std::deque<std::vector<int>> ints;
  std::deque<std::vector<double>> doubles;
  std::deque<orvml_io::NewArray<int>> readInts;
  std::deque<orvml_io::NewArray<double>> readDoubles;

  std::vector<int>& add(std::vector<int> values) { return ints.emplace_back(std::move(values)); }
  std::vector<double>& add(std::vector<double> values) {
    return doubles.emplace_back(std::move(values));
  }
};

/// The steps from one document to another, in the order of their keys. They borrow the arrays of
/// the second one.
[[nodiscard]] std::vector<Step> stepsBetween(const Items& from, const Items& to,
                                             OwnedArrays& arrays);

/// Takes steps. Throws Code::patchDamaged for one that does not fit the items.
void apply(const std::vector<Step>& steps, Items& items, OwnedArrays& arrays);

}  // namespace orvml::detail
