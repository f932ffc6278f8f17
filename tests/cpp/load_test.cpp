// What load() gives: documents of every kind of file, with their flags, and nothing left open.
#include <orvml/orvml.hpp>

#include "cpp/content.h"
#include "cpp/errors.h"
#include "cpp/sample_documents.h"
#include "files/exchange_file_fixture.h"
#include "hostile/valid_files.h"

#include <algorithm>
#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Entity;
using orvml::Input;
using orvml::LoadOptions;
using orvml::Policy;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

constexpr LoadOptions kTolerant = {.policy = Policy::tolerant};

class Load : public ExchangeFileTest {
 protected:
  /// Loads the file of the test, of which nothing may stay open.
  orvml::Loaded loaded(const LoadOptions& options = {}) const {
    orvml::Loaded result = orvml::load(path(), options);
    EXPECT_EQ(opened(), IdCounts());
    return result;
  }
};

TEST_F(Load, GivesTheInputAlone) {
  orvml::save(path(), fullInput());

  EXPECT_EQ(contentOf(loaded()), contentOf(fullInput()) + "no output\n");
  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(fullInput()));
}

TEST_F(Load, GivesTheOutputAlone) {
  orvml::save(path(), mixedOutput());

  EXPECT_EQ(contentOf(loaded()), "no input\n" + contentOf(mixedOutput()));
  EXPECT_EQ(contentOf(orvml::loadOutput(path())), contentOf(mixedOutput()));
}

// The identification stands once in a file; it is that of the output, which is written last.
TEST_F(Load, GivesBoth) {
  Input input = fullInput();
  orvml::save(path(), input, mixedOutput());

  input.setIdentification({"m", "1", "c"});
  EXPECT_EQ(contentOf(loaded()), contentOf(input) + contentOf(mixedOutput()));
  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(input));
}

TEST_F(Load, TakesADocumentWithoutNodesParametersAndAllElse) {
  const Input input({"m", "1", "c"}, 2);
  orvml::save(path(), input);

  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(input));
  EXPECT_TRUE(loaded(kTolerant).findings.empty());
}

TEST_F(Load, TakesVectorParametersWithoutScalarOnes) {
  Input input({"m", "1", "c"}, 2);
  input.setVectorParameter("layers", Ints{1, 2});
  orvml::save(path(), input);

  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(input));
}

TEST_F(Load, BringsCellsOfNoNodesBack) {
  Input input({"m", "1", "c"}, 3);
  input.setCells(Entity::elements, {{orvml::Shape::sphere, 0, 3}}, Ints());
  orvml::save(path(), input);

  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(input));
}

TEST_F(Load, BringsFlagsBackThatTheFlatInterfaceWrote) {
  const BuiltDocument built = fullDocument();
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path(), built.handle()), 0);

  EXPECT_EQ(contentOf(loaded()), contentOf(fullInput()) + "no output\n");
}

TEST_F(Load, SavedOverItselfGivesTheSameAgain) {
  orvml::save(path(), fullInput());

  orvml::save(path(), orvml::loadInput(path()));

  EXPECT_EQ(contentOf(orvml::loadInput(path())), contentOf(fullInput()));
}

TEST_F(Load, GivesATolerantReaderWhatCanBeRead) {
  RawFile file = smallInput();
  file.remove("/OrvInput/parameters");
  file.doubleVector("/OrvInput/parameters", {0.5});
  file.remove("/OrvInput/Faces/connectivities");
  file.close();

  const orvml::Loaded found = loaded(kTolerant);

  ASSERT_TRUE(found.input.has_value());
  EXPECT_EQ(found.input->nodes().size(), 3);
  EXPECT_TRUE(found.input->faces().groups().empty());
  ASSERT_EQ(found.findings.size(), 2U);
  EXPECT_EQ(found.findings[0].sentence, "/OrvInput/Faces/connectivities is missing");
  EXPECT_EQ(found.findings[1].sentence, "/OrvInput/parameters is no table of names and values");
  EXPECT_EQ(codeOf([this] { (void)loaded(); }), "orvml.object.missing");
}

TEST_F(Load, GivesATolerantReaderNoDocumentOfAWrongDimension) {
  RawFile file = smallInput();
  replaceInts(file, "/OrvInput/dimension", {4});
  addSmallDocument(file, "/OrvOutput");
  file.close();

  const orvml::Loaded found = loaded(kTolerant);

  EXPECT_FALSE(found.input.has_value());
  EXPECT_TRUE(found.output.has_value());
  EXPECT_EQ(found.findings.size(), 1U);
  EXPECT_EQ(codeOf([this] { (void)orvml::loadInput(path(), kTolerant); }),
            "orvml.values.not-allowed");
  EXPECT_EQ(orvml::loadOutput(path()).dimension(), 3);
}

