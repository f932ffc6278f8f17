#include "faults/outcome.h"

#include "files/described_document.h"
#include "hostile/every_accessor.h"
#include "orvml_io.h"

#include <sstream>

namespace orvml_io_tests {

namespace {

std::set<std::string> linesOf(const std::string& text) {
  std::set<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.insert(line);
  }
  return lines;
}

/// The part of a document that a line of its description is about.
std::string partOf(const std::string& line) {
  std::string label = line.substr(0, line.find_first_of("\"0123456789"));
  while (!label.empty() && label.back() == ' ') {
    label.pop_back();
  }
  return label;
}

}  // namespace

std::set<std::string> lostParts(const std::string& whole, const std::string& found) {
  if (found.empty() && !whole.empty()) {
    return {"everything"};
  }
  const std::set<std::string> wholeLines = linesOf(whole);
  const std::set<std::string> foundLines = linesOf(found);
  std::set<std::string> parts;
  for (const std::string& line : wholeLines) {
    if (foundLines.count(line) == 0) {
      parts.insert(partOf(line));
    }
  }
  for (const std::string& line : foundLines) {
    if (wholeLines.count(line) == 0 && parts.count(partOf(line)) == 0) {
      parts.insert("+" + partOf(line));
    }
  }
  return parts;
}

std::string joined(const std::set<std::string>& parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) {
    text += (text.empty() ? "" : separator) + part;
  }
  return text;
}

std::string describeAndDelete(void* document) {
  if (document != nullptr) {
    callEveryAccessor(document);
  }
  const std::string description = document == nullptr ? "" : describe(document);
  OrvML_IO_DeleteOrvInputHandle(document);
  return description;
}

}  // namespace orvml_io_tests
