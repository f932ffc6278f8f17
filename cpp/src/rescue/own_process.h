#pragma once

#include <orvml/rescue.hpp>

#include <filesystem>
#include <functional>

namespace orvml::detail {

/// Runs work in a child process and hands over its report, or what it throws. The child prints
/// nothing, and leaves neither a core nor open files behind.
///
/// Throws Code::fileDamaged, with the path, when the child fell; Code::fileUnreachable when there
/// can be none.
[[nodiscard]] RescueReport inOwnProcess(const std::function<RescueReport()>& work,
                                        const std::filesystem::path& path);

}  // namespace orvml::detail
