// What becomes of a file when HDF5 or the system fails while it is written.
#include "files/child_process.h"
#include "files/described_document.h"
#include "files/exchange_file_fixture.h"
#include "files/failing_call.h"
#include "support/captured_output.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

namespace orvml_io_tests {
namespace {

class FailingWrite : public ExchangeFileTest {
 protected:
  /// Writes the full document while a call fails, and expects that it did.
  RawFile writtenDespite(const FailingCall& failure, int expectedResult) {
    EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), expectedResult);
    EXPECT_GE(failure.hits(), 1);
    return RawFile::open(path());
  }

  BuiltDocument document_ = fullDocument();
};

TEST_F(FailingWrite, MarkerThatCannotBeWrittenLeavesTheFileOpen) {
  const FailingCall failure(Hdf5Function::createAttribute, "FORMAT");

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 1);

  EXPECT_EQ(failure.hits(), 1);
  EXPECT_EQ(opened(), (IdCounts{1, 0, 0, 0, 0}));
}

TEST_F(FailingWrite, VersionThatCannotBeWrittenLeavesTheFileOpen) {
  const FailingCall failure(Hdf5Function::createAttribute, "ORVMESHLIBRARY_FORMAT_VERSION");

  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), document_.handle()), 1);

  EXPECT_EQ(opened(), (IdCounts{1, 0, 0, 0, 0}));
  const RawFile file = RawFile::open(path());
  EXPECT_EQ(file.attributes("/"), Names{"FORMAT"});
  EXPECT_EQ(file.members("/"), Names{});
}

TEST_F(FailingWrite, MarkerOfBothDocumentsLeavesTheFileOpenToo) {
  const FailingCall failure(Hdf5Function::createAttribute, "FORMAT");

  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), document_.handle(), document_.handle()), 1);

  EXPECT_EQ(opened(), (IdCounts{1, 0, 0, 0, 0}));
}

TEST_F(FailingWrite, CreatorThatCannotBeWrittenEndsTheWriting) {
  const RawFile file =
      writtenDespite(FailingCall(Hdf5Function::createAttribute, "ORVML_IO_CREATOR"), 1);

  EXPECT_EQ(file.attributes("/"), (Names{"FORMAT", "ORVMESHLIBRARY_FORMAT_VERSION"}));
  EXPECT_EQ(allPaths(file), Names{"/OrvInput/"});
}

TEST_F(FailingWrite, ModuleNameThatCannotBeWrittenEndsTheWriting) {
  const RawFile file =
      writtenDespite(FailingCall(Hdf5Function::createAttribute, "ORVML_MODULE_NAME"), 1);

  EXPECT_EQ(file.attributes("/"),
            (Names{"FORMAT", "ORVMESHLIBRARY_FORMAT_VERSION", "ORVML_IO_CREATOR"}));
  EXPECT_EQ(allPaths(file), Names{"/OrvInput/"});
}

TEST_F(FailingWrite, ModuleVersionThatCannotBeWrittenEndsTheWriting) {
  const RawFile file =
      writtenDespite(FailingCall(Hdf5Function::createAttribute, "ORVML_MODULE_FORMAT_VERSION"), 1);

  EXPECT_TRUE(file.hasAttribute("/", "ORVML_MODULE_NAME"));
  EXPECT_EQ(allPaths(file), Names{"/OrvInput/"});
}

TEST_F(FailingWrite, TableThatCannotBeMadeEndsTheWritingBeforeTheVectors) {
  const RawFile file = writtenDespite(FailingCall(Hdf5Function::createDataset, "/parameters"), 1);

  EXPECT_TRUE(file.has("/OrvInput/Elements"));
  EXPECT_FALSE(file.has("/OrvInput/ParametersVector"));
}

TEST_F(FailingWrite, RecordsThatCannotBeWrittenEndTheWritingBeforeTheVectors) {
  const RawFile file = writtenDespite(FailingCall(Hdf5Function::writeDataset, "/parameters"), 1);

  EXPECT_TRUE(file.has("/OrvInput/Elements"));
  EXPECT_FALSE(file.has("/OrvInput/ParametersVector"));
}

TEST_F(FailingWrite, ValuesThatCannotBeWrittenGiveOneAndLaterContainersAreNotWritten) {
  const RawFile file =
      writtenDespite(FailingCall(Hdf5Function::writeDataset, "/Edges/connectivities"), 1);

  EXPECT_EQ(file.members("/OrvInput"), (Names{"Edges", "Nodes", "dimension"}));
}

TEST_F(FailingWrite, FlagsThatCannotBeWrittenAreNoFailure) {
  const RawFile file =
      writtenDespite(FailingCall(Hdf5Function::createAttribute, "MustBeTransmitted"), 0);

  EXPECT_FALSE(file.hasAttribute("/OrvInput/Nodes/Attributes/size", "MustBeTransmitted"));
  EXPECT_TRUE(file.has("/OrvInput/ParametersVector/volumes_sizes"));
}

TEST_F(FailingWrite, ResultOfClosingIsPassedOnWhenAllWasWritten) {
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), -7);
  EXPECT_EQ(OrvML_IO_WriteOrvOutput(path(), document_.handle()), -7);
  EXPECT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(path(), document_.handle(), nullptr), -7);
}

TEST_F(FailingWrite, FailureOfAStepComesBeforeTheResultOfClosing) {
  document_.scalar(std::string(80, 'n').c_str(), 1);
  const FailingCall failure(Hdf5Function::closeFile, "", -7);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 1);

  EXPECT_EQ(failure.hits(), 1);
}

/// A dataset that cannot be made, and what the document's group holds afterwards.
struct LostDataset {
  const char* name;
  const char* path;
  Names members;      // of the document's group
  const char* group;  // the group that the dataset is missing from
  Names groupMembers;

