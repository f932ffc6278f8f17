#include "fuzz/tree/document_tree.h"

#include "fuzz/harness/choice.h"

#include <iterator>

namespace orvml_io_tests {

namespace {

using orvml_io::AttributeId;
using orvml_io::DatasetId;
using orvml_io::DatatypeId;
using orvml_io::GroupId;

/// How parameters and attributes are laid out.
enum class Layout { named, positional, both };

/// The parts of a document that a tree may hold or lack.
enum Part : unsigned {
  kNodeAttributes = 1,
  kEdges = 2,
  kFaces = 4,
  kElements = 8,
  kParameters = 16,
  kWhole = 31
};

/// What a tree holds beside the nodes. Most of the choices are one part alone: it is made and read
/// in a fraction of the time of a whole document, and few bytes lead to what is to be changed.
constexpr unsigned kParts[] = {kWhole,
                               kNodeAttributes,
                               kEdges,
                               kFaces,
                               kElements,
                               kParameters,
                               kNodeAttributes | kParameters,
                               kEdges | kFaces | kElements};

/// What the documents of a tree have in common.
struct Plan {
  Layout layout;
  unsigned parts;
  std::string version;
};

/// The numbers of entities of the valid document.
constexpr int kNodes = 4;
constexpr int kDimension = 3;

struct Cells {
  const char* group;
  int count;
  std::vector<double> counts;
  std::vector<double> shapes;
  std::vector<double> nodes;
  std::vector<double> connectivities;
};

Lengths lengthOf(const std::vector<double>& values) { return {values.size()}; }

void makeInts(Tree& tree, hid_t parent, const char* name, const std::vector<double>& values) {
  makeDataset(tree, parent, {name, H5T_NATIVE_INT, lengthOf(values), values});
}

/// Names at the limits of the buffers of a reader, and those that look like numbers.
std::string nameOf(unsigned choice, const std::string& normal) {
  static const std::string deviations[] = {"x",
                                           std::string(79, 'v'),
                                           std::string(80, 'v'),
                                           std::string(1000, 'v'),
                                           std::string(1023, 'v'),
                                           std::string(5000, 'v'),
                                           "00",
                                           "+1",
                                           "-1",
                                           " 1",
                                           "2",
                                           "7",
                                           "2147483647",
                                           "2147483648",
                                           "99999999999999999999",
                                           "\xff\xfe",
                                           "..",
                                           "MustBeTransmitted",
                                           "1x"};
  return normalOr(deviations, choice, normal);
}

/// Makes more members, all of them one dataset by as many names: to a reader they are alike.
void makeMoreMembers(Tree& tree, hid_t group, const DatasetPlan& plan, unsigned count) {
  ByteSource noDeviation(nullptr, 0);
  Tree plain{tree.file, noDeviation};
  makeDataset(plain, tree.file, plan);
  const DatasetId dataset(H5Dopen2(tree.file, plan.name.c_str(), H5P_DEFAULT));
  for (unsigned i = 0; i < count; ++i) {
    H5Olink(dataset.get(), group, std::to_string(i + 2).c_str(), H5P_DEFAULT, H5P_DEFAULT);
  }
}

/// A group of vectors: two datasets and, by one of the bytes, more of them than fit a small group.
void makeVectors(Tree& tree, hid_t group, hid_t type, int length, const char* firstName,
                 const char* secondName) {
  constexpr unsigned kMostExtraMembers = 20;
  const std::string first = nameOf(tree.bytes.next(), firstName);
  const unsigned extraMembers = tree.bytes.choice(kMostExtraMembers);
  const std::vector<double> values = {2, 5, 7, 11};
  const Lengths lengths = {static_cast<hsize_t>(length)};
  makeDataset(tree, group, {first, type, lengths, values});
  makeDataset(tree, group, {secondName, type, lengths, values});
  if (extraMembers > 0) {
    const std::string path = "/More" + std::to_string(tree.madeElsewhere++);
    makeMoreMembers(tree, group, {path, type, lengths, values}, extraMembers);
  }
}

void makeNamedVectors(Tree& tree, hid_t parent, const char* name, hid_t type, int length) {
  const GroupId group = makeGroup(tree, parent, name);
  makeNumber(tree, group.get(), "MustBeTransmitted", 1);
  makeVectors(tree, group.get(), type, length, "first", "second");
}

void makePositionedVectors(Tree& tree, hid_t parent, const char* name, hid_t type, int length) {
  const GroupId group = makeGroup(tree, parent, name);
  makeNumber(tree, group.get(), "MAX_ID", 2);
  makeVectors(tree, group.get(), type, length, "0", "1");
}

void makeAttributes(Tree& tree, hid_t container, int count, Layout layout) {
  if (layout != Layout::positional) {
    makeNamedVectors(tree, container, "Attributes", H5T_NATIVE_DOUBLE, count);
  }
  if (layout != Layout::named) {
    makePositionedVectors(tree, container, "FunctionAttributes", H5T_NATIVE_DOUBLE, count);
    makePositionedVectors(tree, container, "UserAttributes", H5T_NATIVE_DOUBLE, count);
    makePositionedVectors(tree, container, "FunctionMarkers", H5T_NATIVE_INT, count);
    makePositionedVectors(tree, container, "UserMarkers", H5T_NATIVE_INT, count);
  }
}

void makeNodes(Tree& tree, hid_t document, const Plan& plan) {
  const GroupId nodes = makeGroup(tree, document, "Nodes");
  makeDataset(tree, nodes.get(),
              {"coordinates",
               H5T_NATIVE_DOUBLE,
               {kNodes, kDimension},
               {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}});
  if ((plan.parts & kNodeAttributes) != 0) {
    makeAttributes(tree, nodes.get(), kNodes, plan.layout);
  }
}

void makeCells(Tree& tree, hid_t document, const Cells& cells, Layout layout) {
  const GroupId group = makeGroup(tree, document, cells.group);
  makeInts(tree, group.get(), "number_of_elements_by_type", cells.counts);
  makeInts(tree, group.get(), "element_types", cells.shapes);
  makeInts(tree, group.get(), "number_of_nodes_by_element", cells.nodes);
  makeInts(tree, group.get(), "connectivities", cells.connectivities);
  makeAttributes(tree, group.get(), cells.count, layout);
}

void makePositionalParameters(Tree& tree, hid_t document) {
  const std::vector<double> values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 2, 0.5, 0.25, 1, 0};
  makeDataset(tree, document, {"parameters", H5T_NATIVE_DOUBLE, lengthOf(values), values});
}

void makeParameters(Tree& tree, hid_t document, Layout layout) {
  if (layout == Layout::positional) {
    makePositionalParameters(tree, document);
  } else {
    makeParameterTable(tree, document, "parameters");
  }
  if (layout != Layout::positional) {
    makeNamedVectors(tree, document, "ParametersVector", H5T_NATIVE_INT, 3);
  }
  if (layout != Layout::named) {
    makePositionedVectors(tree, document, "GenericMarkers", H5T_NATIVE_INT, 3);
    makePositionedVectors(tree, document, "GenericAttributes", H5T_NATIVE_DOUBLE, 2);
  }
}

void makeDocument(Tree& tree, const char* name, const Plan& plan) {
  const GroupId document = makeGroup(tree, tree.file, name);
  const auto makeCellsOf = [&](Part part, const Cells& cells) {
    if ((plan.parts & part) != 0) {
      makeCells(tree, document.get(), cells, plan.layout);
    }
  };
  makeInts(tree, document.get(), "dimension", {kDimension});
  makeNodes(tree, document.get(), plan);
  makeCellsOf(kEdges, {"Edges", 2, {2}, {1}, {2}, {0, 1, 1, 2}});
  makeCellsOf(kFaces, {"Faces", 2, {1, 1}, {2, 3}, {3, 4}, {0, 1, 2, 0, 1, 3, 2}});
  makeCellsOf(kElements, {"Elements", 1, {1}, {4}, {4}, {0, 1, 2, 3}});
  if ((plan.parts & kParameters) != 0) {
    makeParameters(tree, document.get(), plan.layout);
  }
}

/// Takes 1 byte: one of four layouts, and the parts. The version is the text that the tree holds if
/// no other byte changes it.
Plan planFrom(ByteSource& bytes) {
  constexpr Layout kLayouts[] = {Layout::named, Layout::positional, Layout::both, Layout::both};
  constexpr const char* kVersions[] = {"1.4", "1.3", "nan", "1.3"};
  const unsigned choice = bytes.next();
  const unsigned layout = choice % std::size(kLayouts);
  return {kLayouts[layout], chosen(choice / std::size(kLayouts), kParts), kVersions[layout]};
}

}  // namespace

