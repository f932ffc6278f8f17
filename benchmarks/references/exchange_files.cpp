#include "references/exchange_files.h"

#include <hdf5.h>

#include <cstring>

namespace orvml_io_bench {

std::vector<ParameterRecord> recordsOf(const Content& content) {
  std::vector<ParameterRecord> records(content.scalars.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto& [name, value] = content.scalars[i];
    std::memcpy(records[i].name, name.c_str(), name.size() + 1);
    records[i].value = value;
  }
  return records;
}

std::vector<std::string> linkNames(long long group) {
  std::vector<std::string> names;
  (void)H5Literate(
      group, H5_INDEX_NAME, H5_ITER_INC, nullptr,
      [](hid_t, const char* name, const H5L_info_t*, void* data) -> herr_t {
        static_cast<std::vector<std::string>*>(data)->emplace_back(name);
        return 0;
      },
      &names);
  return names;
}

}  // namespace orvml_io_bench
