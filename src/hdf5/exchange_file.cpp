// Exchange files as a whole: their creation and marker, and the readers that make a document.
#include "hdf5/exchange_file.h"

#include "hdf5/datasets.h"
#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/status.h"

#include <utility>

namespace orvml_io {

namespace {

/// Reads a document and keeps it when its dimension is accepted. Returns the result of the read in
/// either case.
template <class Document>
int readDocument(SourceFile& file, std::unique_ptr<Document>& document) {
  auto read = std::make_unique<Document>();
  read->arraysOwnedByCaller = false;
  const int status = read->Read(file);
  if (isAcceptedDimension(read->meshDimension)) {
    document = std::move(read);
  }
  return status;
}

}  // namespace

NewFile createMarkedFile(const char* fileName, const char* version) {
  NewFile file(fileName);
  if (file.valid() && (setText(file.id(), layout::kFormat, layout::kFormatMarker) != kOk ||
                       setText(file.id(), layout::kFormatVersion, version) != kOk)) {
    file.abandonOpen();
  }
  return file;
}

bool IsOrvMeshLibraryIOFormat(hid_t file) {
  return readRootText(file, layout::kFormat) == layout::kFormatMarker;
}

FileId OpenFileForReading(const char* fileName) {
  FileId file(H5Fopen(fileName, H5F_ACC_RDONLY, H5P_DEFAULT));
  if (file.valid() && !IsOrvMeshLibraryIOFormat(file.get())) {
    return FileId();
  }
  return file;
}

int ReadOrvInput(SourceFile& file, std::unique_ptr<OrvInput>& document) {
  const int status = readDocument(file, document);
  return document == nullptr ? kFailed : status;
}

int ReadOrvOutput(SourceFile& file, std::unique_ptr<OrvOutput>& document) {
  return readDocument(file, document);
}

}  // namespace orvml_io
