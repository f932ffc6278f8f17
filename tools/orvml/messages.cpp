#include "messages.h"

#include <orvml/check.hpp>

#include "console.h"
#include "passing_folder.h"

#include <algorithm>
#include <iterator>

namespace orvml_tool {

using orvml::Code;

namespace {

struct Cure {
  Code code;
  std::string_view cure;
};

constexpr std::string_view kFromItsSender = "have the file written again by its sender";

// Of errors that no check finds.
constexpr Cure kCures[] = {
    {Code::fileNotFound, "look at the path; a relative one counts from the present folder"},
    {Code::filePermissionDenied, "have its owner grant the right, with chmod for a file of yours"},
    {Code::fileIsADirectory, "name the file in it"},
    {Code::fileNotRegular, "give - to read a pipe, or write what comes out of it to a file first"},
    {Code::fileUnreachable, "look at what the reason says"},
    {Code::fileEmpty, kFromItsSender},
    {Code::fileNotHdf5, "look at its first bytes, with head -c 64 FILE | xxd"},
    {Code::fileCutOff, "copy it again, or have it written again"},
    {Code::fileDamaged, kFromItsSender},
    {Code::fileHeldForWriting, "wait until the program that writes it is done; lsof FILE names it"},
    {Code::fileNotExchange, "see what it is, with h5dump -A FILE"},
    {Code::folderNotFound, "make the folder first"},
    {Code::folderNotWritable, "have the right to write granted for the folder, or write elsewhere"},
    {Code::noSpaceLeft, "make room; the new file needs its whole size beside the old one"},
    {Code::fileTooLarge, "raise the limit that ulimit -f shows"},
    {Code::fileNotWritten, "look at what the reason says"},
    {Code::noDocument, "have its sender write one; h5ls FILE shows what there is"},
    {Code::noInput, "see which document there is, with orvml info --fast FILE"},
    {Code::noOutput, "see which document there is, with orvml info --fast FILE"},
    {Code::noPatch, "name the patch first and the file that it is for second"},
    {Code::patchDamaged, "get the patch again from where it was made"},
    {Code::patchWrongBase, "apply it to the file that it was made from"},
    {Code::nameNotFound, "see which names there are, with orvml info --fast FILE"},
    {Code::nameTwice, "give one of them another name"},
    {Code::sizesDisagree, "give one value for each node or cell"},
    {Code::tooManyValues, "divide the mesh"},
    {Code::rescueNothingLeft, kFromItsSender},
    {Code::rescueSameFile, "name another file to be written"},
    {Code::upgradeLoses,
     "see what would be lost with orvml check FILE, or make do with orvml rescue"},
    {Code::conversionLoses, "leave --strict out, or choose --only that it says nothing of"},
    {Code::conversionBadIndex, "see which with orvml check FILE; orvml rescue leaves them out"},
    {Code::conversionNoNodes, "choose the other document, or have the file written again"},
    {Code::vtkGroupOfOthers, "remove the group with the program that made it"},
    {Code::otherVersion, "install the two libraries in one version"}};

std::string_view cureOfRule(std::string_view code) noexcept {
  const auto rules = orvml::checkRules();
  const auto found =
      std::find_if(rules.begin(), rules.end(), [&](const auto& rule) { return rule.code == code; });
  return found == rules.end() ? std::string_view() : found->cure;
}

std::string withFile(const std::filesystem::path& file, const std::string& sentence) {
  return file.empty() ? printable(sentence) : shownFile(file) + ": " + printable(sentence);
}

/// The object, where the sentence does not name it.
std::string objectOf(const orvml::Error& error) {
  const bool isTold =
      error.object().empty() || error.sentence().find(error.object()) != std::string::npos;
  return isTold ? "" : printable(error.object()) + ": ";
}

}  // namespace

std::string_view cureOf(Code code) noexcept {
  const auto* found = std::find_if(std::begin(kCures), std::end(kCures),
                                   [&](const Cure& cure) { return cure.code == code; });
  return found == std::end(kCures) ? cureOfRule(text(code)) : found->cure;
}

std::string shownFile(const std::filesystem::path& path) {
  if (path == "-") {
    return "standard input";
  }
  // Such a file is called like what it stands for.
  return printable(isPassing(path) ? path.filename() : path);
}

void tell(const orvml::Error& error) {
  std::string sentence = withFile(error.file(), objectOf(error) + error.sentence());
  if (!error.hdf5Reason().empty()) {
    sentence += " (" + printable(error.hdf5Reason()) + ")";
  }
  tellFailure(sentence + " [" + std::string(text(error.code())) + "]", cureOf(error.code()));
}

void tell(const Refusal& refusal) { tellFailure(refusal.what(), refusal.cure()); }

void tellNote(const std::string& sentence) {
  printMessage("orvml: " + coloured("note: ", Colour::cyan, Stream::messages) + sentence + "\n");
}

void tellFailure(std::string_view sentence, std::string_view cure) {
  std::string message = "orvml: " + coloured("error: ", Colour::red, Stream::messages);
  message.append(sentence).append("\n");
  if (!cure.empty()) {
    message.append("  cure: ").append(cure).append("\n");
  }
  printMessage(message);
}

}  // namespace orvml_tool
