#pragma once

#include "inputs/content.h"
#include "references/loaded.h"

#include <functional>

namespace orvml_io_bench {

/// A mesh format of another library. It carries the mesh with its node and cell values; parameters
/// where the format has a place for them.
struct OtherFormat {
  std::string name;
  std::function<void(const std::string& path, const Content& content)> write;
  std::function<Loaded(const std::string& path, const Content& content)> read;
};

/// The formats whose libraries were found when this program was built.
const std::vector<OtherFormat>& otherFormats();

}  // namespace orvml_io_bench
