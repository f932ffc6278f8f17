// Links that lead elsewhere: out of the file, in circles, or to what is not expected there.
#include "hostile/attacked_file.h"

namespace orvml_io_tests {
namespace {

class AttackedLinks : public AttackedFile {
 protected:
  explicit AttackedLinks(const char* version = "1.4") : AttackedFile(version) {}

  /// Makes a link to a group, replacing what stands at the path.
  void linkGroup(const std::string& target, const std::string& path) {
    if (file().has(path)) {
      file().remove(path);
    }
    EXPECT_GE(H5Lcreate_hard(file().id(), target.c_str(), file().id(), path.c_str(), H5P_DEFAULT,
                             H5P_DEFAULT),
              0);
  }

  void linkSoftly(const std::string& target, const std::string& path) {
    file().remove(path);
    EXPECT_GE(H5Lcreate_soft(target.c_str(), file().id(), path.c_str(), H5P_DEFAULT, H5P_DEFAULT),
              0);
  }

  void linkToFile(const char* target, const std::string& path) {
    file().remove(path);
    EXPECT_GE(H5Lcreate_external(target, path.c_str(), file().id(), path.c_str(), H5P_DEFAULT,
                                 H5P_DEFAULT),
              0);
  }

  static void expectWhole(const Reading& reading) {
    EXPECT_EQ(reading.status, 0);
    EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 4, 2}));
  }
};

// A file from outside must not make a process read the files of its user.
TEST_F(AttackedLinks, CoordinatesInAnotherFileAreRefused) {
  const TempFile other;
  makeCurrentFile(other.path());
  linkToFile(other.path(), "/OrvInput/Nodes/coordinates");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{0, 3, 4, 2}));
}

TEST_F(AttackedLinks, ContainerInAnotherFileIsRefused) {
  const TempFile other;
  makeCurrentFile(other.path());
  linkToFile(other.path(), "/OrvInput/Faces");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 0, 2}));
}

TEST_F(AttackedLinks, DocumentInAnotherFileIsRefused) {
  const TempFile other;
  makeCurrentFile(other.path());
  linkToFile(other.path(), "/OrvInput");
  linkToFile(other.path(), "/OrvOutput");

  const Readings readings = readAll();

  EXPECT_EQ(readings.input.status, 1);
  EXPECT_FALSE(readings.input.hasDocument);
  EXPECT_EQ(readings.output.status, 1);
  EXPECT_FALSE(readings.output.hasDocument);
}

TEST_F(AttackedLinks, ContainerBehindASoftLinkOutOfTheFileIsRefused) {
  const TempFile other;
  makeCurrentFile(other.path());
  linkToFile(other.path(), "/OrvInput/Edges");
  linkSoftly("/OrvInput/Edges", "/OrvInput/Faces");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 0, 0, 2}));
}

TEST_F(AttackedLinks, ContainerThatLeadsOutAndBackToItselfIsRefused) {
  linkToFile(path(), "/OrvInput/Faces");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 0, 2}));
}

TEST_F(AttackedLinks, DocumentThatIsTheOtherOneIsRead) {
  linkSoftly("/OrvOutput", "/OrvInput");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 0);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{7, 0, 5, 0}));
}

TEST_F(AttackedLinks, DocumentThatIsItselfIsMissing) {
  linkSoftly("/OrvInput", "/OrvInput");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_FALSE(reading.hasDocument);
}

TEST_F(AttackedLinks, DocumentThatIsADatasetIsMissing) {
  file().remove("/OrvInput");
  file().intVector("/OrvInput", {3});

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_FALSE(reading.hasDocument);
}

TEST_F(AttackedLinks, DocumentThatIsTheRootHasWhatTheRootHas) {
  file().intVector("/dimension", {3});
  linkGroup("/OrvInput/Faces", "/Faces");
  linkSoftly("/", "/OrvInput");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{0, 0, 4, 0}));
}

