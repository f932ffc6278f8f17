#include <orvml/mapped_file.hpp>

#include "command.h"
#include "console.h"
#include "convert/format.h"
#include "convert/format_error.h"
#include "convert/mapped_bytes.h"
#include "convert/written_file.h"
#include "document_choice.h"
#include "exit_codes.h"
#include "facts.h"
#include "input_file.h"
#include "json.h"
#include "messages.h"
#include "output_file.h"
#include "progress.h"
#include "save_documents.h"

#include <algorithm>
#include <future>
#include <list>
#include <map>
#include <memory>
#include <optional>

namespace orvml_tool {

namespace {

using orvml::DocumentView;
using orvml::Entity;

constexpr std::string_view kExchange = "exchange";

struct ConvertArguments {
  std::string read;
  std::string written;
  std::string from;  // empty: the ending tells
  std::string to;
  DocumentChoice choice;
  std::vector<Entity> containers;
  bool splits = false;
  bool isStrict = false;
  bool asJson = false;
  std::optional<orvml::Kind> kind;
  ExportOptions exported;
  ImportOptions imported;
};

/// Exchange files are read whatever their ending is. A new one has none, or one of these: a format
/// that the command does not know must not look as if it had been written.
bool isEndingOfExchange(const std::string& file) {
  const std::string ending = endingOf(file);
  return file == "-" || ending.empty() || ending == "h5" || ending == "hdf5" || ending == "hdf" ||
         ending == "orvml";
}

/// The format that was named, else that of the ending; null for exchange files.
const MeshFormat* formatOf(const std::string& named, const std::string& file) {
  if (named == kExchange) {
    return nullptr;
  }
  return named.empty() ? formatOfEnding(file) : formatNamed(named);
}

std::string nameOf(const MeshFormat* format) {
  return std::string(format == nullptr ? kExchange : format->name);
}

void requireDirections(const ConvertArguments& options, const MeshFormat* from,
                       const MeshFormat* to) {
  if (from != nullptr && from->reads == nullptr) {
    throw Refusal(printable(options.read) + ": " + nameOf(from) + " is written and not read",
                  "have the program that made it write another format, such as vtu or msh");
  }
  if (to != nullptr && to->writes == nullptr) {
    throw Refusal(printable(options.written) + ": " + nameOf(to) + " is read and not written",
                  "write another format, such as vtu or msh");
  }
  if (to == nullptr && options.to.empty() && !isEndingOfExchange(options.written)) {
    throw Refusal(printable(options.written) + ": has an ending that is not known",
                  "say what is wanted, as with --to vtu or --to exchange");
  }
  if (options.splits && (to == nullptr || options.written == "-")) {
    throw Refusal("--split is for files of other formats that have names", "leave --split out");
  }
}

constexpr std::size_t kPiece = std::size_t{1} << 20U;  // indices that a thread looks at in turn

/// Whether a node index is beyond the nodes. Negative ones are, too: as unsigned they are the
/// greatest.
bool isBeyond(std::span<const int> nodeIndices, unsigned nodes) {
  unsigned greatest = 0;
  for (const int node : nodeIndices) {
    greatest = std::max(greatest, static_cast<unsigned>(node));
  }
  return !nodeIndices.empty() && greatest >= nodes;
}

/// Indices beyond the nodes would have other programs read elsewhere. They are looked for on
/// threads, which a format that does not look nodes up itself need not wait for; and who comes
/// behind them finds the pages of the file in memory.
class NodesOfCells {
 public:
  NodesOfCells(const DocumentView& document, std::string shown, std::size_t threads)
      : document_(document), shown_(std::move(shown)) {
    for (std::size_t thread = 0; thread < threads; ++thread) {
      found_.push_back(std::async(std::launch::async, [this, thread, threads] {
        return firstBadContainer(thread, threads);
      }));
    }
  }

  /// Throws Refusal when there are such.
  void require() {
    for (auto& found : found_) {
      if (const auto container = found.get()) {
        throw Refusal(
            shown_ + ": cells of " + groupName(*container) + " name nodes that there are not",
            "see which ones with orvml check, or leave them out with orvml rescue");
      }
    }
    found_.clear();
  }

 private:
  /// Of every so many pieces, from one on.
  [[nodiscard]] std::optional<Entity> firstBadContainer(std::size_t first,
                                                        std::size_t threads) const {
    const auto nodes = static_cast<unsigned>(document_.nodes().size());
    for (const Entity container : {Entity::edges, Entity::faces, Entity::elements}) {
      for (const orvml::CellGroup& group : document_.cells(container).groups()) {
        const std::span<const int> all = group.nodeIndices();
        for (std::size_t begin = first * kPiece; begin < all.size(); begin += threads * kPiece) {
          if (isBeyond(all.subspan(begin, std::min(kPiece, all.size() - begin)), nodes)) {
            return container;
          }
        }
      }
    }
    return std::nullopt;
  }

