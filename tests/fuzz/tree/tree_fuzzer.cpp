// Reads documents from HDF5 trees that the input decides: objects, types, extents, layouts, values.
// An input of zeros, or an empty one, is a valid document with everything in it.
#include "fuzz/harness/byte_source.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "fuzz/harness/hdf5_in_memory.h"
#include "fuzz/harness/read_document.h"
#include "fuzz/harness/whole_interface.h"
#include "fuzz/tree/document_tree.h"
#include "hdf5/exchange_file.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"

#include <hdf5_hl.h>

#include <algorithm>
#include <string>
#include <type_traits>

namespace orvml_io_tests {
namespace {

using orvml_io::OML_AttributesVector;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;
using orvml_io::OrvOutput;

/// What is done with the documents that were read.
struct Use {
  bool readsAgain;
  bool writes;
  unsigned change;
};

Use useFrom(ByteSource& bytes) {
  const unsigned byte = bytes.next();
  return {byte % 4 == 1, byte % 4 == 2, byte / 4};
}

bool isUnwritable(const std::string& name) { return name.empty() || name.size() >= 80; }

bool hasUnwritableName(const OML_AttributesVector& vectors) {
  return std::any_of(vectors.begin(), vectors.end(),
                     [](const auto& named) { return isUnwritable(named.first); });
}

/// A file may hold names that are too long to be written again.
bool hasUnwritableName(const OrvInputAndOrvOutput& document) {
  for (const ORVML_TYPE_OF_ENTITY kind : {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    const OML_AttributesVector* attributes = document.attributesOf(kind);
    if (attributes != nullptr && hasUnwritableName(*attributes)) {
      return true;
    }
  }
  return hasUnwritableName(document.parametersVector);
}

/// Writes a document that was read whole, and compares what comes back.
template <class Document>
void requireRoundTrip(void* handle) {
  const MemoryFile file;
  const OrvInputAndOrvOutput& document = *orvml_io::documentOf(handle);
  const bool isInput = std::is_same_v<Document, OrvInput>;
  const char* group = isInput ? orvml_io::layout::kOrvInput : orvml_io::layout::kOrvOutput;
  if (document.WriteCommonPart(file.id(), group, "1.4") != 0) {
    require(hasUnwritableName(document), "what was read whole can be written");
    return;
  }
  H5LTset_attribute_string(file.id(), "/", "ORVMESHLIBRARY_FORMAT_VERSION", "1.4");
  const ReadResult result = readDocument<Document>(file.id());
  requireReadPromises(result);
  requireEqual(handle, result.document.get());
}

template <class Document>
ReadResult readFrom(hid_t file, const Use& use) {
  ReadResult result = readDocument<Document>(file);
  requireReadPromises(result);
  if (use.readsAgain && result.document.get() != nullptr) {
    requireEqual(result.document.get(), readDocument<Document>(file).document.get());
  }
  return result;
}

/// The two documents of a tree. The tree itself is gone: documents need no file.
struct Documents {
  ReadResult input;
  ReadResult output;
};

/// Reads the input document by a name so long that it, or some of the paths below it, does not fit.
void readByLongName(hid_t file, unsigned bytesThatFit) {
  constexpr std::size_t kLongestPath = 1023;
  const std::string group = "/" + std::string(kLongestPath - bytesThatFit, 'g');
  H5Lcreate_hard(file, orvml_io::layout::kOrvInput, file, group.c_str(), H5P_DEFAULT, H5P_DEFAULT);
  const ReadResult result = readDocument<OrvInput>(file, group.c_str());
  requireReadPromises(result);
}

/// Without a file every reader fails; for some a missing group or dataset would be no failure.
void requireThatNoFileFails() {
  orvml_io::SourceFile none(-1);
  const orvml_io::OpenGroup group = none.root();
  constexpr char kVersion[] = "1.4";
  OrvInput document;
  orvml_io::Nodes nodes;
  orvml_io::Elems elems;
  require(document.Read(none) == 1 && OrvOutput().Read(none) == 1,
          "no document is read without a file");
  require(nodes.Read(none, group, kVersion) == 1 &&
              nodes.ReadAttributes(none, group, 1, kVersion) == 1 &&
              elems.Read(none, group, "/Faces", kVersion, ORVML_FACES) == 1 &&
              elems.ReadAttributes(none, group, 1, kVersion, ORVML_FACES) == 1,
          "no container is read without a file");
  require(document.ReadParametersScalar(none, group) == 1 &&
              document.ReadParametersVector(none, group) == 1,
          "no parameters are read without a file");
}

/// The same of the positional layouts.
void requireThatNoFileFailsPositionally() {
  orvml_io::SourceFile none(-1);
  const orvml_io::OpenGroup group = none.root();
  constexpr char kMarkers[] = "/UserMarkers";
  OrvInput document;
  orvml_io::PositionedVectors vectors;
  require(document.ReadParametersScalarOld(none, group) == 1,
          "no positional parameters are read without a file");
  require(
      orvml_io::ReadAttributesOld(none, group, 1, document.parametersVector, ORVML_NODES) == 1 &&
          orvml_io::ReadAttributesOldInt(none, group, kMarkers, 1, vectors) == 1 &&
          orvml_io::ReadAttributesOldDouble(none, group, kMarkers, 1, vectors) == 1,
      "no positional attributes are read without a file");
}

/// How the tree is read besides.
void readOtherwise(hid_t file, unsigned choice) {
  constexpr unsigned kNoFile = 127;
  if (choice == kNoFile) {
    requireThatNoFileFails();
    requireThatNoFileFailsPositionally();
  } else if (choice != 0) {
    readByLongName(file, choice - 1);
  }
}

Documents readTree(ByteSource& bytes, const Use& use) {
  const unsigned choice = bytes.next();
  const bool latestFormat = choice % 2 == 1;
  const MemoryFile file(latestFormat);
  Tree tree{file.id(), bytes};
  makeExchangeTree(tree);
  (void)orvml_io::IsOrvMeshLibraryIOFormat(file.id());
  readOtherwise(file.id(), choice / 2);
  return {readFrom<OrvInput>(file.id(), use), readFrom<OrvOutput>(file.id(), use)};
}

template <class Document>
void useDocument(ReadResult& result, const Use& use) {
  void*& document = result.document.out();
  if (document == nullptr) {
    return;
  }
  useWithoutChange(document);
  requireEqual(document, Handle(OrvML_IO_NewOrvInputHandle(document)).get());
  if (use.writes && result.status == 0) {
    requireRoundTrip<Document>(document);
  }
  useWithChange(document, use.change);
}

void run(ByteSource bytes) {
  const Use use = useFrom(bytes);
  Documents documents = readTree(bytes, use);
  useDocument<OrvInput>(documents.input, use);
  useDocument<OrvOutput>(documents.output, use);
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvml_io_tests::run(orvml_io_tests::ByteSource(data, size));
  return 0;
}
