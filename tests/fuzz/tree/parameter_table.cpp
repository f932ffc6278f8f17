// The table of scalar parameters of a tree.
#include "fuzz/harness/choice.h"
#include "fuzz/tree/datasets.h"
#include "fuzz/tree/datatypes.h"
#include "fuzz/tree/values.h"

#include <algorithm>
#include <cstring>

namespace orvml_io_tests {

namespace {

using orvml_io::DatatypeId;

std::string recordName(unsigned choice, std::size_t record) {
  const std::string normal = "size" + std::to_string(record);
  if (choice == 0) {
    return normal;  // most are, of thousands
  }
  const std::string deviations[] = {"",
                                    "same",
                                    std::string(79, 'n'),
                                    std::string(200, 'n'),
                                    normal + std::string(200, ' '),
                                    "\xff\xfe" + normal};
  return normalOr(deviations, choice, normal);
}

/// Copies bytes to a field of a record, as many as it takes. A field that the record lacks is
/// skipped.
void copyToField(hid_t recordType, const char* field, char* record, const void* bytes,
                 std::size_t count) {
  const int index = H5Tget_member_index(recordType, field);
  if (index < 0) {
    return;
  }
  const auto member = static_cast<unsigned>(index);
  const DatatypeId type(H5Tget_member_type(recordType, member));
  std::memcpy(record + H5Tget_member_offset(recordType, member), bytes,
              std::min(count, H5Tget_size(type.get())));
}

std::vector<char> recordsOf(hid_t type, std::size_t count, unsigned nameChoice,
                            const std::vector<double>& values) {
  const std::size_t bytes = H5Tget_size(type);
  std::vector<char> records(count * bytes);
  for (std::size_t i = 0; i < count; ++i) {
    char* record = records.data() + i * bytes;
    const std::string name = recordName(nameChoice, i);
    copyToField(type, "name", record, name.data(), name.size());
    copyToField(type, "value", record, &values[i], sizeof(double));
  }
  return records;
}

/// A name of variable length is a pointer in memory; such a table stays unwritten.
bool hasNameOfVariableLength(hid_t type) {
  const int index = H5Tget_member_index(type, "name");
  const DatatypeId name(index < 0 ? -1 : H5Tget_member_type(type, static_cast<unsigned>(index)));
  return name.valid() && H5Tis_variable_str(name.get()) > 0;
}

}  // namespace

void makeParameterTable(Tree& tree, hid_t parent, const std::string& name) {
  constexpr std::size_t kMostRecords = 4096;
  const DatasetChoices choices = datasetChoicesFrom(tree.bytes);
  const unsigned nameChoice = tree.bytes.next();
  const DatatypeId type = recordTypeOf(choices.type);
  makeChosenDataset(
      tree, parent, name, choices, type.get(), {2}, [&](hid_t dataset, const Selection& selection) {
        if (H5Tget_class(type.get()) != H5T_COMPOUND || hasNameOfVariableLength(type.get()) ||
            selection.count > kMostRecords) {
          return;
        }
        const std::vector<double> values = doublesOf(choices.values, {0.25, 40}, selection.count);
        const std::vector<char> records =
            recordsOf(type.get(), selection.count, nameChoice, values);
        writeSelection(dataset, selection, type.get(), records.data());
      });
}

}  // namespace orvml_io_tests
