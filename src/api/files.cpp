// Exported functions of the exchange files.
#include "hdf5/exchange_file.h"
#include "hdf5/silence.h"
#include "hdf5/status.h"
#include "model/document.h"
#include "orvml_io.h"

#include <memory>

using orvml_io::documentOf;
using orvml_io::FileId;
using orvml_io::handleOf;
using orvml_io::kFailed;
using orvml_io::kOk;
using orvml_io::NewFile;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;
using orvml_io::OrvOutput;
using orvml_io::Silence;
using orvml_io::SourceFile;

namespace {

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
  NewFile file = orvml_io::createMarkedFile(fileName, version);
  if (!file.valid()) {
    return kFailed;
  }
  int status = kOk;
  if (input != nullptr) {
    status = OrvInput::Write(*input, file.id(), version);
  }
  if (status == kOk && output != nullptr) {
    status = OrvOutput::Write(*output, file.id(), version);
  }
  return file.finish(status);
}

/// Reads one document into a handle with the core's reader of its kind.
template <class Document>
int readInto(void*& handle, SourceFile& file,
             int (*read)(SourceFile&, std::unique_ptr<Document>&)) {
  std::unique_ptr<Document> document;
  const int status = read(file, document);
  handle = handleOf(document.release());
  return status;
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
  SourceFile source(file.get());
  const int status = readInto(inputHandle, source, orvml_io::ReadOrvInput);
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
  SourceFile source(file.get());
  const int status = readInto(outputHandle, source, orvml_io::ReadOrvOutput);
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
  SourceFile source(file.get());
  int status = readInto(inputHandle, source, orvml_io::ReadOrvInput);
  if (status == kOk) {
    status = readInto(outputHandle, source, orvml_io::ReadOrvOutput);
  }
  const int closed = file.close();
  return status != kOk ? status : closed;
}
