// What a file holds, told without reading its values.
#include <orvml/orvml.hpp>

#include "cpp_files/sample.h"
#include "hostile/valid_files.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace orvml_io_tests {
namespace {

using orvml::Description;
using orvml::Layout;

template <class Vectors>
std::string factsOfVectors(const Vectors& vectors) {
  std::ostringstream text;
  for (const auto& vector : vectors) {
    if constexpr (requires { vector.size(); }) {
      text << vector.name << ' ' << vector.holdsInts() << ' ' << vector.size();
    } else {
      text << vector.name << ' ' << vector.holdsInts << ' ' << vector.size;
    }
    text << ' ' << vector.mustBeTransmitted << ", ";
  }
  return text.str();
}

std::string factsOfCells(const orvml::CellsView& cells) {
  std::ostringstream text;
  text << cells.size() << ':';
  for (const orvml::CellGroup& group : cells.groups()) {
    text << name(group.shape()) << ' ' << group.nodesPerCell() << ' ' << group.size() << ", ";
  }
  return text.str() + factsOfVectors(cells.attributes());
}

std::string factsOfCells(const orvml::CellsDescription& cells) {
  std::ostringstream text;
  text << cells.size << ':';
  for (const orvml::GroupDescription& group : cells.groups) {
    text << name(group.shape) << ' ' << group.nodesPerCell << ' ' << group.cells << ", ";
  }
  return text.str() + factsOfVectors(cells.attributes);
}

template <class Document>
void expectSameFacts(const orvml::DocumentDescription& told, const Document& document) {
  EXPECT_EQ(told.kind, document.kind());
  EXPECT_EQ(told.moduleName, document.identification().moduleName);
  EXPECT_EQ(told.moduleFormatVersion, document.identification().moduleFormatVersion);
  EXPECT_EQ(told.creator, document.identification().creator);
  EXPECT_EQ(told.dimension, document.dimension());
  EXPECT_EQ(told.nodes.size, document.nodes().size());
  EXPECT_EQ(factsOfVectors(told.nodes.attributes), factsOfVectors(document.nodes().attributes()));
  EXPECT_EQ(factsOfCells(told.edges), factsOfCells(document.edges()));
  EXPECT_EQ(factsOfCells(told.faces), factsOfCells(document.faces()));
  EXPECT_EQ(factsOfCells(told.elements), factsOfCells(document.elements()));
  EXPECT_EQ(factsOfVectors(told.vectorParameters), factsOfVectors(document.vectorParameters()));
  ASSERT_EQ(told.parameters.size(), document.parameters().size());
  for (const orvml::ParameterDescription& parameter : told.parameters) {
    EXPECT_EQ(parameter.value, document.parameters().at(parameter.name));
  }
}

class DescribedFiles : public ::testing::TestWithParam<ValidFile> {};

TEST_P(DescribedFiles, AreToldAsTheyAreLoaded) {
  const TempFile temp;
  GetParam().make(temp.path());
  const orvml::Loaded loaded = orvml::load(temp.path());
  const OpenIds ids;

  const Description description = orvml::describe(temp.path());

  EXPECT_EQ(ids.opened(), IdCounts());
  EXPECT_EQ(description.formatVersion, GetParam().version);
  EXPECT_EQ(description.fileBytes, std::filesystem::file_size(temp.path()));
  EXPECT_TRUE(description.findings.empty());
  ASSERT_TRUE(description.input && description.output);
  expectSameFacts(*description.input, *loaded.input);
  expectSameFacts(*description.output, *loaded.output);
}

INSTANTIATE_TEST_SUITE_P(Files, DescribedFiles, ::testing::ValuesIn(validFiles()), RowName());

TEST(DescribedArrays, TellHowTheyAreStored) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());

  const Description description = orvml::describe(temp.path());

  const orvml::StoredArray& coordinates = description.input->nodes.coordinates.value();
  EXPECT_EQ(coordinates.object, "/OrvInput/Nodes/coordinates");
  EXPECT_EQ(coordinates.extents, (std::vector<std::uint64_t>{5, 3}));
  EXPECT_EQ(coordinates.type, "float64");
  EXPECT_EQ(coordinates.layout, Layout::contiguous);
  EXPECT_TRUE(coordinates.filters.empty());
  EXPECT_EQ(coordinates.storedBytes, 120U);
  const orvml::StoredArray& indices = description.input->faces.nodeIndices.value();
  EXPECT_EQ(indices.type, "int32");
  EXPECT_EQ(indices.extents, std::vector<std::uint64_t>{10});
  EXPECT_EQ(description.input->nodes.attributes[1].stored.object,
            "/OrvInput/Nodes/Attributes/layer");
}

/// A type of file and what is said of it.
struct Type {
  const char* name;
  hid_t type;
  const char* text;
};