  friend std::ostream& operator<<(std::ostream& stream, const LostDataset& lost) {
    return stream << lost.path;
  }
};

class LostDatasetTest : public FailingWrite, public ::testing::WithParamInterface<LostDataset> {};

TEST_P(LostDatasetTest, GivesOneAndLaterContainersAreNotWritten) {
  const RawFile file = writtenDespite(FailingCall(Hdf5Function::createDataset, GetParam().path), 1);

  EXPECT_EQ(file.members("/OrvInput"), GetParam().members);
  EXPECT_EQ(file.members(GetParam().group), GetParam().groupMembers);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LostDatasetTest,
    ::testing::Values(
        LostDataset{"Dimension", "/OrvInput/dimension", {}, "/OrvInput", {}},
        LostDataset{
            "Coordinates", "/Nodes/coordinates", {"Nodes", "dimension"}, "/OrvInput/Nodes", {}},
        LostDataset{"NodeAttribute",
                    "/Nodes/Attributes/forced",
                    {"Nodes", "dimension"},
                    "/OrvInput/Nodes/Attributes",
                    {}},
        LostDataset{"CellsPerGroup",
                    "/Edges/number_of_elements_by_type",
                    {"Edges", "Nodes", "dimension"},
                    "/OrvInput/Edges",
                    {"Attributes", "connectivities"}},
        LostDataset{"Shapes",
                    "/Edges/element_types",
                    {"Edges", "Nodes", "dimension"},
                    "/OrvInput/Edges",
                    {"Attributes", "connectivities", "number_of_elements_by_type"}},
        LostDataset{
            "NodesPerCell",
            "/Faces/number_of_nodes_by_element",
            {"Edges", "Faces", "Nodes", "dimension"},
            "/OrvInput/Faces",
            {"Attributes", "connectivities", "element_types", "number_of_elements_by_type"}},
        LostDataset{"Connectivities",
                    "/Elements/connectivities",
                    {"Edges", "Elements", "Faces", "Nodes", "dimension"},
                    "/OrvInput/Elements",
                    {"Attributes", "element_types", "number_of_elements_by_type",
                     "number_of_nodes_by_element"}},
        LostDataset{
            "VectorParameter",
            "/ParametersVector/layers",
            {"Edges", "Elements", "Faces", "Nodes", "ParametersVector", "dimension", "parameters"},
            "/OrvInput/ParametersVector",
            {}}),
    RowName());

TEST_F(FailingWrite, NothingStaysOpenWhenAStepFails) {
  const FailingCall failure(Hdf5Function::createDataset, "/Faces/connectivities");

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document_.handle()), 1);

  EXPECT_EQ(opened(), IdCounts{});
}

/// Failures of the system. They are brought about in a child process, whose result is compared.
class FailingSystem : public ExchangeFileTest {
 protected:
  /// Result of the child when it could not set the scene.
  static constexpr int kNotObservable = 99;

  static int writeAndCompare(const char* path, void* document) {
    const std::string before = describe(document);
    CapturedOutput captured;
    const int result = OrvML_IO_WriteOrvInput(path, document);
    const bool silent = captured.stop().empty();
    return silent && describe(document) == before ? result : 50;
  }
};

TEST_F(FailingSystem, FullDiskIsAFailureThatLeavesTheDocumentAsItWas) {
  const BuiltDocument document = fullDocument();

  const int result = resultInChild([&] { return writeAndCompare("/dev/full", document.handle()); });

  // The failure shows when a dataset is written or only when the file is closed.
  constexpr int kMinusOneOfAChild = 255;
  EXPECT_TRUE(result == 1 || result == kMinusOneOfAChild) << result;
}

TEST_F(FailingSystem, LimitOfTheFileSizeGivesOneAndLeavesTheDocumentAsItWas) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes(std::vector<double>(300000, 0.5));

  const int result = resultInChild([&] {
    (void)std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {100000, 100000};
    return ::setrlimit(RLIMIT_FSIZE, &limit) != 0 ? kNotObservable
                                                  : writeAndCompare(path(), document.handle());
  });

  EXPECT_EQ(result, 1);
}

TEST_F(FailingSystem, FolderWithoutTheRightToWriteGivesOne) {
  const BuiltDocument document = fullDocument();
  const std::string folder = std::string(path()) + ".folder";
  ASSERT_EQ(::mkdir(folder.c_str(), 0555), 0);

  const int result = resultInChild([&] {
    // Beside the folder the same user can write.
    if (!becomeOrdinaryUser() || OrvML_IO_WriteOrvInput(path(), document.handle()) != 0) {
      return kNotObservable;
    }
    return writeAndCompare((folder + "/f.h5").c_str(), document.handle());
  });

  ::rmdir(folder.c_str());
  if (result == kNotObservable) {
    GTEST_SKIP() << "the super-user may write everywhere";
  }
  EXPECT_EQ(result, 1);
}

TEST_F(FailingSystem, FileWithoutTheRightToWriteGivesOneAndStaysAsItWas) {
  const BuiltDocument document = fullDocument();
  std::ofstream(path()) << "precious";
  ASSERT_EQ(::chmod(path(), 0444), 0);

  const int result = resultInChild([&] {
    return becomeOrdinaryUser() ? writeAndCompare(path(), document.handle()) : kNotObservable;
  });

  if (result == kNotObservable) {
    GTEST_SKIP() << "the super-user may write everywhere";
  }
  EXPECT_EQ(result, 1);
  EXPECT_EQ(bytesOf(path()), "precious");
}

}  // namespace
}  // namespace orvml_io_tests
