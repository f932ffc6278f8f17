#pragma once

#include <orvml/view.hpp>

#include <cstdint>
#include <string>
#include <string_view>

/// How numbers and parts of a document are called in a page. No locale has a say.
namespace orvml_report {

/// Such as "1,234,567".
[[nodiscard]] std::string grouped(std::int64_t number);

/// Such as "1 node" and "1,200 nodes".
[[nodiscard]] std::string counted(std::int64_t count, std::string_view what);

/// With two digits, such as "0.82".
[[nodiscard]] std::string rounded(double value);

/// "nodes", "edges", "faces" or "elements".
[[nodiscard]] std::string_view nameOf(orvml::Entity entity) noexcept;

/// The same of one of them: "node", "edge", "face" or "element".
[[nodiscard]] std::string_view nameOfOne(orvml::Entity entity) noexcept;

}  // namespace orvml_report
