#include "references/other_formats.h"

namespace orvml_io_bench {

const std::vector<OtherFormat>& otherFormats() {
  static const std::vector<OtherFormat> formats;
  return formats;
}

}  // namespace orvml_io_bench
