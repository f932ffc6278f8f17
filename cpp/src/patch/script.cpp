#include "patch/script.h"

#include <orvml/error.hpp>

#include "requirements.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

namespace orvml::detail {

namespace {

[[noreturn]] void throwUnfitStep(const char* what) {
  throw Error(Code::patchDamaged, std::string("is a patch with a step that does not fit: ") + what);
}

std::size_t sizeOf(const Item& item) {
  return std::visit([](auto values) { return values.size(); }, item.values);
}

template <class Value>
bool isSame(const Value& a, const Value& b) noexcept {
  using Bytes = std::array<std::byte, sizeof(Value)>;
  return std::bit_cast<Bytes>(a) == std::bit_cast<Bytes>(b);
}

template <class Value>
bool areSame(std::span<const Value> a, std::span<const Value> b) noexcept {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

/// The places where two arrays of one length differ, while those take less room than the array.
template <class Value>
std::optional<std::vector<int>> fewPlaces(std::span<const Value> a, std::span<const Value> b) {
  const std::size_t most = b.size_bytes() / (sizeof(int) + sizeof(Value));
  std::vector<int> places;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!isSame(a[i], b[i])) {
      if (places.size() == most) {
        return std::nullopt;
      }
      places.push_back(static_cast<int>(i));
    }
  }
  return places;
}

Step replacing(const ItemKey& key, const Item& item) {
  Step step;
  step.key = key;
  step.operation = Operation::replace;
  step.mustBeTransmitted = item.mustBeTransmitted;
  step.length = require32(sizeOf(item));
  step.values = item.values;
  return step;
}

template <class Value>
Step changing(const ItemKey& key, std::span<const Value> from, const Item& item,
              OwnedArrays& arrays) {
  Step step = replacing(key, item);
  const auto to = std::get<std::span<const Value>>(item.values);
  if (from.size() != to.size()) {
    return step;
  }
  if (std::optional<std::vector<int>> places = fewPlaces(from, to)) {
    std::vector<Value> values;
    for (const int place : *places) {
      values.push_back(to[static_cast<std::size_t>(place)]);
    }
    step.operation = Operation::edit;
    step.places = arrays.add(std::move(*places));
    step.values = std::span<const Value>(arrays.add(std::move(values)));
  }
  return step;
}

bool areSame(const Item& a, const Item& b) {
  return a.mustBeTransmitted == b.mustBeTransmitted && a.values.index() == b.values.index() &&
         std::visit(
             [&](auto values) { return areSame(values, std::get<decltype(values)>(b.values)); },
             a.values);
}

Step changing(const ItemKey& key, const Item& from, const Item& to, OwnedArrays& arrays) {
  if (from.values.index() != to.values.index()) {
    return replacing(key, to);
  }
  return std::visit([&](auto values) { return changing(key, values, to, arrays); }, from.values);
}

template <class Value>
std::span<const Value> edited(std::span<const Value> old, const Step& step, OwnedArrays& arrays) {
  const auto* values = std::get_if<std::span<const Value>>(&step.values);
  if (values == nullptr || values->size() != step.places.size() ||
      old.size() != static_cast<std::size_t>(step.length)) {
    throwUnfitStep("an edit of another array");
  }
  if (step.places.empty()) {
    return old;
  }
  std::vector<Value>& copy = arrays.add(std::vector<Value>(old.begin(), old.end()));
  for (std::size_t i = 0; i < step.places.size(); ++i) {
    const int place = step.places[i];
    if (place < 0 || place >= step.length) {
      throwUnfitStep("an edit outside of its array");
    }
    copy[static_cast<std::size_t>(place)] = (*values)[i];
  }
  return copy;
}

void applyEdit(const Step& step, Item& item, OwnedArrays& arrays) {
  item.values = std::visit(
      [&](auto old) { return decltype(item.values)(edited(old, step, arrays)); }, item.values);
  item.mustBeTransmitted = step.mustBeTransmitted;
}

}  // namespace

std::vector<Step> stepsBetween(const Items& from, const Items& to, OwnedArrays& arrays) {
  std::vector<Step> steps;
  auto old = from.all.begin();
  for (const auto& [key, item] : to.all) {
    for (; old != from.all.end() && old->first < key; ++old) {
      steps.push_back({old->first, Operation::remove, false, 0, {}, {}});
    }
    if (old == from.all.end() || key < old->first) {
      steps.push_back(replacing(key, item));
      continue;
    }
    if (!areSame(old->second, item)) {
      steps.push_back(changing(key, old->second, item, arrays));
    }
    ++old;
  }
  for (; old != from.all.end(); ++old) {
    steps.push_back({old->first, Operation::remove, false, 0, {}, {}});
  }
  return steps;
}

void apply(const std::vector<Step>& steps, Items& items, OwnedArrays& arrays) {
  for (const Step& step : steps) {
    if (step.operation == Operation::replace) {
      items.all[step.key] = {step.values, step.mustBeTransmitted};
      continue;
    }
    const auto item = items.all.find(step.key);
    if (item == items.all.end()) {
      throwUnfitStep("there is nothing to change");
    }
    if (step.operation == Operation::remove) {
      items.all.erase(item);
    } else {
      applyEdit(step, item->second, arrays);
    }
  }
}

}  // namespace orvml::detail
