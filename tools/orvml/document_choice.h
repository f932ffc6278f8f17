#pragma once

#include <orvml/view.hpp>

#include "command.h"

#include <optional>

namespace orvml_tool {

/// Which document of a file is meant, where it has two.
struct DocumentChoice {
  bool isInput = false;
  bool isOutput = false;

  /// The kind that was asked for, else the one that a file has. Throws Refusal where that is open
  /// and Error with Code::noInput or Code::noOutput for a document that there is not.
  ///
  /// @param shown  the name of the file, for the messages
  [[nodiscard]] orvml::Kind of(bool hasInput, bool hasOutput, const std::string& shown) const;
};

/// Adds --input and --output.
void addChoice(CLI::App& command, DocumentChoice& choice);

}  // namespace orvml_tool
