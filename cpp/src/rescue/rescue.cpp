#include <orvml/rescue.hpp>

#include "hdf5/silence.h"
#include "opened_file.h"
#include "rescue/damaged_file.h"
#include "rescue/losses.h"
#include "rescue/own_process.h"
#include "rescue/read_document.h"
#include "rescue/rescued_document.h"
#include "rescue/sound_document.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

namespace orvml {

namespace {

using detail::Losses;
using detail::RescuedDocument;

/// What was read of a file, before it is judged.
struct ReadFile {
  std::optional<RescuedDocument> input;
  std::optional<RescuedDocument> output;
  std::string version;
  Losses losses;
};

void requireOtherFile(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code failure;  // of paths that lead nowhere, which are not the same
  if (std::filesystem::equivalent(from, to, failure)) {
    throw Error(Code::rescueSameFile, "is the file that is read", {to, {}, {}});
  }
}

/// Tells whether a file has one of the groups of documents, by whatever kind of link.
bool holdsAnyDocument(hid_t file) {
  const orvml_io::Silence silence;
  for (const Kind kind : {Kind::input, Kind::output}) {
    if (H5Lexists(file, detail::groupOf(kind), H5P_DEFAULT) > 0) {
      return true;
    }
  }
  return false;
}

ReadFile read(const std::filesystem::path& path) {
  const orvml_io::Silence silence;
  const detail::DamagedFile file(path);
  ReadFile read;
  const detail::FileFacts facts = factsOf(file.id(), read.losses);
  if (!facts.isMarked && !holdsAnyDocument(file.id())) {
    throw Error(Code::fileNotExchange,
                "is an HDF5 file without the marker and the documents of exchange files",
                {path, {}, {}});
  }
  if (file.isCutOff()) {
    read.losses.add(Code::fileCutOff, "/", "is a file whose end is missing");
  }
  read.version = facts.statedVersion;
  read.input = detail::readDocument(file.id(), Kind::input, facts, read.losses);
  read.output = detail::readDocument(file.id(), Kind::output, facts, read.losses);
  return read;
}

void saveAll(const std::filesystem::path& path, const ReadFile& file, const SaveOptions& options) {
  if (file.input && file.output) {
    save(path, InputView(file.input->view()), OutputView(file.output->view()), options);
  } else if (file.input) {
    save(path, InputView(file.input->view()), options);
  } else {
    save(path, OutputView(file.output->view()), options);
  }
}

/// Documents without anything in them are as good as none, unless they have always been so.
bool isNothingLeft(const ReadFile& file) {
  const bool isInputEmpty = !file.input || file.input->isEmpty();
  const bool isOutputEmpty = !file.output || file.output->isEmpty();
  return (!file.input && !file.output) || (isInputEmpty && isOutputEmpty && !file.losses.empty());
}

[[noreturn]] void throwNothingLeft(const std::vector<LostObject>& lost,
                                   const std::filesystem::path& path) {
  constexpr std::size_t kMostReasons = 3;
  std::string reasons;
  for (std::size_t i = 0; i < std::min(lost.size(), kMostReasons); ++i) {
    reasons += (i == 0 ? ": " : "; ") + lost[i].sentence;
  }
  throw Error(Code::rescueNothingLeft, "holds nothing that can be saved" + reasons,
              {path, lost.empty() ? std::string() : lost.front().object, {}});
}

RescueReport rescueHere(const std::filesystem::path& damaged, const std::filesystem::path& sound,
                        const RescueOptions& options) {
  ReadFile file = read(damaged);
  for (std::optional<RescuedDocument>* document : {&file.input, &file.output}) {
    if (*document) {
      makeSound(**document, options, file.losses);
    }
  }
  if (isNothingLeft(file)) {
    throwNothingLeft(file.losses.takeLost(), damaged);
  }
  saveAll(sound, file, options.save);
  RescueReport report{file.losses.takeLost(), file.losses.takeChanged()};
  for (LostObject& lost : report.lost) {
    const auto most = static_cast<std::size_t>(std::max(options.places, 0));
    lost.places.resize(std::min(lost.places.size(), most));
  }
  return report;
}

}  // namespace

RescueReport rescue(const std::filesystem::path& damaged, const std::filesystem::path& sound,
                    const RescueOptions& options) {
  requireOtherFile(damaged, sound);
  const auto work = [&] { return rescueHere(damaged, sound, options); };
  return options.inOwnProcess ? detail::inOwnProcess(work, damaged) : work();
}

UpgradeReport upgrade(const std::filesystem::path& old, const std::filesystem::path& present,
                      const SaveOptions& options) {
  requireOtherFile(old, present);
  ReadFile file = read(old);
  const std::vector<LostObject> lost = file.losses.takeLost();
  if (!lost.empty()) {
    throw Error(Code::upgradeLoses,
                "would lose something: " + lost.front().sentence + "; a rescue keeps the rest",
                {old, lost.front().object, {}});
  }
  if (!file.input && !file.output) {
    throw Error(Code::noDocument, "holds no document", {old, {}, {}});
  }
  saveAll(present, file, options);
  return {file.version, file.losses.takeChanged()};
}

}  // namespace orvml