  const DocumentView& document_;
  std::string shown_;
  std::vector<std::future<std::optional<Entity>>> found_;
};

/// Every document of a file in turn would end in the same file, so it has to be one.
const DocumentView& chosen(const orvml::Exchange& documents, const DocumentChoice& choice,
                           const std::string& shown) {
  if (choice.of(documents.input.has_value(), documents.output.has_value(), shown) ==
      orvml::Kind::input) {
    return *documents.input;
  }
  return *documents.output;
}

/// What is read, as long as it is needed.
class ConvertedFile {
 public:
  ConvertedFile(const ConvertArguments& options, const MeshFormat* format,
                ConversionReport& report) {
    if (format == nullptr) {
      file_.emplace(options.read);
      mapped_.emplace(file_->path());
      documents_ = documentsOf(*mapped_);
      shown_ = file_->shown();
      return;
    }
    shown_ = options.read == "-" ? "standard input" : printable(options.read);
    bytes_.emplace(options.read);
    try {
      draft_.emplace(format->reads(bytes_->bytes(), options.imported, report));
    } catch (const FormatError& error) {
      throw Refusal(shown_ + ": " + printable(std::string_view(error.what())),
                    "have it written again, as " + nameOf(format) + ", by the program it is from");
    }
    documents_ = draft_->documents();
  }

  [[nodiscard]] const orvml::Exchange& documents() const noexcept { return documents_; }
  [[nodiscard]] const std::string& shown() const noexcept { return shown_; }

