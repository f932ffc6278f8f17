#include "preprocessor/received.h"

#include "exchange/check.h"
#include "exchange/names.h"
#include "preprocessor/document_record.h"
#include "small_meshes.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace orvml_examples {
namespace {

/// A tetrahedron with a parameter and, without the flag as after a read, an attribute.
Document receivedDocument() {
  Document document = Document::newInput({kModuleName, kModuleFormatVersion, "test"});
  document.setMesh(unitTetrahedron());
  document.setParameter(names::kGeneralMeshSize, 0.1);
  document.setAttribute(names::kFacesSizes, std::vector<double>{1, 2, 3, -0.0});
  return document;
}

Received receivedWith(const Document& document, Record sent) {
  return {document, "OrvInput", std::move(sent)};
}

/// The record of a document with the value of one key replaced.
Record recordWith(const Document& document, const std::string& key, const std::string& json) {
  const Record record = recordOf(document, "OrvInput");
  Record changed;
  for (const auto& [name, value] : record.entries()) {
    changed.add(name, name == key ? json : value);
  }
  return changed;
}

TEST(ReceivedAsSent, AcceptsTheRecordOfTheSameDocument) {
  const Document document = receivedDocument();

  EXPECT_NO_THROW(requireReceivedAsSent(receivedWith(document, recordOf(document, "OrvInput"))));
}

class SentValue : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(SentValue, IsComparedWithWhatWasSent) {
  const Document document = receivedDocument();
  const auto [key, json] = GetParam();
  ASSERT_NE(recordOf(document, "OrvInput").find(key), nullptr);

  EXPECT_THROW(requireReceivedAsSent(receivedWith(document, recordWith(document, key, json))),
               CheckFailed);
}

INSTANTIATE_TEST_SUITE_P(
    ReceivedAsSent, SentValue,
    testing::Values(
        std::pair("creator", "\"tess\""), std::pair("numberOfNodes", "5"),
        std::pair("parameter/ORVML_OCTREEMESHER_GENERAL_MESH_SIZE", "0.10000000000000002"),
        std::pair("cells/Faces/connectivities", "[0, 2, 1, 0, 1, 3, 1, 2, 3, 0, 3, 1]"),
        std::pair("attribute/Faces/ORVML_OCTREEMESHER_FACES_SIZES", "[1.0, 2.0, 3.0, 0.0]")));

TEST(ReceivedAsSent, AllowsThatTheFlagsWereLost) {
  const Document document = receivedDocument();
  const Record sent =
      recordWith(document, "transmitted/Faces", "[\"ORVML_OCTREEMESHER_FACES_SIZES\"]");

  EXPECT_NO_THROW(requireReceivedAsSent(receivedWith(document, sent)));
}

TEST(ReceivedAsSent, RefusesAnAttributeWithTheFlag) {
  Document document = receivedDocument();
  document.setAttribute(names::kFacesSurfaceId, std::vector<int>{1, 2, 3, 4});

  EXPECT_THROW(requireReceivedAsSent(receivedWith(document, recordOf(document, "OrvInput"))),
               CheckFailed);
}

TEST(ReceivedAsSent, RefusesAValueThatWasNotRead) {
  const Document document = receivedDocument();
  Record sent = recordOf(document, "OrvInput");
  sent.add("parameter/ORVML_OCTREEMESHER_QUADRATIC_TYPE", "0.0");

  EXPECT_THROW(requireReceivedAsSent(receivedWith(document, sent)), CheckFailed);
}

TEST(Record, ComesBackFromItsFile) {
  const std::string path = testing::TempDir() + "orvml_io_example_record.json";
  const Record saved = recordOf(receivedDocument(), "OrvInput");
  saved.save(path);

  EXPECT_EQ(Record::load(path).entries(), saved.entries());
  (void)std::remove(path.c_str());
}

}  // namespace
}  // namespace orvml_examples