void makeExchangeTree(Tree& tree) {
  constexpr unsigned kOnlyInput = 0;
  constexpr unsigned kOnlyOutput = 1;
  constexpr unsigned kOneForBoth = 3;
  const GroupId root(H5Gopen2(tree.file, "/", H5P_DEFAULT));
  const Plan plan = planFrom(tree.bytes);
  const unsigned documents = tree.bytes.choice(4);
  makeText(tree, root.get(), "FORMAT", "ORVMESHLIBRARY");
  makeText(tree, root.get(), "ORVMESHLIBRARY_FORMAT_VERSION", plan.version);
  makeText(tree, root.get(), "ORVML_IO_CREATOR", "fuzzer");
  makeText(tree, root.get(), "ORVML_MODULE_NAME", "ORVML_OCTREE_MESHER");
  makeText(tree, root.get(), "ORVML_MODULE_FORMAT_VERSION", "2.1");
  makeNumber(tree, root.get(), "MustBeTransmitted", 1);
  if (documents != kOnlyOutput) {
    makeDocument(tree, "OrvInput", plan);
  }
  if (documents == kOneForBoth) {
    H5Lcreate_hard(tree.file, "OrvInput", tree.file, "OrvOutput", H5P_DEFAULT, H5P_DEFAULT);
  } else if (documents != kOnlyInput) {
    makeDocument(tree, "OrvOutput", plan);
  }
}

}  // namespace orvml_io_tests
