// What stands at a place of a tree: the object that belongs there, another one, or a link.
#include "fuzz/harness/choice.h"
#include "fuzz/tree/objects.h"

#include <utility>

namespace orvml_io_tests {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::DatatypeId;
using orvml_io::GroupId;

/// One place that is to be filled.
struct Place {
  Tree& tree;
  hid_t parent;
  const char* name;
  const Make& make;
};

using Filler = void (*)(const Place& place);

void makeHere(const Place& place) { place.make(place.parent, place.name); }

void linkSoftly(const Place& place, const char* target) {
  H5Lcreate_soft(target, place.parent, place.name, H5P_DEFAULT, H5P_DEFAULT);
}

void makeElsewhere(const Place& place) {
  const std::string path = "/Elsewhere" + std::to_string(place.tree.madeElsewhere++);
  place.make(place.tree.file, path.c_str());
  linkSoftly(place, path.c_str());
}

void makeEmptyGroup(const Place& place) {
  const GroupId group(H5Gcreate2(place.parent, place.name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
}

void makeScalar(const Place& place) {
  const DataspaceId space(H5Screate(H5S_SCALAR));
  const DatasetId dataset(H5Dcreate2(place.parent, place.name, H5T_NATIVE_INT, space.get(),
                                     H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
}

void makeNamedType(const Place& place) {
  const DatatypeId type(H5Tcopy(H5T_NATIVE_INT));
  H5Tcommit2(place.parent, place.name, type.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
}

void linkToParent(const Place& place) {
  H5Lcreate_hard(place.parent, ".", place.parent, place.name, H5P_DEFAULT, H5P_DEFAULT);
}

void linkToRoot(const Place& place) {
  H5Lcreate_hard(place.tree.file, "/", place.parent, place.name, H5P_DEFAULT, H5P_DEFAULT);
}

void linkToMissingFile(const Place& place) {
  H5Lcreate_external("/nonexistent/orvml_io.h5", "/object", place.parent, place.name, H5P_DEFAULT,
                     H5P_DEFAULT);
}

constexpr Filler kFillers[] = {
    makeHere,
    [](const Place& /*place*/) {},
    makeElsewhere,
    makeEmptyGroup,
    makeScalar,
    makeNamedType,
    linkToParent,
    linkToRoot,
    [](const Place& place) { linkSoftly(place, "/nowhere/at/all"); },
    [](const Place& place) { linkSoftly(place, place.name); },  // leads to itself
    [](const Place& place) { linkSoftly(place, "/"); },
    linkToMissingFile,
};

}  // namespace

void place(Tree& tree, unsigned choice, hid_t parent, const std::string& name, const Make& make) {
  chosen(choice, kFillers)(Place{tree, parent, name.c_str(), make});
}

GroupId makeGroup(Tree& tree, hid_t parent, const std::string& name) {
  GroupId made;
  place(tree, tree.bytes.next(), parent, name, [&](hid_t location, const char* linkName) {
    made = GroupId(H5Gcreate2(location, linkName, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  });
  return made.valid() ? std::move(made) : GroupId(H5Gopen2(parent, name.c_str(), H5P_DEFAULT));
}

}  // namespace orvml_io_tests
