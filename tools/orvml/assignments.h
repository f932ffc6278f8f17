#pragma once

#include <orvml/view.hpp>

#include "command.h"
#include "draft.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml_tool {

/// What the command line sets in a document.
struct Assignments {
  std::vector<std::string> parameters;        ///< NAME=VALUE
  std::vector<std::string> vectorParameters;  ///< NAME=VALUES
  std::vector<std::string> attributes;        ///< ENTITY/NAME=VALUES
  bool mustBeTransmitted = false;             ///< the attributes that are set

  [[nodiscard]] bool empty() const {
    return parameters.empty() && vectorParameters.empty() && attributes.empty();
  }
  /// Throws Refusal for a text that is none of these, and what Draft throws.
  void applyTo(Draft& draft) const;
};

/// Adds --param, --vector, --attribute and --transmit.
void addAssignments(CLI::App& command, Assignments& assignments);

}  // namespace orvml_tool
