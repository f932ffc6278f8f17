#include "command.h"
#include "exit_codes.h"
#include "messages.h"

#ifdef ORVML_HAS_REPORT
#include <orvml/check.hpp>
#include <orvml/describe.hpp>
#include <orvml/mapped_file.hpp>

#include "console.h"
#include "convert/written_file.h"
#include "document_choice.h"
#include "input_file.h"
#include "output_file.h"
#include "progress.h"
#include "report.h"

#include <list>
#include <optional>
#endif

#include <memory>
#include <string>

namespace orvml_tool {

namespace {

/// As they stand on the command line, whether this build can do it or not.
struct ReportArguments {
  std::string first;
  std::string second;
  std::string written;
  std::string title;
  bool isInput = false;
  bool isOutput = false;
  bool showsBoth = false;
  bool isUnchecked = false;
};

#ifdef ORVML_HAS_REPORT

using orvml::Kind;

/// A file of which a document is shown, or both, as long as it is needed.
class ReportedFile {
 public:
  ReportedFile(const std::string& name, bool isChecked)
      : file_(name),
        description_(orvml::describe(file_.path())),
        mapped_(file_.path(), orvml::Policy::tolerant) {
    if (isChecked) {
      report_ = orvml::check(file_.path(), {.threads = 2});
    }
  }
  ReportedFile(const ReportedFile&) = delete;
  ReportedFile& operator=(const ReportedFile&) = delete;
  ReportedFile(ReportedFile&&) = delete;
  ReportedFile& operator=(ReportedFile&&) = delete;
  ~ReportedFile() = default;

  [[nodiscard]] const InputFile& file() const noexcept { return file_; }
  [[nodiscard]] bool has(Kind kind) const noexcept {
    return kind == Kind::input ? mapped_.hasInput() : mapped_.hasOutput();
  }

  /// Adds a document that there is to those of a page.
  void add(Kind kind, std::vector<orvml_report::ReportedDocument>& documents) {
    views_.push_back(kind == Kind::input ? orvml::DocumentView(mapped_.input())
                                         : orvml::DocumentView(mapped_.output()));
    const bool isNamed = file_.given() != "-";
    documents.push_back(
        {&views_.back(), isNamed ? file_.path().filename().string() : file_.shown(),
         orvml_report::FileFacts{description_.fileBytes, description_.formatVersion},
         report_ ? &*report_ : nullptr});
  }

 private:
  InputFile file_;
  orvml::Description description_;
  orvml::MappedFile mapped_;
  std::optional<orvml::CheckReport> report_;
  std::list<orvml::DocumentView> views_;
};

/// The document of a file that is shown: the one that was asked for, else the output, which is what
/// became of the input.
Kind shownKind(const ReportArguments& options, const ReportedFile& file) {
  DocumentChoice choice;
  choice.isInput = options.isInput;
  choice.isOutput = options.isOutput || (!options.isInput && file.has(Kind::output));
  return choice.of(file.has(Kind::input), file.has(Kind::output), file.file().shown());
}

void requireBoth(const ReportedFile& file) {
  for (const Kind kind : {Kind::input, Kind::output}) {
    if (!file.has(kind)) {
      throw Refusal(file.file().shown() + ": there is no " +
                        (kind == Kind::input ? "input" : "output") + " document",
                    "leave --both out");
    }
  }
}

orvml_report::Page pageOf(const ReportArguments& options) {
  ReportedFile first(options.first, !options.isUnchecked);
  std::optional<ReportedFile> second;
  std::vector<orvml_report::ReportedDocument> documents;
  if (options.showsBoth) {
    requireBoth(first);
    first.add(Kind::input, documents);
    first.add(Kind::output, documents);
  } else {
    first.add(shownKind(options, first), documents);
  }
  if (!options.second.empty()) {
    second.emplace(options.second, !options.isUnchecked);
    second->add(shownKind(options, *second), documents);
  }
  return orvml_report::pageOf(documents, {.title = options.title});
}

/// Beside nothing of the file but its name: in the current folder.
std::string nameOfPage(const ReportArguments& options) {
  if (!options.written.empty()) {
    return options.written;
  }
  if (options.first == "-") {
    throw Refusal("the page of standard input has no name", "name it with -o");
  }
  return std::filesystem::path(options.first).filename().replace_extension(".html").string();
}

/// A page that takes the place of what it shows would destroy it.
void requireOther(const ReportArguments& options, const std::string& written) {
  for (const std::string& read : {options.first, options.second}) {
    std::error_code ignored;
    if (!read.empty() && written != "-" && std::filesystem::equivalent(read, written, ignored)) {
      throw Refusal(printable(written) + ": is the file that is shown",
                    "name another file with -o");
    }
  }
}

void tellWritten(const std::string& written, const orvml_report::Page& page) {
  const bool isPrinted = written == "-";
  std::string text =
      (isPrinted ? "standard output" : printable(written)) + ": " + shownBytes(page.html.size());
  for (const std::string& note : page.notes) {
    text += "\n  " + printable(note);
  }
  text += "\n";
  if (isPrinted) {
    printMessage(text);
  } else {
    print(text);
  }
}

int runReport(const ReportArguments& options) {
  const std::string written = nameOfPage(options);
  requireOther(options, written);
  const OutputFile output(written, "pages");
  orvml_report::Page page;
  {
    const Progress progress("showing " + shownFile(options.first));
    page = pageOf(options);
  }
  output.write([&](const std::filesystem::path& path) {
    WrittenFile file(path);
    file.sink().write(page.html);
    file.takePlace();
  });
  tellWritten(written, page);
  return kDone;
}

#else

int runReport(const ReportArguments& /*options*/) {
  throw Refusal("this build of the command has no reports",
                "build it where there are node and npm, as docs/libraries.md says");
}

#endif

void addDocuments(CLI::App& command, ReportArguments& options) {
  auto* second = command.add_option("SECOND", options.second,
                                    "another one, shown beside it with what differs");
  auto* input = command.add_flag("--input", options.isInput, "the input document is shown");
  auto* output = command.add_flag("--output", options.isOutput,
                                  "the output document is shown, as it is where there is one");
  output->excludes(input);
  command
      .add_flag("--both", options.showsBoth,
                "the input and the output document of one file are shown with what differs")
      ->excludes(input)
      ->excludes(output)
      ->excludes(second);
}

}  // namespace

void addReport(CLI::App& app, Run& run) {
  auto options = std::make_shared<ReportArguments>();
  CLI::App& command = addSubcommand(
      app, "report", "Write a page that shows a mesh in any browser, without a network",
      "orvml report part.h5 -o part.html");
  command.add_option("FILE", options->first, "an exchange file; - is standard input")->required();
  addDocuments(command, *options);
  command.add_option("-o", options->written,
                     "PAGE: is written; - is standard output; else FILE with the ending .html, in "
                     "the current folder");
  command.add_option("--title", options->title, "of the page; else the names of the files");
  command.add_flag("--no-check", options->isUnchecked, "do not look whether the mesh is sound");
  command.callback([options, &run] { run = [options] { return runReport(*options); }; });
}

}  // namespace orvml_tool
