#include "faults/outcome.h"

#include "files/described_document.h"
#include "hostile/every_accessor.h"
#include "orvml_io.h"

#include <set>
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

std::string describeAndDelete(void* document) {
  if (document != nullptr) {
    callEveryAccessor(document);
  }
  std::string description = document == nullptr ? "" : describe(document);
  OrvML_IO_DeleteOrvInputHandle(document);
  return description;
}

std::string joined(const std::set<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) {
    text += (text.empty() ? "" : ", ") + part;
  }
  return text;
}

std::string beginEachLine(const std::string& beginning, const std::string& text) {
  std::istringstream in(text);
  std::string result;
  for (std::string line; std::getline(in, line);) {
    result += beginning + line + "\n";
  }
  return result;
}

}  // namespace

Outcome readInput(const char* path) {
  void* input = nullptr;
  const int status = OrvML_IO_ReadOrvInput(path, input);
  return {status, describeAndDelete(input)};
}

Outcome readOutput(const char* path) {
  void* output = nullptr;
  const int status = OrvML_IO_ReadOrvOutput(path, output);
  return {status, describeAndDelete(output)};
}

Outcome readBoth(const char* path) {
  void* input = nullptr;
  void* output = nullptr;
  const int status = OrvML_IO_ReadOrvInputAndOrvOutput(path, input, output);
  const std::string ofInput = describeAndDelete(input);
  return {status,
          beginEachLine("input ", ofInput) + beginEachLine("output ", describeAndDelete(output))};
}

int writeInput(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvInput(path, sources.input.handle());
}

int writeOutput(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvOutput(path, sources.input.handle());
}

int writeBoth(const char* path, const Sources& sources) {
  return OrvML_IO_WriteOrvInputAndOrvOutput(path, sources.input.handle(), sources.output.handle());
}

std::string lostParts(const std::string& whole, const std::string& found) {
  if (found.empty() && !whole.empty()) {
    return "everything";
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
  return joined(parts);
}

}  // namespace orvml_io_tests