class LoadOfEachVersion : public ExchangeFileTest,
                          public ::testing::WithParamInterface<ValidFile> {};

TEST_P(LoadOfEachVersion, GivesBothDocumentsWithoutAnyTrouble) {
  GetParam().make(path());

  const orvml::Loaded strict = orvml::load(path());
  const orvml::Loaded tolerant = orvml::load(path(), kTolerant);

  ASSERT_TRUE(strict.input.has_value());
  ASSERT_TRUE(strict.output.has_value());
  EXPECT_EQ(strict.input->elements().size(), GetParam().version == std::string("1.4") ? 2 : 1);
  EXPECT_GE(strict.input->attributes(Entity::nodes).size(), 2U);
  EXPECT_EQ(contentOf(tolerant), contentOf(strict));
  EXPECT_TRUE(tolerant.findings.empty()) << tolerant.findings[0].sentence;
  EXPECT_EQ(contentOf(orvml::MappedFile(path())), contentOf(strict));
  EXPECT_EQ(opened(), IdCounts());
}

INSTANTIATE_TEST_SUITE_P(Each, LoadOfEachVersion, ::testing::ValuesIn(validFiles()), RowName());

/// A way to store coordinates of so many nodes.
struct StorageRow {
  const char* name;
  hid_t (*type)();
  hsize_t chunk;  // rows; 0 for none
  bool isCompressed;
  hsize_t nodes;

  friend std::ostream& operator<<(std::ostream& stream, const StorageRow& row) {
    return stream << row.name;
  }
};

constexpr auto kNative = [] { return H5T_NATIVE_DOUBLE; };
constexpr auto kBigEndian = [] { return H5T_IEEE_F64BE; };
constexpr hsize_t kManyNodes = 400000;  // 9.6 MB: several pieces for threads, and a rest

class LoadOnThreads : public ExchangeFileTest, public ::testing::WithParamInterface<StorageRow> {
 protected:
  LoadOnThreads() : coordinates_(GetParam().nodes * 3) {
    for (std::size_t i = 0; i < coordinates_.size(); ++i) {
      coordinates_[i] = static_cast<double>(i) * 0.5 - 7.0;
    }
    RawFile file = RawFile::createMarked(path());
    file.documentGroup("/OrvInput", 3);
    file.group("/OrvInput/Nodes");
    writeCoordinates(file);
  }

  void writeCoordinates(const RawFile& file) const {
    const StorageRow& row = GetParam();
    const hsize_t extents[] = {row.nodes, 3};
    const hsize_t chunk[] = {row.chunk, 3};
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    if (row.chunk > 0) {
      H5Pset_chunk(properties, 2, chunk);
    }
    if (row.isCompressed) {
      H5Pset_deflate(properties, 1);
    }
    const hid_t space = H5Screate_simple(2, extents, nullptr);
    const hid_t dataset = H5Dcreate2(file.id(), "/OrvInput/Nodes/coordinates", row.type(), space,
                                     H5P_DEFAULT, properties, H5P_DEFAULT);
    EXPECT_GE(
        H5Dwrite(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, coordinates_.data()),
        0);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Pclose(properties);
  }

  Doubles coordinates_;
};

INSTANTIATE_TEST_SUITE_P(
    Each, LoadOnThreads,
    ::testing::Values(StorageRow{"Contiguous", kNative, 0, false, kManyNodes},
                      StorageRow{"Chunked", kNative, 1000, false, kManyNodes},
                      StorageRow{"Compressed", kNative, 1000, true, kManyNodes},
                      StorageRow{"BigEndian", kBigEndian, 0, false, kManyNodes},
                      StorageRow{"Short", kNative, 0, false, 2},
                      StorageRow{"Empty", kNative, 0, false, 0}),
    RowName());

TEST_P(LoadOnThreads, GivesTheSameForAnyNumberOfThem) {
  for (const int threads : {-1, 0, 1, 2, 4}) {
    const Input input = orvml::loadInput(path(), {.threads = threads});

    const std::span<const double> found = input.nodes().coordinates();
    EXPECT_TRUE(std::equal(found.begin(), found.end(), coordinates_.begin(), coordinates_.end()))
        << threads << " threads";
    EXPECT_EQ(opened(), IdCounts());
  }
}

}  // namespace
}  // namespace orvml_io_tests
