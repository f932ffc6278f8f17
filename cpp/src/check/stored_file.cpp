#include "check/stored_file.h"

#include "check/rules.h"
#include "check/stored_integers.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"
#include "vtkhdf/linked_group.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <utility>

namespace orvml::detail {

namespace {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;

/// What the format has in a group.
enum class Member { foreign, integers, otherValues, nodes, cells, vectors, positions };

/// The names of a group in one of the layouts.
struct KnownMember {
  const char* subPath;
  Member member;
};

constexpr std::array<KnownMember, 6> kOfBothDocuments = {
    {{layout::kDimension, Member::integers},
     {layout::kNodes, Member::nodes},
     {layout::kEdges, Member::cells},
     {layout::kFaces, Member::cells},
     {layout::kElements, Member::cells},
     {layout::kParameters, Member::otherValues}}};
constexpr std::array<KnownMember, 1> kOfNamedDocument = {
    {{layout::kParametersVector, Member::vectors}}};
constexpr std::array<KnownMember, 2> kOfLegacyDocument = {
    {{layout::kGenericMarkers, Member::positions},
     {layout::kGenericAttributes, Member::positions}}};
constexpr std::array<KnownMember, 1> kOfNodes = {{{layout::kCoordinates, Member::otherValues}}};
constexpr std::array<KnownMember, 4> kOfCells = {
    {{layout::kNumberOfElementsByType, Member::integers},
     {layout::kElementTypes, Member::integers},
     {layout::kNumberOfNodesByElement, Member::integers},
     {layout::kConnectivities, Member::integers}}};
constexpr std::array<KnownMember, 1> kOfNamedContainer = {{{layout::kAttributes, Member::vectors}}};
constexpr std::array<KnownMember, 4> kOfLegacyContainer = {
    {{layout::kFunctionAttributes, Member::positions},
     {layout::kUserAttributes, Member::positions},
     {layout::kFunctionMarkers, Member::positions},
     {layout::kUserMarkers, Member::positions}}};

std::string memberOf(const std::string& path, const std::string& name) { return path + "/" + name; }

bool isPosition(std::string_view name) noexcept {
  int position = 0;
  const char* end = name.data() + name.size();
  return std::from_chars(name.data(), end, position).ptr == end && position >= 0;
}

/// Goes through the groups of a file that the format knows.
class StoredFile {
 public:
  StoredFile(hid_t file, bool isLegacy, FindingList& findings)
      : source_(file), isLegacy_(isLegacy), findings_(findings) {}

  void checkRoot() {
    const OpenGroup root = source_.root();
    forEachLink(root, "", [&](const std::string& name) {
      if ("/" + name == layout::kOrvInput || "/" + name == layout::kOrvOutput) {
        checkGroup(root, name, "", &StoredFile::checkDocument);
      } else if ("/" + name != layout::kVtkHdf || vtkGroupOf(root.id()) != VtkGroup::ofLinkVtk) {
        addForeign("/" + name);
      }
    });
  }

 private:
  using Check = void (StoredFile::*)(const OpenGroup&, const std::string&);

  /// Calls a function with the name of each link that does not lead to another file.
  template <class Function>
  void forEachLink(const OpenGroup& group, const std::string& path, Function function) {
    const auto names = orvml_io::linkNames(group.id());
    if (!names) {
      return;  // readers tell of groups that they cannot list
    }
    for (const std::string& name : *names) {
      H5L_info_t info = {};
      if (H5Lget_info(group.id(), name.c_str(), &info, H5P_DEFAULT) >= 0 &&
          info.type == H5L_TYPE_EXTERNAL) {
        addOnce(ruleOf(Code::objectInAnotherFile), memberOf(path, name),
                "is a link to another file");
      } else {
        function(name);
      }
    }
  }

  void checkGroup(const OpenGroup& parent, const std::string& name, const std::string& parentPath,
                  Check check) {
    const std::string subPath = "/" + name;
    const auto opened = source_.openGroup(parent, subPath.c_str());
    if (opened.isObject()) {
      (this->*check)(parent.below(opened.id.get(), subPath), parentPath + subPath);
    }
  }

