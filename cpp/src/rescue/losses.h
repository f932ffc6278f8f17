#pragma once

#include <orvml/rescue.hpp>

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvml::detail {

/// What a file loses on its way, and what it keeps in another form.
class Losses {
 public:
  /// Adds a whole object; one that is known under the code is not told twice.
  ///
  /// @param sentence  what follows the object in the sentence
  void add(std::string_view code, const std::string& object, const std::string& sentence);
  void add(Code code, const std::string& object, const std::string& sentence) {
    add(text(code), object, sentence);
  }

  /// Adds what has its sentence already.
  void addAsTold(LostObject lost);

  /// Adds an object that is kept in another form.
  void addChange(const std::string& object, const std::string& sentence);

  [[nodiscard]] bool empty() const noexcept { return lost_.empty(); }
  /// Tells whether anything is lost of an object, or below it.
  [[nodiscard]] bool holdsAnyOf(std::string_view object) const noexcept;

  /// What was added, by ascending path.
  [[nodiscard]] std::vector<LostObject> takeLost();
  [[nodiscard]] std::vector<ChangedObject> takeChanged();

 private:
  std::vector<LostObject> lost_;
  std::vector<ChangedObject> changed_;
  std::set<std::pair<std::string_view, std::string>> wholeObjects_;  // codes with objects
  std::set<std::string> changes_;
};

}  // namespace orvml::detail
