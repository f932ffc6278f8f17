#include <orvml/diff.hpp>

#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "facts.h"
#include "input_file.h"
#include "json.h"
#include "messages.h"
#include "numbers.h"
#include "progress.h"

#include <memory>
#include <utility>

namespace orvml_tool {

namespace {

struct DiffArguments {
  std::string first;
  std::string second;
  orvml::Tolerance tolerance;
  std::vector<std::string> absoluteOf;
  std::vector<std::string> relativeOf;
  double matchWithin = -1.0;
  bool isQuiet = false;
  bool asJson = false;
};

/// What the comparison of the documents of one kind said.
struct Compared {
  orvml::Kind kind;
  bool isInFirst = false;
  bool isInSecond = false;
  orvml::DiffReport report;  // where both files have one

  [[nodiscard]] bool areSame() const { return isInFirst == isInSecond && report.areSame(); }
};

using View = std::optional<orvml::DocumentView>;

/// Splits NAME=NUMBER. Names may have "=" in them.
std::pair<std::string, double> namedTolerance(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  const auto value = equals == std::string::npos
                         ? std::nullopt
                         : numberIn(std::string_view(text).substr(equals + 1));
  if (!value || !(*value >= 0.0)) {
    throw Refusal("'" + printable(text) + "' is no tolerance of a name",
                  "write NAME=NUMBER with a number that is not negative, such as size=1e-9");
  }
  return {text.substr(0, equals), *value};
}

orvml::DiffOptions diffOptions(const DiffArguments& options) {
  orvml::DiffOptions made;
  made.tolerance = options.tolerance;
  const auto of = [&](const std::string& name) -> orvml::Tolerance& {
    return made.toleranceOf.try_emplace(name).first->second;
  };
  for (const std::string& text : options.absoluteOf) {
    const auto [name, value] = namedTolerance(text);
    of(name).absolute = value;
  }
  for (const std::string& text : options.relativeOf) {
    const auto [name, value] = namedTolerance(text);
    of(name).relative = value;
  }
  if (options.matchWithin >= 0.0) {
    made.matchWithin = options.matchWithin;
  }
  return made;
}

Compared compare(orvml::Kind kind, const View& first, const View& second,
                 const orvml::DiffOptions& options) {
  Compared compared{kind, first.has_value(), second.has_value(), {}};
  if (first && second) {
    compared.report = diff(*first, *second, options);
  }
  return compared;
}

std::string contractText(const Compared& compared) {
  if (!compared.report.areEqualByContract) {
    return "the comparison of the flat interface has no answer";
  }
  return std::string("the comparison of the flat interface calls them ") +
         (*compared.report.areEqualByContract ? "equal" : "different");
}

void printMatched(const char* what, const orvml::MatchedEntity& matched) {
  if (matched.matched + matched.onlyInFirst + matched.onlyInSecond == 0) {
    return;
  }
  print("  " + std::string(what) + ": " + shown(matched.matched) + " matched, " +
        shown(matched.onlyInFirst) + " only in the first, " + shown(matched.onlyInSecond) +
        " only in the second" + (matched.isRenumbered ? ", renumbered" : "") + "\n");
}

void printMatch(const orvml::MatchReport& match) {
  printMatched("nodes", match.nodes);
  printMatched("edges", match.edges);
  printMatched("faces", match.faces);
  printMatched("elements", match.elements);
}

void printText(const Compared& compared) {
  if (compared.isInFirst != compared.isInSecond) {
    print(documentPath(compared.kind) + " is in the " + (compared.isInFirst ? "first" : "second") +
          " alone\n");
  }
  for (const orvml::Difference& difference : compared.report.differences) {
    print(documentPath(compared.kind) + printable(difference.object) + ": " +
          printable(difference.sentence) + "\n");
  }
  if (compared.isInFirst && compared.isInSecond) {
    print(documentPath(compared.kind) + ": " + contractText(compared) + "\n");
  }
  if (compared.report.match) {
    printMatch(*compared.report.match);
  }
}

Json differenceAsJson(const orvml::Difference& difference) {
  Json json = {{"change", text(difference.change)},
               {"object", difference.object},
               {"sentence", difference.sentence}};
  if (difference.change == orvml::Change::values) {
    json["count"] = difference.count;
    json["first"] = difference.first;
    json["worst"] = difference.worst;
    json["largest"] = asJson(difference.largest);
  }
  return json;
}

Json matchedAsJson(const orvml::MatchedEntity& matched) {
  return {{"matched", matched.matched},
          {"onlyInFirst", matched.onlyInFirst},
          {"onlyInSecond", matched.onlyInSecond},
          {"isRenumbered", matched.isRenumbered}};
}

Json comparedAsJson(const Compared& compared) {
  Json differences = Json::array();
  for (const orvml::Difference& difference : compared.report.differences) {
    differences.push_back(differenceAsJson(difference));
  }
  const auto& byContract = compared.report.areEqualByContract;
  Json json = {{"kind", kindName(compared.kind)},
               {"isInFirst", compared.isInFirst},
               {"isInSecond", compared.isInSecond},
               {"areSame", compared.areSame()},
               {"areEqualByContract", byContract ? Json(*byContract) : Json()},
               {"differences", std::move(differences)}};
  if (const auto& match = compared.report.match) {
    json["match"] = {{"nodes", matchedAsJson(match->nodes)},
                     {"edges", matchedAsJson(match->edges)},
                     {"faces", matchedAsJson(match->faces)},
                     {"elements", matchedAsJson(match->elements)}};
  }
  return json;
}

/// The documents that one file has at least, input first.
std::vector<Compared> compareFiles(const InputFile& first, const InputFile& second,
                                   const orvml::DiffOptions& options) {
  const Progress progress("comparing " + first.shown() + " with " + second.shown());
  const orvml::MappedFile a(first.path());
  const orvml::MappedFile b(second.path());
  const orvml::Exchange from = documentsOf(a);
  const orvml::Exchange to = documentsOf(b);
  std::vector<Compared> compared;
  if (from.input || to.input) {
    compared.push_back(compare(orvml::Kind::input, from.input, to.input, options));
  }
  if (from.output || to.output) {
    compared.push_back(compare(orvml::Kind::output, from.output, to.output, options));
  }
  return compared;
}

void printAll(const DiffArguments& options, const std::vector<Compared>& all, bool areSame) {
  if (options.asJson) {
    Json documents = Json::array();
    for (const Compared& compared : all) {
      documents.push_back(comparedAsJson(compared));
    }
    printJson({{"first", options.first},
               {"second", options.second},
               {"areSame", areSame},
               {"documents", std::move(documents)}});
  } else if (!options.isQuiet) {
    for (const Compared& compared : all) {
      printText(compared);
    }
  }
}

int runDiff(const DiffArguments& options) {
  const orvml::DiffOptions tolerances = diffOptions(options);
  const InputFile first(options.first);
  const InputFile second(options.second);
  const std::vector<Compared> all = compareFiles(first, second, tolerances);
  bool areSame = true;
  for (const Compared& compared : all) {
    areSame = areSame && compared.areSame();
  }
  printAll(options, all, areSame);
  return areSame ? kDone : kDifferent;
}

void addTolerances(CLI::App& command, DiffArguments& options) {
  command.add_option("--absolute", options.tolerance.absolute, "numbers so far apart are equal")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--relative", options.tolerance.relative,
                  "numbers are equal that differ by this share of the larger one")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--absolute-of", options.absoluteOf,
                  "NAME=NUMBER: the same for one name alone; coordinates is one")
      ->allow_extra_args(false);
  command
      .add_option("--relative-of", options.relativeOf, "NAME=NUMBER: the same for one name alone")
      ->allow_extra_args(false);
  command
      .add_option("--match", options.matchWithin,
                  "nodes so close to each other are the same, whatever their numbers")
      ->check(CLI::NonNegativeNumber);
}

}  // namespace

void addDiff(CLI::App& app, Run& run) {
  auto options = std::make_shared<DiffArguments>();
  CLI::App& command = addSubcommand(app, "diff", "Tell what differs between two files",
                                    "orvml diff --absolute 1e-9 before.h5 after.h5");
  command.add_option("A", options->first, "the first exchange file; - is standard input")
      ->required();
  command.add_option("B", options->second, "the second exchange file")->required();
  addTolerances(command, *options);
  command.add_flag("-q,--quiet", options->isQuiet, "print nothing");
  command.add_flag("--json", options->asJson,
                   "print JSON, as share/orvml/schema/diff.schema.json says");
  command.callback([options, &run] { run = [options] { return runDiff(*options); }; });
}

}  // namespace orvml_tool
