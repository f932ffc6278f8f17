#include "document_choice.h"

#include "messages.h"

namespace orvml_tool {

using orvml::Kind;

Kind DocumentChoice::of(bool hasInput, bool hasOutput, const std::string& shown) const {
  if (isInput && !hasInput) {
    throw Refusal(shown + ": there is no input document", "leave --input out");
  }
  if (isOutput && !hasOutput) {
    throw Refusal(shown + ": there is no output document", "leave --output out");
  }
  if (!isInput && !isOutput && hasInput && hasOutput) {
    throw Refusal(shown + ": there are an input and an output document",
                  "say which is meant, with --input or --output");
  }
  return isInput || (hasInput && !isOutput) ? Kind::input : Kind::output;
}

void addChoice(CLI::App& command, DocumentChoice& choice) {
  auto* input = command.add_flag("--input", choice.isInput, "the input document is meant");
  command.add_flag("--output", choice.isOutput, "the output document is meant")->excludes(input);
}

}  // namespace orvml_tool
