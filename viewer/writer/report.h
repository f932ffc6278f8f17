#pragma once

#include <orvml/check.hpp>
#include <orvml/view.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Makes pages that show a document, or two side by side, in a browser without a network.
namespace orvml_report {

/// The file that a document is from.
struct FileFacts {
  std::uint64_t bytes = 0;
  std::string formatVersion;
};

/// A document and what is known of it. Nothing of it is owned.
struct ReportedDocument {
  const orvml::DocumentView* view = nullptr;  ///< has to be there
  std::string name;                           ///< of its file; empty for a document of a program
  std::optional<FileFacts> file = {};
  /// What check() said of the document, or of its file: findings about the other document of that
  /// are left out. Null when nothing was checked.
  const orvml::CheckReport* report = nullptr;
};

/// How much of a document a page holds, so that any browser opens it at once: about 60 bytes of the
/// page a face, 30 a node.
struct ReportLimits {
  /// Elements are whole up to so many, so that clip planes cut through them; above, their outer
  /// faces are shown alone.
  std::int64_t elements = 250'000;
  /// Above so many linear faces, nodes that are close to each other become one.
  std::int64_t faces = 200'000;
  std::int64_t edges = 400'000;
  std::int64_t nodes = 400'000;  ///< above, those of the drawn cells alone
  /// Bytes of attributes up to which doubles keep all their digits, and up to which there are any.
  std::uint64_t exactAttributeBytes = 24'000'000;
  std::uint64_t attributeBytes = 48'000'000;
};

struct ReportOptions {
  std::string title = {};  ///< else made of the names
  ReportLimits limits = {};
  int threads = 2;  ///< how many measure cells, the caller's included
};

/// A page and what it tells about what it leaves out, in whole sentences.
struct Page {
  std::string html;
  std::vector<std::string> notes;
};

/// Makes a page of one document, or of two that are compared. Any document will do, whatever its
/// indices and coordinates are.
///
/// Throws std::invalid_argument for another number of documents, or a null one, and std::bad_alloc.
[[nodiscard]] Page pageOf(std::span<const ReportedDocument> documents,
                          const ReportOptions& options = {});

}  // namespace orvml_report
