#include "rescue/positional_names.h"

#include "hdf5/layout.h"
#include "hdf5/links.h"
#include "hdf5/probes.h"

#include <iterator>
#include <limits>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;
using orvml_io::SourceFile;

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
        {parentPath + subPath + "/" + std::to_string(position), nameOf(position), position, end});
  }
  return vectors;
}

std::vector<PositionedVector> positionedAttributes(SourceFile& file, const OpenGroup& container,
                                                   const std::string& containerPath,
                                                   ORVML_TYPE_OF_ENTITY entity) {
  std::vector<PositionedVector> all;
  for (const orvml_io::PositionalAttributes& group : orvml_io::kPositionalAttributes) {
    const auto vectors =
        positionedVectors(file, container, containerPath, group.subPath, [&](int position) {
          return attributeNameAt(group, position, entity, !file.namesEveryAttribute());
        });
    all.insert(all.end(), vectors.begin(), vectors.end());
  }
  return all;
}

}  // namespace orvml::detail
