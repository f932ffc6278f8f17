// A patch in an HDF5 file. The root has the fingerprints; the group of each document has the steps
// as rows of `steps`, the bytes of their names one after the other in `names`, and the arrays of
// step n as `places_n` and `values_n`.
#include "patch/patch_file.h"

#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/read_array.h"
#include "hdf5/silence.h"

#include <utility>

namespace orvml::detail {

namespace {

namespace layout = orvml_io::layout;
using orvml_io::kOk;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

constexpr char kMarker[] = "ORVML_PATCH 1";
constexpr char kNoDocument[] = "none";  // said, so that a text that got lost is none
constexpr char kSteps[] = "steps";
constexpr char kNames[] = "names";
constexpr std::size_t kNumbersOfAStep = 6;

/// The type of a step's array, as files number it: the alternatives of its values.
constexpr int kDoubles = 1;

std::string attributeOf(Kind kind, const char* which) {
  return std::string(kind == Kind::input ? "INPUT_" : "OUTPUT_") + which;
}

template <class Value>
bool writeArray(const OpenGroup& group, const std::string& name, std::span<const Value> values) {
  return values.empty() ||
         orvml_io::createMember(group, name, static_cast<int>(values.size()), values.data())
             .valid();
}

bool writeArraysOf(const OpenGroup& group, std::size_t number, const Step& step) {
  return writeArray(group, "places_" + std::to_string(number), step.places) &&
         std::visit(
             [&](auto values) {
               return writeArray(group, "values_" + std::to_string(number), values);
             },
             step.values);
}

bool writeSteps(const OpenGroup& group, const std::vector<Step>& steps) {
  std::vector<int> rows;
  std::vector<int> names;
  bool areWritten = true;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Step& step = steps[i];
    rows.insert(rows.end(), {static_cast<int>(step.key.section), static_cast<int>(step.operation),
                             static_cast<int>(step.values.index()), step.mustBeTransmitted ? 1 : 0,
                             step.length, static_cast<int>(step.key.name.size())});
    const std::vector<int> name = bytesOfText(step.key.name);
    names.insert(names.end(), name.begin(), name.end());
    areWritten = areWritten && writeArraysOf(group, i, step);
  }
  return areWritten && writeArray(group, kSteps, std::span<const int>(rows)) &&
         writeArray(group, kNames, std::span<const int>(names));
}

bool writeDigest(hid_t file, const std::string& name, const std::optional<std::string>& digest) {
  return orvml_io::setText(file, name.c_str(), digest ? digest->c_str() : kNoDocument) == kOk;
}

[[noreturn]] void throwDamaged(const OpenedFile& file, const std::string& object) {
  throw Error(Code::patchDamaged, "is a patch that cannot be read: " + object,
              {file.path(), object, {}});
}

std::optional<std::string> readDigest(const OpenedFile& file, const std::string& name) {
  std::optional<std::string> digest = orvml_io::readRootText(file.id(), name.c_str());
  if (!digest) {
    throwDamaged(file, name);
  }
  return digest == kNoDocument ? std::nullopt : digest;
}

/// Reads the arrays of a patch, none of which takes more memory than the file has a right to.
class PatchReader {
 public:
  PatchReader(const OpenedFile& file, Kind kind, OwnedArrays& arrays)
      : opened_(file), source_(file.id()), object_(groupOf(kind)), arrays_(arrays) {}

  std::vector<Step> readSteps() {
    const orvml_io::Opened<orvml_io::GroupId> opened =
        source_.openGroup(source_.root(), object_.c_str());
    if (opened.found == orvml_io::Found::absent) {
      return {};
    }
    if (!opened.isObject()) {
      throwDamaged(opened_, object_);
    }
    const OpenGroup group = source_.root().below(opened.id.get(), object_);
    const std::span<const int> rows = read<int>(group, kSteps, arrays_.readInts);
    const std::span<const int> names = read<int>(group, kNames, arrays_.readInts);
    if (rows.size() % kNumbersOfAStep != 0) {
      throwDamaged(opened_, object_ + "/" + kSteps);
    }
    std::vector<Step> steps;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < rows.size() / kNumbersOfAStep; ++i) {
      steps.push_back(stepOf(rows.subspan(i * kNumbersOfAStep, kNumbersOfAStep), names, begin));
      readArraysOf(group, i, steps.back());
    }
    return steps;
  }

