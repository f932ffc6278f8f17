#include <orvml/save.hpp>

#include "hdf5/datasets.h"
#include "hdf5/layout.h"
#include "lent_document.h"
#include "model/names.h"
#include "safe_file.h"
#include "written_documents.h"

#include <optional>

namespace orvml {

namespace {

namespace layout = orvml_io::layout;

bool isMarked(hid_t file) {
  return orvml_io::setText(file, layout::kFormat, layout::kFormatMarker) == orvml_io::kOk &&
         orvml_io::setText(file, layout::kFormatVersion, orvml_io::kFormatVersion) == orvml_io::kOk;
}

void write(const std::filesystem::path& path, const DocumentView* input, const DocumentView* output,
           const SaveOptions& options) {
  // What cannot be written shows before anything is touched.
  std::optional<detail::LentDocument> lentInput;
  std::optional<detail::LentDocument> lentOutput;
  if (input != nullptr) {
    lentInput.emplace(*input);
  }
  if (output != nullptr) {
    lentOutput.emplace(*output);
  }
  detail::FailureWatch watch;
  detail::SafeFile file(path, watch);
  detail::writeDocuments(lentInput ? &*lentInput : nullptr, lentOutput ? &*lentOutput : nullptr,
                         file);
  file.finish(options.flush);
}

}  // namespace

void detail::writeDocuments(const LentDocument* input, const LentDocument* output, SafeFile& file) {
  const char* version = orvml_io::kFormatVersion;
  const bool isWritten =
      isMarked(file.id()) &&
      (input == nullptr ||
       orvml_io::OrvInput::Write(input->core(), file.id(), version) == orvml_io::kOk) &&
      (output == nullptr ||
       orvml_io::OrvOutput::Write(output->core(), file.id(), version) == orvml_io::kOk);
  if (!isWritten) {
    file.throwUnwritten();
  }
}

void save(const std::filesystem::path& path, const InputView& input, const SaveOptions& options) {
  write(path, &input, nullptr, options);
}

void save(const std::filesystem::path& path, const OutputView& output, const SaveOptions& options) {
  write(path, nullptr, &output, options);
}

void save(const std::filesystem::path& path, const InputView& input, const OutputView& output,
          const SaveOptions& options) {
  write(path, &input, &output, options);
}

}  // namespace orvml
