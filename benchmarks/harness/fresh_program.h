#pragma once

#include "harness/measurement.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace orvml_io_bench {

/// What this program can perform on a file when it is started for nothing else, by name.
using Task = std::function<void(const std::string& path, Measurement&)>;
using Tasks = std::map<std::string, Task>;

/// A run that waits and then starts this program anew for one task, as a user starts a program:
/// none of its memory has been in use just before. While it waits, the host of a virtual machine
/// may take back what earlier runs have left.
Run startedAfresh(std::string task, std::string path, std::chrono::seconds pause);

/// The run with huge pages switched off for its process and for those that it starts.
Run withoutHugePages(Run run);

/// The run with the allocator of the programs that it starts asking for huge pages for every large
/// block, whatever they cost.
Run withHugePagesEverywhere(Run run);

/// Performs a task when this program was started for one. Returns the status to end with, and none
/// when it was started by a user.
std::optional<int> performTask(int count, char** arguments, const Tasks& tasks);

}  // namespace orvml_io_bench
