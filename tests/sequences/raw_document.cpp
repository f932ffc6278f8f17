#include "sequences/raw_document.h"

#include "sequences/caller_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace orvml_io_tests {

namespace {

using Extents = std::vector<hsize_t>;
using Names = std::vector<std::string>;

const std::map<ORVML_TYPE_OF_ENTITY, std::string> kGroups = {
    {ORVML_EDGES, "/Edges"}, {ORVML_FACES, "/Faces"}, {ORVML_ELEMENTS, "/Elements"}};

std::string memberOf(const std::string& group, const std::string& name) {
  return std::string(group).append("/").append(name);
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

void expectStored(const RawFile& file, const std::string& path, H5T_class_t typeClass,
                  std::size_t bytes, const Extents& extents) {
  const RawShape shape = file.shape(path);
  EXPECT_EQ(shape.typeClass, typeClass) << path;
  EXPECT_EQ(shape.typeBytes, bytes) << path;
  EXPECT_EQ(shape.isSigned, typeClass == H5T_INTEGER) << path;
  EXPECT_EQ(shape.extents, extents) << path;
}

void expectValues(const RawFile& file, const std::string& path, const std::vector<int>& values) {
  expectStored(file, path, H5T_INTEGER, 4, {values.size()});
  EXPECT_EQ(file.ints(path), values) << path;
}

/// Bit by bit, so that a NaN must keep its payload.
void expectValues(const RawFile& file, const std::string& path, const std::vector<double>& values) {
  expectStored(file, path, H5T_FLOAT, 8, {values.size()});
  EXPECT_TRUE(holds(file.doubles(path).data(), values)) << path;
}

/// A path of the document must lie in the file exactly when there is something to keep.
bool expectPresent(const RawFile& file, const std::string& path, bool isPresent) {
  EXPECT_EQ(file.has(path), isPresent) << path;
  return isPresent && file.has(path);
}

void expectVectors(const RawFile& file, const std::string& group, const NamedVectors& vectors) {
  if (!expectPresent(file, group, !vectors.empty())) {
    return;
  }
  Names names;
  for (const auto& [name, vector] : vectors) {
    names.push_back(name);
    const std::string path = memberOf(group, name);
    std::visit([&file, &path](const auto& values) { expectValues(file, path, values); },
               vector.values);
    EXPECT_EQ(file.attributes(path),
              vector.mustBeTransmitted ? Names{"MustBeTransmitted"} : Names{});
    if (vector.mustBeTransmitted) {
      EXPECT_EQ(file.intAttribute(path, "MustBeTransmitted"), 1);
    }
  }
  EXPECT_EQ(file.members(group), names);
}

void expectNodes(const RawFile& file, const std::string& group, const DocumentModel& document) {
  const NodesModel& nodes = *document.nodes;
  const std::string path = group + "/coordinates";
  expectStored(file, path, H5T_FLOAT, 8,
               {static_cast<hsize_t>(nodes.count), static_cast<hsize_t>(document.dimension)});
  EXPECT_TRUE(holds(file.doubles(path).data(), nodes.coords->values));
  expectVectors(file, group + "/Attributes", nodes.attributes);
}

/// A container is kept when it has type groups, also when they hold no cells.
void expectCells(const RawFile& file, const std::string& group, const CellsModel* cells) {
  if (!expectPresent(file, group, cells != nullptr && cells->groups > 0)) {
    return;
  }
  const std::vector<ElemType>& shapes = cells->shapes->values;
  expectValues(file, group + "/element_types", std::vector<int>(shapes.begin(), shapes.end()));
  expectValues(file, group + "/number_of_elements_by_type", cells->cellsPerGroup->values);
  expectValues(file, group + "/number_of_nodes_by_element", cells->nodesPerCell->values);
  expectValues(file, group + "/connectivities", cells->connectivities->values);
  expectVectors(file, group + "/Attributes", cells->attributes);
}

/// A record of the parameter table, as it lies in the file.
struct Record {
  char name[80];
  double value;
};

std::vector<Record> recordsOf(const RawFile& file, const std::string& path) {
  std::vector<Record> records(static_cast<std::size_t>(file.shape(path).extents.at(0)));
  const hid_t dataset = H5Dopen2(file.id(), path.c_str(), H5P_DEFAULT);
  const hid_t type = H5Dget_type(dataset);
  EXPECT_GE(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, records.data()), 0) << path;
  H5Tclose(type);
  H5Dclose(dataset);
  return records;
}

void expectScalars(const RawFile& file, const std::string& path,
                   const std::map<std::string, double>& scalars) {
  expectStored(file, path, H5T_COMPOUND, sizeof(Record), {scalars.size()});
  const std::vector<Record> records = recordsOf(file, path);
  ASSERT_EQ(records.size(), scalars.size());
  auto record = records.begin();
  for (const auto& [name, value] : scalars) {
    EXPECT_EQ(record->name, name);
    EXPECT_TRUE(holds(&record->value, std::vector<double>{value})) << name;
    ++record;
  }
}

void expectText(const RawFile& file, const std::string& name, const std::string& text) {
  EXPECT_EQ(file.attributeBytes("/", name), text + '\0') << name;
}

void expectRoot(const RawFile& file, const DocumentModel& document) {
  expectText(file, "FORMAT", "ORVMESHLIBRARY");
  expectText(file, "ORVMESHLIBRARY_FORMAT_VERSION", "1.4");
  expectText(file, "ORVML_IO_CREATOR", document.ioCreator);
  expectText(file, "ORVML_MODULE_NAME", document.moduleName);
  expectText(file, "ORVML_MODULE_FORMAT_VERSION", document.moduleFormatVersion);
  EXPECT_EQ(file.attributes("/").size(), 5U);
}

/// The names of what lies directly in the group of a document, in ascending order.
Names membersOf(const DocumentModel& document) {
  Names names = {"Nodes", "dimension", "parameters"};
  for (const auto& [entity, group] : kGroups) {
    const CellsModel* cells = document.cellsOf(entity);
    if (cells != nullptr && cells->groups > 0) {
      names.push_back(nameOf(group));
    }
  }
  if (!document.vectors.empty()) {
    names.emplace_back("ParametersVector");
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string described(const RawFile& file, const std::string& path) {
  std::ostringstream text;
  if (file.isDataset(path)) {
    const RawShape shape = file.shape(path);
    text << "class " << shape.typeClass << " of " << shape.typeBytes << " bytes";
    for (const hsize_t extent : shape.extents) {
      text << " x " << extent;
    }
  } else {
    text << "group";
  }
  for (const std::string& attribute : file.attributes(path)) {
    text << " @" << attribute;
  }
  return text.str();
}

}  // namespace

void expectHolds(const RawFile& file, const std::string& group, const DocumentModel& document) {
  expectRoot(file, document);
  EXPECT_EQ(file.members(group), membersOf(document));
  expectValues(file, group + "/dimension", std::vector<int>{document.dimension});
  expectNodes(file, group + "/Nodes", document);
  for (const auto& [entity, name] : kGroups) {
    expectCells(file, group + name, document.cellsOf(entity));
  }
  expectScalars(file, group + "/parameters", document.scalars);
  expectVectors(file, group + "/ParametersVector", document.vectors);
}

std::map<std::string, std::string> structureOf(const RawFile& file) {
  std::map<std::string, std::string> structure = {{"/", described(file, "/")}};
  Names open = {""};
  while (!open.empty()) {
    const std::string group = open.back();
    open.pop_back();
    for (const std::string& name : file.members(group.empty() ? "/" : group)) {
      const std::string path = memberOf(group, name);
      structure[path] = described(file, path);
      if (file.isGroup(path)) {
        open.push_back(path);
      }
    }
  }
  return structure;
}

}  // namespace orvml_io_tests
