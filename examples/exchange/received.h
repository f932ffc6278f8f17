// The place where a program makes sure that what it read is what the other one sent.
#pragma once

#include "exchange/record.h"

#include <string>

namespace orvml_examples {

/// What the receiver compares: the document that it read and the record that the sender kept.
struct Received {
  const Document& document;
  std::string group;
  Record sent;
};

/// Runs every comparison; the first one that does not hold is an exception that names the values.
void requireReceivedAsSent(const Received& received);

}  // namespace orvml_examples