TEST_F(AttackedLinks, NodesThatAreTheirDocumentHoldNoCoordinates) {
  linkGroup("/OrvInput", "/OrvInput/Nodes");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 0);
  EXPECT_EQ(reading.counts[0], 0);
}

TEST_F(AttackedLinks, FacesThatAreTheEdgesAreRead) {
  linkGroup("/OrvInput/Edges", "/OrvInput/Faces");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 0);
  EXPECT_EQ(reading.counts[2], 3);
}

TEST_F(AttackedLinks, ContainersThatAreDatasetsFailForNodesOnly) {
  file().remove("/OrvInput/Nodes");
  file().intVector("/OrvInput/Nodes", {1});

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{0, 3, 4, 2}));
}

TEST_F(AttackedLinks, CellContainersThatAreDatasetsAreMissing) {
  file().remove("/OrvInput/Faces");
  file().intVector("/OrvInput/Faces", {1});

  const Reading reading = read();

  EXPECT_EQ(reading.status, 0);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 0, 2}));
}

TEST_F(AttackedLinks, GroupsOfVectorsInsideOfThemselvesAreSkipped) {
  linkGroup("/OrvInput/ParametersVector", "/OrvInput/ParametersVector/self");
  linkGroup("/OrvInput/Nodes", "/OrvInput/Nodes/Attributes/parent");
  linkGroup("/", "/OrvInput/Nodes/Attributes/root");

  expectWhole(read());
}

TEST_F(AttackedLinks, VectorsThatAreTheWholeDocumentAreItsDatasets) {
  linkGroup("/OrvInput", "/OrvInput/ParametersVector");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 0);
}

TEST_F(AttackedLinks, VectorsThatAreALinkToNowhereAreMissing) {
  linkSoftly("/nowhere", "/OrvInput/ParametersVector");
  linkSoftly("/OrvInput/Nodes/Attributes", "/OrvInput/Nodes/Attributes");

  expectWhole(read());
}

TEST_F(AttackedLinks, ThousandLinksToOneDatasetAreAThousandVectors) {
  for (int i = 0; i < 1000; ++i) {
    linkGroup("/OrvInput/ParametersVector/layers",
              "/OrvInput/ParametersVector/copy" + std::to_string(i));
  }

  expectWhole(read());
}

class AttackedLegacyLinks : public AttackedLinks {
 protected:
  AttackedLegacyLinks() : AttackedLinks("1.3") {}
};

TEST_F(AttackedLegacyLinks, MarkersThatAreTheDocumentHaveNoMaxId) {
  linkGroup("/OrvInput", "/OrvInput/GenericMarkers");

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyLinks, MarkersInAnotherFileAreRefused) {
  const TempFile other;
  makeLegacyFile(other.path(), "1.3");
  linkToFile(other.path(), "/OrvInput/GenericMarkers");

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyLinks, EarlierAttributesInAnotherFileAreRefused) {
  const TempFile other;
  makeLegacyFile(other.path(), "1.3");
  linkToFile(other.path(), "/OrvInput/Nodes/FunctionAttributes/0");

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyLinks, MarkersThatAreALinkToNowhereHaveNoMaxId) {
  linkSoftly("/nowhere", "/OrvInput/GenericMarkers");

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyLinks, PositionsThatAreTheirGroupAreSkipped) {
  linkGroup("/OrvInput/GenericMarkers", "/OrvInput/GenericMarkers/0");
  linkGroup("/OrvInput/Nodes/UserMarkers", "/OrvInput/Nodes/UserMarkers/0");

  EXPECT_EQ(read().status, 0);
}

TEST_F(AttackedLegacyLinks, GroupOfAttributesThatIsALinkToNowhereHasNoMaxId) {
  linkSoftly("/nowhere", "/OrvInput/Nodes/UserMarkers");

  EXPECT_EQ(read().status, 1);
}

}  // namespace
}  // namespace orvml_io_tests