 private:
  /// An array that is not there is empty.
  template <class Value>
  std::span<const Value> read(const OpenGroup& group, const std::string& name,
                              std::deque<orvml_io::NewArray<Value>>& kept) {
    const orvml_io::Opened<orvml_io::DatasetId> dataset = source_.openMember(group, name);
    if (dataset.found == orvml_io::Found::absent) {
      return {};
    }
    const std::optional<orvml_io::Extent> extent =
        dataset.isObject() ? orvml_io::extentOf(dataset.id.get()) : std::nullopt;
    const std::optional<int> length = extent ? orvml_io::vectorLength(*extent) : std::nullopt;
    if (!length) {
      throwDamaged(opened_, object_ + "/" + name);
    }
    orvml_io::NewArray<Value> values = orvml_io::tryReadArray<Value>(
        source_, group, name.c_str(), dataset.id.get(), *extent, *length);
    if (values == nullptr) {
      throwDamaged(opened_, object_ + "/" + name);
    }
    kept.push_back(std::move(values));
    return {kept.back().get(), static_cast<std::size_t>(*length)};
  }

  Step stepOf(std::span<const int> row, std::span<const int> names, std::size_t& begin) {
    const auto isBelow = [](int value, auto end) {
      return value >= 0 && value < static_cast<int>(end);
    };
    // What is removed has no array.
    const bool isBare = row[1] != static_cast<int>(Operation::remove) ||
                        (row[2] == 0 && row[3] == 0 && row[4] == 0);
    const bool isNamed = row[5] >= 0 && static_cast<std::size_t>(row[5]) <= names.size() - begin;
    if (!isBelow(row[0], Section::endOfSections) || !isBelow(row[1], Operation::endOfOperations) ||
        !isBelow(row[2], 2) || !isBelow(row[3], 2) || row[4] < 0 || !isNamed || !isBare) {
      throwDamaged(opened_, object_ + "/" + kSteps);
    }
    std::optional<std::string> name =
        textOfBytes(names.subspan(begin, static_cast<std::size_t>(row[5])));
    if (!name) {
      throwDamaged(opened_, object_ + "/" + kNames);
    }
    begin += static_cast<std::size_t>(row[5]);
    Step step;
    step.key = {static_cast<Section>(row[0]), std::move(*name)};
    step.operation = static_cast<Operation>(row[1]);
    step.values = row[2] == kDoubles ? decltype(step.values)(std::span<const double>())
                                     : std::span<const int>();
    step.mustBeTransmitted = row[3] == 1;
    step.length = row[4];
    return step;
  }

  void readArraysOf(const OpenGroup& group, std::size_t number, Step& step) {
    if (step.operation == Operation::remove) {
      return;
    }
    const std::string values = "values_" + std::to_string(number);
    if (step.values.index() == kDoubles) {
      step.values = read<double>(group, values, arrays_.readDoubles);
    } else {
      step.values = read<int>(group, values, arrays_.readInts);
    }
    step.places = read<int>(group, "places_" + std::to_string(number), arrays_.readInts);
    const std::size_t found = std::visit([](auto array) { return array.size(); }, step.values);
    const std::size_t needed = step.operation == Operation::edit
                                   ? step.places.size()
                                   : static_cast<std::size_t>(step.length);
    if (found != needed) {
      throwDamaged(opened_, object_ + "/" + values);
    }
  }

  const OpenedFile& opened_;
  SourceFile source_;
  std::string object_;
  OwnedArrays& arrays_;
};

}  // namespace

bool markAsPatch(hid_t file) { return orvml_io::setText(file, layout::kFormat, kMarker) == kOk; }

bool writeDocumentPatch(hid_t file, Kind kind, const DocumentPatch& patch) {
  if (!writeDigest(file, attributeOf(kind, "BASE"), patch.base) ||
      !writeDigest(file, attributeOf(kind, "RESULT"), patch.result)) {
    return false;
  }
  if (patch.steps.empty()) {
    return true;
  }
  const OpenGroup root(file, 0);
  const orvml_io::GroupId group = orvml_io::createGroupIfAbsent(root, groupOf(kind));
  return group.valid() && writeSteps(root.below(group.get(), groupOf(kind)), patch.steps);
}

void requirePatch(const OpenedFile& file) {
  const orvml_io::Silence silence;
  if (orvml_io::readRootText(file.id(), layout::kFormat) != kMarker) {
    throw Error(Code::noPatch, "is not a patch", {file.path(), {}, {}});
  }
}

DocumentPatch readDocumentPatch(const OpenedFile& file, Kind kind, OwnedArrays& arrays) {
  const orvml_io::Silence silence;
  DocumentPatch patch;
  patch.base = readDigest(file, attributeOf(kind, "BASE"));
  patch.result = readDigest(file, attributeOf(kind, "RESULT"));
  patch.steps = PatchReader(file, kind, arrays).readSteps();
  return patch;
}

}  // namespace orvml::detail
