// Reads files of other formats. The first byte of an input says of which one and with which
// options; what follows is the file. What was read has to be sound, and is written in every format.
#include "convert/byte_sink.h"
#include "convert/format.h"
#include "convert/format_error.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "messages.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace orvml_io_tests {
namespace {

using orvml::DocumentView;
using orvml::Entity;

std::vector<orvml_tool::MeshFormat> formatsThatAreRead() {
  std::vector<orvml_tool::MeshFormat> formats;
  for (const orvml_tool::MeshFormat& format : orvml_tool::foreignFormats()) {
    if (format.reads != nullptr) {
      formats.push_back(format);
    }
  }
  return formats;
}

void requireSound(const DocumentView& document) {
  const auto nodes = static_cast<std::size_t>(document.nodes().size());
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    for (const orvml::CellGroup& group : document.cells(entity).groups()) {
      for (const int node : group.nodeIndices()) {
        require(node >= 0 && static_cast<std::size_t>(node) < nodes,
                "a reader leaves no index beyond the nodes");
      }
    }
  }
}

void writeInEveryFormat(const DocumentView& document, const orvml_tool::ExportOptions& options) {
  static const int kNowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  for (const orvml_tool::MeshFormat& format : orvml_tool::foreignFormats()) {
    try {
      orvml_tool::ConversionReport report;
      orvml_tool::ByteSink sink(kNowhere, "/dev/null");
      format.writes(document, options, sink, report);
      sink.flush();
    } catch (const orvml_tool::Refusal&) {
      continue;  // not every mesh has a place in every format
    }
  }
}

void run(unsigned choice, std::string_view file) {
  static const std::vector<orvml_tool::MeshFormat> kFormats = formatsThatAreRead();
  const orvml_tool::MeshFormat& format = kFormats[choice % kFormats.size()];
  choice /= static_cast<unsigned>(kFormats.size());
  orvml_tool::ImportOptions imported;
  imported.dimension = choice % 4 == 1   ? std::optional<int>(2)
                       : choice % 4 == 2 ? std::optional<int>(3)
                                         : std::nullopt;
  imported.kind = choice / 4 % 2 == 0 ? orvml::Kind::input : orvml::Kind::output;
  orvml_tool::ExportOptions exported;
  exported.asText = choice / 8 % 2 == 1;
  exported.compresses = choice / 16 % 2 == 1;
  try {
    orvml_tool::ConversionReport report;
    const orvml_tool::Draft draft = format.reads(file, imported, report);
    const orvml::Exchange documents = draft.documents();
    const DocumentView* document = nullptr;
    if (documents.input.has_value()) {
      document = &*documents.input;
    } else {
      document = &*documents.output;
    }
    requireSound(*document);
    writeInEveryFormat(*document, exported);
  } catch (const orvml_tool::FormatError&) {
    return;  // as of nearly all inputs
  } catch (const orvml_tool::Refusal&) {
    return;  // such as a plane document of nodes that are in space
  }
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) { return 0; }

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) {
    orvml_io_tests::run(data[0], {reinterpret_cast<const char*>(data) + 1, size - 1});
  }
  return 0;
}
