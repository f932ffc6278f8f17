// Exported functions of the exchange files.
#include "hdf5/datasets.h"
#include "hdf5/file_lock.h"
#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"
#include "hdf5/source_file.h"
#include "hdf5/status.h"
#include "model/document.h"
#include "orvml_io.h"

using orvml_io::documentOf;
using orvml_io::FileId;
using orvml_io::kFailed;
using orvml_io::kOk;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;
using orvml_io::OrvOutput;
using orvml_io::Silence;
using orvml_io::SourceFile;

namespace layout = orvml_io::layout;

namespace {

/// Creates a file and marks it as an exchange file; invalid when either fails.
FileId tryCreateMarkedFile(const char* fileName, const char* version) {
  if (orvml_io::isHeldByAnother(fileName)) {
    return FileId();
  }
  FileId file(H5Fcreate(fileName, H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
  if (!file.valid()) {
    return FileId();
  }
  if (orvml_io::setText(file.get(), layout::kFormat, layout::kFormatMarker) != kOk ||
      orvml_io::setText(file.get(), layout::kFormatVersion, version) != kOk) {
    (void)orvml_io::keepOpen(std::move(file), orvml_io::KeptOpen::fileAfterMarkerFailure);
    return FileId();
  }
  return file;
}

/// The version for both documents: the input's, unless the output needs a higher one.
const char* versionForBoth(void* inputHandle, void* outputHandle) {
  const char* input = ORVML_IO_GetMinimumFormatVersionToSave(inputHandle);
  const char* output = ORVML_IO_GetMinimumFormatVersionToSave(outputHandle);
  return OrvML_IO_GetFormatVersion_Number(input) < OrvML_IO_GetFormatVersion_Number(output) ? output
                                                                                            : input;
}

/// Writes each document that is given, the input first; the first failure ends the work. The file
/// is closed in any case and the result of closing it is the result when all was written. Which
/// group a document goes to is decided by its role here, not by its kind.
int writeDocuments(const char* fileName, const char* version, const OrvInputAndOrvOutput* input,
                   const OrvInputAndOrvOutput* output) {
  FileId file = tryCreateMarkedFile(fileName, version);
  if (!file.valid()) {
    return kFailed;
  }
  int status = kOk;
  if (input != nullptr) {
    status = input->WriteCommonPart(file.get(), layout::kOrvInput, version);
  }
  if (status == kOk && output != nullptr) {
    status = output->WriteCommonPart(file.get(), layout::kOrvOutput, version);
  }
  const int closed = file.close();
  return status != kOk ? status : closed;
}

/// Creates a document and reads it. A document whose dimension is not accepted is deleted and the
/// handle stays null; the result of the read is returned in either case.
template <class Document>
int readDocument(const SourceFile& file, void*& handle) {
  auto document = std::make_unique<Document>();
  document->arraysOwnedByCaller = false;
  const int status = document->Read(file);
  if (orvml_io::isAcceptedDimension(document->meshDimension)) {
    handle = orvml_io::handleOf(document.release());
  }
  return status;
}

int readInput(const SourceFile& file, void*& handle) {
  const int status = readDocument<OrvInput>(file, handle);
  // Contract: a rejected input is a failure, a rejected output keeps the result of its read.
  return handle == nullptr ? kFailed : status;
}

int readOutput(const SourceFile& file, void*& handle) {
  return readDocument<OrvOutput>(file, handle);
}

}  // namespace

int OrvML_IO_WriteOrvInput(const char* fileName, void* inputHandle) {
  const Silence silence;
  if (inputHandle == nullptr || fileName == nullptr) {
    return kFailed;
  }
  return writeDocuments(fileName, ORVML_IO_GetMinimumFormatVersionToSave(inputHandle),
                        documentOf(inputHandle), nullptr);
}

int OrvML_IO_WriteOrvOutput(const char* fileName, void* outputHandle) {
  const Silence silence;
  if (outputHandle == nullptr || fileName == nullptr) {
    return kFailed;
  }
  return writeDocuments(fileName, ORVML_IO_GetMinimumFormatVersionToSave(outputHandle), nullptr,
                        documentOf(outputHandle));
}

int OrvML_IO_WriteOrvInputAndOrvOutput(const char* fileName, void* inputHandle,
                                       void* outputHandle) {
  const Silence silence;
  if (fileName == nullptr) {
    return kFailed;
  }
  return writeDocuments(fileName, versionForBoth(inputHandle, outputHandle),
                        documentOf(inputHandle), documentOf(outputHandle));
}

int OrvML_IO_ReadOrvInput(const char* fileName, void*& inputHandle) {
  const Silence silence;
  if (fileName == nullptr || inputHandle != nullptr) {
    return kFailed;
  }
  FileId file = orvml_io::OpenFileForReading(fileName);
  if (!file.valid()) {
    return kOk;  // Contract: not an exchange file is no error; callers test the handle.
  }
  const int status = readInput(file.get(), inputHandle);
  return file.close() < 0 ? kFailed : status;
}

int OrvML_IO_ReadOrvOutput(const char* fileName, void*& outputHandle) {
  const Silence silence;
  if (fileName == nullptr || outputHandle != nullptr) {
    return kFailed;
  }
  FileId file = orvml_io::OpenFileForReading(fileName);
  if (!file.valid()) {
    return kOk;  // Contract: as for the input.
  }
  const int status = readOutput(file.get(), outputHandle);
  const int closed = file.close();
  return status != kOk ? status : closed;
}

int OrvML_IO_ReadOrvInputAndOrvOutput(const char* fileName, void*& inputHandle,
                                      void*& outputHandle) {
  const Silence silence;
  if (fileName == nullptr) {
    return kFailed;
  }
  if (inputHandle != nullptr || outputHandle != nullptr) {
    return -1;  // Contract: here, unlike in the readers of one document, it is -1.
  }
  FileId file = orvml_io::OpenFileForReading(fileName);
  if (!file.valid()) {
    return kOk;  // Contract: as for the input.
  }
  const SourceFile source(file.get());
  int status = readInput(source, inputHandle);
  if (status == kOk) {
    status = readOutput(source, outputHandle);
  }
  const int closed = file.close();
  return status != kOk ? status : closed;
}