  void checkDocument(const OpenGroup& group, const std::string& path) {
    if (isLegacy_) {
      checkMembers(group, path, {kOfBothDocuments, kOfLegacyDocument});
    } else {
      checkMembers(group, path, {kOfBothDocuments, kOfNamedDocument});
    }
  }

  void checkNodes(const OpenGroup& group, const std::string& path) {
    checkContainer(group, path, kOfNodes);
  }

  void checkCells(const OpenGroup& group, const std::string& path) {
    checkContainer(group, path, kOfCells);
  }

  void checkContainer(const OpenGroup& group, const std::string& path,
                      std::span<const KnownMember> datasets) {
    if (isLegacy_) {
      checkMembers(group, path, {datasets, kOfLegacyContainer});
    } else {
      checkMembers(group, path, {datasets, kOfNamedContainer});
    }
  }

  void checkMembers(const OpenGroup& group, const std::string& path,
                    std::initializer_list<std::span<const KnownMember>> known) {
    forEachLink(group, path, [&](const std::string& name) {
      const std::string subPath = "/" + name;
      Member member = Member::foreign;
      for (const std::span<const KnownMember> members : known) {
        for (const KnownMember& one : members) {
          member = subPath == one.subPath ? one.member : member;
        }
      }
      checkMember(group, path, name, member);
    });
  }

  void checkMember(const OpenGroup& group, const std::string& path, const std::string& name,
                   Member member) {
    switch (member) {
      case Member::foreign:
        return addForeign(memberOf(path, name));
      case Member::integers:
        return checkIntegers(group, path, name);
      case Member::nodes:
        return checkGroup(group, name, path, &StoredFile::checkNodes);
      case Member::cells:
        return checkGroup(group, name, path, &StoredFile::checkCells);
      case Member::vectors:
        return checkGroup(group, name, path, &StoredFile::checkVectors);
      case Member::positions:
        return checkGroup(group, name, path, &StoredFile::checkPositions);
      default:
        return;
    }
  }

  /// Readers tell which of these are no vectors.
  void checkVectors(const OpenGroup& group, const std::string& path) {
    forEachLink(group, path, [&](const std::string& name) { checkIntegers(group, path, name); });
  }

  void checkPositions(const OpenGroup& group, const std::string& path) {
    forEachLink(group, path, [&](const std::string& name) {
      if (isPosition(name)) {
        checkIntegers(group, path, name);
      } else {
        addForeign(memberOf(path, name));
      }
    });
  }

  void checkIntegers(const OpenGroup& group, const std::string& path, const std::string& name) {
    const auto opened = source_.openMember(group, name);
    if (!opened.isObject()) {
      return;
    }
    Places places = findings_.places(PlaceKind::value);
    findClamped(source_, group, name, opened.id.get(), places);
    const std::string sentence = "has " + countText(places.size(), "value", "values") +
                                 " that 32 bits do not hold, read as the nearest that they do";
    findings_.add(ruleOf(CheckCode::integersClamped), memberOf(path, name), std::move(places),
                  sentence);
  }

  void addForeign(const std::string& object) {
    addOnce(ruleOf(Code::objectForeign), object, "does not belong to the format");
  }

  void addOnce(const CheckRule& rule, const std::string& object, const char* sentence) {
    if (!findings_.holds(rule.code, object)) {
      findings_.add(rule, object, sentence);
    }
  }

  orvml_io::SourceFile source_;
  bool isLegacy_;
  FindingList& findings_;
};

}  // namespace

void checkStoredFile(hid_t file, FindingList& findings) {
  const orvml_io::Silence silence;
  const std::string version = orvml_io::readRootText(file, layout::kFormatVersion).value_or("");
  const bool isLegacy = orvml_io::isBelowNamedFormat(version.c_str());
  if (isLegacy) {
    findings.add(ruleOf(CheckCode::legacyLayout), std::string("/") + layout::kFormatVersion,
                 (version.empty() ? "is missing" : "is " + version) +
                     ", so parameters and attributes are known by their positions");
  }
  checkStoredObjects(file, isLegacy, findings);
}

void checkStoredObjects(hid_t file, bool isLegacy, FindingList& findings) {
  const orvml_io::Silence silence;
  StoredFile(file, isLegacy, findings).checkRoot();
}

}  // namespace orvml::detail
