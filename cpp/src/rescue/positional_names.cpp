#include "rescue/positional_names.h"

#include "hdf5/layout.h"
#include "hdf5/links.h"
#include "hdf5/octree_mesher.h"
#include "hdf5/probes.h"

#include <iterator>
#include <limits>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

namespace {

void append(std::vector<PositionedVector>& all, std::vector<PositionedVector> more) {
  all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

}  // namespace

std::vector<PositionedVector> positionedVectors(SourceFile& file, const OpenGroup& parent,
                                                const std::string& parentPath, const char* subPath,
                                                const std::function<std::string(int)>& nameOf) {
  std::vector<PositionedVector> vectors;
  if (!orvml_io::Orv_H5_GroupExists(parent, subPath)) {
    return vectors;
  }
  const auto group = file.openGroup(parent, subPath);
  const auto positions = orvml_io::positionsBelow(group.id.get(), std::numeric_limits<int>::max());
  const int end = orvml_io::readIntegerAttribute(file, parent, subPath, layout::kMaxId).value_or(0);
  for (const int position : positions.value_or(std::vector<int>())) {
    vectors.push_back(
        {parentPath + subPath + "/" + std::to_string(position), nameOf(position), position < end});
  }
  return vectors;
}

std::vector<PositionedVector> positionedAttributes(SourceFile& file, const OpenGroup& container,
                                                   const std::string& containerPath,
                                                   ORVML_TYPE_OF_ENTITY entity) {
  std::vector<PositionedVector> all;
  for (const orvml_io::PositionalAttributes& group : orvml_io::kPositionalAttributes) {
    append(all, positionedVectors(file, container, containerPath, group.subPath, [&](int position) {
             return attributeNameAt(group, position, entity, !file.namesEveryAttribute());
           }));
  }
  return all;
}

std::vector<PositionedVector> positionedParameters(SourceFile& file, const OpenGroup& document,
                                                   const std::string& documentPath,
                                                   const std::string& moduleName) {
  const std::string module = moduleName.empty() ? orvml_io::kOctreeMesher : moduleName;
  std::vector<PositionedVector> all =
      positionedVectors(file, document, documentPath, layout::kGenericMarkers,
                        [](int position) { return std::to_string(position); });
  append(all, positionedVectors(
                  file, document, documentPath, layout::kGenericAttributes, [&](int position) {
                    const char* name =
                        orvml_io::GetParameterNameFromDeprecatedGenericAttributeIndex(
                            module.c_str(), position);
                    return name == nullptr ? std::to_string(position) : std::string(name);
                  }));
  return all;
}

}  // namespace orvml::detail