 private:
  std::string shown_;
  std::optional<InputFile> file_;
  std::optional<orvml::MappedFile> mapped_;
  std::optional<MappedBytes> bytes_;
  std::optional<Draft> draft_;
  orvml::Exchange documents_;
};

Json changesOf(const ConversionReport& report) {
  Json changes = Json::array();
  for (const Change& change : report.changes()) {
    changes.push_back({{"kind", name(change.kind)},
                       {"object", change.object},
                       {"count", change.count},
                       {"sentence", change.sentence}});
  }
  return changes;
}

/// A report goes to standard error when the file goes to standard output.
void printReport(const ConvertArguments& options, const ConversionReport& report,
                 const MeshFormat* from, const MeshFormat* to,
                 const std::vector<std::string>& files) {
  std::string text;
  if (options.asJson) {
    const Json json = {{"from", {{"file", options.read}, {"format", nameOf(from)}}},
                       {"to", {{"files", files}, {"format", nameOf(to)}}},
                       {"isLossless", report.isLossless()},
                       {"changes", changesOf(report)}};
    constexpr int kIndent = 2;
    text = json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
  } else {
    for (const std::string& file : files) {
      text += shownFile(options.read) + " -> " +
              (file == "-" ? "standard output" : printable(file)) + " (" + nameOf(to) + ")" +
              (report.isLossless() ? ": everything is there\n" : ": with changes\n");
    }
    for (const Change& change : report.changes()) {
      text += "  " + std::string(name(change.kind)) + ": " + printable(change.sentence) + "\n";
    }
  }
  if (options.written == "-") {
    printMessage(text);
  } else {
    print(text);
  }
}

void refuseChanges(const ConvertArguments& options, const ConversionReport& report) {
  if (!options.isStrict || report.isLossless()) {
    return;
  }
  const auto& changes = report.changes();
  const auto first = std::find_if(changes.begin(), changes.end(),
                                  [](const Change& change) { return isLoss(change.kind); });
  throw Refusal(
      shownFile(options.read) + ": would not come through whole: " +
          std::string(name(first->kind)) + ": " + printable(first->sentence) +
          (changes.size() == 1
               ? ""
               : ", and " + counted(static_cast<std::int64_t>(changes.size()) - 1, "other change")),
      "leave --strict out to make do with that, or convert to another format");
}

/// Such as part.faces.vtu for part.vtu.
std::string splitName(const std::string& file, Entity container) {
  const std::filesystem::path path(file);
  std::string part = groupName(container);
  std::transform(part.begin(), part.end(), part.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return (path.parent_path() / (path.stem().string() + "." + part + path.extension().string()))
      .string();
}

struct FileOfContainers {
  std::string name;
  std::vector<Entity> containers;
};

std::vector<FileOfContainers> filesOf(const ConvertArguments& options, const DocumentView& document,
                                      const std::string& shown) {
  if (!options.splits) {
    return {{options.written, options.exported.containers}};
  }
  std::vector<FileOfContainers> files;
  for (const Entity container : options.exported.containers) {
    if (document.cells(container).size() > 0) {
      files.push_back({splitName(options.written, container), {container}});
    }
  }
  if (files.empty()) {
    throw Refusal(shown + ": there are no cells to be split",
                  "leave --split out to write the nodes, or name other cells with --only");
  }
  return files;
}

/// Writes them all before the first takes its place: what is refused leaves none of them.
std::vector<std::string> writeForeign(const ConvertArguments& options, const MeshFormat& format,
                                      const DocumentView& document, const std::string& shown,
                                      ConversionReport& report) {
  NodesOfCells nodes(document, shown, format.looksNodesUp ? 2 : 1);
  if (format.looksNodesUp) {
    nodes.require();
  }
  std::vector<std::string> names;
  const OutputFile output(options.written);
  output.write([&](const std::filesystem::path& path) {
    std::list<WrittenFile> written;
    for (const FileOfContainers& file : filesOf(options, document, shown)) {
      ExportOptions exported = options.exported;
      exported.containers = file.containers;
      WrittenFile& one =
          written.emplace_back(options.splits ? std::filesystem::path(file.name) : path);
      format.writes(document, exported, one.sink(), report);
      names.push_back(file.name);
    }
    nodes.require();
    refuseChanges(options, report);
    for (WrittenFile& file : written) {
      file.takePlace();
    }
  });
  return names;
}

std::vector<std::string> writeExchange(const ConvertArguments& options,
                                       const orvml::Exchange& documents,
                                       const ConversionReport& report) {
  refuseChanges(options, report);
  const OutputFile written(options.written);
  written.write([&](const std::filesystem::path& path) { saveDocuments(path, documents); });
  return {options.written};
}

int runConvert(const ConvertArguments& options) {
  const MeshFormat* from = formatOf(options.from, options.read);
  const MeshFormat* to = formatOf(options.to, options.written);
  requireDirections(options, from, to);
  const OutputFile watched(options.written);  // before there are threads
  ConversionReport report;
  std::vector<std::string> files;
  {
    const Progress progress("converting " + shownFile(options.read));
    const ConvertedFile source(options, from, report);
    if (to == nullptr) {
      files = about(options.written,
                    [&] { return writeExchange(options, source.documents(), report); });
    } else {
      const DocumentView& document = chosen(source.documents(), options.choice, source.shown());
      files = writeForeign(options, *to, document, source.shown(), report);
    }
  }
  printReport(options, report, from, to, files);
  return kDone;
}

std::vector<std::string> formatNames() {
  std::vector<std::string> names = {std::string(kExchange)};
  for (const MeshFormat& format : foreignFormats()) {
    names.emplace_back(format.name);
  }
  return names;
}

void addFormats(CLI::App& command, ConvertArguments& options) {
  command.add_option("--from", options.from, "the format of IN, else its ending says")
      ->check(CLI::IsMember(formatNames()));
  command.add_option("--to", options.to, "the format of OUT, else its ending says")
      ->check(CLI::IsMember(formatNames()));
}

void addExportOptions(CLI::App& command, ConvertArguments& options) {
  const std::map<std::string, Entity> containers = {
      {"edges", Entity::edges}, {"faces", Entity::faces}, {"elements", Entity::elements}};
  command
      .add_option("--only", options.exported.containers,
                  "the cells that are written: edges, faces, elements; all without it")
      ->delimiter(',')
      ->transform(CLI::CheckedTransformer(containers).description(""));
  command.add_flag("--split", options.splits, "a file for each of edges, faces and elements");
  command.add_flag("--text", options.exported.asText, "text, where a format has text and binary");
  command.add_flag("--compress", options.exported.compresses, "compressed, where a format can");
  command.add_flag("--older-prisms", options.exported.hasOlderPrisms,
                   "prisms in the order of VTK before 9.7 and ParaView before 6.1, in vtu");
  command.add_option("--sets", options.exported.entityAttribute,
                     "the integer attribute of cells whose values number entities or sets");
}

void addImportOptions(CLI::App& command, ConvertArguments& options) {
  command.add_option("--dimension", options.imported.dimension, "of the document: 2 or 3")
      ->check(CLI::IsMember({2, 3}));
  const std::map<std::string, orvml::Kind> kinds = {{"input", orvml::Kind::input},
                                                    {"output", orvml::Kind::output}};
  command.add_option("--kind", options.imported.kind, "the document that is made: input or output")
      ->transform(CLI::CheckedTransformer(kinds).description(""));
}

}  // namespace

void addConvert(CLI::App& app, Run& run) {
  auto options = std::make_shared<ConvertArguments>();
  CLI::App& command = addSubcommand(app, "convert", "Convert to and from formats of other programs",
                                    "orvml convert part.h5 part.vtu");
  command.add_option("IN", options->read, "is read; - is standard input")->required();
  command.add_option("OUT", options->written, "is written; - is standard output")->required();
  addFormats(command, *options);
  addChoice(command, options->choice);
  addExportOptions(command, *options);
  addImportOptions(command, *options);
  command.add_flag("--strict", options->isStrict, "refuse what would not come through whole");
  command.add_flag("--json", options->asJson,
                   "print JSON, as share/orvml/schema/convert.schema.json says");
  command.callback([options, &run] { run = [options] { return runConvert(*options); }; });
}

}  // namespace orvml_tool