std::ostream& operator<<(std::ostream& stream, const Type& type) { return stream << type.name; }

class DescribedTypes : public ::testing::TestWithParam<Type> {};

TEST_P(DescribedTypes, AreNamed) {
  const TempFile temp;
  RawFile file = RawFile::createMarked(temp.path());
  file.documentGroup("/OrvInput", 3);
  file.group("/OrvInput/ParametersVector");
  const std::vector<char> zeros(64);
  file.dataset("/OrvInput/ParametersVector/v", GetParam().type, {4}, zeros.data());
  file.close();

  const Description description = orvml::describe(temp.path());

  ASSERT_EQ(description.input->vectorParameters.size(), 1U);
  EXPECT_EQ(description.input->vectorParameters[0].stored.type, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Types, DescribedTypes,
    ::testing::Values(Type{"Float64", H5T_IEEE_F64LE, "float64"},
                      Type{"Float32", H5T_IEEE_F32LE, "float32"},
                      Type{"Float64BigEndian", H5T_IEEE_F64BE, "float64, big-endian"},
                      Type{"Int8", H5T_STD_I8LE, "int8"}, Type{"Int16", H5T_STD_I16LE, "int16"},
                      Type{"Int32BigEndian", H5T_STD_I32BE, "int32, big-endian"},
                      Type{"Int64", H5T_STD_I64LE, "int64"},
                      Type{"Uint32", H5T_STD_U32LE, "uint32"}),
    RowName());

TEST(DescribedArrays, TellTheirLayoutsAndFilters) {
  const TempFile temp;
  RawFile file = RawFile::createMarked(temp.path());
  file.documentGroup("/OrvInput", 3);
  file.group("/OrvInput/ParametersVector");
  const hsize_t length = 4;
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const auto create = [&](const char* name, hid_t creation) {
    const std::string path = std::string("/OrvInput/ParametersVector/") + name;
    H5Dclose(H5Dcreate2(file.id(), path.c_str(), H5T_NATIVE_INT, space, H5P_DEFAULT, creation,
                        H5P_DEFAULT));
  };
  const hid_t compact = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_layout(compact, H5D_COMPACT);
  create("a", compact);
  const hid_t filtered = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(filtered, 1, &length);
  H5Pset_shuffle(filtered);
  H5Pset_deflate(filtered, 5);
  create("b", filtered);
  H5Pclose(compact);
  H5Pclose(filtered);
  H5Sclose(space);
  file.close();

  const Description description = orvml::describe(temp.path());

  const auto& vectors = description.input->vectorParameters;
  ASSERT_EQ(vectors.size(), 2U);
  EXPECT_EQ(vectors[0].stored.layout, Layout::compact);
  EXPECT_EQ(vectors[1].stored.layout, Layout::chunked);
  EXPECT_EQ(vectors[1].stored.filters, (std::vector<std::string>{"shuffle", "deflate"}));
  EXPECT_EQ(vectors[1].size, 4);
}

TEST(DescribedFiles, MayHoldNoDocument) {
  const TempFile temp;
  { const RawFile file = RawFile::createMarked(temp.path()); }

  const Description description = orvml::describe(temp.path());

  EXPECT_FALSE(description.input || description.output);
  EXPECT_TRUE(description.findings.empty());
}

TEST(DescribedFiles, TellWhatIsNotAsTheFormatSays) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());
  RawFile file = RawFile::openForWriting(temp.path());
  file.remove("/OrvInput/Faces/connectivities");
  file.intVector("/OrvInput/Faces/connectivities", std::vector<int>(17));
  file.close();

  const Description description = orvml::describe(temp.path());

  ASSERT_EQ(description.findings.size(), 1U);
  EXPECT_EQ(description.findings[0].object, "/OrvInput/Faces/connectivities");
}

/// The bytes that this process has had the system read so far.
std::uint64_t bytesRead() {
  std::ifstream counts("/proc/self/io");
  std::string name;
  std::uint64_t count = 0;
  counts >> name >> count;  // "rchar:", the first line
  return count;
}

std::uint64_t bytesReadByDescribing(int nodes) {
  const TempFile temp;
  orvml::save(temp.path(), inputOfNodes(nodes), {.flush = false});
  const std::uint64_t before = bytesRead();
  EXPECT_EQ(orvml::describe(temp.path()).input->nodes.size, nodes);
  return bytesRead() - before;
}

// 48 bytes a node: a hundred kilobytes, and fifty megabytes.
TEST(DescribedFiles, AreReadNoMoreWhenTheyAreLarge) {
  const std::uint64_t ofSmall = bytesReadByDescribing(2000);
  const std::uint64_t ofLarge = bytesReadByDescribing(1000000);

  EXPECT_LT(ofLarge, ofSmall + 4096);
  EXPECT_LT(ofLarge, 100000U);
}

}  // namespace
}  // namespace orvml_io_tests
