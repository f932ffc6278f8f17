#include <orvml/load.hpp>

#include "array_threads.h"
#include "document_access.h"
#include "opened_file.h"

#include <iterator>
#include <optional>
#include <utility>

namespace orvml {

namespace {

using detail::OpenedFile;
using detail::ReadDocument;

/// Reads a document with the threads that the options ask for.
ReadDocument read(const OpenedFile& file, Kind kind, const LoadOptions& options) {
  if (options.threads <= 1 || !file.isReadDirectly()) {
    return detail::readDocument(file, kind, options.policy, nullptr);
  }
  detail::ArrayThreads threads(file.descriptor(), options.threads);
  return detail::readDocument(file, kind, options.policy, &threads);
}

/// Reads a document when the file holds one, and collects what was found.
template <class Made>
std::optional<Made> loadIfThere(const OpenedFile& file, Kind kind, const LoadOptions& options,
                                std::vector<Finding>& findings) {
  if (!file.holds(kind)) {
    return std::nullopt;
  }
  ReadDocument document = read(file, kind, options);
  std::move(document.findings.begin(), document.findings.end(), std::back_inserter(findings));
  if (document.document == nullptr) {
    return std::nullopt;
  }
  return detail::DocumentAccess::make<Made>(std::move(document.document));
}

template <class Made>
Made loadOne(const std::filesystem::path& path, Kind kind, const LoadOptions& options) {
  const OpenedFile file(path);
  std::vector<Finding> findings;
  std::optional<Made> document = loadIfThere<Made>(file, kind, options, findings);
  if (!document) {
    detail::throwFirst(findings, path);
    detail::throwMissing(kind, path);
  }
  return std::move(*document);
}

}  // namespace

Loaded load(const std::filesystem::path& path, const LoadOptions& options) {
  const OpenedFile file(path);
  if (!file.holds(Kind::input) && !file.holds(Kind::output)) {
    throw Error(Code::noDocument, "holds no document", {path, {}, {}});
  }
  Loaded loaded;
  loaded.input = loadIfThere<Input>(file, Kind::input, options, loaded.findings);
  loaded.output = loadIfThere<Output>(file, Kind::output, options, loaded.findings);
  if (options.policy == Policy::strict) {
    loaded.findings.clear();  // nothing but objects that are none of the format's
  }
  return loaded;
}

Input loadInput(const std::filesystem::path& path, const LoadOptions& options) {
  return loadOne<Input>(path, Kind::input, options);
}

Output loadOutput(const std::filesystem::path& path, const LoadOptions& options) {
  return loadOne<Output>(path, Kind::output, options);
}

}  // namespace orvml
