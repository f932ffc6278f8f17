#include "check/rules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace orvml {

namespace {

constexpr Severity kNote = Severity::note;
constexpr Severity kWarning = Severity::warning;
constexpr Severity kError = Severity::error;

// Programs and their users look the codes up: a text never changes. In the order of CheckCode.
constexpr CheckRule kMeshRules[] = {
    {"orvml.mesh.index-out-of-range", kError, "a cell names a node that does not exist",
     "count nodes from 0, and write the nodes and the cells of one mesh"},
    {"orvml.mesh.repeated-node", kError, "a cell names a node twice",
     "write it as the shape that it has collapsed to, or leave it out"},
    {"orvml.mesh.node-count", kError, "the shape has no form with that many nodes",
     "give each shape one of the numbers of nodes that docs/checks.md lists"},
    {"orvml.mesh.unknown-shape", kNote, "the number of the shape is none that the format names",
     "agree on the number with the reader, or use a shape of the format"},
    {"orvml.mesh.misplaced-shape", kError, "the shape does not belong to that kind of cells",
     "keep lines among the edges, triangles and quadrilaterals among the faces, and cells with a "
     "volume among the elements"},
    {"orvml.mesh.duplicate-cell", kError, "a cell has the nodes of another one",
     "leave out all but one of them"},
    {"orvml.mesh.unused-node", kWarning, "no cell names the node",
     "leave the node out and number the others anew, unless it is meant to stand alone"},
    {"orvml.mesh.coordinates-missing", kError, "there are nodes, and no coordinates",
     "have the coordinates written again by the sender"},
    {"orvml.mesh.coordinate-not-finite", kError, "a coordinate is infinite or no number",
     "look for a division by zero, or an uninitialised array, where the coordinates are computed"},
    {"orvml.mesh.coincident-nodes", kWarning, "nodes lie at the same place",
     "merge them, unless the mesh is meant to be open between them"},
    {"orvml.mesh.zero-size-cell", kError, "a cell has no length, area or volume",
     "leave the cell out, or move its nodes apart"},
    {"orvml.mesh.inverted-cell", kError, "a cell is inside out",
     "give its nodes in the order of VTK; exchange two of them to turn a simplex"},
    {"orvml.mesh.folded-cell", kError, "a cell is inside out in a part of it",
     "move the nodes that fold it, often the middle ones of a curved edge"},
    {"orvml.mesh.face-without-element", kWarning, "a face bounds no volume element",
     "take the faces from the elements, with the nodes that these have"},
    {"orvml.mesh.face-shared-by-many", kError, "more than two elements share a face",
     "leave out the elements that overlap others"},
    {"orvml.mesh.inward-face", kWarning, "a boundary face looks into its element",
     "turn the order of its nodes round, so that it is counter-clockwise seen from outside"},
    {"orvml.surface.open", kWarning, "an edge of the surface has one face only",
     "close the gap; a mesher cannot fill what is open"},
    {"orvml.surface.non-manifold", kWarning, "more than two faces share an edge",
     "leave out what overlaps, unless the surface is meant to have inner walls"},
    {"orvml.surface.inconsistent", kWarning, "faces beside each other look to different sides",
     "turn the order of the nodes of one of them round"},
    {"orvml.surface.inward", kWarning, "the faces of the closed surface look inwards",
     "turn the order of the nodes of every face round"},
    {"orvml.attribute.length", kError, "an attribute has not one value per node or cell",
     "set the attribute anew, after the nodes and cells"},
    {"orvml.name.at-limit", kNote, "a name has 79 bytes, as one that was cut would have",
     "compare it with the name that was meant, and shorten it"},
    {"orvml.text.at-limit", kNote, "a text has 79 bytes, as one that was cut would have",
     "compare it with the text that was meant, and shorten it"},
    {"orvml.contract.lost-in-clone", kWarning,
     "without scalar parameters, a clone of the flat functions loses the vector parameters",
     "set one scalar parameter"},
    {"orvml.contract.lost-when-written", kWarning,
     "attributes of nodes or cells that do not exist are not written",
     "keep what they say in a vector parameter"},
    {"orvml.contract.flag-not-read", kNote,
     "the flat readers do not see which attributes have to be transmitted",
     "agree on the names of these attributes, or read with orvml::load"},
    {"orvml.file.legacy-layout", kNote, "the file has the layout of a format before 1.4",
     "orvml::upgrade writes it in the present format"},
    {"orvml.values.clamped", kError, "stored integers do not fit 32 bits and are read as others",
     "write values between -2147483648 and 2147483647, or doubles"}};

constexpr const char* kWriteAgain = "have the file written again by its sender";

// Those that readers know.
constexpr std::array<Code, 17> kReaderCodes = {
    Code::wrongDimension,    Code::objectMissing,
    Code::objectUnopenable,  Code::objectInAnotherFile,
    Code::objectPathTooLong, Code::objectWrongShape,
    Code::objectWrongType,   Code::objectUnreadable,
    Code::objectForeign,     Code::valuesTooMany,
    Code::valuesTooFew,      Code::valuesNegativeOrTooLarge,
    Code::valueNotAllowed,   Code::memoryOutOfProportion,
    Code::nameTooLong,       Code::nameNotAllowed,
    Code::textTooLong};

const std::array<CheckRule, kReaderCodes.size()>& readerRules() noexcept {
  static const std::array<CheckRule, kReaderCodes.size()> kRules = {
      {{text(Code::wrongDimension), kError, "a mesh has dimension 2 or 3",
        "give the number of coordinates of a node, to the document and to its nodes"},
       {text(Code::objectMissing), kError, "an object is missing", kWriteAgain},
       {text(Code::objectUnopenable), kError, "an object cannot be opened", kWriteAgain},
       {text(Code::objectInAnotherFile), kError, "values lie in another file",
        "put everything into one file; h5copy -f ext replaces a link by what it leads to"},
       {text(Code::objectPathTooLong), kError, "the path of an object is too long",
        "shorten the name to 79 bytes"},
       {text(Code::objectWrongShape), kError, "an array has extents that it may not have",
        kWriteAgain},
       {text(Code::objectWrongType), kError, "an array has a type that it may not have",
        kWriteAgain},
       {text(Code::objectUnreadable), kError, "an object cannot be read",
        "install the filter that it needs, or have the file written again"},
       {text(Code::objectForeign), kNote, "an object does not belong to the format",
        "keep it elsewhere: programs that write the file anew leave it out"},
       {text(Code::valuesTooMany), kError, "an array has more values than it should", kWriteAgain},
       {text(Code::valuesTooFew), kError, "an array has fewer values than it should", kWriteAgain},
       {text(Code::valuesNegativeOrTooLarge), kError, "a count is negative or too large",
        kWriteAgain},
       {text(Code::valueNotAllowed), kError, "a value has no meaning where it stands", kWriteAgain},
       {text(Code::memoryOutOfProportion), kError, "the file claims more than it can hold",
        "distrust the file; an honest one can be rewritten with h5repack -f NONE"},
       {text(Code::nameTooLong), kError, "a name has more than 79 bytes", "shorten it"},
       {text(Code::nameNotAllowed), kError, "a name is empty or stands for a path",
        "give it a name without slashes and null bytes"},
       {text(Code::textTooLong), kError, "a text has more than 79 bytes", "shorten it"}}};
  return kRules;
}

constexpr std::size_t kMeshRuleCount = std::size(kMeshRules);
static_assert(kMeshRuleCount == static_cast<std::size_t>(CheckCode::integersClamped) + 1);

}  // namespace

