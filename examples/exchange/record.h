// What a program had in its hands, as text: the values of a document, one line each, in a file that
// is also JSON. The sender records a document before it writes it and the receiver records what it
// read; equal records mean equal documents, bit for bit, because every double is written with as
// many digits as it takes to read the same double back.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orvml_examples {

class Record {
 public:
  static Record load(const std::string& path);
  void save(const std::string& path) const;

  void add(std::string key, std::string json);
  [[nodiscard]] const std::vector<std::pair<std::string, std::string>>& entries() const {
    return entries_;
  }
  /// Null when there is no such key.
  [[nodiscard]] const std::string* find(const std::string& key) const;

 private:
  std::vector<std::pair<std::string, std::string>> entries_;
};

/// Keys that begin so tell which attributes must be transmitted.
inline constexpr char kTransmittedKeys[] = "transmitted/";

/// Requires that what was read is what was sent; the first value that is not is an exception that
/// names it.
///
/// @param mayDiffer  keys that begin so may have other values; none when it is empty
void requireSameValues(const Record& sent, const Record& read, const std::string& mayDiffer = {});

// Values as they stand in a record.
std::string toJson(int value);
std::string toJson(double value);
std::string toJson(const std::string& text);

template <class Values>
std::string toJsonArray(const Values& values) {
  std::string text = "[";
  for (const auto& value : values) {
    text += (text.size() == 1 ? "" : ", ") + toJson(value);
  }
  return text + "]";
}

}  // namespace orvml_examples
