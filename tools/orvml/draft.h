#pragma once

#include <orvml/patch.hpp>
#include <orvml/view.hpp>

#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvml_tool {

/// Values of one of the two types that vectors have.
using Numbers = std::variant<std::vector<int>, std::vector<double>>;

/// A document that is about to be written: one that is made from nothing, or one that lies
/// elsewhere and is changed in some places. What is not changed is not copied.
class Draft {
 public:
  Draft(orvml::Kind kind, int dimension);
  /// The document has to stay valid as long as the draft.
  explicit Draft(const orvml::DocumentView& document);

  void setModule(std::string name);
  void setModuleFormatVersion(std::string version);
  void setCreator(std::string creator);

  // They take the attributes away.
  void setNodes(std::vector<double> coordinates);
  struct Group {
    orvml::Shape shape = orvml::Shape::none;
    int nodesPerCell = 0;
    std::vector<int> nodeIndices;
  };
  void setCells(orvml::Entity entity, std::vector<Group> groups);

  void setParameter(const std::string& name, double value);
  void setVectorParameter(const std::string& name, Numbers values);
  /// Throws orvml::Error with Code::sizesDisagree when there is not one value per node or cell.
  void setAttribute(orvml::Entity entity, const std::string& name, Numbers values,
                    bool mustBeTransmitted);

  // They do nothing for a name that there is not.
  void removeParameter(std::string_view name);
  void removeVectorParameter(std::string_view name);
  void removeAttribute(orvml::Entity entity, std::string_view name);

  [[nodiscard]] int dimension() const noexcept { return parts_.dimension; }
  [[nodiscard]] const orvml::NodesView& nodes() const noexcept { return parts_.nodes; }
  [[nodiscard]] std::size_t sizeOf(orvml::Entity entity) const;
  [[nodiscard]] const orvml::Attributes& attributes(orvml::Entity entity) const;
  [[nodiscard]] const orvml::Attributes& vectorParameters() const {
    return parts_.vectorParameters;
  }

  /// The draft as it is now, valid until it is changed.
  [[nodiscard]] orvml::Exchange documents() const;

 private:
  orvml::CellsView& cells(orvml::Entity entity);
  [[nodiscard]] const orvml::CellsView& cells(orvml::Entity entity) const;
  void setAttributes(orvml::Entity entity, orvml::Attributes attributes);
  orvml::Attribute kept(const std::string& name, Numbers values, bool mustBeTransmitted);
  std::string_view kept(std::string text) { return texts_.emplace_back(std::move(text)); }

  orvml::Kind kind_;
  orvml::DocumentParts parts_;
  std::deque<std::string> texts_;
  std::deque<Numbers> numbers_;
};

}  // namespace orvml_tool
