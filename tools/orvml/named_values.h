#pragma once

#include <orvml/patch.hpp>
#include <orvml/view.hpp>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvml_tool {

/// What a named value is to its document.
enum class Role { parameter, vectorParameter, attribute, array };

/// Something with values that a user can name.
struct NamedValue {
  std::string path;  ///< as in the format, such as "/OrvInput/Faces/Attributes/size"
  std::string name;  ///< the last part of the path
  orvml::Kind kind = orvml::Kind::input;
  Role role = Role::array;
  orvml::Entity entity = orvml::Entity::nodes;  ///< of attributes
  orvml::Attribute::Values values;              ///< one value where it is a parameter
  std::size_t rowLength = 1;                    ///< values of a node or a cell
};

/// All that has values in the documents of a file. They are valid as long as the documents and this
/// object.
class NamedValues {
 public:
  explicit NamedValues(const orvml::Exchange& documents);

  /// Returns what a name stands for: the whole path, or its end from a slash on. Throws Refusal
  /// when there is none, or more than one, with all of them.
  ///
  /// @param shown  the name of the file, for the message
  [[nodiscard]] const NamedValue& named(std::string_view name, const std::string& shown) const;

 private:
  void addDocument(const orvml::DocumentView& document);
  void addVectors(const orvml::DocumentView& document, const std::string& group, Role role,
                  orvml::Entity entity, const orvml::Attributes& vectors);
  void addCells(const orvml::DocumentView& document, orvml::Entity entity);
  void addArray(const orvml::DocumentView& document, const std::string& path,
                orvml::Attribute::Values values, std::size_t rowLength = 1);
  std::span<const int> kept(std::vector<int> values);

  std::vector<NamedValue> values_;
  std::deque<std::vector<int>> ints_;  // those that lie nowhere else
  std::deque<double> parameters_;
};

}  // namespace orvml_tool
