#include "convert/msh_data.h"

#include "console.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace orvml_tool {

namespace {

// Each section may hold a value of one cell alone and still becomes an array over all of them.
// Files that people have stay far below this; others are made to fill the memory.
constexpr std::size_t kMostValuesPerByte = 16;
constexpr std::size_t kValuesOfSmallFiles = std::size_t{1} << 20U;
constexpr std::size_t kBytesOfArray = 256;  // beside its values

std::string arrayNamed(const std::string& name) { return "array '" + name + "'"; }

std::string_view unquoted(std::string_view line) {
  const std::size_t begin = line.find('"');
  const std::size_t end = line.rfind('"');
  return begin == end ? line : line.substr(begin + 1, end - begin - 1);
}

}  // namespace

/// The values of one name, time step and number of components, which sections may share.
struct MshData::Field {
  std::string name;
  int step = 0;
  std::vector<std::vector<double>> components;
  std::vector<bool> isGiven;
  std::vector<const Section*> sections;
  std::size_t strangers = 0;  // values of no node or cell that is there
};

void MshData::note(MshBytes& bytes, std::string_view section) {
  constexpr std::size_t kShortest = 2;  // a digit and the end of its line
  Section noted;
  noted.section = section;
  const auto names = bytes.count(bytes.textValue<std::uint64_t>(), 1, kShortest);
  (void)bytes.line();
  for (std::size_t i = 0; i < names; ++i) {
    const std::string_view line = bytes.line();
    if (i == 0) {
      noted.name = unquoted(line);
    }
  }
  const auto times = bytes.count(bytes.textValue<std::uint64_t>(), 1, kShortest);
  for (std::size_t i = 0; i < times; ++i) {
    numberOfTimes_ += bytes.textValue<double>() != 0.0 ? 1 : 0;
  }
  const auto integers = bytes.count(bytes.textValue<std::uint64_t>(), 1, kShortest);
  std::array<int, 3> told = {};
  for (std::size_t i = 0; i < integers; ++i) {
    const int integer = bytes.textValue<int>();
    if (i < told.size()) {
      told[i] = integer;
    }
  }
  if (told[1] < 0 || told[2] < 0 || (told[1] == 0 && told[2] > 0)) {
    bytes.refuse("a section of values has no number of components and entries");
  }
  noted.step = told[0];
  noted.components = static_cast<std::size_t>(told[1]);
  (void)bytes.line();
  noted.entries = bytes.count(static_cast<std::uint64_t>(told[2]),
                              sizeof(int) + noted.components * sizeof(double),
                              kShortest * (1 + noted.components));
  noted.position = bytes.position();
  if (bytes.isText()) {
    bytes.passSection(section);
  } else {
    bytes.pass<char>(noted.entries * (sizeof(int) + noted.components * sizeof(double)));
    bytes.endSection(section);
  }
  if (noted.entries > 0) {
    sections_.push_back(noted);
  }
}

std::vector<MshData::Field> MshData::fieldsOf(std::string_view section, std::size_t size,
                                              const MshBytes& bytes) {
  std::vector<Field> fields;
  std::map<std::tuple<std::string, int, std::size_t>, std::size_t> known;
  for (const Section& noted : sections_) {
    if (noted.section != section) {
      continue;
    }
    const auto [found, isNew] =
        known.try_emplace({noted.name, noted.step, noted.components}, fields.size());
    if (isNew) {
      Field& field = fields.emplace_back();
      field.name = noted.name;
      field.step = noted.step;
      valuesBytes_ += noted.components * (size * sizeof(double) + kBytesOfArray);
      if (valuesBytes_ > kMostValuesPerByte * bytes.size() + kValuesOfSmallFiles) {
        bytes.refuse("its values would need far more memory than the file has bytes");
      }
      field.components.assign(noted.components,
                              std::vector<double>(size, std::numeric_limits<double>::quiet_NaN()));
      field.isGiven.assign(size, false);
    }
    fields[found->second].sections.push_back(&noted);
  }
  return fields;
}

void MshData::read(const Section& section, MshBytes& bytes, const TagIndex& tags, Field& field) {
  bytes.goTo(section.position);
  for (std::size_t entry = 0; entry < section.entries; ++entry) {
    const int tag = bytes.value<int>();
    const std::size_t place =
        tag < 0 ? TagIndex::kNone : tags.placeOf(static_cast<std::uint64_t>(tag));
    if (place == TagIndex::kNone) {
      ++field.strangers;
      bytes.pass<double>(section.components);
      continue;
    }
    field.isGiven[place] = true;
    for (std::vector<double>& values : field.components) {
      values[place] = bytes.value<double>();
    }
  }
  if (bytes.isText()) {
    bytes.endSection(section.section);
  }
}

MshData::Steps MshData::stepsOf(const std::vector<Field>& fields, ConversionReport& report) {
  Steps steps;
  for (const Field& field : fields) {
    steps[field.name].insert(field.step);
  }
  for (const auto& [name, all] : steps) {
    if (all.size() > 1) {
      report.add(orvml::Fate::split, arrayNamed(name), static_cast<std::int64_t>(all.size()),
                 "has " + std::to_string(all.size()) + " time steps, each of which becomes one: '" +
                     name + ".step" + std::to_string(*all.begin()) + "' and so on");
    }
  }
  return steps;
}

void MshData::report(const Field& field, ConversionReport& report) {
  if (field.strangers > 0) {
    report.add(orvml::Fate::dropped, arrayNamed(field.name),
               static_cast<std::int64_t>(field.strangers),
               "loses " + counted(static_cast<std::int64_t>(field.strangers), "value") +
                   " of nodes or elements that are not there, or were dropped");
  }
  if (field.components.size() > 1) {
    const std::string count = std::to_string(field.components.size());
    report.add(orvml::Fate::split, arrayNamed(field.name),
               static_cast<std::int64_t>(field.components.size()),
               "has " + count + " components, each of which becomes one: '" + field.name +
                   ".0' and so on");
  }
}

std::vector<ForeignArray> MshData::arraysOf(std::string_view section, MshBytes& bytes,
                                            const TagIndex& tags, ConversionReport& report) {
  std::vector<Field> fields = fieldsOf(section, tags.size(), bytes);
  const Steps steps = stepsOf(fields, report);
  std::vector<ForeignArray> arrays;
  for (Field& field : fields) {
    for (const Section* noted : field.sections) {
      read(*noted, bytes, tags, field);
    }
    MshData::report(field, report);
    const bool hasSteps = steps.at(field.name).size() > 1;
    const std::string name = field.name + (hasSteps ? ".step" + std::to_string(field.step) : "");
    const std::size_t components = field.components.size();
    for (std::size_t i = 0; i < components; ++i) {
      arrays.push_back({components > 1 ? name + "." + std::to_string(i) : name,
                        std::move(field.components[i]), field.isGiven});
    }
  }
  return arrays;
}

}  // namespace orvml_tool
