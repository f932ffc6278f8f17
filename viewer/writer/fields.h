#pragma once

#include <orvml/view.hpp>

#include "attribute_budget.h"
#include "json.h"
#include "packed_arrays.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvml_report {

/// What has a value each: all nodes or cells of a kind, or those of some numbers.
struct Carriers {
  orvml::Entity entity = orvml::Entity::nodes;
  std::int64_t ofDocument = 0;                ///< how many the document has
  const std::vector<int>* numbers = nullptr;  ///< null: 0, 1, 2, ... up to `count`
  std::size_t count = 0;
};

/// The attributes that have a value for each node or cell. Notes tell of others.
[[nodiscard]] Json attributeFields(const orvml::Attributes& attributes, const Carriers& carriers,
                                   AttributeBudget& budget, PackedArrays& arrays,
                                   std::vector<std::string>& notes);

[[nodiscard]] Json measureField(std::string_view name, std::span<const float> values,
                                PackedArrays& arrays);

/// 0 for what is the same in both documents, 1 for other values, 2 for what is in one alone.
[[nodiscard]] Json differenceField(std::span<const std::uint8_t> marks, PackedArrays& arrays);

}  // namespace orvml_report
