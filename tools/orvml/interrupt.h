#pragma once

#include <filesystem>

namespace orvml_tool {

/// From now on SIGINT, SIGTERM and SIGHUP remove what was begun and then end the program as they do
/// without this. Has to be called before a thread is started.
void watchInterrupts();

/// A folder that is removed, with what is in it, when the program is interrupted.
void removeOnInterrupt(const std::filesystem::path& folder);

}  // namespace orvml_tool