std::string_view name(Severity severity) noexcept {
  constexpr std::array<std::string_view, 3> kNames = {"note", "warning", "error"};
  return kNames[static_cast<std::size_t>(severity) % kNames.size()];
}

std::string_view name(PlaceKind kind) noexcept {
  constexpr std::array<std::string_view, 5> kNames = {"node", "edge", "face", "element", "value"};
  return kNames[static_cast<std::size_t>(kind) % kNames.size()];
}

std::string_view text(CheckCode code) noexcept { return detail::ruleOf(code).code; }

std::span<const CheckRule> checkRules() noexcept {
  static const auto kAll = [] {
    std::array<CheckRule, kMeshRuleCount + kReaderCodes.size()> rules{};
    const auto* end = std::copy(std::begin(kMeshRules), std::end(kMeshRules), rules.begin());
    std::copy(readerRules().begin(), readerRules().end(), rules.begin() + (end - rules.begin()));
    return rules;
  }();
  return kAll;
}

std::optional<Severity> CheckReport::worst() const noexcept {
  const auto found = std::max_element(
      findings.begin(), findings.end(),
      [](const CheckFinding& a, const CheckFinding& b) { return a.severity < b.severity; });
  return found == findings.end() ? std::nullopt : std::optional(found->severity);
}

bool CheckReport::isClean() const noexcept {
  return worst().value_or(Severity::note) == Severity::note;
}

namespace detail {

const CheckRule& ruleOf(CheckCode code) noexcept {
  return kMeshRules[static_cast<std::size_t>(code) % kMeshRuleCount];
}

const CheckRule& ruleOf(Code code) noexcept {
  const auto* found = std::find(kReaderCodes.begin(), kReaderCodes.end(), code);
  if (found == kReaderCodes.end()) {
    found = std::find(kReaderCodes.begin(), kReaderCodes.end(), Code::objectUnreadable);
  }
  return readerRules()[static_cast<std::size_t>(found - kReaderCodes.begin())];
}

}  // namespace detail

}  // namespace orvml
