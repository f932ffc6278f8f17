#include "support/open_ids.h"

#include <hdf5.h>

#include <ostream>
#include <vector>

namespace orvml_io_tests {

namespace {

long countOf(unsigned kind) {
  return static_cast<long>(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), kind));
}

IdCounts countAll() {
  return {countOf(H5F_OBJ_FILE), countOf(H5F_OBJ_GROUP), countOf(H5F_OBJ_DATASET),
          countOf(H5F_OBJ_DATATYPE), countOf(H5F_OBJ_ATTR)};
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const IdCounts& counts) {
  return stream << "{files " << counts.files << ", groups " << counts.groups << ", datasets "
                << counts.datasets << ", types " << counts.types << ", attributes "
                << counts.attributes << "}";
}

OpenIds::OpenIds() : before_(countAll()) {}

OpenIds::~OpenIds() { closeAll(); }

IdCounts OpenIds::opened() const {
  const IdCounts now = countAll();
  return {now.files - before_.files, now.groups - before_.groups, now.datasets - before_.datasets,
          now.types - before_.types, now.attributes - before_.attributes};
}

void OpenIds::closeAll() {
  // Objects before files: a file closes for good only when nothing in it is open.
  for (const unsigned kind :
       {H5F_OBJ_ATTR, H5F_OBJ_DATASET, H5F_OBJ_GROUP, H5F_OBJ_DATATYPE, H5F_OBJ_FILE}) {
    const long count = countOf(kind);
    if (count <= 0) {
      continue;
    }
    std::vector<hid_t> ids(static_cast<std::size_t>(count));
    H5Fget_obj_ids(static_cast<hid_t>(H5F_OBJ_ALL), kind, ids.size(), ids.data());
    for (const hid_t id : ids) {
      while (H5Iis_valid(id) > 0 && H5Idec_ref(id) > 0) {
      }
    }
  }
}

}  // namespace orvml_io_tests
