// The place where the preprocessor makes sure that what it read is what the other one sent.
#pragma once

#include "exchange/record.h"
#include "preprocessor/document.h"

#include <string>

namespace orvml_examples {

/// What the receiver compares: the document that it read and the record that the sender kept.
struct Received {
  const Document& document;
  std::string group;
  Record sent;
};

/// Compares every value; the first one that differs is an exception that names it. The flat readers
/// do not bring the must-be-transmitted flags back: it is the only difference allowed.
void requireReceivedAsSent(const Received& received);

}  // namespace orvml_examples
